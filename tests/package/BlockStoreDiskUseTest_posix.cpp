#include <sys/stat.h>

#include "package/TemporaryFile.h"
#include "tests/package/BlockStoreFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace NSBigFilePackage {
namespace {

/// Bytes that the file takes on the disk, holes left out.
std::uint64_t DiskUse(const std::filesystem::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) throw std::runtime_error("no status of " + path.string());
  return static_cast<std::uint64_t>(status.st_blocks) * 512;
}

TEST(BlockStoreDiskUseTest, StaysWithinATenthOfTheItems) {
  struct CCase {
    const char* fName;
    std::size_t fCount;
    std::size_t fSize;
  };
  const CCase cases[] = {{"tiny", 20000, 300},
                         {"small", 20000, 1000},
                         {"just below a block", 100, 262143},
                         {"just above a block", 100, 262145},
                         {"a little above a block", 200, 270000}};
  for (const CCase& test : cases) {
    const NSTest::CTemporaryFolder folder;
    const CTemporaryFile file(folder.Path());
    const auto store = CBlockStore::Create(file.Media());
    const Bytes bytes = RandomBytes(test.fSize, 1);
    std::vector<SharedMedia> items;
    for (std::size_t i = 0; i < test.fCount; ++i) {
      const auto item = store->BeginItem();
      item->Write(0, bytes);
      items.push_back(item->Finish());
    }
    store->Commit();
    const auto packed = test.fCount * test.fSize;
    EXPECT_LE(DiskUse(file.Path()), packed + packed / 10) << test.fName;
    EXPECT_EQ(ReadAll(*items.front()), bytes) << test.fName;
    EXPECT_EQ(ReadAll(*items.back()), bytes) << test.fName;
  }
}

}  // namespace
}  // namespace NSBigFilePackage
