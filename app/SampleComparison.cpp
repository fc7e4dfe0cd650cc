#include <algorithm>
#include <memory>
#include <optional>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/EntryComparison.h"
#include "filetypes/dwop/DWOPDecompressor.h"
#include "filetypes/dwop/DWOPExtraInfo.h"
#include "package/PartialMedia.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::SharedMedia;
using NSTolbrook::TextFromUtf8;

/// A stream that is decoded piece by piece. What is wrong with it is kept as a text.
class COpenSample {
 public:
  explicit COpenSample(SharedMedia stream) : fStream(std::move(stream)) {
    Guard([this] {
      NSBigFilePackage::CMediaCursor input(*fStream);
      fHeader = ReadDWOPHeader(input);
      fRemaining = fHeader.fLength;
      fBitStream = input.Position();
      fDecompressor =
          std::make_unique<COptimizedDWOPDecompressorFromMedia>(fHeader, *fStream, fBitStream);
    });
  }

  const CDWOPHeader& Header() const { return fHeader; }
  const std::optional<std::string>& Fault() const { return fFault; }

  /// The next piece; empty at the end.
  std::span<const std::int32_t> Decode() {
    const auto frames = std::min<std::uint32_t>(fRemaining, kDWOPBlockFrames);
    fRemaining -= frames;
    fSamples.assign(std::size_t{frames} * fHeader.fChannels, 0);
    Guard([this] { fDecompressor->Decode(fSamples); });
    return fSamples;
  }

  /// Decodes what is left: the extra info stands behind it.
  void FindExtraInfo(const std::function<void()>& checkStop) {
    while (!fFault && fRemaining > 0) {
      if (checkStop) checkStop();
      Decode();
    }
    Guard([this] {
      const std::uint64_t end = fBitStream + fDecompressor->WordsConsumed() * sizeof(std::uint32_t);
      if (const auto block = ReadExtraInfo(*fStream, end)) {
        fExtraInfo = std::make_shared<NSBigFilePackage::CPartialMedia>(fStream, block->fDataStart,
                                                                       block->fDataLength);
      }
    });
  }
  /// Null when there is none.
  const SharedMedia& ExtraInfo() const { return fExtraInfo; }

 private:
  template <class Work>
  void Guard(const Work& work) {
    if (fFault) return;
    try {
      work();
    } catch (const NSMordel::XFormatViolation& e) {
      fFault = e.Message();
    } catch (const NSMordel::XVersionTooOld& e) {
      fFault = e.Message();
    } catch (const NSMordel::XVersionTooNew& e) {
      fFault = e.Message();
    }
  }

  SharedMedia fStream;
  CDWOPHeader fHeader;
  std::uint32_t fRemaining = 0;  ///< frames
  std::uint64_t fBitStream = 0;
  std::unique_ptr<COptimizedDWOPDecompressorFromMedia> fDecompressor;
  std::vector<std::int32_t> fSamples;
  SharedMedia fExtraInfo;
  std::optional<std::string> fFault;
};

class CSampleComparison {
 public:
  CSampleComparison(const SharedMedia& before, const SharedMedia& after,
                    const std::function<void()>& checkStop)
      : fBefore(before), fAfter(after), fCheckStop(checkStop) {}

  std::vector<CDifference> Compare() {
    if (!IsDamaged()) CompareForm();
    if (!IsDamaged() && fDifferences.empty()) CompareSound();
    CompareExtraInfo();
    if (IsDamaged()) return Faults();
    CompareMetadata();
    // The same samples and everything else the same, written in other bytes.
    if (fDifferences.empty()) Add(EDifference::kContent);
    return std::move(fDifferences);
  }

 private:
  bool IsDamaged() const { return fBefore.Fault() || fAfter.Fault(); }

  void Add(EDifference kind) { fDifferences.push_back({kind, {}, {}}); }

  std::vector<CDifference> Faults() const {
    std::vector<CDifference> faults;
    const auto add = [&faults](EDifference kind, const COpenSample& sample) {
      if (sample.Fault()) faults.push_back({kind, TextFromUtf8(*sample.Fault()), {}});
    };
    add(EDifference::kDamagedBefore, fBefore);
    add(EDifference::kDamagedAfter, fAfter);
    return faults;
  }

  void Compare(EDifference kind, std::int64_t before, std::int64_t after) {
    CompareNumbers(kind, before, after, fDifferences);
  }

  void CompareForm() {
    const CDWOPHeader& before = fBefore.Header();
    const CDWOPHeader& after = fAfter.Header();
    Compare(EDifference::kLength, before.fLength, after.fLength);
    Compare(EDifference::kChannels, before.fChannels, after.fChannels);
    Compare(EDifference::kWidth, before.fWidth, after.fWidth);
    Compare(EDifference::kRate, before.fRate, after.fRate);
  }

  void CompareMetadata() {
    const CDWOPHeader& before = fBefore.Header();
    const CDWOPHeader& after = fAfter.Header();
    Compare(EDifference::kRootKey, before.fRootKey, after.fRootKey);
    Compare(EDifference::kFineTune, static_cast<std::int8_t>(before.fFineTune),
            static_cast<std::int8_t>(after.fFineTune));
    Compare(EDifference::kLoopMode, before.fLoopMode, after.fLoopMode);
    Compare(EDifference::kLoopStart, before.fLoopStart, after.fLoopStart);
    Compare(EDifference::kLoopEnd, before.fLoopEnd, after.fLoopEnd);
  }

  /// Both streams are of one form. Ends at the first difference.
  void CompareSound() {
    while (!IsDamaged()) {
      if (fCheckStop) fCheckStop();
      const auto before = fBefore.Decode();
      const auto after = fAfter.Decode();
      if (before.empty()) return;
      if (!IsDamaged() && !std::ranges::equal(before, after)) return Add(EDifference::kSound);
    }
  }

  void CompareExtraInfo() {
    fBefore.FindExtraInfo(fCheckStop);
    fAfter.FindExtraInfo(fCheckStop);
    if (IsDamaged()) return;
    const SharedMedia& before = fBefore.ExtraInfo();
    const SharedMedia& after = fAfter.ExtraInfo();
    if (!before && !after) return;
    if (before && after && HaveSameBytes(*before, *after, fCheckStop)) return;
    Add(EDifference::kExtraInformation);
  }

  COpenSample fBefore;
  COpenSample fAfter;
  const std::function<void()>& fCheckStop;
  std::vector<CDifference> fDifferences;
};

}  // namespace

std::vector<CDifference> CompareSamples(const SharedMedia& before, const SharedMedia& after,
                                        const std::function<void()>& checkStop) {
  return CSampleComparison(before, after, checkStop).Compare();
}

}  // namespace NSTambraPacking
