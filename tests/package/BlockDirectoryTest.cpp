#include "package/BlockDirectory.h"
#include "tests/package/BlockStoreFixture.h"

namespace NSBigFilePackage {
namespace {

constexpr std::uint64_t kLast = 0xFFFFFFFFFFFFFFFF;

Bytes Stream(std::uint32_t identifier, std::uint64_t length, std::uint64_t count,
             const std::vector<std::uint64_t>& blocks, std::uint32_t end = 0xC0CAC01A) {
  Bytes bytes;
  Put(bytes, identifier);
  Put(bytes, length);
  Put(bytes, count);
  for (const std::uint64_t block : blocks) Put(bytes, block);
  Put(bytes, end);
  return bytes;
}

Bytes Directory(std::uint32_t count, const std::vector<Bytes>& streams,
                std::uint32_t end = 0xB0BAFE77) {
  Bytes bytes;
  Put(bytes, count);
  for (const Bytes& stream : streams) bytes.insert(bytes.end(), stream.begin(), stream.end());
  Put(bytes, end);
  return bytes;
}

TEST(BlockDirectoryTest, StreamsAreWrittenInTheDocumentedForm) {
  const StreamMap streams = {{7, {65, {5, 2}}}, {1, {0, {}}}};
  const Bytes bytes = Directory(2, {Stream(1, 0, 0, {}), Stream(7, 65, 2, {5, 2})});
  EXPECT_EQ(SerialiseDirectory(streams), bytes);
  EXPECT_EQ(ParseDirectory(bytes, kSmallBlock, 6), streams);
}

TEST(BlockDirectoryTest, FaultsAreFormatViolations) {
  const Bytes good = Stream(1, 64, 1, {3});
  const std::pair<const char*, Bytes> cases[] = {
      {"wrong end marker", Directory(0, {}, 0xB0BAFE78)},
      {"count too large", Directory(2, {good})},
      {"count too small", Directory(0, {good})},
      {"huge count", Directory(0xFFFFFFFF, {good})},
      {"wrong stream end", Directory(1, {Stream(1, 64, 1, {3}, 0xC0CAC01B)})},
      {"identifier twice", Directory(2, {good, Stream(1, 64, 1, {4})})},
      {"identifiers descend", Directory(2, {Stream(2, 64, 1, {4}), good})},
      {"block behind the end", Directory(1, {Stream(1, 64, 1, {10})})},
      {"block twice in a stream", Directory(1, {Stream(1, 65, 2, {3, 3})})},
      {"block in two streams", Directory(2, {good, Stream(2, 1, 1, {3})})},
      {"too few blocks", Directory(1, {Stream(1, 65, 1, {3})})},
      {"too many blocks", Directory(1, {Stream(1, 64, 2, {3, 4})})},
      {"block of an empty stream", Directory(1, {Stream(1, 0, 1, {3})})},
      {"huge length", Directory(1, {Stream(1, kLast, std::uint64_t{1} << 58, {3})})},
      {"huge block count", Directory(1, {Stream(1, 64, kLast, {3})})},
  };
  const Bytes whole = Directory(1, {good});
  EXPECT_EQ(ParseDirectory(whole, kSmallBlock, 10).size(), 1u);
  for (std::size_t length = 0; length < whole.size(); ++length) {  // what lies behind is not read
    EXPECT_THROW(ParseDirectory(std::span(whole).first(length), kSmallBlock, 10),
                 NSMordel::XFormatViolation)
        << length;
  }
  for (const auto& [name, bytes] : cases) {
    EXPECT_THROW(ParseDirectory(bytes, kSmallBlock, 10), NSMordel::XFormatViolation) << name;
  }
}

TEST(BlockDirectoryTest, ChainsMustEndInsideTheFile) {
  struct CCase {
    const char* fName;
    std::uint64_t fFirst;
    std::vector<std::uint64_t> fNext;  // of blocks 0, 1, ...
    bool fGood;
  };
  const CCase cases[] = {{"two blocks", 0, {1, kLast, kLast}, true},
                         {"backwards", 2, {kLast, 0, 1}, true},
                         {"first behind the end", 4, {kLast, kLast, kLast}, false},
                         {"no first", kLast, {kLast, kLast, kLast}, false},
                         {"next behind the end", 0, {4, kLast, kLast}, false},
                         {"its own next", 0, {0, kLast, kLast}, false},
                         {"circle", 0, {1, 2, 0}, false},
                         {"block of a stream", 0, {3, kLast, kLast, kLast}, false}};
  const Bytes directory = Directory(1, {Stream(1, 1, 1, {3})});
  for (const CCase& test : cases) {
    CBlockFile file = CBlockFile::Create(std::make_shared<CMemoryMedia>(),
                                         CBlockFile::ECreate::kNew, kSmallBlock);
    for (std::uint64_t i = 0; i < 4; ++i) {
      Bytes block;
      Put(block, i < test.fNext.size() ? test.fNext[i] : kLast);
      if (i == test.fFirst) block.insert(block.end(), directory.begin(), directory.end());
      block.resize(kSmallBlock, 0xFE);
      file.WriteBlock(i, block, false);
    }
    if (test.fGood) {
      EXPECT_EQ(ReadDirectoryChain(file, test.fFirst).fStreams.size(), 1u) << test.fName;
    } else {
      EXPECT_THROW(ReadDirectoryChain(file, test.fFirst), NSMordel::XFormatViolation) << test.fName;
    }
  }
}

TEST(BlockDirectoryTest, ADirectoryThatFillsItsBlocksTakesOneMore) {
  const auto media = std::make_shared<CMemoryMedia>();
  const auto store = CBlockStore::Create(media, CBlockFile::ECreate::kNew, kSmallBlock);
  store->NewStream()->Write(0, Bytes(3 * kSmallBlock, 1));  // entry of 48 bytes, directory of 56
  store->Commit();
  const CBlockFile file = CBlockFile::Open(media);
  const auto chain = ReadDirectoryChain(file, file.ReadRootSlot(0)->fFirstBlock).fChain;
  ASSERT_EQ(chain.size(), 2u);
  Bytes last(kSmallBlock), expected(8, 0xFF);
  file.ReadBlock(chain[1], last);
  expected.resize(kSmallBlock, 0xFE);
  EXPECT_EQ(last, expected);
}

}  // namespace
}  // namespace NSBigFilePackage
