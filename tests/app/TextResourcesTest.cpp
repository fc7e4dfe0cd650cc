#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/TextResources.h"
#include "app/TimeEstimate.h"
#include "tests/support/FaultText.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTambraPacking {
namespace {

std::string SourceText(const char* path) {
  std::ifstream file(std::filesystem::path(TAMBRA_TEST_DATA) / "../.." / path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

template <class Action>
std::string MessageOf(const Action& action) {
  return NSTest::FaultText<NSMordel::XNotFound>(action);
}

TEST(TextResources, EveryNamedNumberHasItsText) {
  const CTextResources mac({}, EPlatform::kMac);
  const CTextResources win({}, EPlatform::kWin);
  std::istringstream header(SourceText("app/TextNumbers.h") +
                            SourceText("app/PackageTextNumbers.h"));
  int strings = 0;
  int alerts = 0;
  for (std::string line; std::getline(header, line);) {
    std::array<char, 100> kind{};
    int table = 0;
    int entry = 0;
    constexpr const char* kConstant = "inline constexpr C%99[a-zA-Z] k%*[a-zA-Z0-9]{%d, %d};";
    if (std::sscanf(line.c_str(), kConstant, kind.data(), &table, &entry) != 3) continue;
    const bool isString = kind.data() == std::string_view("StringNumber");
    for (const CTextResources* texts : {&mac, &win}) {
      if (isString) {
        EXPECT_NO_THROW(texts->Text({table, entry})) << line;
      } else {
        EXPECT_NO_THROW(texts->Alert({table, entry})) << line;
      }
    }
    ++(isString ? strings : alerts);
  }
  EXPECT_GT(strings, 35);
  EXPECT_GT(alerts, 45);
  for (int stage = 0; stage <= kIdleStage; ++stage) {
    EXPECT_NO_THROW(win.Text({kFirstStageLine.fTable, kFirstStageLine.fEntry + stage})) << stage;
    if (stage == kIdleStage) continue;
    EXPECT_NO_THROW(win.Text({kFirstItemLine.fTable, kFirstItemLine.fEntry + stage})) << stage;
  }
  for (int stage = 0; stage <= 4; ++stage) {
    EXPECT_NO_THROW(win.Text({kVersionFormat.fTable, kVersionFormat.fEntry + stage})) << stage;
  }
  for (int row = 1; row <= 49; ++row) EXPECT_NO_THROW(win.Text({kFileTypeNameTable, row})) << row;
}

TEST(TextResources, BundledTextsAreTheOnesThatUsersKnow) {
  const CTextResources texts({}, EPlatform::kWin);
  EXPECT_EQ(texts.Text(kNumberedLogName, {u"A ^2", u"now", u"2"}), u"A ^2 packing log now 2.txt");
  EXPECT_EQ(texts.Text({128, 53}, {u"x"}), u"1/5 Verifying: \n“x”");
  const CAlertText stop = texts.Alert(kAlertStop);
  EXPECT_EQ(stop.fTitle, u"Stop Pack?");
  EXPECT_EQ(stop.fMessage, u"Do you wish to stop the packing that is currently  in progress?");
  // Odd, and known to users, translators and scripts as they are.
  EXPECT_TRUE(texts.Alert(kAlertPackedWithNotes, {u"3"})
                  .fMessage.starts_with(u"The Tambra file has been packed sucessfully (3 files"));
  EXPECT_EQ(texts.Alert(kAlertUnsupported).fButtons.back(), u"Continue Anyway");
  EXPECT_EQ(texts.Alert(kAlertContinueWithout).fButtons.back(), u"Continue Without");
  EXPECT_EQ(texts.Text(kLogProhibited), u"Files that references prohibited device types:");
  const CAlertText shortcut = texts.Alert(kAlertBadShortcut, {u"a[1].lnk"});
  EXPECT_EQ(shortcut.fMessage,
            u"The shortcut “a[1].lnk” cannot be resolved. Please delete or repair it in the "
            u"Explorer and try again.\nPacking is cancelled.");
  const CMenu& menu = texts.Menus().Menu(2);
  ASSERT_EQ(menu.fItems.size(), 4U);
  EXPECT_EQ(menu.fItems[3].fId, 104);
  EXPECT_EQ(texts.Menus().Menu(5).fItems.size(), 4U);
  EXPECT_EQ(texts.Menus().Menu(6).fItems.size(), 2U);
}

TEST(TextResources, GenericAlertsWithoutTextShowTheFileSystemError) {
  const CTextResources texts;
  for (const int number : {200, 208}) {
    EXPECT_EQ(texts.Alert({1997, number}).fTitle, u"File system error");
  }
  EXPECT_THROW(texts.Alert({1997, 199}), NSMordel::XNotFound);
  EXPECT_THROW(texts.Alert({1997, 209}), NSMordel::XNotFound);
  EXPECT_EQ(texts.Alert({128, 200}).fMessage, u"Unknown exception.");
}

TEST(TextResources, MissingTextsNameBothNumbers) {
  const CTextResources texts;
  EXPECT_EQ(MessageOf([&] {
              texts.Text(CStringNumber{128, 9999});
            }),
            "the string table 128 holds no entry 9999");
  EXPECT_EQ(MessageOf([&] { texts.Alert({301, 7}); }), "the alert table 301 holds no entry 7");
}

TEST(TextResources, ATranslatorsFolderReplacesWholeTables) {
  const NSTest::CTemporaryFolder folder;
  folder.Write("first/SSTR/128.txt", "43 {eins}\r\n44 {zwei}\r\n");
  folder.Write("second/SSTR/128.txt", "43 {un}\n");
  folder.Write("second/SALR/1997.txt", "21 {[STOP]Erreur \\[disque\\].[Oui]}\n");
  const CTextResources texts({folder.Path() / "first", folder.Path() / "second"});
  EXPECT_EQ(texts.Text({128, 43}), u"un");
  EXPECT_EQ(MessageOf([&] { texts.Text({128, 44}); }), "the string table 128 holds no entry 44");
  EXPECT_EQ(texts.Alert({1997, 203}).fMessage, u"Erreur [disque].");
  EXPECT_EQ(texts.Alert(kAlertUnknownError).fMessage, u"An unknown error occured!");

  auto bad = folder.Write("bad/SALR/128.txt", "4 {[STOP]a[OK]}\r\n5 no brace\r\n");
  bad.make_preferred();
  const std::string fault = NSTest::FaultText<NSMordel::XFormatViolation>(
      [&] { CTextResources({folder.Path() / "bad"}); });
  EXPECT_NE(fault.find(bad.string() + ", line 2: "), std::string::npos) << fault;
}

TEST(TextResources, TheNamedFolderMustExist) {
  const NSTest::CTemporaryFolder folder;
  EXPECT_EQ(CTextResources::Folders(folder.Path()).back(), folder.Path());
  EXPECT_THROW(CTextResources::Folders(folder.Path() / "none"), NSMordel::XNotFound);
  EXPECT_THROW(CTextResources::Folders(folder.Write("file", "")), NSMordel::XNotFound);
}

}  // namespace
}  // namespace NSTambraPacking
