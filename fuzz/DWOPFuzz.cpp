#include "filetypes/dwop/DWOPDecompressor.h"
#include "filetypes/dwop/DWOPStreamCheck.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/ReferenceDWOP.h"

using namespace NSTambraPacking;

namespace {

/// Decodes words that come in pieces of a few, so that a small input makes the decoder ask for
/// more.
class CPieceDecompressor final : public COptimizedDWOPDecompressor {
 public:
  CPieceDecompressor(const CDWOPHeader& header, EDWOPForm form, std::span<const std::uint8_t> bytes,
                     std::size_t words)
      : COptimizedDWOPDecompressor(header, form),
        fInput(bytes.data(), bytes.size() / 4 * 4),
        fPiece(words * 4) {}

 private:
  std::size_t ReadWords(std::span<std::uint8_t> destination) override {
    const auto piece = fInput.Take(std::min(fPiece, destination.size() / 4 * 4));
    std::ranges::copy(piece, destination.begin());
    return piece.size();
  }

  NSFuzz::CFuzzInput fInput;
  std::size_t fPiece;
};

struct COutcome {
  std::vector<std::int32_t> fSamples;
  std::uint64_t fWords = 0;
  std::string fFault;
  friend bool operator==(const COutcome&, const COutcome&) = default;
};

COutcome Decode(const CDWOPHeader& header, COptimizedDWOPDecompressor& decompressor) {
  COutcome outcome;
  try {
    for (std::uint64_t rest = header.fLength; rest > 0;) {
      const std::uint64_t frames = std::min<std::uint64_t>(rest, 700);
      std::vector<std::int32_t> block(frames * header.fChannels);
      decompressor.Decode(block);
      outcome.fSamples.insert(outcome.fSamples.end(), block.begin(), block.end());
      rest -= frames;
    }
    outcome.fWords = decompressor.WordsConsumed();
  } catch (const NSMordel::XFormatViolation& fault) {
    outcome.fFault = fault.Message();
  }
  return outcome;
}

}  // namespace

/// All forms of the decoder, however they get their words, and a second implementation make the
/// same samples of a stream, or find fault with it. A stream without fault gives a source, no other
/// does.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  const auto media = input.Media();
  NSBigFilePackage::CMediaCursor cursor(*media);
  const auto header = NSFuzz::Read([&] { return ReadDWOPHeader(cursor); });
  if (!header) return 0;
  COptimizedDWOPDecompressorFromMedia portable(*header, *media, cursor.Position(),
                                               EDWOPForm::kPortable);
  const COutcome outcome = Decode(*header, portable);
  for (const auto form : {EDWOPForm::kPortable, EDWOPForm::kAVX2}) {
    if (!CanRunDWOPForm(form)) continue;
    CPieceDecompressor pieces(*header, form, input.View().subspan(cursor.Position()),
                              size % 9 + size % 61 + 1);
    NSFuzz::Require(Decode(*header, pieces) == outcome);
  }
  const auto reference = NSTest::ReferenceDecode(input.Bytes());
  if (header->fVersion < kDWOPVersionWithFlag) {
    NSFuzz::Require(reference.fWhole == outcome.fFault.empty());
    if (reference.fWhole) NSFuzz::Require(reference.fSamples == outcome.fSamples);
  }

  const auto parts = NSFuzz::Read([&] { return CheckDWOPStream(*media, [] {}); });
  NSBigFilePackage::CMemoryMedia source;
  const auto report = NSFuzz::Read([&] { return RebuildSource(media, source, [] {}); });
  NSFuzz::Require(report.has_value() == parts.has_value());
  if (!parts) return 0;
  NSFuzz::Require(outcome.fFault.empty() && parts->fWords == outcome.fWords);
  NSFuzz::Require(parts->fBitStream + parts->fWords * 4 <= size);
  NSFuzz::Require(source.Size() >= outcome.fSamples.size() * header->fWidth / 8);
  return 0;
}
