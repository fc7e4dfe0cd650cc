#include <algorithm>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FolderScan.h"
#include "tests/support/ShortcutBuilder.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTambraPacking {
namespace {

using NSTest::CTemporaryFolder;
using NSTest::MakeShortcut;
using NSTolbrook::Utf8FromText;
using CLines = std::vector<std::string>;

/// An input folder "in" beside other things, and what the scan makes of it.
class FolderScan : public testing::Test {
 protected:
  void Write(std::initializer_list<const char*> paths) {
    for (const char* path : paths) fFolder.Write(std::string("in/") + path, std::string_view("x"));
  }
  void Link(const char* target, const char* path) {
    std::filesystem::create_symlink(target, Path(path));
  }
  void Shortcut(const char* path, std::u16string_view relative, std::u16string_view base = {}) {
    fFolder.Write(std::string("in/") + path, MakeShortcut(relative, base));
  }
  std::filesystem::path Path(const char* path) const { return fFolder.Path() / "in" / path; }

  CScannedFolder Folder(const std::u16string& skipItem = {}) const {
    std::size_t reports = 0;
    const CScanRules rules{[&](const std::u16string& path) { return path == skipItem; },
                           [&](std::size_t count) { EXPECT_EQ(count, ++reports); }};
    CScannedFolder scanned = ScanFolder(fFolder.Path() / "in", rules);
    EXPECT_EQ(reports, scanned.fFiles.size());
    return scanned;
  }

  /// A line for each file: its path and " i" for an information file, " -" for a skipped one,
  /// " ! " and its fault.
  CLines Files(const std::u16string& skipItem = {}) const {
    CLines lines;
    for (const CScannedFile& file : Folder(skipItem).fFiles) {
      lines.push_back(Utf8FromText(file.fPath) + (file.fIsInformation ? " i" : "") +
                      (file.fSkipped ? " -" : "") +
                      (file.fFault.empty() ? "" : " ! " + file.fFault));
    }
    return lines;
  }

