#include <fstream>
#include <sstream>

#include "tests/package/BlockStoreFixture.h"

namespace NSBigFilePackage {
namespace {

/// The bytes of the first block of the format's page: offset, hex bytes, perhaps ";" and a remark.
Bytes DocumentedExample() {
  std::ifstream page(TAMBRA_TEST_DATA "/../../docs/formats/block-store.md");
  Bytes bytes;
  bool isInside = false;
  for (std::string line; std::getline(page, line);) {
    if (line == "```" && isInside) break;
    if (isInside && !line.empty()) {
      EXPECT_EQ(std::stoul(line, nullptr, 16), bytes.size()) << line;
      std::istringstream hex(line.substr(4, line.find(';') - 4));
      for (unsigned value = 0; hex >> std::hex >> value;) {
        bytes.push_back(static_cast<std::uint8_t>(value));
      }
    }
    isInside = isInside || line == "```";
  }
  return bytes;
}

TEST(BlockStoreExample, IsWrittenAndReadToTheByte) {
  const Bytes hello = {'h', 'e', 'l', 'l', 'o'};
  const auto media = std::make_shared<CMemoryMedia>();
  const auto store = CBlockStore::Create(media, CBlockStore::ECreate::kNew, 56);
  store->NewStream()->Write(0, hello);
  store->Commit();
  EXPECT_EQ(media->Bytes(), DocumentedExample());
  const auto example = std::make_shared<CMemoryMedia>(DocumentedExample());
  EXPECT_EQ(ReadStreams(*CBlockStore::Open(example)), (Contents{{1, hello}}));
}

}  // namespace
}  // namespace NSBigFilePackage
