#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/AudioFile.h"
#include "filetypes/dwop/DWOPFileEncoder.h"
#include "filetypes/dwop/DWOPStreamCheck.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "package/MemoryMedia.h"
#include "tests/support/AudioBuilder.h"
#include "tests/support/ReferenceDWOP.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryMedia;
using NSTest::CAudioBuilder;
using NSTest::MediaOfBytes;
using namespace std::string_literals;
/// Bytes of files, as the builder makes them.
using CBytes = std::string;

CBytes BytesOf(const CMemoryMedia& media) { return {media.Bytes().begin(), media.Bytes().end()}; }

CBytes Encoded(const std::vector<std::int32_t>& mono) {
  const std::vector<std::uint8_t> stream = NSTest::ReferenceEncode({1, 16, 44100}, mono);
  return {stream.begin(), stream.end()};
}

NSTest::CReferenceResult Decoded(const CBytes& stream) {
  return NSTest::ReferenceDecode({stream.begin(), stream.end()});
}

/// One trip there and back.
struct CTrip {
  CKeptReport fKept;
  CBytes fStream;
  /// Of the stream; empty when it has none.
  CBytes fExtraInfo;
  bool fHasExtraInfo = false;
  CRebuildReport fReport;
  CBytes fRebuilt;
};

CTrip Travel(const CBytes& source, EAudioContainer container) {
  CTrip trip;
  const auto stream = std::make_shared<CMemoryMedia>();
  trip.fKept = EncodeAudioFile(MediaOfBytes(source), container, *stream, {});
  trip.fStream = BytesOf(*stream);
  const CDWOPStreamParts parts = CheckDWOPStream(*stream, {});
  if (const auto& block = parts.fExtraInfo) {
    trip.fHasExtraInfo = true;
    trip.fExtraInfo =
        trip.fStream.substr(static_cast<std::size_t>(block->fDataStart), block->fDataLength);
  }
  CMemoryMedia rebuilt;
  trip.fReport = RebuildSource(stream, rebuilt, {});
  trip.fRebuilt = BytesOf(rebuilt);
  return trip;
}

EAudioContainer ContainerOf(const CBytes& source) {
  return source[0] == 'R' ? EAudioContainer::kWAVE : EAudioContainer::kAIFF;
}

std::vector<std::int32_t> SamplesOf(const CBytes& source) {
  CAudioFile file = CAudioFile::Open(MediaOfBytes(source), ContainerOf(source));
  std::vector<std::int32_t> samples(
      static_cast<std::size_t>(file.Format().fFrames * file.Format().fChannels));
  file.ReadFrames(samples);
  return samples;
}

CBytes Noise(std::size_t length) {
  CBytes bytes(length, 0);
  std::uint32_t seed = 99;
  for (char& byte : bytes) {
    seed = seed * 1664525u + 1013904223u;
    byte = static_cast<char>(seed >> 24);
  }
  return bytes;
}

void ExpectByteForByte(const CBytes& source, const std::string& what) {
  const CTrip trip = Travel(source, ContainerOf(source));
  EXPECT_TRUE(trip.fKept.fSamplesKept && trip.fKept.fSourceKept) << what << trip.fKept.fReason;
  EXPECT_TRUE(trip.fReport.fByteForByte) << what << trip.fReport.fReason;
  EXPECT_EQ(trip.fRebuilt, source) << what;
}

