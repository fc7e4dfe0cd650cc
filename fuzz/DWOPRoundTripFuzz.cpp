#include "filetypes/dwop/DWOPDecompressor.h"
#include "filetypes/dwop/DWOPEncoder.h"
#include "fuzz/FuzzInput.h"

using namespace NSTambraPacking;

namespace {

constexpr EDWOPForm kForms[] = {EDWOPForm::kPortable, EDWOPForm::kAVX2};

std::vector<std::uint8_t> Pack(const std::vector<std::int32_t>& samples, unsigned width, bool big) {
  std::vector<std::uint8_t> bytes;
  for (const std::int32_t sample : samples) {
    for (unsigned byte = 0; byte < width / 8; ++byte) {
      const unsigned shift = 8 * (big ? width / 8 - 1 - byte : byte);
      bytes.push_back(static_cast<std::uint8_t>(sample >> shift));
    }
  }
  return bytes;
}

template <class Encode>
std::vector<std::uint8_t> Coded(unsigned channels, EDWOPForm form, const Encode& encode) {
  NSBigFilePackage::CMemoryMedia media;
  NSBigFilePackage::CMediaCursor cursor(media);
  CDWOPEncoder encoder(cursor, channels, form);
  encode(encoder);
  encoder.Finish();
  return media.TakeBytes();
}

}  // namespace

/// Any samples: all forms of the encoder make the same stream of them, however they are handed
/// over, and all forms of the decoder make the samples of it again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NSFuzz::CFuzzInput input(data, size);
  const unsigned flags = input.TakeByte();
  const unsigned repeats = input.TakeByte() % 16 + 1;
  const unsigned width = flags & 1 ? 24 : 16;
  const unsigned channels = flags & 2 ? 2 : 1;
  const bool big = flags & 4;
  const bool sums = flags & 8;
  const unsigned quiet = flags >> 4;  // bits at the top that are not used

  std::vector<std::int32_t> samples;
  std::uint32_t value = 0;
  const auto signal = input.View();
  for (unsigned i = 0; i < repeats; ++i) {
    for (std::size_t at = 0; at + 3 <= signal.size() && samples.size() < 16384; at += 3) {
      const auto next = std::uint32_t{signal[at]} << 24 | std::uint32_t{signal[at + 1]} << 16 |
                        std::uint32_t{signal[at + 2]} << 8;
      const auto step = static_cast<std::uint32_t>(static_cast<std::int32_t>(next) >> quiet);
      value = sums ? value + step : step;
      samples.push_back(static_cast<std::int32_t>(value) >> (32 - width));
    }
  }
  samples.resize(samples.size() / channels * channels);
  const std::size_t first = samples.size() / channels * repeats / 17 * channels;
  const auto bytes = Pack(samples, width, big);
  const auto packing = width == 24 ? (big ? ESamplePacking::k24Big : ESamplePacking::k24Little)
                                   : (big ? ESamplePacking::k16Big : ESamplePacking::k16Little);

  const auto stream = Coded(channels, EDWOPForm::kPortable, [&](CDWOPEncoder& encoder) {
    encoder.Encode(std::span(samples).first(first));
    encoder.Encode(std::span(samples).subspan(first));
  });
  CDWOPHeader header;
  header.fWidth = static_cast<std::uint8_t>(width);
  header.fChannels = static_cast<std::uint8_t>(channels);
  const NSBigFilePackage::CMemoryView media(stream);
  for (const EDWOPForm form : kForms) {
    if (!CanRunDWOPForm(form)) continue;
    const auto whole = [&](CDWOPEncoder& encoder) { encoder.Encode(std::span(samples)); };
    const auto packed = [&](CDWOPEncoder& encoder) { encoder.Encode(packing, bytes); };
    NSFuzz::Require(Coded(channels, form, whole) == stream);
    NSFuzz::Require(Coded(channels, form, packed) == stream);
    std::vector<std::int32_t> decoded(samples.size());
    COptimizedDWOPDecompressorFromMedia decompressor(header, media, 0, form);
    decompressor.Decode(decoded);
    NSFuzz::Require(decoded == samples && decompressor.WordsConsumed() * 4 == stream.size());
  }
  return 0;
}
