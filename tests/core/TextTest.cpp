#include <algorithm>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "tests/support/FaultText.h"

namespace {

using namespace NSTolbrook;
using NSTest::FaultText;
using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(Text, EachMaximalBadUtf8SubsequenceBecomesOneReplacement) {
  const struct {
    std::string_view fBytes;
    std::u16string_view fText;
    bool fValid;
  } cases[] = {
      {"", u"", true},
      {"a\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E\0z"sv, u"aé€\U0001D11E\0z"sv, true},
      {"\xEF\xBF\xBD\xEF\xBB\xBF", u"\uFFFD\uFEFF", true},
      {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA",
       false},
      {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA",
       false},
      {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB",
       false},
      {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", u"\uFFFD\uFFFD\uFFFD\uFFFDA", false},
      {"x\xF0\x9D\x84", u"x\uFFFD", false},
      {"\xE2\x82\xE2\x82\xAC\xC3", u"\uFFFD€\uFFFD", false},
  };
  for (const auto& [bytes, text, valid] : cases) {
    EXPECT_EQ(TextFromUtf8(bytes), text);
    EXPECT_EQ(StrictTextFromUtf8(bytes).has_value(), valid);
    if (valid) {
      EXPECT_EQ(StrictTextFromUtf8(bytes), text);
      EXPECT_EQ(StrictUtf8FromText(text), bytes);
    }
  }
}

TEST(Text, LoneSurrogatesAreReplacedForDisplayAndRefusedForFiles) {
  for (const std::u16string& text :
       {u"a\xD834"s, u"\xDD1E"s + u"b", u"\xD834\xD834\xDD1E"s, u"\xDD1E\xD834"s}) {
    EXPECT_EQ(FaultText<NSMordel::XFormatViolation>([&] { StrictUtf8FromText(text); }),
              "High-surrogate missing! Broken Unicode");
  }
  EXPECT_EQ(Utf8FromText(u"\xD834\xD834\xDD1E\xDD1E"), "\xEF\xBF\xBD\xF0\x9D\x84\x9E\xEF\xBF\xBD");
  std::string bytes;
  AppendStrictUtf8(bytes, 0x10FFFF);
  EXPECT_EQ(bytes, "\xF4\x8F\xBF\xBF");
  EXPECT_EQ(FaultText<NSMordel::XFormatViolation>([&] { AppendStrictUtf8(bytes, 0x110000); }),
            "Character code bigger than max Unicode");
}

TEST(Text, Windows1252CoversEveryByteBothWays) {
  std::string all(256, '\0');
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<char>(i);
  const std::u16string text = TextFromWindows1252(all);
  EXPECT_EQ(text.substr(0x80, 0x20),
            u"\u20AC\x81\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\x8D"
            u"\u017D\x8F\x90\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A"
            u"\u0153\x9D\u017E\u0178");
  EXPECT_EQ(text[0x7F], 0x7F);
  EXPECT_EQ(text[0xE9], u'é');
  EXPECT_EQ(Windows1252FromText(text), all);
  for (const auto none : {u"\x80"sv, u"Ω"sv, u"\uFFFD"sv, u"\xD834"sv, u"\U0001D11E"sv}) {
    EXPECT_EQ(Windows1252FromText(none), std::nullopt);
  }
}

TEST(Text, Utf16BytesInBothOrders) {
  const struct {
    std::string_view fBytes;
    std::u16string_view fText;
  } cases[] = {{""sv, u""},
               {"\0A\x20\xAC"sv, u"A€"},
               {"\xD8\x34\xDD\x1E"sv, u"\U0001D11E"},
               {"\xDD\x1E\xD8\x34\0B"sv, u"\uFFFD\uFFFDB"},
               {"\0A\0"sv, u"A\uFFFD"},
               {"\xD8\x34\xDD"sv, u"\uFFFD\uFFFD"}};
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(TextFromUtf16BigEndian(bytes), text);
    std::string swapped(bytes);
    for (std::size_t i = 0; i + 1 < swapped.size(); i += 2) std::swap(swapped[i], swapped[i + 1]);
    EXPECT_EQ(TextFromUtf16LittleEndian(swapped), text);
  }
}

TEST(Text, FoldsEachCodePointToExactlyOne) {
  const struct {
    std::u16string_view fText, fFolded;
  } cases[] = {
      {u"Kick 01.WAV", u"kick 01.wav"},
      {u"@[`{", u"@[`{"},
      {u"ÀÉÞ×", u"àéþ×"},
      {u"Straße", u"straße"},                // the full folding "ss" has two
      {u"\u1E9E", u"ß"},                     // likewise; its simple lowercase
      {u"\u0130I\u0131", u"ii\u0131"},       // dotted capital I, I, dotless i
      {u"ΣΑΣ ςσ", u"σασ σσ"},                // the final sigma, too
      {u"\u212A\u212B\u00B5", u"kå\u03BC"},  // Kelvin, Angstrom and micro sign
      {u"\u1F88\u0149", u"\u1F80\u0149"},
      {u"\u13A0\uAB70", u"\u13A0\u13A0"},  // Cherokee folds to capitals
      {u"\U00010400", u"\U00010428"},
      {u"A\xD834Z\xDD1E", u"a\xD834z\xDD1E"},
      {u"A\u030A", u"a\u030A"},
  };
  for (const auto& [text, folded] : cases) EXPECT_EQ(FoldCase(text), folded);
}

TEST(Text, ComposesCanonically) {
  const struct {
    std::u16string_view fText, fComposed;
  } cases[] = {
      {u"plain é", u"plain é"},
      {u"A\u030A e\u0301", u"Å é"},
      {u"\u212B\u2126", u"ÅΩ"},
      {u"q\u0307\u0323 q\u0323\u0307", u"q\u0323\u0307 q\u0323\u0307"},  // marks in class order
      {u"e\u0301\u0300", u"é\u0300"},                                    // of one class: as given
      {u"\u1100\u1161\u11A8", u"\uAC01"},
      {u"\u0958", u"\u0915\u093C"},  // excluded from composition
      {u"\uFB01", u"\uFB01"},        // only compatible, not canonical
      {u"e\u0301\xD834"
       u"e\u0301\xDD1E\u0301",
       u"é\xD834é\xDD1E\u0301"},
      {u"\U0001D15E", u"\U0001D157\U0001D165"},
  };
  for (const auto& [text, composed] : cases) EXPECT_EQ(NormalizeText(text), composed);

  std::u16string marks(300'000, u'\u0301');  // a quadratic sort would not come to its end
  for (std::size_t i = 1; i < marks.size(); i += 2) marks[i] = u'\u0323';
  EXPECT_EQ(NormalizeText(marks).substr(149'999, 2), u"\u0323\u0301");
}

TEST(Text, NamesThatDifferInCaseOrFormShareAKey) {
  const std::u16string_view same[][2] = {{u"KICK.wav", u"kick.WAV"},
                                         {u"A\u030Angstro\u0308m", u"\u212BNGSTRÖM"},
                                         {u"ΟΔΟΣ", u"οδος"},
                                         {u"\u0130", u"i"},
                                         {u"\u0390", u"\u1FD3"}};
  for (const auto& [left, right] : same) EXPECT_EQ(ComparisonKey(left), ComparisonKey(right));
  for (const auto& [left, right] : {std::pair{u"Straße"sv, u"Strasse"sv}, {u"ı"sv, u"i"sv}}) {
    EXPECT_NE(ComparisonKey(left), ComparisonKey(right));
  }
  rc::check("normalising and folding again changes nothing", [] {
    const auto units = *rc::gen::container<std::vector<std::uint16_t>>(rc::gen::oneOf(
        rc::gen::arbitrary<std::uint16_t>(), rc::gen::inRange<std::uint16_t>(0x00C0, 0x0370)));
    const std::u16string text(units.begin(), units.end());
    RC_ASSERT(NormalizeText(NormalizeText(text)) == NormalizeText(text));
    RC_ASSERT(FoldCase(FoldCase(text)) == FoldCase(text));
  });
}

TEST(Text, FindsControlCharacters) {
  for (const auto text : {u"\x01"sv, u"a\n"sv, u"\0"sv, u"\x7F"sv, u"\x80"sv, u"\x9F"sv}) {
    EXPECT_TRUE(HasControlCharacter(text));
  }
  for (const auto text : {u""sv, u" ~"sv, u"\u00A0\u00AD\u200B\u2028"sv, u"\U0001D11E"sv}) {
    EXPECT_FALSE(HasControlCharacter(text));
  }
}

}  // namespace
