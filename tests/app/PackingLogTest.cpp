#include <filesystem>
#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/PackingLog.h"
#include "tests/support/ManualClock.h"
#include "tests/support/SystemDifferences.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTambraPacking {
namespace {

class PackingLog : public testing::Test {
 protected:
  PackingLog() { fClock.SetNow({2026, 1, 2, 3, 4, 5}); }

  CTextResources fTexts;
  NSTest::CManualClock fClock;
  CPackingLog fLog{fTexts, fClock};
  NSTest::CTemporaryFolder fFolder;
};

TEST_F(PackingLog, WritesEverySectionInItsOrder) {
  CPackLists lists;
  lists.fFailed = {u"a.wav", u"Bässe/b.wav"};
  lists.fUnresolved = {{u"p.dp01", {u"Kick => ../k.wav", u"^1 => x"}}, {u"q.dp01", {}}};
  lists.fBroken = {{u"s.ostrum", {u"Fake\r\nPacking complete => lib:k.wav"}}};
  lists.fExternal = {{u"t.dp02", {u"Other", u"More", u"Other"}}};
  lists.fProhibited = {{u"u.dp03", {u"b", u"a", u"C", u"a"}}};
  lists.fSkipped = {u"v.dp04"};
  lists.fUnreferenced = {u"w.wav"};
  EXPECT_EQ(
      fLog.Text(lists, kLogAborted),
      "Failed validating:\r\n    a.wav\r\n    Bässe/b.wav\r\n"
      "Unresolved references:\r\n    p.dp01\r\n        Kick => ../k.wav\r\n        ^1 => x\r\n"
      "    q.dp01\r\n"
      "Broken references in the finished Tambra (usually caused by faults of the Tambra packer "
      "itself):\r\n    s.ostrum\r\n        Fake��Packing complete => lib:k.wav\r\n"
      "External Tambra references:\r\n    t.dp02\r\n        Other\r\n        More\r\n"
      "Files that references prohibited device types:\r\n"
      "    u.dp03 uses the following prohibited device type(s): C, a, b\r\n"
      "Items skipped due to referenced samples being skipped:\r\n    v.dp04\r\n"
      "Unreferenced samples:\r\n    w.wav\r\n"
      "Packing aborted\r\n");
  EXPECT_EQ(fLog.Text({}, kLogComplete), "Packing complete\r\n");
}

TEST_F(PackingLog, TakesTheFirstFreeName) {
  const auto write = [&] {
    return fLog.Write(fFolder.Path(), u"Große", {}, kLogComplete).filename().u16string();
  };
  EXPECT_EQ(write(), u"Große packing log 2026-01-02 03.04.05.txt");
  EXPECT_EQ(write(), u"Große packing log 2026-01-02 03.04.05 2.txt");
  const auto third = fFolder.Path() / u"Große packing log 2026-01-02 03.04.05 3.txt";
  if (!NSTest::MakeLink("nowhere", third)) fFolder.MakeFolder(third);
  EXPECT_EQ(write(), u"Große packing log 2026-01-02 03.04.05 4.txt");
  EXPECT_EQ(fFolder.ReadText("Große packing log 2026-01-02 03.04.05 4.txt"),
            "Packing complete\r\n");
  EXPECT_FALSE(std::filesystem::exists(fFolder.Path() / "nowhere"));
  std::u16string longest = u"a";
  while (longest.size() < 125) longest += u"\U0001F941";
  for (const char16_t* ending : {u"05.txt", u"05 2.txt"}) {
    const auto path = fLog.Write(fFolder.Path(), longest, {}, kLogComplete);
    EXPECT_TRUE(path.filename().u16string().starts_with(longest.substr(0, 107)));
    EXPECT_TRUE(path.filename().u16string().ends_with(ending));
  }
  EXPECT_THROW(fLog.Write(fFolder.Path() / "none", u"A", {}, kLogComplete), NSMordel::XNotFound);
}

TEST(PackLists, TellProblemsFromNotes) {
  using CSetter = void (*)(CPackLists&);
  const std::vector<std::pair<CSetter, bool>> cases{
      {[](CPackLists& l) { l.fFailed.resize(1); }, true},
      {[](CPackLists& l) { l.fUnresolved.resize(1); }, true},
      {[](CPackLists& l) { l.fBroken.resize(1); }, true},
      {[](CPackLists& l) { l.fExternal.resize(1); }, false},
      {[](CPackLists& l) { l.fProhibited.resize(1); }, false},
      {[](CPackLists& l) { l.fSkipped.resize(1); }, false},
      {[](CPackLists& l) { l.fUnreferenced.resize(1); }, false},
  };
  EXPECT_FALSE(CPackLists().HasProblems() || CPackLists().HasNotes());
  for (const auto& [set, isProblem] : cases) {
    CPackLists lists;
    set(lists);
    EXPECT_EQ(lists.HasProblems(), isProblem);
    EXPECT_EQ(lists.HasNotes(), !isProblem);
  }
}

}  // namespace
}  // namespace NSTambraPacking
