#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/Console.h"

namespace NSTambraCli {
namespace {

TEST(Console, MeasuresAndFitsWhatATerminalShows) {
  const struct {
    const char16_t* fText;
    std::size_t fColumns;
    const char16_t* fInFour;
  } kCases[] = {{u"", 0, u""},
                {u"Kick", 4, u"Kick"},
                {u"Snare", 5, u"Sna…"},
                {u"太鼓", 4, u"太鼓"},
                {u"太鼓x", 5, u"太…"},  // half a character is none
                {u"e\u0301e\u0301e\u0301", 3, u"e\u0301e\u0301e\u0301"},
                {u"e\u0301abcd", 5, u"e\u0301ab…"},
                {u"\U0001F941\U0001F941\U0001F941", 6, u"\U0001F941…"}};
  for (const auto& [text, columns, inFour] : kCases) {
    SCOPED_TRACE(NSTolbrook::Utf8FromText(text));
    EXPECT_EQ(DisplayWidth(text), columns);
    EXPECT_EQ(FitWidth(text, 4), inFour);
    EXPECT_LE(DisplayWidth(FitWidth(text, 1)), 1U);
    EXPECT_EQ(FitWidth(text, 0), u"");
    const std::string utf8 = NSTolbrook::Utf8FromText(text);
    const std::string blanks(columns < 6 ? 6 - columns : 0, ' ');
    EXPECT_EQ(PadRight(utf8, 6), utf8 + blanks);
    EXPECT_EQ(PadLeft(utf8, 6), blanks + utf8);
  }
}

TEST(Console, ShowsNothingThatATerminalWouldObey) {
  const std::pair<const char16_t*, const char*> kCases[] = {
      {u"a\x1B[2Jb", "a\uFFFD[2Jb"}, {u"a\tb\x7F", "a\uFFFDb\uFFFD"},
      {u"\u009B31m", "\uFFFD31m"},   {u"gpj.\u202Etxt\u200F", "gpj.\uFFFDtxt\uFFFD"},
      {u"a\u2028b", "a\uFFFDb"},     {u"太鼓 é \u200D", "太鼓 é \u200D"}};
  for (const auto& [text, shown] : kCases) EXPECT_EQ(Printable(text), shown);
  const std::vector<std::string> lines = {"a", "", "b", "c\uFFFD", ""};
  EXPECT_EQ(PrintableLines(u"a\r\n\nb\rc\x07\n"), lines);
  EXPECT_EQ(PrintableLines(u""), std::vector<std::string>{""});
}

}  // namespace
}  // namespace NSTambraCli
