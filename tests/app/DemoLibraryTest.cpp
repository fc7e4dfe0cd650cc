#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FolderScan.h"
#include "app/PackageInformation.h"
#include "app/SpecialNames.h"
#include "app/VersionText.h"
#include "app/demo/DemoLibrary.h"
#include "app/demo/DemoSynthesis.h"
#include "codecs/AudioFile.h"
#include "codecs/JpegReader.h"
#include "codecs/SoundFontParser.h"
#include "filetypes/FileTypeRegistry.h"
#include "filetypes/FileTypeTable.h"
#include "package/PackageEntry.h"
#include "package/StdioMedia.h"
#include "references/ReferenceLookup.h"
#include "references/StandardReferenceResolver.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CStdioMedia;
using NSTest::CTemporaryFolder;
using NSTolbrook::Utf8FromText;

/// The relative path, in UTF-8, and the bytes of every file below a folder; folders have none.
std::map<std::string, std::vector<std::uint8_t>> Contents(const CTemporaryFolder& folder) {
  std::map<std::string, std::vector<std::uint8_t>> contents;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder.Path())) {
    const auto path = item.path().lexically_relative(folder.Path());
    auto& bytes = contents[path.generic_string()];
    if (item.is_regular_file()) bytes = folder.Read(path);
  }
  return contents;
}

/// One library for all tests that only look at it, with the packer's view of it.
class DemoLibrary : public testing::Test {
 protected:
  static void SetUpTestSuite() { WriteDemoLibrary(Folder().Path()); }

  static CTemporaryFolder& Folder() {
    static CTemporaryFolder folder;
    return folder;
  }

  static std::vector<CScannedFile> Scan(const CSkipItems& skipItems) {
    const CScanRules rules{[&](const std::u16string& path) { return skipItems.Hold(path); },
                           [](std::size_t) {}};
    return ScanFolder(Folder().Path(), rules).fFiles;
  }

  static CPackageTexts Texts() {
    std::vector<CInformationFile> files;
    for (const CScannedFile& file : Scan({})) {
      if (!file.fIsInformation) continue;
      const auto media = CStdioMedia::OpenForReading(file.fItem.Path());
      files.push_back({file.fPath, ReadInformationBytes(*media)});
    }
    return ReadPackageTexts(files);
  }

  /// What is to be packed.
  static std::vector<CScannedFile> ContentFiles() {
    std::vector<CScannedFile> files = Scan(Texts().fOptions.fSkipItems);
    std::erase_if(files, [](const auto& file) { return file.fIsInformation || file.fSkipped; });
    return files;
  }

  static std::int32_t TypeOf(const CScannedFile& file) {
    const IFileTypePacker* packer = CFileTypeRegistry::Instance().FindPacker(file.fItem);
    return packer == nullptr ? -1 : packer->EntryTypeCode();
  }
};

TEST_F(DemoLibrary, IsTheSameOnEveryCall) {
  const CTemporaryFolder other;
  const std::size_t count = WriteDemoLibrary(other.Path() / "a" / "b");
  std::size_t files = 0;
  std::uintmax_t size = 0;
  for (const auto& item : std::filesystem::recursive_directory_iterator(other.Path() / "a" / "b")) {
    if (!item.is_regular_file()) continue;
    ++files;
    size += item.file_size();
    const auto path = item.path().lexically_relative(other.Path());
    EXPECT_EQ(other.Read(path), Folder().Read(path.lexically_relative("a/b"))) << path;
  }
  EXPECT_EQ(files, count);
  EXPECT_LT(size, 4U << 20);
}

