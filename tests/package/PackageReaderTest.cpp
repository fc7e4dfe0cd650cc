#include <functional>
#include <gtest/gtest.h>

#include "package/PackageFormat.h"
#include "package/PackageIndex.h"
#include "package/PackageReader.h"
#include "tests/package/PackageFixture.h"
#include "tests/support/AllocationWatch.h"
#include "tests/support/Damage.h"
#include "tests/support/FailingMedia.h"
#include "tests/support/FaultText.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CMemoryMedia;
using NSTest::Bytes;

/// The example's parts, to be spoilt one at a time and put where the header says.
struct CParts {
  CPackageHeader fHeader{u"Kit", u"", u"", u"", 2, 0x2C, 0x54, {1, 2, 0}, 4, 2};
  std::vector<CIndexEntry> fIndex{{u"Beat.mid", 10, 0, 4}, {u"Bank", 16, 4, 2, 0}};
  std::string fData = "MThd@@";

  std::shared_ptr<CMemoryMedia> Write() const {
    auto media = std::make_shared<CMemoryMedia>();
    CMediaCursor output(*media);
    WritePackageHeader(output, fHeader);
    // A spoilt start is only claimed; the parts are written where they fit.
    const bool dataFirst = fHeader.fDataStart < fHeader.fIndexStart && fHeader.fDataStart == 0x2C;
    if (dataFirst) output.Write(Bytes(fData.begin(), fData.end()));
    for (const CIndexEntry& entry : fIndex) WriteIndexEntry(output, entry);
    if (!dataFirst) output.Write(Bytes(fData.begin(), fData.end()));
    return media;
  }
};

std::string List(const NSBigFilePackage::SharedMedia& package) {
  std::string text;
  for (const auto& entry : CPackageReader(package).ReadEntries()) {
    text += NSTolbrook::Utf8FromText(entry->Path()) + "=" + NSTest::TextOf(*entry->Data()) +
            (entry->IsContainer() ? "+ " : " ");
  }
  return text;
}

TEST(PackageReaderTest, EntriesAreFoundWhereTheFieldsSay) {
  const struct {
    std::function<void(CParts&)> fChange;
    std::string fList;
  } kCases[] = {
      {[](CParts&) {}, "Beat.mid=MThd Bank=@@+ "},
      {[](CParts& parts) { parts.fHeader.fFileCount = 0; }, ""},
      {[](CParts& parts) { parts.fIndex[1].fSize = 0; }, "Beat.mid=MThd Bank=+ "},
      {[](CParts& parts) { parts.fIndex[1].fOffset = 0; }, "Beat.mid=MThd Bank=MT+ "},
      {[](CParts& parts) { parts.fData += "behind all entries"; }, "Beat.mid=MThd Bank=@@+ "},
      {[](CParts& parts) {
         parts.fHeader.fDataStart = 0x2C;
         parts.fHeader.fIndexStart = 0x32;
       },
       "Beat.mid=MThd Bank=@@+ "},
  };
  for (const auto& test : kCases) {
    CParts parts;
    test.fChange(parts);
    EXPECT_EQ(List(parts.Write()), test.fList);
  }
}

