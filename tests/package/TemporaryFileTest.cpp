#include <gtest/gtest.h>
#include <set>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/TemporaryFile.h"
#include "tests/support/TemporaryFolder.h"

namespace NSBigFilePackage {
namespace {

using Names = std::set<std::string>;

Names NamesIn(const NSTest::CTemporaryFolder& folder) {
  Names names;
  for (const auto& item : std::filesystem::directory_iterator(folder.Path())) {
    names.insert(item.path().filename().string());
  }
  return names;
}

TEST(TemporaryFileTest, LastsAsLongAsItsObject) {
  const NSTest::CTemporaryFolder folder;
  {
    const CTemporaryFile first(folder.Path()), second(folder.Path());
    EXPECT_EQ(NamesIn(folder),
              (Names{first.Path().filename().string(), second.Path().filename().string()}));
    first.Media()->Write(0, std::vector<std::uint8_t>{1});
    EXPECT_EQ(first.Media()->Size(), 1u);
  }
  EXPECT_EQ(NamesIn(folder), Names{});
  EXPECT_THROW(CTemporaryFile(folder.Path() / "none"), NSMordel::XNotFound);
}

TEST(TemporaryFileTest, BecomesTheFileItWasWrittenFor) {
  const NSTest::CTemporaryFolder folder;
  const auto path = folder.Write("result", "old");
  std::string formerName;
  {
    CTemporaryFile file(folder.Path());
    file.Media()->Write(0, std::vector<std::uint8_t>{'n', 'e', 'w'});
    EXPECT_THROW(file.CommitAs(folder.Path() / "none" / "result"), NSMordel::XNotFound);
    EXPECT_EQ(folder.ReadText("result"), "old");
    file.CommitAs(path);
    formerName = file.Path().filename().string();
    folder.Write(formerName, "");  // somebody else's by now
  }
  EXPECT_EQ(folder.ReadText("result"), "new");
  EXPECT_EQ(NamesIn(folder), (Names{"result", formerName}));
}

TEST(TemporaryFileTest, OnlyLeftoversOfTheDeadAreRemoved) {
  const NSTest::CTemporaryFolder folder;
  const std::string next =
      ".tambra-" + std::to_string(NSTolbrook::ProcessNumber()) + "-";  // names of our own number
  for (int i = 0; i < 100; ++i) folder.Write(next + std::to_string(i) + ".tmp", "");
  folder.Write(".tambra-1-1.tmp", "left");
  Names kept = {".tambra-1-1.tmp~", ".tambra-.tmp",   ".tambra-1.tmp",   ".tambra-1-x.tmp",
                ".tambra--1.tmp",   ".tambra-1-.tmp", "a.tambra-1-1.tmp"};
  for (const std::string& name : kept) folder.Write(name, "kept");
  folder.MakeFolder(".tambra-2-2.tmp");
  kept.insert(".tambra-2-2.tmp");
  const CTemporaryFile living(folder.Path());
  kept.insert(living.Path().filename().string());
  CTemporaryFile::RemoveLeftovers(folder.Path());
  EXPECT_EQ(NamesIn(folder), kept);
}

}  // namespace
}  // namespace NSBigFilePackage
