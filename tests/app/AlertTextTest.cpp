#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/AlertPresenter.h"
#include "app/AlertText.h"

namespace NSTambraPacking {
namespace {

TEST(AlertText, ReadsKindTitleMessageAndButtons) {
  const CAlertText titled =
      CAlertText::Parse(u"[NOTE][Pack complete]^0 files \\[all\\].[Open Log File][O\\\\K]");
  EXPECT_EQ(titled.fKind, EAlertKind::kNote);
  EXPECT_EQ(titled.fTitle, u"Pack complete");
  EXPECT_EQ(titled.fMessage, u"^0 files [all].");
  EXPECT_EQ(titled.fButtons, (std::vector<std::u16string>{u"Open Log File", u"O\\K"}));
  EXPECT_EQ(titled.Answer(1), kLastButton);
  EXPECT_EQ(titled.Answer(0), kButtonBefore);

  const CAlertText untitled = CAlertText::Parse(u"[STOP]Unknown exception.[OK]");
  EXPECT_EQ(untitled.fTitle, u"");
  EXPECT_EQ(untitled.fMessage, u"Unknown exception.");
  EXPECT_EQ(untitled.fButtons, std::vector<std::u16string>{u"OK"});
}

TEST(AlertText, RefusesWhatBreaksTheGrammar) {
  for (const char16_t* text :
       {u"", u"Message[OK]", u"[]a[OK]", u"[stop]a[OK]", u"[STOP]", u"[STOP]a", u"[STOP][T][OK]",
        u"[STOP]a[OK", u"[STOP]a]b[OK]", u"[STOP]a[OK]b", u"[STOP]a[O[K]", u"[STOP[T]a[OK]"}) {
    EXPECT_THROW(CAlertText::Parse(text), NSMordel::XFormatViolation)
        << testing::PrintToString(text);
  }
}

TEST(AlertText, PutsArgumentsInOnce) {
  EXPECT_EQ(FillPlaceholders(u"^0^1 ^9 ^x ^", {u"^1", u"b"}), u"^1b ^9 ^x ^");
}

RC_GTEST_PROP(AlertText, NoArgumentOpensABracket, (const std::vector<std::uint16_t>& picks)) {
  constexpr std::u16string_view kUnits = u"[]\\^0a{}\r\n“";
  std::u16string argument;
  for (const std::uint16_t pick : picks) argument += kUnits[pick % kUnits.size()];
  const CAlertText alert = CAlertText::Parse(FillPlaceholders(
      u"[WARN][About ^0]The file “^0”.[Cancel][OK]", {EscapeAlertArgument(argument)}));
  RC_ASSERT(alert.fTitle == u"About " + argument);
  RC_ASSERT(alert.fMessage == u"The file “" + argument + u"”.");
  RC_ASSERT(alert.fButtons.size() == 2U);
}

}  // namespace
}  // namespace NSTambraPacking