TEST(SourceRebuilder, GivesIntegerSourcesBackByteForByte) {
  struct {
    const char* fType;
    const char* fCompression;
    std::vector<int> fBits;
  } const kinds[] = {
      {"WAVE", "", {8, 12, 16, 20, 24}},
      {"AIFF", "", {1, 8, 12, 16, 24}},
      {"AIFC", "NONE", {8, 16, 24}},
      {"AIFC", "sowt", {8, 16, 24}},
      {"AIFC", "twos", {16, 24}},
      {"AIFC", "raw ", {8}},
      {"AIFC", "SOWT", {16}},
  };
  for (const auto& kind : kinds) {
    const bool isWave = kind.fType == "WAVE"s;
    for (const int bits : kind.fBits) {
      for (const int channels : {1, 2}) {
        for (const std::uint32_t frames : {0u, 1u, 2u, 4099u}) {
          const auto frameLength = static_cast<std::size_t>(channels * ((bits + 7) / 8));
          const CBytes samples = Noise(frames * frameLength);
          CAudioBuilder builder(isWave ? "RIFF" : "FORM", kind.fType, !isWave);
          builder.Chunk("LIST", "odd");
          if (isWave) {
            builder.Format(1, channels, bits).Chunk("zzz ", "even").Data(samples);
            builder.Sampler(64, 0, 0, 0, 1);
          } else {
            builder.Sound(samples).Common(channels, frames, bits, kind.fCompression);
          }
          builder.Chunk("z!  ", "odd");
          const std::string what = testing::PrintToString(
              std::tuple(kind.fType, kind.fCompression, bits, channels, frames));
          ExpectByteForByte(builder.Bytes(), what);
          ExpectByteForByte(builder.Bytes("behind\0\1"s), what + "bytes behind, ");
          ExpectByteForByte(builder.Rubbish("\0\0rubbish"s).Bytes(), what + "rubbish, ");
        }
      }
    }
  }
  CAudioBuilder extensible = CAudioBuilder::WAVE();
  extensible.Extensible(1, 2, 24, 20).Data(Noise(60));
  ExpectByteForByte(extensible.Bytes(), "extensible ");
}

TEST(SourceRebuilder, ThePlainFormNeedsNoExtraInfo) {
  for (const int bits : {16, 24}) {
    for (const int channels : {1, 2}) {
      for (const int frames : {0, 1, 7}) {
        CAudioBuilder builder = CAudioBuilder::WAVE();
        builder.Format(1, channels, bits);
        builder.Data(Noise(static_cast<std::size_t>(frames * channels * bits / 8)));
        const CBytes plain = builder.Bytes();
        EXPECT_FALSE(Travel(plain, EAudioContainer::kWAVE).fHasExtraInfo);
        ExpectByteForByte(plain, "plain ");
        // Any other file has it: another byte rate, another outer size, one byte more.
        CBytes otherRate = plain;
        ++otherRate[28];
        for (const CBytes& other :
             {otherRate, builder.Bytes("", frames > 0 ? -2 : 0) + "x", builder.Bytes("\0"s)}) {
          EXPECT_TRUE(Travel(other, EAudioContainer::kWAVE).fHasExtraInfo);
          ExpectByteForByte(other, "other ");
        }
      }
    }
  }
}

TEST(SourceRebuilder, TheExtraInfoIsTheSourceWithoutItsSamples) {
  const auto wave = [](const CBytes& samples) {
    return CAudioBuilder::WAVE().Format(1, 1, 8).Data(samples);
  };
  const auto more = [](CAudioBuilder builder) { return builder.Chunk("more", "45"); };
  const auto aiff = [](const CBytes& samples) {
    return CAudioBuilder::AIFF().Chunk("NAME", "n").Sound(samples).Common(1, 3, 16);
  };
  const CAudioBuilder rest = CAudioBuilder::WAVE().Format(1, 2, 16).Data("12345");
  const CAudioBuilder restWithout = CAudioBuilder::WAVE().Format(1, 2, 16).Data("");
  struct {
    const char* fWhat;
    CBytes fSource, fExtraInfo;
    bool fComesBack = true;
  } const cases[] = {
      {"pad byte", more(wave("123")).Bytes(), more(wave("")).Bytes()},
      {"bytes behind", wave("123").Bytes("behind"), wave("").Bytes("behind")},
      {"AIFF", aiff("123456").Bytes(), aiff("").Bytes()},
      {"a rest that is no frame goes too", rest.Bytes(), restWithout.Bytes(), false},
      {"outer size too small", more(wave("123")).Bytes("behind", -2),
       more(wave("")).Bytes("behind", -2)},
      // The outer chunk ends before its samples do: 36 - 100 in 32 bits.
      {"outer size below zero", wave(Noise(100)).Bytes("", -100), wave("").Bytes("", -100)},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Travel(test.fSource, ContainerOf(test.fSource)).fExtraInfo, test.fExtraInfo)
        << test.fWhat;
    if (test.fComesBack) ExpectByteForByte(test.fSource, test.fWhat);
  }
}

