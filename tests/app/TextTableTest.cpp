#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/TextTable.h"
#include "tests/support/FaultText.h"

namespace NSTambraPacking {
namespace {

TEST(TextTable, ReadsEveryFormOfAnEntry) {
  const CTextTable table("T",
                         "\xEF\xBB\xBF// a comment {with braces}\r\n"
                         "\r\n"
                         "0 {zero}\r\n"
                         "5\t \t{a } first brace ends it}\t// Title of {something}\n"
                         "6 {}\r\n"
                         " \t\r\n"
                         "7 {two\\rlines, \\\\r and \\} kept}no comment mark needed\r\n"
                         "8 {“Größe” {open}\r\n"
                         "26-Mac {alias}\r\n26-Win {shortcut}\r\n"
                         "27 {for all}\r\n27-Win {for one}\r\n"
                         "28-Mac {theirs}\r\n"
                         "2147483647 {last}",
                         EPlatform::kWin);
  const std::vector<std::pair<int, const char16_t*>> cases{
      {0, u"zero"},
      {5, u"a "},
      {6, u""},
      {7, u"two\nlines, \\\\r and \\} kept"},
      {8, u"“Größe” {open"},
      {26, u"shortcut"},
      {27, u"for one"},
      {2147483647, u"last"},
  };
  for (const auto& [entry, text] : cases) {
    ASSERT_NE(table.Find(entry), nullptr) << entry;
    EXPECT_EQ(*table.Find(entry), text) << entry;
  }
  EXPECT_EQ(table.Find(28), nullptr);
  EXPECT_EQ(table.Find(1), nullptr);
}

TEST(TextTable, TakesTheOtherPlatformsEntries) {
  constexpr const char* kTable =
      "26-Mac {alias}\r\n26-Win {shortcut}\r\n27-Win {w}\r\n27 {all}\r\n";
  const CTextTable table("T", kTable, EPlatform::kMac);
  EXPECT_EQ(*table.Find(26), u"alias");
  EXPECT_EQ(*table.Find(27), u"all");
}

TEST(TextTable, FaultsNameTableLineAndFault) {
  const std::vector<std::pair<const char*, const char*>> cases{
      {"x {a}", "begins with its number"},
      {"-1 {a}", "begins with its number"},
      {"99999999999 {a}", "begins with its number"},
      {"1-Linux {a}", "only -Win or -Mac"},
      {"1-win {a}", "only -Win or -Mac"},
      {"1x {a}", "only -Win or -Mac"},
      {"1{a}", "blank is missing"},
      {"1", "begins with '{'"},
      {"1 a}", "begins with '{'"},
      {"1 {a", "ends with '}'"},
      {"1 {a\\}", "ends with '}'"},
      {"1 {a\\", "ends with '}'"},
      {"1 {a\\n}", "a backslash may only stand"},
      {"1 {\xFF}", "not valid UTF-8"},
      {"0 {again}", "the entry 0 is there already"},
      {"1-Mac {a", "ends with '}'"},
  };
  for (const auto& [line, fault] : cases) {
    const std::string text = std::string("// first\r\n0 {a}\r\n") + line + "\r\n2 {b}\r\n";
    const std::string told = NSTest::FaultText<NSMordel::XFormatViolation>(
        [&] { CTextTable("SSTR/9.txt", text, EPlatform::kWin); });
    EXPECT_TRUE(told.starts_with("SSTR/9.txt, line 3: ")) << told;
    EXPECT_NE(told.find(fault), std::string::npos) << told;
  }
}

}  // namespace
}  // namespace NSTambraPacking
