#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/AudioProcessors.h"
#include "filetypes/dwop/DWOPFileEncoder.h"
#include "filetypes/dwop/DWOPStreamCheck.h"
#include "package/MemoryMedia.h"
#include "tests/support/AudioBuilder.h"
#include "tests/support/FailingMedia.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryMedia;
using NSTest::CAudioBuilder;
using NSTest::MediaOfBytes;

CAudioBuilder Mono16(const std::string& samples) {
  return CAudioBuilder::WAVE().Format(1, 1, 16).Data(samples);
}

/// "accepted", or the kind and text of what the verifier raises.
std::string Verdict(const IFileTypeVerifier& verifier, const NSBigFilePackage::SharedMedia& file) {
  CVerifyContext context;
  try {
    verifier.Verify(file, context);
    return "accepted";
  } catch (const NSMordel::XFormatViolation& failure) {
    return std::string("format: ") + failure.what();
  } catch (const NSMordel::XUnsupportedFormat&) {
    return "unsupported";
  }
}

TEST(AudioProcessors, AcceptOneAndTwoChannels) {
  struct {
    int fChannels;
    const char* fVerdict;
  } const cases[] = {
      {0, "format: "}, {1, "accepted"}, {2, "accepted"}, {3, "format: "}, {65535, "format: "}};
  for (const auto& test : cases) {
    const auto wave = CAudioBuilder::WAVE().Format(1, test.fChannels, 8, 44100);
    EXPECT_EQ(Verdict(*WAVEFileType().fVerifier, CAudioBuilder(wave).Data("").Media()),
              test.fVerdict)
        << test.fChannels;
    const auto aiff = CAudioBuilder::AIFF().Common(test.fChannels, 0, 32).Sound("").Media();
    EXPECT_EQ(Verdict(*AIFFFileType().fVerifier, aiff), test.fVerdict) << test.fChannels;
  }
  const auto compressed = CAudioBuilder::WAVE().Format(2, 1, 8).Data("12").Media();
  EXPECT_EQ(Verdict(*WAVEFileType().fVerifier, compressed), "unsupported");
}

/// No chunk with a 32-bit size holds so many, so the format is made up.
TEST(AudioProcessors, RefuseMoreFramesThanAStreamCounts) {
  CAudioFormat format;
  format.fChannels = 1;
  format.fFrames = 0xFFFFFFFF;
  EXPECT_NO_THROW(CheckAudioFormat(format));
  ++format.fFrames;
  EXPECT_THROW(CheckAudioFormat(format), NSMordel::XFormatViolation);
}

TEST(AudioProcessors, PackAndSayWhatIsNotKept) {
  using ERemark::kSamplesConverted, ERemark::kSourceNotRestorable;
  const std::string floating = CAudioBuilder::WAVE().Format(3, 1, 32).Data("1234").Bytes();
  const std::string aiff = CAudioBuilder::AIFF().Common(2, 1, 16).Sound("1234").Bytes();
  struct {
    const char* fName;
    CFileTypeHandlers fHandlers;
    std::string fFile;
    std::set<ERemark> fRemarks;
  } const cases[] = {
      {"a.wav", WAVEFileType(), Mono16("1234").Bytes(), {}},
      {"b.wav", WAVEFileType(), Mono16("12345").Bytes(), {kSourceNotRestorable}},
      {"c.wav", WAVEFileType(), floating, {kSamplesConverted}},
      {"d.aif", AIFFFileType(), aiff, {}},
  };
  const NSTest::CTemporaryFolder folder;
  for (const auto& test : cases) {
    CPackContext context;
    const auto entry = std::make_shared<CMemoryMedia>();
    const NSTolbrook::CFileItem item(folder.Write(test.fName, test.fFile));
    EXPECT_EQ(test.fHandlers.fPacker->EntryTypeCode(), 11);
    test.fHandlers.fPacker->Pack(item, *entry, context);
    EXPECT_EQ(context.fRemarks, test.fRemarks) << test.fName;
    EXPECT_EQ(Verdict(*test.fHandlers.fPackedEntryVerifier, entry), "accepted") << test.fName;
    entry->SetSize(entry->Size() - 4);
    EXPECT_NE(Verdict(*test.fHandlers.fPackedEntryVerifier, entry), "accepted") << test.fName;
  }
  CPackContext stopped;
  stopped.fStopRequested = [] { return true; };
  CMemoryMedia entry;
  EXPECT_THROW(
      WAVEFileType().fPacker->Pack(NSTolbrook::CFileItem(folder.Path() / "a.wav"), entry, stopped),
      NSMordel::XSilentAbort);
}

TEST(AudioProcessors, TheHeaderTellsTuningAndLoop) {
  const std::string frames(200, 'x');
  CMemoryMedia entry;
  EncodeAudioFile(Mono16(frames).Sampler(72, 0x80000000, 1, 10, 19).Media(), EAudioContainer::kWAVE,
                  entry, {});
  const CDWOPHeader expected{.fLength = 100,
                             .fRootKey = 72,
                             .fFineTune = 50,
                             .fLoopMode = 2,
                             .fLoopStart = 10,
                             .fLoopEnd = 20,
                             .fRate = 44100};
  EXPECT_EQ(CheckDWOPStream(entry, {}).fHeader, expected);
}

TEST(AudioProcessors, AMediumThatBreaksAnywhereIsAFailure) {
  const std::string source = Mono16("The samples 1234").Chunk("more", "behind").Bytes();
  const auto whole = std::make_shared<CMemoryMedia>();
  EncodeAudioFile(MediaOfBytes(source), EAudioContainer::kWAVE, *whole, {});
  for (std::uint64_t budget = 0; budget < whole->Size(); ++budget) {
    NSTest::CFailingMedia broken(std::make_shared<CMemoryMedia>(), NSTest::CFailingMedia::kNever,
                                 budget);
    EXPECT_THROW(EncodeAudioFile(MediaOfBytes(source), EAudioContainer::kWAVE, broken, {}),
                 NSMordel::XWrite)
        << budget;
  }
  for (std::uint64_t budget = 0; budget < source.size(); ++budget) {
    CMemoryMedia entry;
    const auto broken = std::make_shared<NSTest::CFailingMedia>(MediaOfBytes(source), budget);
    EXPECT_THROW(EncodeAudioFile(broken, EAudioContainer::kWAVE, entry, {}), NSMordel::XRead)
        << budget;
  }
}

}  // namespace
}  // namespace NSTambraPacking
