#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/PortablePath.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "tests/support/FaultText.h"

namespace NSTolbrook {
namespace {

std::u16string Repeated(std::size_t count, const std::u16string& text) {
  std::u16string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

/// One of each kind, and what is easily mixed up; many more are extracted by the program in
/// tests/reliability/hostile_test.py.
TEST(PortablePath, HostileNamesAndTheirHarmlessTwins) {
  const std::pair<std::u16string, std::u16string> kCases[] = {
      {u"", u"a"},
      {u"/etc/passwd", u"etc/passwd"},
      {u"a//b", u"a/b"},
      {u"../a", u"...a/a"},
      {u"a/.", u"a/.a"},
      {u"..\\a", u"..a"},
      {u"C:/a", u"C/a"},
      {u"what?", u"what!"},
      {u"con", u"conga"},
      {u"Aux.tar.gz", u"Auxes.tar.gz"},
      {u"PRN ", u" PRN x"},
      {u"Lpt0 .x", u"Lpt10.x"},
      {u"a /b", u" a/b"},
      {std::u16string(u"a\0b", 3), u"ab"},
      {u"a\u0085", u"a\u00A1"},
      {u"a\u200Fb", u"a\u200Db"},  // joiners are letters to some scripts
      {u"a\u2066b", u"\u0645\u06CC\u200C\u062E"},
      {u"a\u00ADb", u"a-b"},
      {u"\xD83D", u"\U0001F941"},
      {u"a\xDC00", u"\U0001F468\u200D\U0001F469"},
      {u"\U000E0041", u"\U00020000"},
      {Repeated(128, u"\u00E4"), Repeated(127, u"\u00E4")},
      {Repeated(512, u"a/") + u"a", Repeated(511, u"a/") + u"a"},
  };
  for (const auto& [hostile, harmless] : kCases) {
    SCOPED_TRACE(EscapedText(hostile) + " and " + EscapedText(harmless));
    EXPECT_NE(FaultOfPortablePath(hostile), "");
    EXPECT_EQ(FaultOfPortablePath(harmless), "");
    EXPECT_THROW(CheckPortablePaths({u"fine", hostile}), NSMordel::XFormatViolation);
  }
}

TEST(PortablePath, NamesThatCannotStandSideBySide) {
  const struct {
    std::vector<std::u16string> fPaths;
    bool fFits;
  } kCases[] = {
      {{u"Kick.wav", u"kick.wav"}, false},
      {{u"\u00E4", u"a\u0308"}, false},
      {{u"STRASSE", u"stra\u00DFe"}, true},  // no system folds one letter to two
      {{u"a/b", u"A/B"}, false},
      {{u"a/b", u"A/c"}, true},
      {{u"a\u200Db", u"ab"}, false},
      {{u"a", u"a"}, false},
      {{u"a", u"a/b"}, false},
      {{u"x/A/b/c", u"X/a"}, false},
      {{u"ab", u"a/b"}, true},
  };
  for (const auto& [paths, fits] : kCases) {
    SCOPED_TRACE(EscapedText(paths.back()));
    const std::string fault = NSTest::FaultText<NSMordel::XFormatViolation>(
        [&, &paths = paths] { CheckPortablePaths(paths); });
    EXPECT_EQ(fault == "(nothing thrown)", fits) << fault;
  }
}

TEST(PortablePath, EscapesWhatATerminalWouldObey) {
  EXPECT_EQ(EscapedText(u"ä\u001B[2J\u202E\xD800太\U000E0041"),
            "ä\\u001B[2J\\u202E\\uD800太\\uDB40\\uDC41");
}

}  // namespace
}  // namespace NSTolbrook
