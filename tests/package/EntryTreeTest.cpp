#include <gtest/gtest.h>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "package/EntryTree.h"

namespace {

using NSTambraPacking::CEntryTree;

std::u16string Number(int number) { return NSTolbrook::TextFromUtf8(std::to_string(number)); }

/// The path of what FindChild finds, "-" for nothing.
std::u16string Found(const CEntryTree& tree, std::u16string_view folder, std::u16string_view name) {
  const auto start = tree.FindPath(NSTambraPacking::SplitEntryPath(folder));
  const auto child = start ? tree.FindChild(*start, name) : std::nullopt;
  return child ? tree.Path(*child) : u"-";
}

TEST(EntryTree, ExactNamesWinOverFoldedOnesAndThoseOverShortcuts) {
  CEntryTree tree;
  for (const char16_t* path : {u"a/Kick.wav", u"a/kick.wav", u"a/\u00DCbung.wav", u"a/both"}) {
    tree.AddFile(path, false);
  }
  tree.AddShortcut(u"a/both.lnk", u"a/Kick.wav");
  tree.AddShortcut(u"a/Only.LNK", u"a/kick.wav");
  tree.AddFile(u"a/text.lnk", false);
  EXPECT_EQ(Found(tree, u"A", u"kick.wav"), u"a/kick.wav");
  EXPECT_EQ(Found(tree, u"a", u"KICK.WAV"), u"a/Kick.wav");
  EXPECT_EQ(Found(tree, u"a", u"u\u0308bung.wav"), u"a/\u00DCbung.wav");
  EXPECT_EQ(Found(tree, u"a", u"both"), u"a/both");
  EXPECT_EQ(Found(tree, u"a", u"only"), u"a/kick.wav");
  EXPECT_EQ(Found(tree, u"a", u"only.lnk"), u"a/kick.wav");
  for (const char16_t* name : {u"text", u"", u"..", u"a", u"Kick.wav/"}) {
    EXPECT_EQ(Found(tree, u"a", name), u"-");
  }
}

TEST(EntryTree, ShortcutsAreFollowedSixteenTimes) {
  CEntryTree tree;
  tree.AddFile(u"f", false);
  tree.AddShortcut(u"1.lnk", u"f");
  for (int i = 2; i <= 17; ++i) {
    tree.AddShortcut(Number(i) + u".lnk", Number(i - 1) + u".LNK");
  }
  tree.AddShortcut(u"loop.lnk", u"loop.lnk");
  tree.AddShortcut(u"outside.lnk", std::nullopt);
  tree.AddShortcut(u"gone.lnk", u"no/such");
  tree.AddShortcut(u"top.lnk", u"");
  EXPECT_EQ(Found(tree, u"", u"16"), u"f");
  EXPECT_EQ(Found(tree, u"", u"top"), u"");
  for (const char16_t* name : {u"17", u"loop", u"outside", u"gone"}) {
    EXPECT_EQ(Found(tree, u"", name), u"-");
  }
}

TEST(EntryTree, APathIsAddedOnceAndNeverThroughAFile) {
  CEntryTree tree;
  const CEntryTree::Node folder = tree.AddFolder(u"a/b");
  EXPECT_EQ(tree.AddFolder(u"/a//b/"), folder);
  tree.AddFile(u"a/f", true);
  for (const char16_t* path : {u"a/f", u"a/f/g", u"a/b", u""}) {
    EXPECT_THROW(tree.AddFile(path, false), NSMordel::XAlreadyExists);
  }
  EXPECT_THROW(tree.AddFolder(u"a/f"), NSMordel::XAlreadyExists);
  EXPECT_EQ(tree.Children(tree.Parent(folder)).size(), 2U);
  EXPECT_EQ(tree.Kind(tree.Children(tree.Parent(folder))[1]), CEntryTree::EKind::kContainer);
}

}  // namespace