  CTemporaryFolder fFolder;
};

TEST_F(FolderScan, FindsFilesInTheSameOrderEverywhere) {
  // The code units of U+10400 come before U+FF5E, its code point behind.
  Write({"b.wav", "B2/z", "a/y", "a/B/x", "a/b.x", "C.wav", "_.wav", "\uFF5E", "\U00010400",
         "info.txt", "a/INFO.TXT", "Name.TXT", "a.wav/in", "z", "\u00C9a", "\u00E9"});
  EXPECT_EQ(Files(), (CLines{"_.wav", "b.wav", "C.wav", "info.txt i", "Name.TXT i", "z", "\u00E9",
                             "\u00C9a", "\U00010400", "\uFF5E", "a/b.x", "a/INFO.TXT", "a/y",
                             "a/B/x", "a.wav/in", "B2/z"}));
}

TEST_F(FolderScan, LeavesClutterOutAndMarksSkippedItems) {
  Write({".hidden", ".folder/a", "THUMBS.DB", "d/Desktop.INI", "d/Icon\r", "d/iCON", "__macosx/a",
         "d/__MACOSX/a", "e/__MACOSX", "Skip/a", "Skip/deep/b", "skip.wav", "Skip/broken.lnk"});
  std::filesystem::create_directory_symlink(Path("e"), Path("f"));
  EXPECT_EQ(Files(u"Skip"), (CLines{"skip.wav", "d/iCON", "e/__MACOSX", "f/__MACOSX", "Skip/a -",
                                    "Skip/deep/b -"}));
}

TEST_F(FolderScan, FindsFaultyNamesAndKindsWithoutOpeningThem) {
  Write({"back\\slash.wav", "bell\a.wav", "nel\u0085.wav", "good.wav", "bad\xFF.wav",
         "tab\t/inside.wav", "case.wav", "Case.wav", "d/\u00E9", "d/e\u0301", "D2/x", "d2/X"});
  // A pipe without a writer would never come back from being opened.
  ASSERT_EQ(mkfifo(Path("pipe.wav").c_str(), 0600), 0);
  ASSERT_EQ(mkfifo(Path("pipe.lnk").c_str(), 0600), 0);
  const std::string collides =
      " ! the path differs from an earlier one only in case or normalisation";
  const std::string pipe = " ! it is neither a regular file nor a folder";
  const CLines files = Files();
  ASSERT_EQ(files.size(), 14U);
  EXPECT_TRUE(files[1].starts_with("bad")) << files[1];
  EXPECT_TRUE(files[1].ends_with(" ! the name is not valid Unicode")) << files[1];
  EXPECT_EQ(CLines(files.begin(), files.begin() + 1),
            CLines{"back\\slash.wav ! the name holds a backslash"});
  EXPECT_EQ(
      CLines(files.begin() + 2, files.end()),
      (CLines{"bell\a.wav ! the name holds a control character", "Case.wav", "case.wav" + collides,
              "good.wav", "nel\u0085.wav ! the name holds a control character", "pipe.lnk" + pipe,
              "pipe.wav" + pipe, "tab\t ! the name holds a control character", "d/e\u0301",
              "d/\u00E9" + collides, "D2/x", "d2/X" + collides}));
}

TEST_F(FolderScan, FollowsLinksInsideOnly) {
  Write({"a/b/one.wav", "a/two.wav"});
  fFolder.Write("inside/other.wav", std::string_view("x"));  // the name begins like "in"
  Link("a/two.wav", "file.wav");
  Link("a/b", "folder");
  Link("nothing", "gone.wav");
  Link("circle.wav", "circle.wav");
  Link("../inside/other.wav", "out.wav");
  Link("../inside", "outside");
  Link("..", "a/b/up");
  Link(".", "a/here");
  Link("../b", "a/b/self");
  const std::string nowhere = " ! the link leads nowhere";
  const std::string outside = " ! the link leads outside the input folder";
  EXPECT_EQ(Files(), (CLines{"circle.wav" + nowhere, "file.wav", "gone.wav" + nowhere,
                             "out.wav" + outside, "outside" + outside, "a/two.wav", "a/b/one.wav",
                             "folder/one.wav", "folder/up/two.wav", "folder/up/b/one.wav"}));
}

TEST_F(FolderScan, EndsInFoldersThatLinkToEachOther) {
  for (int i = 0; i < 8; ++i) {
    const std::string name = "d" + std::to_string(i);
    Write({(name + "/x.wav").c_str()});
    for (int j = 0; j < 8; ++j) {
      if (j != i)
        Link(("../d" + std::to_string(j)).c_str(), (name + "/to" + std::to_string(j)).c_str());
    }
  }
  const CLines files = Files();
  EXPECT_LT(files.size(), 20'000U);
  EXPECT_TRUE(std::any_of(files.begin(), files.end(), [](const std::string& file) {
    return file.ends_with("more links to folders than can be followed");
  }));
}

TEST_F(FolderScan, AFolderThatCannotBeReadIsAFailedEntry) {
  Write({"closed/a.wav", "open/b.wav"});
  std::filesystem::permissions(Path("closed"), std::filesystem::perms::none);
  const CLines files = Files();
  std::filesystem::permissions(Path("closed"), std::filesystem::perms::owner_all);
  if (files.front() == "closed/a.wav") GTEST_SKIP() << "this user may read everything";
  ASSERT_EQ(files.size(), 2U);
  EXPECT_TRUE(files[0].starts_with("closed ! ")) << files[0];
  EXPECT_THROW(ScanFolder(fFolder.Path() / "nothing", {}), NSMordel::CExceptionBodyMixin);
}

TEST_F(FolderScan, ChecksShortcutsAndKeepsThemOutOfTheFiles) {
  Write({"Samples/Kick.wav"});
  fFolder.Write("else/x.wav", std::string_view("x"));
  const auto base = NSTolbrook::TextFromNative(Path("Samples/Kick.wav"));
  Shortcut("a.lnk", u".\\samples\\KICK.wav");
  Shortcut("b.LNK", u"..\\else\\x.wav");
  Shortcut("c.lnk", u"gone", *base);
  Shortcut("d.lnk", u"a.lnk");
  Shortcut("Samples/e.lnk", u"..\\Samples");
  Shortcut("Samples/f.lnk", u"..");
  const CScannedFolder scanned = Folder();
  EXPECT_EQ(scanned.fFiles.size(), 1U);
  CLines shortcuts;
  for (const CScannedShortcut& shortcut : scanned.fShortcuts) {
    shortcuts.push_back(
        Utf8FromText(shortcut.fPath + u" -> " + shortcut.fTarget.value_or(u"outside")));
  }
  EXPECT_EQ(shortcuts,
            (CLines{"a.lnk -> Samples/Kick.wav", "b.LNK -> outside", "c.lnk -> Samples/Kick.wav",
                    "d.lnk -> a.lnk", "Samples/e.lnk -> Samples", "Samples/f.lnk -> "}));
  for (const char* content : {"", "MThd", "gone"}) {
    Shortcut("deep/broken.lnk", u"..\\gone", u"C:\\gone");
    if (std::string_view(content) != "gone") {
      fFolder.Write("in/deep/broken.lnk", std::string_view(content));
    }
    try {
      Folder();
      ADD_FAILURE() << content;
    } catch (const NSMordel::XResolve& failure) {
      EXPECT_EQ(*failure.FindContext(NSMordel::kTargetObjectId), Path("deep/broken.lnk"));
    }
  }
  EXPECT_EQ(Folder(u"deep").fShortcuts.size(), 6U) << "what is skipped is not looked into";
}

}  // namespace
}  // namespace NSTambraPacking