TEST(PackageReaderTest, HostilePackagesAreRefusedBeforeMemoryIsTaken) {
  const struct {
    std::function<void(CParts&)> fSpoil;
    std::string fMessage;
  } kCases[] = {
      {[](CParts& p) { p.fHeader.fIndexStart = 0x2B; }, "the package's index starts at offset 43"},
      {[](CParts& p) { p.fHeader.fIndexStart = 0x5B; }, "the package's index starts at offset 91"},
      {[](CParts& p) { p.fHeader.fDataStart = 0; }, "the package's data region starts at offset 0"},
      {[](CParts& p) { p.fHeader.fDataStart = 0xFFFFFFFF; },
       "the package's data region starts at offset 4294967295"},
      {[](CParts& p) { p.fHeader.fFileCount = 3; }, "the package claims 3 entries"},
      {[](CParts& p) { p.fHeader.fFileCount = 0xFFFFFFFF; },
       "the package claims 4294967295 entries"},
      {[](CParts& p) { p.fHeader.fDataStart = 0x53; }, "an index entry of the package is cut"},
      {[](CParts& p) {
         p.fHeader.fIndexStart = p.fHeader.fDataStart = 0x2C,
         p.fHeader.fSplashOffset = p.fHeader.fSplashSize = 0;
       },
       "\"Beat.mid\" has 4 bytes at offset 0, but the package's data has only 0 bytes"},
      {[](CParts& p) { p.fIndex[0].fName = u"", p.fData += "Beat.mid"; },
       "an entry of the package has no name"},
      {[](CParts& p) { p.fIndex[1].fSize = 3; },
       "\"Bank\" has 3 bytes at offset 4, but the package's data has only 6 bytes"},
      {[](CParts& p) { p.fIndex[1].fOffset = 0xFFFFFFFF; },
       "\"Bank\" has 2 bytes at offset 4294967295"},
      {[](CParts& p) { p.fIndex[0].fOffset = p.fIndex[0].fSize = 0xFFFFFFFF; },
       "\"Beat.mid\" has 4294967295 bytes at offset 4294967295"},
      {[](CParts& p) {
         p.fIndex.assign(kGreatestSharing + 1, {u"Beat.mid", 10, 0, 6});
         p.fHeader.fFileCount = kGreatestSharing + 1;
         p.fHeader.fDataStart = 0x2C + (kGreatestSharing + 1) * 22;
       },
       "the package's entries have 102 bytes"},
      {[](CParts& p) { p.fHeader.fSplashOffset = 5; }, "\"splash\" has 2 bytes at offset 5"},
      {[](CParts& p) {
         p.fHeader.fDataStart = 0x2C;
         p.fHeader.fIndexStart = 0x32;
         p.fIndex[1].fSize = 3;
       },
       "\"Bank\" has 3 bytes at offset 4, but the package's data has only 6 bytes"},
  };
  for (const auto& test : kCases) {
    CParts parts;
    test.fSpoil(parts);
    const auto package = parts.Write();
    NSTest::ResetLargestAllocation();
    const std::string fault = NSTest::FaultText<NSMordel::XFormatViolation>([&] { List(package); });
    EXPECT_TRUE(fault.starts_with(test.fMessage)) << fault << " instead of " << test.fMessage;
    EXPECT_LE(NSTest::LargestAllocation(), kPackageBufferLength);
  }
}

TEST(PackageReaderTest, LaterVersionIsNamedBesideTheSupportedOne) {
  CParts parts;
  parts.fHeader.fVersion = {1, 3, 0};
  EXPECT_EQ(NSTest::FaultText<NSMordel::XVersionTooNew>([&] { CPackageReader{parts.Write()}; }),
            "the package has version 1.3.0, the newest supported version is 1.2.0");
}

/// Reads everything; returns false when the package is refused. Other failures pass through.
bool ReadsToTheEnd(const Bytes& bytes) {
  NSTest::ResetLargestAllocation();
  bool accepted = true;
  try {
    List(std::make_shared<CMemoryMedia>(bytes));
  } catch (const NSMordel::XFormatViolation&) {
    accepted = false;
  } catch (const NSMordel::XVersionTooNew&) {
    accepted = false;
  }
  EXPECT_LE(NSTest::LargestAllocation(), kPackageBufferLength + bytes.size());
  return accepted;
}

TEST(PackageReaderTest, CutOrFlippedPackagesAreReadOrRefusedInBoundedMemory) {
  NSTest::CComposing composing;
  CMemoryMedia output;
  composing.Compose(NSTest::ExampleEntries(), output);
  const Bytes& whole = output.Bytes();
  ASSERT_TRUE(ReadsToTheEnd(whole));
  NSTest::ForEachCut(whole, [](const Bytes& cut) { EXPECT_FALSE(ReadsToTheEnd(cut)); });
  NSTest::ForEachTurnedBit(whole, ReadsToTheEnd);
}

TEST(PackageReaderTest, BrokenMediumIsAFailureToRead) {
  const auto package = CParts().Write();
  EXPECT_THROW(CPackageReader(std::make_shared<NSTest::CFailingMedia>(package, 0)),
               NSMordel::XRead);
}

}  // namespace
}  // namespace NSTambraPacking
