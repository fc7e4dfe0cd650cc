#include "app/SampleAdvice.h"

#include <map>
#include <set>
#include <tuple>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/SampleFile.h"
#include "filetypes/FileTypeInterfaces.h"

namespace NSTambraPacking {

namespace {

/// One step of 16 bits.
constexpr std::int32_t kGreatestSilence = 1 << 8;
constexpr std::uint64_t kFewestClippedRuns = 3;
/// Of full scale: -40 dB.
constexpr double kLeastLoopJump = 0.01;
/// A loop whose end is a frame off its best place jumps by two steps at most.
constexpr std::int64_t kLoopJumpSteps = 3;

double Percent(double amplitude) { return 100 * amplitude / CSampleMeasures::kFullScale; }

double Seconds(std::uint64_t frame, const CAudioFormat& format) {
  return format.fRate == 0 ? 0 : static_cast<double>(frame) / format.fRate;
}

/// Runs at full scale, unless most of the sample is: that is a pulse wave.
bool IsClipped(const CSampleFacts& facts) {
  const CSampleMeasures& measures = facts.fMeasures;
  const std::uint64_t samples = facts.fFormat.fFrames * facts.fFormat.fChannels;
  return measures.fClippedRuns >= kFewestClippedRuns && measures.fAtFullScale < samples / 2;
}

bool LoopClicks(const CSampleMeasures& measures) {
  return measures.fLoopJump >= kLeastLoopJump * CSampleMeasures::kFullScale &&
         measures.fLoopJump > kLoopJumpSteps * measures.fLoopStep;
}

std::u16string_view FolderOf(std::u16string_view path) {
  const std::size_t slash = path.rfind(u'/');
  return slash == std::u16string_view::npos ? std::u16string_view() : path.substr(0, slash);
}

/// The samples of one folder, with a root key and without one.
struct CFolderKeys {
  std::uint64_t fWith = 0;
  std::set<std::uint8_t> fKeys;
  std::vector<const CSampleFacts*> fWithout;

  bool IsInstrument() const {
    return fWith >= 4 && fKeys.size() >= 3 && fWith >= 3 * fWithout.size();
  }
};

}  // namespace

CSampleFacts GatherSampleFacts(const CJobEntry& entry, const std::function<void()>& checkStop) {
  const NSBigFilePackage::SharedMedia source = OpenSource(entry.fFile.fItem);
  CAudioFile file = CAudioFile::Open(source, ContainerOf(*source));
  CheckAudioFormat(file.Format());
  CSampleFacts facts{&entry, file.Format(), file.Instrument(), {}, {}};
  facts.fKept = JudgeKept(file.Format(), file.Layout());
  facts.fMeasures = MeasureSample(file, checkStop);
  return facts;
}

bool IsSilent(const CSampleMeasures& measures) { return measures.fPeak <= kGreatestSilence; }

void AdviseOnSample(const CSampleFacts& facts, CAdviceList& advice) {
  const CSampleMeasures& measures = facts.fMeasures;
  const std::u16string& path = facts.Path();
  if (facts.fFormat.fFrames == 0) {
    advice.Add(EAdvice::kEmptySample, path);
  } else if (IsSilent(measures)) {
    advice.Add(EAdvice::kSilentSample, path,
               {{"seconds", Seconds(facts.fFormat.fFrames, facts.fFormat)}});
  }
  if (IsClipped(facts)) {
    advice.Add(EAdvice::kClippedSample, path,
               {{"places", measures.fClippedRuns},
                {"longest", measures.fLongestClip},
                {"first_seconds", Seconds(measures.fFirstClip, facts.fFormat)}});
  }
  if (measures.fOffset != 0) {
    advice.Add(EAdvice::kDCOffset, path, {{"percent", Percent(measures.fOffset)}});
  }
  if (LoopClicks(measures)) {
    advice.Add(EAdvice::kLoopClick, path,
               {{"jump_percent", Percent(measures.fLoopJump)},
                {"step_percent", Percent(measures.fLoopStep)},
                {"loop_start", facts.fInstrument.fLoopStart},
                {"loop_end", facts.fInstrument.fLoopEnd}});
  }
  if (!facts.fKept.fSamplesKept) {
    advice.Add(EAdvice::kSamplesConverted, path,
               {{"bits", std::uint64_t{facts.fFormat.fBits}},
                {"packed_bits", std::uint64_t{facts.fFormat.CodedWidth()}}});
  } else if (!facts.fKept.fSourceKept) {
    advice.Add(EAdvice::kSourceNotKept, path,
               {{"reason", NSTolbrook::TextFromUtf8(facts.fKept.fReason)}});
  }
}

void AdviseOnRootKeys(std::span<const CSampleFacts> samples, CAdviceList& advice) {
  std::map<std::u16string_view, CFolderKeys> folders;
  for (const CSampleFacts& facts : samples) {
    CFolderKeys& folder = folders[FolderOf(facts.Path())];
    if (!facts.fInstrument.fHasRootKey) {
      folder.fWithout.push_back(&facts);
      continue;
    }
    ++folder.fWith;
    folder.fKeys.insert(facts.fInstrument.fRootKey);
  }
  for (const auto& [path, folder] : folders) {
    if (!folder.IsInstrument()) continue;
    const std::uint64_t all = folder.fWith + folder.fWithout.size();
    for (const CSampleFacts* const facts : folder.fWithout) {
      advice.Add(EAdvice::kMissingRootKey, facts->Path(),
                 {{"with_key", folder.fWith}, {"samples", all}});
    }
  }
}

void AdviseOnDuplicates(std::span<const CSampleFacts> samples, CAdviceList& advice) {
  std::map<std::tuple<std::array<std::uint64_t, 2>, std::uint64_t, std::uint16_t, std::uint32_t>,
           const CSampleFacts*>
      firsts;
  for (const CSampleFacts& facts : samples) {
    if (facts.fFormat.fFrames == 0 || IsSilent(facts.fMeasures)) continue;
    const auto [first, isNew] = firsts.try_emplace({facts.fMeasures.fHash, facts.fFormat.fFrames,
                                                    facts.fFormat.fChannels, facts.fFormat.fRate},
                                                   &facts);
    if (isNew) continue;
    advice.Add(EAdvice::kDuplicateAudio, facts.Path(), {{"first", first->second->Path()}});
  }
}

}  // namespace NSTambraPacking
