#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/dwop/DWOPDecompressor.h"
#include "filetypes/dwop/DWOPEncoder.h"
#include "package/MemoryMedia.h"
#include "tests/support/Damage.h"
#include "tests/support/FaultText.h"
#include "tests/support/ReferenceDWOP.h"
#include "tests/support/TestSignal.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CMemoryMedia;
using NSMordel::XFormatViolation;
using NSTest::CReferenceFormat;
using NSTest::CReferenceResult;
using NSTest::ESignal;
using NSTest::MakeSignal;
using NSTest::ReferenceDecode;
using NSTest::ReferenceEncode;
using CBytes = std::vector<std::uint8_t>;
using CSamples = std::vector<std::int32_t>;

/// Memory that remembers the lengths of its reads.
class CRecordingMedia : public CMemoryMedia {
 public:
  using CMemoryMedia::CMemoryMedia;
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    fReads.push_back(destination.size());
    return CMemoryMedia::Read(position, destination);
  }
  mutable std::vector<std::size_t> fReads;
};

CDWOPHeader HeaderFor(const CReferenceFormat& format, std::size_t length) {
  CDWOPHeader header;
  header.fLength = header.fLoopEnd = static_cast<std::uint32_t>(length);
  header.fChannels = static_cast<std::uint8_t>(format.fChannels);
  header.fWidth = static_cast<std::uint8_t>(format.fWidth);
  header.fRate = format.fRate;
  return header;
}

std::vector<EDWOPForm> Forms() {
  std::vector<EDWOPForm> forms = {EDWOPForm::kPortable};
  if (CanRunDWOPForm(EDWOPForm::kAVX2)) forms.push_back(EDWOPForm::kAVX2);
  return forms;
}

CBytes Encode(const CReferenceFormat& format, const CSamples& samples,
              EDWOPForm form = FastestDWOPForm()) {
  CMemoryMedia media;
  CMediaCursor cursor(media);
  WriteDWOPHeader(cursor, HeaderFor(format, samples.size() / format.fChannels));
  CDWOPEncoder encoder(cursor, format.fChannels, form);
  encoder.Encode(samples);
  encoder.Finish();
  return media.TakeBytes();
}

/// Decodes one frame at a time, so that a fault leaves the same samples as in the reference.
CReferenceResult Decode(const CBytes& stream, EDWOPForm form = FastestDWOPForm()) {
  CReferenceResult result;
  CMemoryMedia media(stream);
  CMediaCursor cursor(media);
  try {
    const CDWOPHeader header = ReadDWOPHeader(cursor);
    result.fFormat = {header.fChannels, header.fWidth, header.fRate};
    result.fLength = header.fLength;
    COptimizedDWOPDecompressorFromMedia decompressor(header, media, cursor.Position(), form);
    CSamples frame(header.fChannels);
    for (std::uint32_t i = 0; i < header.fLength; ++i) {
      decompressor.Decode(frame);
      result.fSamples.insert(result.fSamples.end(), frame.begin(), frame.end());
    }
    result.fWords = static_cast<std::size_t>(decompressor.WordsConsumed());
    result.fWhole = true;
  } catch (const NSMordel::CExceptionBodyMixin&) {
  }
  return result;
}

/// All decoders agree: on the verdict, the samples before a fault and the bit stream's length.
void ExpectSameDecoding(const CBytes& stream, const std::string& what) {
  const CReferenceResult theirs = ReferenceDecode(stream);
  for (const EDWOPForm form : Forms()) {
    const CReferenceResult ours = Decode(stream, form);
    ASSERT_EQ(ours.fWhole, theirs.fWhole) << what;
    ASSERT_EQ(ours.fSamples, theirs.fSamples) << what;
    ASSERT_EQ(ours.fWords, ours.fWhole ? theirs.fWords : 0) << what;
  }
}

