#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/MenuScript.h"
#include "tests/support/FaultText.h"

namespace NSTambraPacking {
namespace {

TEST(MenuScript, ReadsMenusItemsAndAttributes) {
  const CMenuScript script("S",
                           "\xEF\xBB\xBF// menus\r\n\r\n"
                           "2 {Tambra} (\r\n"
                           "\t{Select…} [id=101 key='Ctrl+I']\r\n"
                           "\t{-}\r\n"
                           "\t// between\r\n"
                           "\t'It {may} be' [ flags={disabled  checked} id=104 ]\r\n"
                           ")\r\n"
                           "5 'Help' (\n)");
  ASSERT_EQ(script.Menus().size(), 2U);
  const CMenu& menu = script.Menu(2);
  EXPECT_EQ(menu.fTitle, u"Tambra");
  ASSERT_EQ(menu.fItems.size(), 3U);
  EXPECT_EQ(menu.fItems[0].fText, u"Select…");
  EXPECT_EQ(menu.fItems[0].fId, 101);
  EXPECT_EQ(menu.fItems[0].fKey, u"Ctrl+I");
  EXPECT_FALSE(menu.fItems[0].fCheckable || menu.fItems[0].fDisabled);
  EXPECT_TRUE(menu.fItems[1].IsSeparator());
  EXPECT_EQ(menu.fItems[2].fText, u"It {may} be");
  EXPECT_TRUE(menu.fItems[2].fDisabled && menu.fItems[2].fCheckable && menu.fItems[2].fChecked);
  EXPECT_EQ(script.Menu(5).fTitle, u"Help");
  EXPECT_TRUE(script.Menu(5).fItems.empty());
}

TEST(MenuScript, EveryFaultHasItsText) {
  const std::string kInteger = "failed parsing integer in menu script text";
  const std::string kBrace = "unterminated '{' in menu script text";
  const std::string kBraceString = "failed parsing curly-brace-quoted string in menu script text";
  const std::string kIdentifier = "failed parsing attribute identifier in menu script text";
  const std::string kQuoted = "failed parsing single-quoted string in menu script text";
  const std::string kAttributes = "failed parsing menu item attributes in menu script text";
  const std::string kFlags = "unkown menu item flags string";
  const std::string kItemId = "failed parsing menu item ID value string in menu script text";
  const std::string kValue = "failed parsing attribute value in menu script text";
  const std::string kOpenList =
      "missing termination of menu item list (no ')' character to match a leading '(') in menu "
      "script text";
  const std::string kList = "failed parsing menu item list in menu script text";
  const std::vector<std::pair<const char*, std::string>> cases{
      {"x {T} (\n)", kInteger},
      {"-2 {T} (\n)", kInteger},
      {"99999999999 {T} (\n)", kInteger},
      {"2 {T (\n)", kBrace},
      {"2 {T} (\n\t{a [id=1]\n)", kBrace},
      {"2 T (\n)", kBraceString},
      {"2 {\xFF} (\n)", kBraceString},
      {"2 {T} (\n\t{a} [=1]\n)", kIdentifier},
      {"2 {T} (\n\t{a} [color=1]\n)", kIdentifier},
      {"2 'T (\n)", kQuoted},
      {"2 {T} (\n\t{a} [id=1 key='x]\n)", kQuoted},
      {"2 {T} (\n\t{a} [id=1\n)", kAttributes},
      {"2 {T} (\n\t{a} [id]\n)", kAttributes},
      {"2 {T} (\n\t{a}\n)", kAttributes},
      {"2 {T} (\n\t{a} [key='x']\n)", kAttributes},
      {"2 {T} (\n\t{a} [id=1 flags='loud']\n)", kFlags},
      {"2 {T} (\n\t{a} [id=x]\n)", kItemId},
      {"2 {T} (\n\t{a} [id=1 key=x]\n)", kValue},
      {"2 {T} (\n\t{a} [id=1 flags=x]\n)", kValue},
      {"2 {T} (\n\t{a} [id=1]\n", kOpenList},
      {"2 {T} (", kOpenList},
      {"2 {T}\n)", kList},
      {"2 {T} (\n\ta\n)", kList},
      {"2 {T} (\n\t{a} [id=1] x\n)", kList},
      {"2 {T} (\n) x", kList},
  };
  for (const auto& [text, fault] : cases) {
    EXPECT_EQ(NSTest::FaultText<NSMordel::XFormatViolation>(
                  [&, &text = text] { CMenuScript("S", text); }),
              fault)
        << text;
  }
}

TEST(MenuScript, FaultsNameTheLineAndMissingMenusAreNotFound) {
  try {
    CMenuScript("SMNU/1.txt", "// c\r\n1 {A} (\r\n)\r\n\r\n2 {B} (\r\n\t{-}\r\n\t{a}\r\n)\r\n");
    FAIL();
  } catch (const NSMordel::XFormatViolation& failure) {
    EXPECT_EQ(*failure.FindContext(NSMordel::kTargetObjectId), "SMNU/1.txt, line 7");
  }
  EXPECT_EQ(
      NSTest::FaultText<NSMordel::XNotFound>([] { CMenuScript("S", "1 {A} (\n)\n").Menu(3); }),
      "menu ID not found in menu resource");
}

}  // namespace
}  // namespace NSTambraPacking
