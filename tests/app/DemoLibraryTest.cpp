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
#include "tests/support/PackRun.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CStdioMedia;
using NSTest::CTemporaryFolder;
using NSTolbrook::Utf8FromText;

/// The relative path, in UTF-8, and the bytes of every file below a folder; folders have none.
std::map<std::string, std::string> Contents(const std::filesystem::path& folder) {
  std::map<std::string, std::string> contents;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    std::string& bytes = contents[item.path().lexically_relative(folder).generic_string()];
    if (item.is_regular_file()) bytes = NSTest::CPackRun::Bytes(item.path());
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
  WriteDemoLibrary(other.Path() / "a" / "b");
  const auto contents = Contents(other.Path() / "a" / "b");
  EXPECT_EQ(contents, Contents(Folder().Path()));
  std::size_t size = 0;
  for (const auto& [path, bytes] : contents) size += bytes.size();
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

/// Sounds of every width, rate, number of channels and kind of loop, none of them too quiet or
/// clipped, no loop that clicks.
TEST_F(DemoLibrary, HasSoundsOfAllKinds) {
  std::set<std::uint32_t> channels, bits, rates, loops;
  for (const CScannedFile& file : ContentFiles()) {
    if (TypeOf(file) != 11) continue;
    SCOPED_TRACE(Utf8FromText(file.fPath));
    auto audio = CAudioFile::Open(
        CStdioMedia::OpenForReading(file.fItem.Path()),
        file.fItem.IsOfType(u".wav;.wave") ? EAudioContainer::kWAVE : EAudioContainer::kAIFF);
    const CAudioFormat format = audio.Format();
    const CInstrument instrument = audio.Instrument();
    channels.insert(format.fChannels);
    bits.insert(format.fBits);
    rates.insert(format.fRate);
    loops.insert(instrument.fLoopMode);

    std::vector<std::int32_t> samples(format.fFrames * format.fChannels);
    ASSERT_EQ(audio.ReadFrames(samples), format.fFrames);
    const std::int32_t fullScale = 1 << (format.CodedWidth() - 1);
    std::int32_t loudest = 0;
    for (const std::int32_t sample : samples) loudest = std::max(loudest, std::abs(sample));
    EXPECT_GT(loudest, fullScale / 4);
    EXPECT_LT(loudest, fullScale - fullScale / 100) << "clipped";
    if (instrument.fLoopMode == 0) continue;
    ASSERT_LT(instrument.fLoopStart, instrument.fLoopEnd);
    ASSERT_LT(instrument.fLoopEnd, format.fFrames);
    const std::int32_t seam = samples[instrument.fLoopEnd * format.fChannels] -
                              samples[instrument.fLoopStart * format.fChannels];
    EXPECT_LT(std::abs(seam), fullScale / 50);
  }
  using CNumbers = std::set<std::uint32_t>;
  EXPECT_EQ(channels, (CNumbers{1, 2}));
  EXPECT_EQ(bits, (CNumbers{8, 16, 24}));
  EXPECT_EQ(rates, (CNumbers{44'100, 48'000}));
  EXPECT_EQ(loops, (CNumbers{0, 1, 2}));
}

TEST_F(DemoLibrary, HasABankWithTheNamesThatDocumentsReferTo) {
  const CSoundFontBank bank =
      CSoundFontParser(CStdioMedia::OpenForReading(Folder().Path() / u"Bänke/Kleine Bank.sf2"))
          .Parse();
  ASSERT_EQ(bank.fSamples.size(), 2U);
  EXPECT_EQ(bank.fSamples[0].fName, u"Orgel");
  EXPECT_EQ(bank.fSamples[1].fName, u"Bass");
}

TEST(WriteDemoLibrary, RefusesAFolderThatIsInUse) {
  const CTemporaryFolder folder;
  folder.Write("used/.hidden", std::string_view("mine"));
  const auto file = folder.Write("file", std::string_view("mine"));
  const auto before = Contents(folder.Path());
  EXPECT_THROW(WriteDemoLibrary(folder.Path() / "used"), NSMordel::XAlreadyExists);
  EXPECT_THROW(WriteDemoLibrary(file), NSMordel::XAlreadyExists);
  EXPECT_EQ(Contents(folder.Path()), before);
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
  EXPECT_TRUE(Contents(folder.Path()).empty());
}
#endif

}  // namespace
}  // namespace NSTambraPacking