TEST(SourceRebuilder, NamesTheSourcesThatDoNotComeBack) {
  const auto wave = [](int tag, int bits) { return CAudioBuilder::WAVE().Format(tag, 1, bits); };
  const auto aifc = [](int bits, const char* coding, const CBytes& samples) {
    return CAudioBuilder::AIFC().Common(1, 2, bits, coding).Sound(samples).Bytes();
  };
  const auto aiff = [](const CBytes& samples, std::uint32_t offset) {
    return CAudioBuilder::AIFF().Common(1, 2, 16).Sound(samples, offset).Bytes();
  };
  struct {
    const char* fWhat;
    CBytes fSource;
    bool fSamplesKept;
    /// The stream tells so, too.
    bool fKnownLater;
  } const cases[] = {
      {"a rest", wave(1, 16).Data("1234567").Bytes(), true, false},
      {"more sound than frames", aiff("123456", 0), true, false},
      {"no pad byte", wave(1, 8).Rubbish("data\3\0\0\0abc"s).Bytes(), true, false},
      {"another pad byte", wave(1, 8).Rubbish("data\3\0\0\0abcd"s).Bytes(), true, false},
      {"an offset", aiff("offset1234", 6), true, true},
      {"mu-law", wave(7, 8).Data(Noise(300)).Bytes(), true, true},
      {"A-law", wave(6, 8).Data(Noise(300)).Bytes(), true, true},
      {"A-law in AIFF-C", aifc(16, "alaw", "xy"), true, true},
      {"32 bits", wave(1, 32).Data(Noise(80)).Bytes(), false, true},
      {"float", wave(3, 32).Data("\0\0\0\x3F\0\0\x40\xBF"s).Bytes(), false, true},
      {"double", aifc(64, "fl64", "\x3F\xE0\0\0\0\0\0\0\xBF\xE8\0\0\0\0\0\0"s), false, true},
  };
  for (const auto& test : cases) {
    const CTrip trip = Travel(test.fSource, ContainerOf(test.fSource));
    EXPECT_EQ(trip.fKept.fSamplesKept, test.fSamplesKept) << test.fWhat;
    EXPECT_FALSE(trip.fKept.fSourceKept) << test.fWhat;
    EXPECT_NE(trip.fKept.fReason, "") << test.fWhat;
    EXPECT_EQ(trip.fReport.fByteForByte, !test.fKnownLater) << test.fWhat;
    EXPECT_EQ(trip.fReport.fReason.empty(), !test.fKnownLater) << test.fWhat;
    EXPECT_EQ(SamplesOf(trip.fRebuilt), SamplesOf(test.fSource)) << test.fWhat;
  }
}

TEST(SourceRebuilder, ExtraInfoOfOtherKindsGivesAPlainFile) {
  const auto wave = [](int channels, int bits, const CBytes& samples) {
    return CAudioBuilder::WAVE().Format(1, channels, bits).Data(samples).Bytes();
  };
  for (const CBytes& data :
       {"hello"s, ""s, wave(2, 16, ""), wave(1, 24, ""), wave(1, 16, "12"), "RIFF....WAVEdata"s}) {
    const CBytes length = {0, 0, 0, static_cast<char>(data.size())};
    const CBytes stream = Encoded({1, 2}) + "DwMBDwTM" + length + data + "DwTM" + length + "DwME";
    CMemoryMedia rebuilt;
    EXPECT_FALSE(RebuildSource(MediaOfBytes(stream), rebuilt, {}).fByteForByte);
    EXPECT_EQ(BytesOf(rebuilt), wave(1, 16, "\1\0\2\0"s));
  }
}

/// A bit stream whose last words look like an extra info block is samples all the same.
TEST(SourceRebuilder, SamplesThatLookLikeExtraInfoStaySamples) {
  CBytes stream = Encoded({}) + "DwMBDwTM\0\0\0\0DwTM\0\0\0\0DwME"s;
  stream[5] = 0x7F;  // more frames than there can be: see how many there are
  const std::size_t frames = Decoded(stream).fSamples.size();
  stream[5] = 0;
  stream[8] = static_cast<char>(frames);
  const NSTest::CReferenceResult expected = Decoded(stream);
  ASSERT_EQ(expected.fWords, 6u);
  const auto media = MediaOfBytes(stream);
  EXPECT_EQ(CheckDWOPStream(*media, {}).fExtraInfo, std::nullopt);
  CMemoryMedia rebuilt;
  EXPECT_TRUE(RebuildSource(media, rebuilt, {}).fByteForByte);
  EXPECT_EQ(SamplesOf(BytesOf(rebuilt)), expected.fSamples);
}

}  // namespace
}  // namespace NSTambraPacking
