#include <gtest/gtest.h>

#include "package/PackageComposer.h"
#include "package/PackageReader.h"
#include "tests/package/PackageFixture.h"
#include "tests/support/DocumentedExample.h"
#include "tests/support/FailingMedia.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryMedia;
using NSTest::Bytes;
using NSTest::CComposing;
using NSTest::Entries;
using NSTest::ExampleEntries;
using NSTest::MakeEntry;

TEST(PackageComposerTest, DocumentedExampleIsWrittenToTheByte) {
  CComposing composing;
  CMemoryMedia output;
  const CPackageHeader header = composing.Compose(ExampleEntries(), output);
  EXPECT_EQ(output.Bytes(), NSTest::DocumentedExample("package.md"));
  EXPECT_EQ(output.Size(), 138u);
  EXPECT_EQ(CPackageReader(std::make_shared<CMemoryMedia>(output)).Header(), header);
  EXPECT_EQ(composing.fProgress.fReports,
            (std::vector<std::string>{"begin 7 of 5", "0 NAME.TXT", "1 COMMENTS.TXT", "2 Beat.mid",
                                      "3 Splash.jpg", "4 One.ops", "end 7"}));
}

TEST(PackageComposerTest, FirstOfTwoSplashesIsNamedAndEmptyEntriesTakeNoRoom) {
  Entries entries = ExampleEntries();
  entries.push_back(MakeEntry(u"Empty.mid", 10, 1, ""));
  entries.push_back(MakeEntry(u"Splash.jpg", 9, 1, "@@"));
  CComposing composing;
  const auto output = std::make_shared<CMemoryMedia>();
  EXPECT_EQ(composing.Compose(entries, *output).fSplashOffset, 5u);
  const auto read = CPackageReader(output).ReadEntries();
  ASSERT_EQ(read.size(), 5u);
  EXPECT_EQ(read[3]->Data()->Size(), 0u);
  EXPECT_EQ(NSTest::TextOf(*read[4]->Data()), "@@");
}

/// What a failure says: its class by a letter, its message and one of the keys.
std::string Describe(const Entries& entries) {
  CComposing composing;
  CMemoryMedia output;
  std::string text = "composed";
  const auto describe = [&](const char* kind, const NSMordel::CExceptionBodyMixin& failure) {
    text = std::string(kind) + " " + failure.Message();
    for (const auto& [key, value] : failure.Context()) text += " " + key + "=" + value;
    EXPECT_EQ(output.Size(), 0u) << "written before the check: " << text;
  };
  try {
    composing.Compose(entries, output);
  } catch (const NSMordel::XNotFound& failure) {
    describe("XNotFound", failure);
  } catch (const NSMordel::XUnsupportedFormat& failure) {
    describe("XUnsupportedFormat", failure);
  } catch (const NSMordel::XOpen& failure) {
    describe("XOpen", failure);
  }
  return text;
}

TEST(PackageComposerTest, FaultsAreFoundInTheirOrderBeforeAnythingIsWritten) {
  const auto name = MakeEntry(u"NAME.TXT", 0, 1, "Kit");
  const auto blankName = MakeEntry(u"NAME.TXT", 0, 1, "");
  const auto splash = MakeEntry(u"Splash.jpg", 9, 1, "@@");
  const auto wide = MakeEntry(u"Splash.jpg", 9, 1, "A@");
  const auto high = MakeEntry(u"Splash.jpg", 9, 1, "@?");
  const auto damaged = MakeEntry(u"Splash.jpg", 9, 1, "@");
  const auto closedName = MakePackageEntry(u"NAME.TXT", 0, 1, nullptr);
  const auto closedSplash = MakePackageEntry(u"Splash.jpg", 9, 1, nullptr);
  const auto closedFile = MakePackageEntry(u"a/b.mid", 10, 1, nullptr);
  const std::string kSplashContext =
      " target_object_type=file target_object_id=Splash.jpg name=Splash.jpg tambrafileentrytype=9";
  const std::string kNoName = "XNotFound tambra name not found tambraname=";
  const std::string kSize =
      "XUnsupportedFormat Splash file size error" + kSplashContext + " tambrasplash=Splash.jpg";
  const std::string kClosed = "XOpen the data of the entry could not be opened";
  const struct {
    Entries fEntries;
    std::string fOutcome;
  } kCases[] = {
      {{name, splash}, "composed"},
      {{}, kNoName},
      {{splash}, kNoName},
      {{blankName, splash}, kNoName},
      {{name}, "XNotFound splash file not found tambrasplash="},
      {{wide}, kSize},
      {{name, high}, kSize},
      {{name, splash, wide}, kSize},
      {{damaged},
       "XUnsupportedFormat Splash file format error" + kSplashContext + " tambrasplash=Splash.jpg"},
      {{closedName, wide},
       kClosed + " target_object_type=file target_object_id=NAME.TXT name=NAME.TXT"
                 " tambrafileentrytype=0"},
      {{closedSplash}, kClosed + kSplashContext},
      {{closedFile, splash}, kNoName},
      {{closedFile, name, splash},
       kClosed + " target_object_type=file target_object_id=a/b.mid name=b.mid"
                 " tambrafileentrytype=10"},
  };
  for (const auto& test : kCases) EXPECT_EQ(Describe(test.fEntries), test.fOutcome);
}

