#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/OutputFolder.h"

namespace NSTolbrook {
namespace {

namespace fs = std::filesystem;
using EExisting = IOutputFile::EExisting;

/// A folder to write to, and one beside it in which nothing may ever appear.
class OutputFolder : public testing::Test {
 protected:
  OutputFolder() {
    fs::create_directories(fBase / "out");
    fs::create_directories(fBase / "outside");
  }
  ~OutputFolder() override { fs::remove_all(fBase); }

  void Write(const std::vector<std::u16string>& path, EExisting existing) {
    const COutputFolder folder(fBase / "out");
    const auto file = folder.NewFile();
    file->Write(2, std::vector<std::uint8_t>{'n', 'e', 'w'});
    file->CommitAs(path, existing);
  }

  std::string Content(const fs::path& path) const {
    std::ifstream stream(fBase / path);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  std::size_t Count(const fs::path& folder) const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(fBase / folder), {}));
  }

  const fs::path fBase =
      fs::path(testing::TempDir()) / ("tambra-out-" + std::to_string(ProcessNumber()));
};

TEST_F(OutputFolder, FilesAppearWholeAndReplaceOnlyWhenTold) {
  const std::string whole("\0\0new", 5);
  Write({u"a", u"b", u"c"}, EExisting::kRefuse);
  EXPECT_EQ(Content("out/a/b/c"), whole);
  std::ofstream(fBase / "out/a/b/c") << "old";
  EXPECT_THROW(Write({u"a", u"b", u"c"}, EExisting::kRefuse), NSMordel::XAlreadyExists);
  EXPECT_EQ(Content("out/a/b/c"), "old");
  Write({u"a", u"b", u"c"}, EExisting::kReplace);
  EXPECT_EQ(Content("out/a/b/c"), whole);
  EXPECT_THROW(Write({u"a", u"b"}, EExisting::kReplace), NSMordel::XAlreadyExists);
  EXPECT_THROW(Write({u"a", u"b", u"c", u"d"}, EExisting::kReplace), NSMordel::XPermission);
  EXPECT_EQ(COutputFolder(fBase / "out").KindOf({u"a", u"x", u"y"}), EFileKind::kMissing);
  EXPECT_EQ(Count("out"), 1U);  // nothing temporary is left
}

TEST_F(OutputFolder, NoLinkIsFollowedEvenOneThatTurnsUpLate) {
  std::ofstream(fBase / "outside/file") << "mine";
  fs::create_directory_symlink(fBase / "outside", fBase / "out/link");
  fs::create_symlink(fBase / "outside/file", fBase / "out/file");
  fs::create_symlink(fBase / "outside/fresh", fBase / "out/dangling");
  for (const EExisting existing : {EExisting::kRefuse, EExisting::kReplace}) {
    EXPECT_THROW(Write({u"link", u"x"}, existing), NSMordel::XPermission);
    EXPECT_THROW(Write({u"file"}, existing), NSMordel::XAlreadyExists);
    EXPECT_THROW(Write({u"dangling"}, existing), NSMordel::XAlreadyExists);
  }
  EXPECT_THROW(COutputFolder(fBase / "out").KindOf({u"link", u"x"}), NSMordel::XPermission);

  // All is well when the file is begun, and hostile when it gets its name.
  const COutputFolder folder(fBase / "out");
  const std::vector<std::u16string> path = {u"sub", u"x"};
  EXPECT_EQ(folder.KindOf(path), EFileKind::kMissing);
  const auto file = folder.NewFile();
  fs::create_directory_symlink(fBase / "outside", fBase / "out/sub");
  EXPECT_THROW(file->CommitAs(path, EExisting::kReplace), NSMordel::XPermission);

  // The whole folder changes places with a link: what was opened counts.
  const auto moved = folder.NewFile();
  fs::rename(fBase / "out", fBase / "elsewhere");
  fs::create_directory_symlink(fBase / "outside", fBase / "out");
  moved->CommitAs({u"deep", u"x"}, EExisting::kRefuse);
  EXPECT_TRUE(fs::exists(fBase / "elsewhere/deep/x"));
  EXPECT_EQ(Count("outside"), 1U);
  EXPECT_EQ(Content("outside/file"), "mine");
}

}  // namespace
}  // namespace NSTolbrook
