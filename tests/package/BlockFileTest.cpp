#include "Parts/TolbrookPackage/Core/CRC16.h"

#include "package/BlockFile.h"
#include "tests/package/BlockStoreFixture.h"

namespace NSBigFilePackage {
namespace {

using ECreate = CBlockFile::ECreate;

TEST(BlockFileTest, CheckValuesAreThoseOfXMODEM) {
  const Bytes digits = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  EXPECT_EQ(NSTolbrook::CRC16(digits), 0x31C3);
  EXPECT_EQ(NSTolbrook::CRC16(Bytes(16, 0xBA)), 0x452F);  // so an unwritten slot is never right
}

TEST(BlockFileTest, AnEmptyStoreHasTheDocumentedBytes) {
  const auto media = std::make_shared<CMemoryMedia>(Bytes{1, 2, 3});
  EXPECT_THROW(CBlockStore::Create(media), NSMordel::XAlreadyExists);
  CBlockStore::Create(media, ECreate::kReplace);
  Bytes expected = {'Q', '2', '7', '_', 'F', 'I', 'L', 'E'};
  Put(expected, std::uint32_t{262144});
  Put(expected, std::uint32_t{36});
  expected.insert(expected.end(), 18, 0);  // generation 0, block 0, check value 0
  Put(expected, std::uint64_t{1});
  Put(expected, std::uint64_t{0});
  Put(expected, std::uint16_t{0xEB23});
  expected.insert(expected.end(), 8, 0xFF);
  Put(expected, std::uint32_t{0});
  Put(expected, std::uint32_t{0xB0BAFE77});
  expected.resize(52 + 262144, 0xFE);
  EXPECT_TRUE(media->Bytes() == expected);

  const Bytes readOnly(1);
  EXPECT_THROW(CBlockStore::Create(std::make_shared<CMemoryView>(readOnly), ECreate::kReplace),
               NSMordel::XAlreadyExists);
}

TEST(BlockFileTest, BlocksAreAppendedOneByOne) {
  const auto media = std::make_shared<CMemoryMedia>();
  CBlockFile file = CBlockFile::Create(media, ECreate::kNew, kSmallBlock);
  Bytes header = {'Q', '2', '7', '_', 'F', 'I', 'L', 'E', 0, 0, 0, 64, 0, 0, 0, 36};
  header.resize(52, 0xBA);
  EXPECT_EQ(media->Bytes(), header);
  const Bytes block = RandomBytes(kSmallBlock, 1);
  EXPECT_EQ(file.WriteBlock(0, block, false), 1u);
  EXPECT_EQ(file.WriteBlock(1, block, true), 2u);
  EXPECT_EQ(file.WriteBlock(0, block, false), 2u);
  Bytes read(kSmallBlock + 5);
  EXPECT_EQ(file.ReadBlock(1, read), kSmallBlock);
  EXPECT_TRUE(std::equal(block.begin(), block.end(), read.begin()));
  EXPECT_EQ(file.AppendBlock(), 2u);
  EXPECT_EQ(media->Size(), 52 + 3 * kSmallBlock);

  const Bytes before = media->Bytes();
  EXPECT_THROW(file.WriteBlock(4, block, false), XStdInvalidArgument);
  EXPECT_THROW(file.WriteBlock(0, std::span(block).first(63), false), XStdInvalidArgument);
  EXPECT_THROW(file.ReadBlock(3, read), XStdInvalidArgument);
  EXPECT_THROW(file.WritePart(3, 0, block), XStdInvalidArgument);
  EXPECT_THROW(file.WritePart(0, 1, block), XStdInvalidArgument);
  EXPECT_THROW(file.ReadPart(0, kSmallBlock + 1, std::span(read).first(0)), XStdInvalidArgument);
  EXPECT_THROW(file.WriteRootSlot(2, {}), XStdInvalidArgument);
  EXPECT_THROW(file.ReadRootSlot(2), XStdInvalidArgument);
  EXPECT_THROW(CBlockFile::Create(std::make_shared<CMemoryMedia>(), ECreate::kNew, 8),
               XStdInvalidArgument);
  EXPECT_EQ(media->Bytes(), before);
}

TEST(BlockFileTest, APartOfABlockAtTheEndDoesNotCount) {
  const auto media = std::make_shared<CMemoryMedia>();
  CBlockStore::Create(media, ECreate::kNew, kSmallBlock);
  media->SetSize(media->Size() + kSmallBlock - 1);
  EXPECT_EQ(CBlockFile::Open(media).BlockCount(), 1u);
  media->SetSize(media->Size() + 1);
  EXPECT_EQ(CBlockFile::Open(media).BlockCount(), 2u);
}

TEST(BlockFileTest, OpeningRefusesWhatIsNoStore) {
  struct CCase {
    const char* fName;
    std::size_t fOffset;
    Bytes fBytes;
    std::size_t fSize;
  };
  const CCase cases[] = {{"no bytes", 0, {}, 0},
                         {"half a header", 0, {}, 15},
                         {"another signature", 7, {'F'}, 116},
                         {"block size 0", 8, {0, 0, 0, 0}, 116},
                         {"block size 8", 8, {0, 0, 0, 8}, 116},
                         {"root area of one slot", 12, {0, 0, 0, 35}, 116},
                         {"huge root area", 12, {0xFF, 0xFF, 0xFF, 0xFF}, 116},
                         {"huge block size", 8, {0xFF, 0xFF, 0xFF, 0xFF}, 116},
                         {"no slots", 0, {}, 50},
                         {"no block", 0, {}, 115}};
  for (const CCase& test : cases) {
    const auto media = std::make_shared<CMemoryMedia>();
    CBlockStore::Create(media, ECreate::kNew, kSmallBlock);
    media->Write(test.fOffset, test.fBytes);
    media->SetSize(test.fSize);
    EXPECT_THROW(CBlockStore::Open(media), NSMordel::XOpen) << test.fName;
  }
}

}  // namespace
}  // namespace NSBigFilePackage