/// A checksum over the sounds of all kinds: other systems and compilers must come to the same.
TEST(DemoSynthesis, ComputesTheSameSamplesEverywhere) {
  constexpr std::uint16_t kHarmonics[] = {100, 50, 25};
  const std::uint32_t step = PhaseStep(69, 0, 44'100);
  EXPECT_EQ(step, 42'852'281U) << "440 / 44,100 turns";
  std::uint64_t sum = 14695981039346656037ULL;  // FNV-1a
  for (const DemoSamples& samples :
       {MakeDrum({280, 185, 90, 150, 180, 3, 60, 3}, 48'000, 4'800),
        MakeTone(step, kHarmonics, 441, 4'410, 0x30000000), MakeBell(step, 44'100, 4'410)}) {
    for (const std::int32_t sample : samples) {
      sum = (sum ^ static_cast<std::uint32_t>(sample)) * 1099511628211ULL;
    }
  }
  EXPECT_EQ(sum, 13849684830067461359ULL);
}

TEST_F(DemoLibrary, TellsAboutItselfInAllEncodings) {
  const CPackageTexts texts = Texts();
  EXPECT_EQ(texts.fInformation.fName, u"Große Demo-Sammlung");
  EXPECT_TRUE(texts.fInformation.fComments.ends_with(u"Stücke – 太鼓と鈴も入っています。"));
  EXPECT_EQ(texts.fInformation.fCopyright, u"© 2026 Verlag für Beispielklänge");
  EXPECT_EQ(ParseVersionText(texts.fInformation.fVersion).Text(), "1.1.0");
  EXPECT_TRUE(texts.fOptions.fWarnAboutUnusedSamples);
  EXPECT_EQ(texts.fOptions.fProhibitedDevices.size(), 2U);

  const auto size =
      CJpegReader().ReadPictureSize(CStdioMedia::OpenForReading(Folder().Path() / "Splash.jpg"));
  EXPECT_EQ(std::pair(size.fWidth, size.fHeight), std::pair(64U, 64U));
}

/// Every file passes its verifier, every type is there, every reference leads to a file that is
/// packed, every sample is used, and no prohibited device is.
TEST_F(DemoLibrary, PassesItsVerifiers) {
  const std::vector<CScannedFile> files = ContentFiles();
  CEntryTree tree;
  IncludedPaths included;
  std::set<std::int32_t> types;
  std::set<std::u16string> unusedSamples;
  for (const CScannedFile& file : files) {
    EXPECT_EQ(file.fFault, "");
    const std::int32_t type = TypeOf(file);
    types.insert(type);
    tree.AddFile(file.fPath, IsContainerType(type));
    included.insert(file.fPath);
    if (type == 11 || IsContainerType(type)) unusedSamples.insert(file.fPath);
  }
  for (const CFileTypeRow& row : RegisteredFileTypes()) {
    EXPECT_TRUE(types.contains(row.fHandlers.fPacker->EntryTypeCode())) << row.fExtensions;
  }
  const CPackageTexts texts = Texts();
  const CReferenceLookup lookup(tree);
  const CStandardReferenceResolver resolver(lookup, texts.fInformation.fName, included);
  std::size_t references = 0;
  for (const CScannedFile& file : files) {
    SCOPED_TRACE(Utf8FromText(file.fPath));
    CVerifyContext context;
    context.fPath = file.fPath;
    context.fProhibitedDevices = texts.fOptions.fProhibitedDevices;
    context.fResolver = &resolver;
    ASSERT_NO_THROW(CFileTypeRegistry::Instance().VerifyFile(file.fItem, context));
    EXPECT_TRUE(context.fProhibitedDevicesUsed.empty());
    for (const CResolvedReference& reference : context.fReferences) {
      ++references;
      EXPECT_EQ(reference.fResolution.fClass, EReferenceClass::kFoundIncluded)
          << Utf8FromText(reference.fPrinted);
      unusedSamples.erase(reference.fResolution.fPath);
    }
  }
  EXPECT_GT(references, unusedSamples.size() + 30);
  for (const std::u16string& sample : unusedSamples) ADD_FAILURE() << Utf8FromText(sample);
}

struct CAudioCase {
  const char* fPath;
  EAudioContainer fContainer;
  std::uint16_t fChannels;
  std::uint32_t fBits;
  std::uint32_t fRate;
  int fRootKey;
  int fFineTune;
  int fLoopMode;
};

TEST_F(DemoLibrary, HasSoundsOfAllKinds) {
  constexpr auto kWAVE = EAudioContainer::kWAVE;
  constexpr auto kAIFF = EAudioContainer::kAIFF;
  const CAudioCase cases[] = {
      {"Samples/Schlagzeug/Kick 01.wav", kWAVE, 1, 24, 44'100, 60, 0, 0},
      {"Samples/Schlagzeug/Snare 02 (laut).WAV", kWAVE, 2, 16, 44'100, 60, 0, 0},
      {"Samples/Schlagzeug/Hi-Hat offen.aiff", kAIFF, 2, 24, 48'000, 60, 0, 0},
      {"Samples/Schlagzeug/Alte Rassel.wav", kWAVE, 1, 8, 44'100, 60, 0, 0},
      {"Samples/Töne/Orgel C2.wav", kWAVE, 1, 16, 44'100, 48, 0, 1},
      {"Samples/Töne/Orgel C4.wav", kWAVE, 1, 16, 44'100, 72, 7, 2},
      {"Samples/Töne/Bass A1.aif", kAIFF, 1, 16, 48'000, 33, 0, 1},
      {"Samples/Töne/Bass E2.aiff", kAIFF, 1, 24, 48'000, 40, 12, 2},
      {"Samples/Töne/Bass A2.AIF", kAIFF, 1, 16, 44'100, 45, 0, 1},
      {"Samples/Töne/Fläche F3.wav", kWAVE, 2, 24, 48'000, 65, 50, 1},
      {"Samples/中文/铃 C5.wav", kWAVE, 1, 24, 44'100, 84, 3, 0},
      {"Samples/中文/铃 G5.aiff", kAIFF, 1, 16, 44'100, 91, 0, 0},
  };
  for (const CAudioCase& expected : cases) {
    SCOPED_TRACE(expected.fPath);
    auto audio = CAudioFile::Open(
        CStdioMedia::OpenForReading(Folder().Path() / NSTest::CUtf8Path(expected.fPath)),
        expected.fContainer);
    const CAudioFormat format = audio.Format();
    const CInstrument instrument = audio.Instrument();
    EXPECT_EQ(format.fChannels, expected.fChannels);
    EXPECT_EQ(format.fBits, expected.fBits);
    EXPECT_EQ(format.fRate, expected.fRate);
    EXPECT_EQ(instrument.fRootKey, expected.fRootKey);
    EXPECT_EQ(instrument.fFineTune, expected.fFineTune);
    EXPECT_EQ(instrument.fLoopMode, expected.fLoopMode);

    std::vector<std::int32_t> samples(format.fFrames * format.fChannels);
    ASSERT_EQ(audio.ReadFrames(samples), format.fFrames);
    const std::int32_t fullScale = 1 << (format.CodedWidth() - 1);
    std::int32_t loudest = 0;
    for (const std::int32_t sample : samples) loudest = std::max(loudest, std::abs(sample));
    EXPECT_GT(loudest, fullScale / 4);
    EXPECT_LT(loudest, fullScale - fullScale / 100) << "clipped";
    if (expected.fLoopMode == 0) continue;
    ASSERT_LT(instrument.fLoopStart, instrument.fLoopEnd);
    ASSERT_LT(instrument.fLoopEnd, format.fFrames);
    const std::int32_t seam = samples[instrument.fLoopEnd * format.fChannels] -
                              samples[instrument.fLoopStart * format.fChannels];
    EXPECT_LT(std::abs(seam), fullScale / 50);
  }
}

TEST_F(DemoLibrary, HasABankWithTheNamesThatDocumentsReferTo) {
  const CSoundFontBank bank =
      CSoundFontParser(CStdioMedia::OpenForReading(Folder().Path() / u"Bänke/Kleine Bank.sf2"))
          .Parse();
  EXPECT_EQ(bank.fName, u"Kleine Bank");
  ASSERT_EQ(bank.fSamples.size(), 2U);
  EXPECT_EQ(bank.fSamples[0].fName, u"Orgel");
  EXPECT_EQ(bank.fSamples[1].fName, u"Bass");
  EXPECT_EQ(bank.fSamples[1].fKey, 36);
  ASSERT_EQ(bank.fPresets.size(), 2U);
  EXPECT_EQ(bank.fPresets[1].fProgram, 33);
}

TEST(WriteDemoLibrary, RefusesAFolderThatIsInUse) {
  const CTemporaryFolder folder;
  folder.Write("used/.hidden", std::string_view("mine"));
  const auto file = folder.Write("file", std::string_view("mine"));
  const auto before = Contents(folder);
  EXPECT_THROW(WriteDemoLibrary(folder.Path() / "used"), NSMordel::XAlreadyExists);
  EXPECT_THROW(WriteDemoLibrary(file), NSMordel::XAlreadyExists);
  EXPECT_EQ(Contents(folder), before);
}

#ifdef __linux__
/// The first files can be written, the names of later ones make their paths too long.
TEST(WriteDemoLibrary, LeavesNothingBehindWhenItFails) {
  const CTemporaryFolder folder;
  constexpr std::size_t kLength = 4060;  // the system allows 4095
  std::filesystem::path deep = folder.Path();
  while (deep.native().size() + 201 < kLength - 1) deep /= std::string(200, 'd');
  deep /= std::string(kLength - 1 - deep.native().size(), 'd');
  EXPECT_ANY_THROW(WriteDemoLibrary(deep));
  EXPECT_TRUE(Contents(folder).empty());
}
#endif

}  // namespace
}  // namespace NSTambraPacking
