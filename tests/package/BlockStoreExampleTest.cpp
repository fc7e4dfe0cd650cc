#include "tests/package/BlockStoreFixture.h"
#include "tests/support/DocumentedExample.h"

namespace NSBigFilePackage {
namespace {

TEST(BlockStoreExample, IsWrittenAndReadToTheByte) {
  const Bytes hello = {'h', 'e', 'l', 'l', 'o'};
  const auto media = std::make_shared<CMemoryMedia>();
  const auto store = CBlockStore::Create(media, CBlockStore::ECreate::kNew, 56);
  store->NewStream()->Write(0, hello);
  store->Commit();
  const Bytes documented = NSTest::DocumentedExample("block-store.md");
  EXPECT_EQ(media->Bytes(), documented);
  const auto example = std::make_shared<CMemoryMedia>(documented);
  EXPECT_EQ(ReadStreams(*CBlockStore::Open(example)), (Contents{{1, hello}}));
}

}  // namespace
}  // namespace NSBigFilePackage