/// A medium that claims a size and has no bytes.
class CClaimedSize : public CMemoryMedia {
 public:
  explicit CClaimedSize(std::uint64_t size) : fSize(size) {}
  std::uint64_t Size() const override { return fSize; }

 private:
  std::uint64_t fSize;
};

Entries WithSizes(std::initializer_list<std::uint64_t> sizes) {
  Entries entries = ExampleEntries();
  entries.erase(entries.begin() + 2);
  entries.pop_back();
  for (const std::uint64_t size : sizes) {
    entries.push_back(MakePackageEntry(u"f", 10, 1, std::make_shared<CClaimedSize>(size)));
  }
  return entries;
}

TEST(PackageComposerTest, DataBeyond32BitsIsRefusedWithSizeAndLimit) {
  const auto refusal = [](std::initializer_list<std::uint64_t> sizes) -> std::string {
    CComposing composing;
    CMemoryMedia output;
    try {
      composing.Compose(WithSizes(sizes), output);
    } catch (const NSMordel::XOutOfSpace& failure) {
      EXPECT_EQ(output.Size(), 0u);
      return failure.what();
    } catch (const NSMordel::XRead& failure) {
      return *failure.FindContext("target_object_id");
    }
    return "composed";
  };
  // The splash takes two bytes.
  EXPECT_EQ(refusal({0x80000000, 0x7FFFFFFD}), "f") << "fits, so reading begins";
  EXPECT_EQ(refusal({0x80000000, 0x7FFFFFFE}),
            "the size of the package's data in bytes would reach 4294967296, but a package can "
            "hold no more than 4294967295");
  EXPECT_EQ(refusal({0xFFFFFFFFFFFFFFFF}),
            "an entry's size in bytes would reach 18446744073709551615, but a package can hold no "
            "more than 4294967295");
}

TEST(PackageComposerTest, LongEntriesAreCopiedInPiecesAndCanBeStopped) {
  std::string bytes(2'500'000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 / 1000);
  Entries entries = ExampleEntries();
  entries.push_back(MakeEntry(u"Long.mid", 10, 1, bytes));
  CComposing whole;
  const auto output = std::make_shared<CMemoryMedia>();
  whole.Compose(entries, *output);
  EXPECT_EQ(NSTest::TextOf(*CPackageReader(output).ReadEntries().back()->Data()), bytes);
  // Once at the start, before each of the four entries, and twice inside the long one.
  EXPECT_EQ(whole.fProgress.fQuestions, 7u);
  for (std::size_t i = 0; i < whole.fProgress.fQuestions; ++i) {
    CComposing composing;
    composing.fProgress.fStopAt = i;
    CMemoryMedia stopped;
    EXPECT_THROW(composing.Compose(entries, stopped), NSMordel::XSilentAbort) << i;
    EXPECT_EQ(composing.fProgress.fReports.back(), "cleared") << i;
  }
}

TEST(PackageComposerTest, EveryFailureOfAMediumIsReported) {
  const std::size_t length = NSTest::DocumentedExample("package.md").size();
  for (std::size_t budget = 0; budget <= length; ++budget) {
    CComposing composing;
    NSTest::CFailingMedia output(std::make_shared<CMemoryMedia>(), 0, budget);
    if (budget == length) {
      EXPECT_NO_THROW(composing.Compose(ExampleEntries(), output));
    } else {
      EXPECT_THROW(composing.Compose(ExampleEntries(), output), NSMordel::XWrite) << budget;
    }
  }
}

TEST(PackageComposerTest, WorksWithoutProgressButNotWithoutTheJobToReport) {
  NSTest::CScriptedSpecialFiles special;
  NSTest::CTwoBytePictureReader pictures;
  CMemoryMedia output;
  CPackageComposer(special, pictures, nullptr, nullptr).Compose(ExampleEntries(), output);
  EXPECT_EQ(output.Bytes(), NSTest::DocumentedExample("package.md"));
  NSTest::CRecordingProgress progress;
  EXPECT_THROW(CPackageComposer(special, pictures, nullptr, &progress),
               NSMordel::XInvariantCorrupt);
}

}  // namespace
}  // namespace NSTambraPacking