CBytes ReadData(const std::string& name) {
  std::ifstream file(std::string(TAMBRA_TEST_DATA) + "/dwop/" + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

CSamples SamplesFromRaw(const CBytes& raw, unsigned width) {
  CSamples samples;
  for (std::size_t i = 0; i + width / 8 <= raw.size(); i += width / 8) {
    std::uint32_t value = 0;
    for (unsigned byte = 0; byte < width / 8; ++byte) {
      value |= std::uint32_t{raw[i + byte]} << (32 - width + 8 * byte);
    }
    samples.push_back(static_cast<std::int32_t>(value) >> (32 - width));
  }
  return samples;
}

TEST(DWOPCodec, MakesAndReadsTheKnownStreams) {
  for (const char* name :
       {"mono16-full-noise", "mono16-impulses", "mono16-none", "mono16-one-frame", "mono16-ramp",
        "mono16-silence-4097", "mono24-tone", "stereo16-opposite-squares", "stereo16-same-channels",
        "stereo24-extremes", "stereo24-wrap"}) {
    const std::string text = name;
    CReferenceFormat format;
    format.fChannels = text.starts_with("stereo") ? 2 : 1;
    format.fWidth = text.find("24") == std::string::npos ? 16 : 24;
    const CSamples samples = SamplesFromRaw(ReadData(text + ".raw"), format.fWidth);
    const CBytes stream = ReadData(text + ".dwop");
    EXPECT_EQ(Encode(format, samples), stream) << name;
    EXPECT_EQ(ReferenceEncode(format, samples), stream) << name;
    const CReferenceResult decoded = Decode(stream);
    EXPECT_TRUE(decoded.fWhole) << name;
    EXPECT_EQ(decoded.fSamples, samples) << name;
    EXPECT_EQ(decoded.fFormat, format) << name;
    ExpectSameDecoding(stream, name);
  }
}

TEST(DWOPCodec, DamagedStreamsEndInAFaultOrInSamples) {
  for (const unsigned channels : {1u, 2u}) {
    const CSamples samples = MakeSignal(ESignal::kBursts, 16, 240 * channels, 7);
    const CBytes stream = Encode({channels, 16, 44100}, samples);
    NSTest::ForEachCut(stream, [](const CBytes& cut) {
      EXPECT_FALSE(Decode(cut).fWhole);
      ExpectSameDecoding(cut, "cut");
    });
    NSTest::ForEachTurnedBit(stream,
                             [](const CBytes& damaged) { ExpectSameDecoding(damaged, "turned"); });
  }
}

TEST(DWOPCodec, AHeaderCannotMakeTheDecoderHangOrTakeMemory) {
  struct {
    std::uint8_t fFill;
    std::size_t fBytes;
    const char* fMessage;
  } const cases[] = {
      {0xFF, 0, "zero length sample"},
      {0xFF, 3, "zero length sample"},
      {0x00, 8, "zero length sample"},
      {0xFF, 8, "zero length sample"},
      {0x00, 1 << 20, "a DWOP residual is beyond 32 bits"},
  };
  for (const auto& test : cases) {
    CBytes stream(test.fBytes, test.fFill);
    const CMemoryMedia media(stream);
    COptimizedDWOPDecompressorFromMedia decompressor(HeaderFor({2, 16, 0}, 0xFFFFFFFF), media, 0);
    CSamples block(2 * kDWOPBlockFrames);
    const auto decode = [&] {
      for (;;) decompressor.Decode(block);
    };
    EXPECT_EQ(NSTest::FaultText<XFormatViolation>(decode), test.fMessage) << test.fBytes;
  }
}

using CRandom = std::independent_bits_engine<std::mt19937, 32, std::uint32_t>;

/// Up to `count` values, glued from pieces of several kinds.
CSamples GluedSignal(CRandom& random, unsigned width, std::size_t count) {
  CSamples samples;
  while (samples.size() < count) {
    const auto kind = static_cast<ESignal>(random() % static_cast<unsigned>(ESignal::kCount));
    const std::size_t length = std::min<std::size_t>(random() % 3000 + 1, count - samples.size());
    const CSamples piece = MakeSignal(kind, width, length, random());
    samples.insert(samples.end(), piece.begin(), piece.end());
  }
  return samples;
}

/// Each form makes the same stream of the samples, and the samples of the stream. It is that of the
/// reference, which takes its time, or of the portable form.
void ExpectBackInEveryForm(const CReferenceFormat& format, const CSamples& samples,
                           bool asReference = true) {
  const CBytes stream = asReference ? ReferenceEncode(format, samples)
                                    : Encode(format, samples, EDWOPForm::kPortable);
  const CMemoryMedia media(stream);
  for (const EDWOPForm form : Forms()) {
    ASSERT_TRUE(Encode(format, samples, form) == stream);
    COptimizedDWOPDecompressorFromMedia decompressor(
        HeaderFor(format, samples.size() / format.fChannels), media, 26, form);
    CSamples decoded(samples.size());
    decompressor.Decode(decoded);
    ASSERT_TRUE(decoded == samples);
    ASSERT_EQ(26 + decompressor.WordsConsumed() * 4, stream.size());
  }
}

TEST(DWOPCodec, AgreesWithTheReferenceOnEverySignal) {
  std::uint32_t seed = 1;
  for (int kind = 0; kind < static_cast<int>(ESignal::kCount); ++kind) {
    for (const unsigned width : {16u, 24u}) {
      for (const unsigned channels : {1u, 2u}) {
        for (const std::size_t length : {0u, 1u, 2u, 4095u, 4096u, 4097u}) {
          const auto signal = static_cast<ESignal>(kind);
          const CSamples samples = MakeSignal(signal, width, length * channels, ++seed);
          ASSERT_NO_FATAL_FAILURE(ExpectBackInEveryForm({channels, width, 48000}, samples))
              << kind << ", " << width << " bits, " << channels << " channels, " << length;
        }
      }
    }
  }
}

/// Alternating extremes of the second channel let the sum of the highest order wrap around, until a
/// value can bring it to 0, below all that sums come to otherwise, and the modulus with it.
TEST(DWOPCodec, AModulusOfZeroIsOne) {
  constexpr std::int32_t kMost = (1 << 24) - 1;
  std::uint32_t errors[5] = {}, sum = 2560;
  CSamples samples;
  for (bool isFound = false; !isFound;) {
    const std::uint32_t zigzag = (sum >> 5) - sum;
    std::uint32_t wanted = (zigzag >> 1) ^ (0U - (zigzag & 1));
    for (int order = 0; order < 4; ++order) wanted += errors[order];
    isFound = std::abs(std::int64_t{static_cast<std::int32_t>(wanted)}) <= kMost;
    const std::int32_t extreme = samples.size() % 4 == 0 ? kMost : -kMost;
    const std::int32_t value = isFound ? static_cast<std::int32_t>(wanted) : extreme;
    samples.insert(samples.end(), {(value >> 1) - value, value >> 1});
    auto error = static_cast<std::uint32_t>(value);
    for (std::uint32_t& last : errors) error -= std::exchange(last, error);
    sum = sum - (sum >> 5) + ((errors[4] << 1) ^ (0U - (errors[4] >> 31)));
  }
  ASSERT_EQ(sum, 0U);
  samples.resize(samples.size() + 600, 1);
  ExpectBackInEveryForm({2, 24, 48000}, samples);
  ExpectSameDecoding(Encode({2, 24, 48000}, samples), "modulus 0");
}

/// Streams of the lengths at which blocks end, and of odd ones, in all forms both ways. The
/// environment says how many.
TEST(DWOPCodec, GivesBackThousandsOfStreamsInEveryForm) {
  constexpr std::size_t kLengths[] = {0, 1, 2, 4095, 4096, 4097};
  const char* const wanted = std::getenv("TAMBRA_ROUND_TRIPS");
  const int count = wanted ? std::atoi(wanted) : 300;
  CRandom random(std::mt19937(1));
  for (int i = 0; i < count; ++i) {
    const CReferenceFormat format{random() % 2 + 1, random() % 2 ? 16U : 24U, 48000};
    const std::size_t length = i % 4 ? random() % 2000 | 1 : kLengths[random() % 6];
    const CSamples samples = GluedSignal(random, format.fWidth, length * format.fChannels);
    ASSERT_NO_FATAL_FAILURE(ExpectBackInEveryForm(format, samples, i < 100)) << "stream " << i;
  }
  RecordProperty("round_trips", count * static_cast<int>(Forms().size()));
  RecordProperty("streams", count);
}

TEST(DWOPCodec, ReadsPiecesOf16384Words) {
  const CReferenceFormat format{1, 24, 44100};
  CRecordingMedia media(Encode(format, MakeSignal(ESignal::kNoise, 24, 60000, 3)));
  const std::size_t bitStream = media.Bytes().size() - 26;
  // 1 to 3 bytes behind the last word must not be asked for.
  media.SetSize(media.Size() + 3);
  COptimizedDWOPDecompressorFromMedia decompressor(HeaderFor(format, 60000), media, 26);
  CSamples decoded(60000);
  decompressor.Decode(decoded);
  std::vector<std::size_t> reads;
  for (std::size_t rest = bitStream; rest > 0; rest -= reads.back()) {
    reads.push_back(std::min<std::size_t>(rest, 65536));
  }
  EXPECT_EQ(media.fReads, reads);
}

}  // namespace
}  // namespace NSTambraPacking
