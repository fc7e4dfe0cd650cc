#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/AIFFHeader.h"
#include "codecs/AudioFile.h"
#include "tests/support/AudioBuilder.h"
#include "tests/support/FailingMedia.h"
#include "tests/support/FaultText.h"

namespace NSTambraPacking {
namespace {

using namespace std::string_literals;
using NSMordel::XFormatViolation;
using NSMordel::XUnsupportedFormat;
using NSTest::Big;
using NSTest::CAudioBuilder;
using NSTest::Little;
using NSTest::MediaOfBytes;
using CSamples = std::vector<std::int32_t>;

EAudioContainer ContainerOf(const std::string& bytes) {
  return bytes.starts_with("FORM") ? EAudioContainer::kAIFF : EAudioContainer::kWAVE;
}

CAudioFile Open(const std::string& bytes) {
  return CAudioFile::Open(MediaOfBytes(bytes), ContainerOf(bytes));
}
CAudioFile Open(const CAudioBuilder& builder) { return Open(builder.Bytes()); }

CSamples ReadAll(CAudioFile file, std::size_t blockFrames = 1000) {
  CSamples all;
  CSamples block(blockFrames * file.Format().fChannels);
  while (const std::size_t frames = file.ReadFrames(block)) {
    all.insert(all.end(), block.begin(),
               block.begin() + static_cast<std::ptrdiff_t>(frames * file.Format().fChannels));
  }
  return all;
}

std::string Float32(std::initializer_list<float> values) {
  std::string bytes;
  for (const float value : values) bytes += Little(std::bit_cast<std::uint32_t>(value), 4);
  return bytes;
}

std::string Float64(std::initializer_list<double> values) {
  std::string bytes;
  for (const double value : values) bytes += Big(std::bit_cast<std::uint64_t>(value), 8);
  return bytes;
}

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr double kHalfStep = 1.0 / (1 << 24);
constexpr std::int32_t kMost = 8388607, kLeast = -kMost - 1;

TEST(AudioFile, DecodesEachCoding) {
  const auto wave = [](int tag, int bits, const std::string& data) {
    return CAudioBuilder::WAVE().Format(tag, 1, bits).Data(data);
  };
  const auto extensible = [](int tag, int bits, const std::string& data) {
    return CAudioBuilder::WAVE().Extensible(tag, 1, 32, bits).Data(data);
  };
  const auto aiff = [](int bits, std::uint32_t frames, const std::string& data) {
    return CAudioBuilder::AIFF().Common(1, frames, bits).Sound(data);
  };
  const auto aifc = [](std::string_view coding, int bits, std::uint32_t frames,
                       const std::string& data) {
    return CAudioBuilder::AIFC().Common(1, frames, bits, coding).Sound(data);
  };
  const std::string extremes32 = Little(0x7FFFFFFF, 4) + Little(0x7FFFFF7F, 4) + Big(0x80, 4);
  const std::string halves32 = Little(127, 4) + Little(128, 4) + Little(0xFFFFFF80, 4);
  const std::string beyond = Float32({2, -kInfinity, kInfinity, std::nanf("")});
  const std::string halves64 = Float64({kHalfStep, -kHalfStep, -1.5 * kHalfStep});
  const struct {
    const char* name;
    CAudioBuilder file;
    unsigned width;
    bool isKept;
    CSamples samples;
  } kCases[] = {
      {"WAVE 8", wave(1, 8, "\x00\x80\xFF"s), 16, true, {-32768, 0, 32512}},
      {"WAVE 12", wave(1, 12, "\xF0\x7F\x00\x80"s), 16, true, {32752, -32768}},
      {"WAVE 16", wave(1, 16, "\x00\x80\xFF\x7F\xFF\xFF"s), 16, true, {-32768, 32767, -1}},
      {"WAVE 24", wave(1, 24, "\x00\x00\x80\xFF\xFF\x7F"s), 24, true, {kLeast, kMost}},
      {"WAVE 32", wave(1, 32, extremes32), 24, false, {kMost, kMost, kLeast}},
      {"rounding", wave(1, 32, halves32 + Little(0xFFFFFF7F, 4)), 24, false, {0, 1, 0, -1}},
      {"float", wave(3, 32, Float32({1, -1, 0.5F})), 24, false, {kMost, kLeast, 4194304}},
      {"beyond 1", wave(3, 32, beyond), 24, false, {kMost, kLeast, kMost, 0}},
      {"WAVE mu-law", wave(7, 8, "\x00\x80\xFF\x7F"s), 16, false, {-32124, 32124, 0, 0}},
      {"WAVE A-law", wave(6, 8, "\x2A\xAA\xD5\x55"s), 16, false, {-32256, 32256, 8, -8}},
      {"24 in 32", extensible(1, 24, "\0\1\0\x80"s), 24, false, {-8388607}},
      {"extensible float", extensible(3, 32, Float32({-0.5F})), 24, false, {-4194304}},
      {"AIFF 8", aiff(8, 3, "\x80\x00\x7F"s), 16, true, {-32768, 0, 32512}},
      {"AIFF 16", aiff(16, 2, "\x80\x00\x7F\xFF"s), 16, true, {-32768, 32767}},
      {"AIFF 20", aiff(20, 1, "\x80\x00\x10"s), 24, true, {-8388592}},
      {"AIFF 32", aiff(32, 1, "\x12\x34\x56\x80"s), 24, false, {0x123457}},
      {"NONE", aifc("NONE", 16, 1, "\x01\x02"s), 16, true, {0x0102}},
      {"twos", aifc("twos", 16, 1, "\x01\x02"s), 16, true, {0x0102}},
      {"sowt", aifc("sowt", 24, 1, "\x01\x02\x03"s), 24, true, {0x030201}},
      {"raw", aifc("RAW ", 8, 3, "\x00\x80\xFF"s), 16, true, {-32768, 0, 32512}},
      {"fl32", aifc("FL32", 32, 1, Big(0x3F000000, 4)), 24, false, {4194304}},
      {"fl64", aifc("fl64", 64, 3, halves64), 24, false, {1, 0, -1}},
      {"ulaw", aifc("ulaw", 16, 2, "\x00\x80"s), 16, false, {-32124, 32124}},
      {"ALAW", aifc("ALAW", 8, 1, "\xAA"s), 16, false, {32256}},
  };
  for (const auto& test : kCases) {
    const CAudioFile file = Open(test.file);
    EXPECT_EQ(file.Format().CodedWidth(), test.width) << test.name;
    EXPECT_EQ(file.Format().KeptBitForBit(), test.isKept) << test.name;
    EXPECT_EQ(file.Format().fRate, 44100u) << test.name;
    EXPECT_EQ(ReadAll(Open(test.file)), test.samples) << test.name;
    EXPECT_EQ(ReadAll(Open(test.file), 1), test.samples) << test.name;
  }
}

TEST(AudioFile, ReadsLongFilesInBlocksOfAnySize) {
  for (const int tag : {1, 3}) {
    std::string data;
    CSamples expected;
    for (std::int32_t i = 0; i < 60000; ++i) {
      const float value = static_cast<float>(i) / 65536;
      data += tag == 1 ? Little(static_cast<std::uint64_t>(i), 3)
                       : Little(std::bit_cast<std::uint32_t>(value), 4);
      expected.push_back(tag == 1 ? i : i * 128);
    }
    const auto file = CAudioBuilder::WAVE().Format(tag, 2, tag == 1 ? 24 : 32).Data(data);
    EXPECT_EQ(ReadAll(Open(file), 1), expected);
    EXPECT_EQ(ReadAll(Open(file), 4097), expected);
    EXPECT_EQ(ReadAll(Open(file), 100000), expected);
  }
}

TEST(AudioFile, TellsLoopsAndTuning) {
  // 100 frames of 8 bits each; a file's instrument as root, tune, mode, start, end.
  const auto wave = [] { return CAudioBuilder::WAVE().Format(1, 1, 8).Data(std::string(100, 0)); };
  const auto aiff = [] {
    return CAudioBuilder::AIFF().Common(1, 100, 8).Sound(std::string(100, 0));
  };
  const std::string inst = "\x30\xF6\0\0\0\0\0"s;
  const struct {
    CAudioBuilder file;
    CSamples instrument;
  } kCases[] = {
      {wave(), {60, 0, 0, 0, 100}},
      {wave().Sampler(72, 0), {72, 0, 0, 0, 100}},
      {wave().Sampler(128, 0x80000000), {60, 50, 0, 0, 100}},
      {wave().Sampler(1, 0xFFFFFFFF), {1, 100, 0, 0, 100}},
      {wave().Sampler(1, 21474836), {1, 0, 0, 0, 100}},  // just below half a cent
      {wave().Sampler(1, 21474837), {1, 1, 0, 0, 100}},
      {wave().Sampler(60, 0, 0, 10, 19), {60, 0, 1, 10, 20}},
      {wave().Sampler(60, 0, 1, 10, 19), {60, 0, 2, 10, 20}},
      {wave().Sampler(60, 0, 2, 10, 500), {60, 0, 1, 10, 100}},
      {wave().Sampler(60, 0, 0, 99, 99), {60, 0, 1, 99, 100}},
      {wave().Sampler(60, 0, 0, 100, 200), {60, 0, 0, 0, 100}},
      {wave().Sampler(60, 0, 0, 20, 10), {60, 0, 0, 0, 100}},
      {wave().Sampler(60, 0, 0, 5, 0xFFFFFFFF), {60, 0, 1, 5, 100}},  // end + 1 beyond 32 bits
      {wave().Chunk("inst", inst), {48, 0xF6, 0, 0, 100}},
      {wave().Chunk("inst", "\xFF" + inst.substr(1)), {60, 0xF6, 0, 0, 100}},
      {wave().Chunk("inst", inst).Sampler(70, 0), {70, 0, 0, 0, 100}},
      {aiff(), {60, 0, 0, 0, 100}},
      {aiff().Instrument(48, -10, 0).Markers(10, 20), {48, 0xF6, 0, 0, 100}},
      {aiff().Instrument(200, 5, 1).Markers(10, 20), {60, 5, 1, 10, 20}},
      {aiff().Markers(10, 2000).Instrument(60, 0, 2), {60, 0, 2, 10, 100}},
      {aiff().Instrument(60, 0, 3).Markers(10, 20), {60, 0, 0, 0, 100}},
      {aiff().Instrument(60, 0, 1).Markers(20, 20), {60, 0, 0, 0, 100}},
      {aiff().Instrument(60, 0, 1), {60, 0, 0, 0, 100}},
      {aiff().Instrument(60, 0, 1).Chunk("MARK", Big(1, 2) + Big(1, 2) + Big(3, 4) + "\0\0"s),
       {60, 0, 0, 0, 100}},
  };
  for (const auto& test : kCases) {
    const CAudioFile file = Open(test.file);
    const CInstrument& told = file.Instrument();
    EXPECT_EQ((CSamples{told.fRootKey, told.fFineTune, told.fLoopMode,
                        static_cast<std::int32_t>(told.fLoopStart),
                        static_cast<std::int32_t>(told.fLoopEnd)}),
              test.instrument)
        << "case " << &test - kCases;
  }
}

TEST(AudioFile, ReadsWhatIsUnusualButRight) {
  const auto format = [] { return CAudioBuilder::WAVE().Format(1, 1, 16); };
  const auto one = [&] { return format().Data("\1\0"s); };
  const std::pair<std::string, CSamples> kCases[] = {
      {format().Data("\1\0\2\0\3"s).Bytes(), {1, 2}},  // the rest is no frame
      {format().Data("").Bytes(), {}},
      {CAudioBuilder::WAVE().Data("\1\0"s).Format(1, 1, 16).Bytes(), {1}},
      {one().Data("\2\0"s).Bytes(), {1}},
      {format().Chunk("odd ", "x").Chunk("LIST", "?").Data("\1\0"s).Bytes(), {1}},
      {one().Rubbish("\0\0\0\0\xFF\xFF\xFF\xFF"s).Bytes(), {1}},
      {one().Rubbish("LIST").Bytes(), {1}},
      {one().Bytes("LIST\xFF\xFF\xFF\xFF"s), {1}},
      // An outer size that is too small for the samples, though not for the header of their chunk.
      {format().Data("\1\0\2\0"s).Bytes("", -4), {1, 2}},
      {CAudioBuilder::WAVE().Format(1, 3, 8).Data("\x80\x81\x82"s).Bytes(), {0, 256, 512}},
      {CAudioBuilder::AIFF().Common(1, 1, 16).Sound("???\0\1rest"s, 3).Bytes(), {1}},
  };
  for (const auto& [bytes, samples] : kCases) {
    EXPECT_EQ(ReadAll(Open(bytes)), samples) << testing::PrintToString(bytes);
  }
  const CAudioBuilder none = CAudioBuilder::WAVE().Format(1, 0, 16).Data("\1\0"s);
  EXPECT_EQ(Open(none).Format().fChannels, 0);
  EXPECT_EQ(ReadAll(Open(none)), CSamples{});
  const auto fast = CAudioBuilder::AIFF().Common(1, 1, 16, "", 96000).Sound("\0\1"s);
  EXPECT_EQ(Open(fast).Format().fRate, 96000u);
}

TEST(AudioFile, TellsWhereTheSampleBytesLie) {
  const auto places = [](const CAudioFile& file) {
    const CSampleChunkLayout& layout = file.Layout();
    return std::vector<std::uint64_t>{layout.fSourceSize,    layout.fChunkSizePosition,
                                      layout.fContentsStart, layout.fContentsLength,
                                      layout.fPadLength,     layout.fPadValue};
  };
  const auto wave = [](int bits) { return CAudioBuilder::WAVE().Format(1, 1, bits); };
  const auto rubbish = [&](const char* samples) {
    return Open(wave(8).Rubbish("data" + Little(3, 4) + samples));
  };
  using CPlaces = std::vector<std::uint64_t>;
  EXPECT_EQ(places(Open(wave(16).Data("\1\0\2\0"s))), (CPlaces{48, 40, 44, 4, 0, 0}));
  EXPECT_EQ(places(Open(wave(8).Data("abc"))), (CPlaces{48, 40, 44, 3, 1, 0}));
  EXPECT_EQ(places(Open(wave(16).Data("abc"))), (CPlaces{48, 40, 44, 3, 1, 0}));
  EXPECT_EQ(places(rubbish("abc")), (CPlaces{47, 40, 44, 3, 0, 0}));
  EXPECT_EQ(places(rubbish("abc\7")), (CPlaces{48, 40, 44, 3, 1, 7}));
  const CAudioFile aiff = Open(CAudioBuilder::AIFF().Common(1, 3, 8).Sound("??abc", 2));
  EXPECT_EQ(places(aiff), (CPlaces{60, 42, 54, 5, 1, 0}));
  EXPECT_EQ(aiff.Format().fSamplesStart, 56u);
}

TEST(AudioFile, RefusesWhatIsBrokenOrUnsupported) {
  const auto wave = [] { return CAudioBuilder::WAVE(); };
  const auto aiff = [] { return CAudioBuilder::AIFF(); };
  const std::string whole = wave().Format(1, 1, 16).Data("abcd").Bytes();
  const std::string broken[] = {
      "",
      "RIFF",
      "RIFF\4\0\0\0AVI "s,
      "RIFF\3\0\0\0WAVE"s,
      "FORM\0\0\0\4WAVE"s,
      "LIST\4\0\0\0WAVE"s,
      whole.substr(0, whole.size() - 1),  // cut off: the outer chunk
      wave().Format(1, 1, 16).Rubbish("data" + Little(5, 4) + "abcd").Bytes(),
      wave().Format(1, 1, 16).Rubbish("data" + Little(0xFFFFFFFF, 4) + "abcd").Bytes(),
      wave().Format(1, 1, 16).Data("ab").Rubbish("LIST" + Little(1, 4)).Bytes(),
      wave().Format(1, 1, 16).Bytes(),                      // no samples
      wave().Data("ab").Bytes(),                            // no format
      wave().Format(1, 1, 16).Data("ab").Bytes("", -0x22),  // nothing lies in the outer chunk
      wave().Chunk("fmt ", std::string(14, '\1')).Data("ab").Bytes(),
      wave().Format(1, 1, 0).Data("ab").Bytes(),
      wave().Format(1, 1, 65).Data("ab").Bytes(),
      wave().Format(1, 1, 16, 44100, 4).Data("ab").Bytes(),
      wave().Format(1, 2, 16, 44100, 0).Data("ab").Bytes(),
      wave().Format(0xFFFE, 1, 16).Data("ab").Bytes(),
      wave().Format(1, 1, 16).Data("ab").Chunk("smpl", std::string(35, '\0')).Bytes(),
      wave().Format(1, 1, 16).Data("ab").Chunk("smpl", std::string(36, '\1')).Bytes(),
      wave().Format(1, 1, 16).Data("ab").Chunk("inst", "").Bytes(),
      aiff().Common(1, 1, 16).Bytes(),
      aiff().Sound("ab").Bytes(),
      aiff().Common(1, 2, 16).Sound("abc").Bytes(),  // too few samples
      aiff().Common(1, 1, 16).Sound("ab", 1).Bytes(),
      aiff().Common(1, 0, 16).Sound("", 0xFFFFFFFF).Bytes(),
      aiff().Common(65535, 0xFFFFFFFF, 32).Sound("ab").Bytes(),
      aiff().Common(1, 1, 16).Chunk("SSND", std::string(7, '\0')).Bytes(),
      aiff().Common(1, 1, 0).Sound("ab").Bytes(),
      aiff().Common(1, 1, 33).Sound("abcdef").Bytes(),
      aiff().Chunk("COMM", std::string(17, '\0')).Sound("ab").Bytes(),
      CAudioBuilder::AIFC().Common(1, 1, 16).Sound("ab").Bytes(),  // no coding
      aiff().Common(1, 1, 16).Sound("ab").Chunk("INST", std::string(19, '\0')).Bytes(),
      aiff().Common(1, 1, 16).Sound("ab").Instrument(1, 1, 1).Chunk("MARK", Big(9, 2)).Bytes(),
  };
  for (const std::string& bytes : broken) {
    EXPECT_THROW(Open(bytes), XFormatViolation) << "case " << &bytes - broken;
  }
  const std::string unsupported[] = {
      "RIFX\0\0\0\4WAVE"s,
      "RF64\xFF\xFF\xFF\xFFWAVE"s,
      wave().Format(2, 1, 4).Data("ab").Bytes(),
      wave().Format(0x55, 1, 0).Data("ab").Bytes(),
      wave().Format(1, 1, 64).Data("ab").Bytes(),
      wave().Format(3, 1, 16).Data("ab").Bytes(),
      wave().Format(7, 1, 16).Data("ab").Bytes(),
      wave().Extensible(2, 1, 16, 16).Data("ab").Bytes(),
      wave().Chunk("fmt ", Little(0xFFFE, 2) + std::string(38, '\1')).Data("ab").Bytes(),
      CAudioBuilder::AIFC().Common(1, 1, 16, "in24").Sound("abc").Bytes(),
      CAudioBuilder::AIFC().Common(1, 1, 16, "raw ").Sound("abc").Bytes(),
  };
  for (const std::string& bytes : unsupported) {
    EXPECT_THROW(Open(bytes), XUnsupportedFormat) << "case " << &bytes - unsupported;
  }
}

TEST(AIFFHeader, RoundsRatesToNearest) {
  const auto rate = [](std::uint64_t signAndExponent, std::uint64_t mantissa) {
    const std::string bytes = Big(signAndExponent, 2) + Big(mantissa, 8);
    return RateOfExtended({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  };
  EXPECT_EQ(rate(16383 + 15, 0xAC44ULL << 48), 44100u);
  EXPECT_EQ(rate(16383 + 15, (0xAC44ULL << 48) + (1ULL << 47) - 1), 44100u);
  EXPECT_EQ(rate(16383 + 15, (0xAC44ULL << 48) + (1ULL << 47)), 44101u);
  EXPECT_EQ(rate(16383 + 31, 0xFFFFFFFFULL << 32), 0xFFFFFFFFu);
  EXPECT_EQ(rate(16383 - 1, 1ULL << 63), 1u);  // a half
  EXPECT_EQ(rate(16383 - 2, ~0ULL), 0u);
  EXPECT_EQ(rate(0, 0), 0u);
  EXPECT_EQ(rate(0x8000, 0), 0u);
  EXPECT_THROW(rate(16383 + 31, ~0ULL), XFormatViolation);  // rounds up out of 32 bits
  EXPECT_THROW(rate(16383 + 32, 1ULL << 63), XFormatViolation);
  EXPECT_THROW(rate(0x8000 + 16383, 1ULL << 63), XFormatViolation);  // negative
  EXPECT_THROW(rate(0x7FFF, 0), XFormatViolation);                   // infinite
}

TEST(AudioFile, PassesFailuresOfTheMediaOn) {
  for (const int tag : {1, 3, 7}) {
    const auto file = CAudioBuilder::WAVE().Format(tag, 1, tag == 7 ? 8 : 32).Data("abcdefgh");
    const auto media = std::make_shared<NSTest::CFailingMedia>(file.Media());
    CAudioFile audio = CAudioFile::Open(media, EAudioContainer::kWAVE);
    media->SetReadBudget(0);
    CSamples samples(1);
    EXPECT_EQ(NSTest::FaultText<NSMordel::XRead>([&] { audio.ReadFrames(samples); }),
              "the medium broke");
  }
}

}  // namespace
}  // namespace NSTambraPacking
