#include <thread>

#include "package/TemporaryStream.h"
#include "tests/package/BlockStoreFixture.h"

namespace NSBigFilePackage {
namespace {

struct TemporaryStreamTest : testing::Test {
  std::shared_ptr<CMemoryMedia> fMedia = std::make_shared<CMemoryMedia>();
  std::shared_ptr<CBlockStore> fStore =
      CBlockStore::Create(fMedia, CBlockStore::ECreate::kNew, kSmallBlock);

  SharedMedia Item(const Bytes& bytes) const {
    const auto item = fStore->BeginItem();
    item->Write(0, bytes);
    return item->Finish();
  }
};

TEST_F(TemporaryStreamTest, SmallItemsShareAStreamAndLargeOnesHaveTheirOwn) {
  const Bytes bytes = RandomBytes(200, 1);
  std::vector<SharedMedia> items;
  const std::size_t sizes[] = {0, 1, 63, 64, 65, 128, 200, 10};
  for (const std::size_t size : sizes) {
    items.push_back(Item({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}));
  }
  EXPECT_EQ(fStore->Streams(), (std::vector<std::uint32_t>{1, 2, 3, 4, 5}));
  EXPECT_EQ(fStore->Lookup(1).fLength, 74u);
  for (std::size_t i = 0; i < items.size(); ++i) {
    EXPECT_EQ(ReadAll(*items[i]),
              Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(sizes[i])));
    EXPECT_THROW(items[i]->Write(0, bytes), NSMordel::XReadOnly);
  }
}

TEST_F(TemporaryStreamTest, AFinishedItemIsDoneWith) {
  const auto item = fStore->BeginItem();
  item->Write(0, Bytes(100, 1));
  item->Finish();
  Bytes bytes(1);
  EXPECT_THROW(item->Write(0, bytes), NSMordel::XIllegalCallSequence);
  EXPECT_THROW(item->SetSize(0), NSMordel::XIllegalCallSequence);
  EXPECT_THROW(item->Read(0, bytes), NSMordel::XIllegalCallSequence);
  EXPECT_THROW(item->Finish(), NSMordel::XIllegalCallSequence);
}

TEST_F(TemporaryStreamTest, UnfinishedItemsAreNotCommittedAndGiveTheirBlocksBack) {
  for (int i = 0; i < 20; ++i) {
    const auto item = fStore->BeginItem();
    item->Write(0, RandomBytes(10 * kSmallBlock, 1));
    if (i == 10) fStore->Commit();
    EXPECT_EQ(ReadAll(*item), RandomBytes(10 * kSmallBlock, 1));
  }
  EXPECT_EQ(fStore->Streams().size(), 0u);
  EXPECT_LE(fMedia->Size(), 52 + 12 * kSmallBlock);
}

TEST_F(TemporaryStreamTest, ThreadsWriteReadAndCommitAtOnce) {
  constexpr std::uint32_t kThreads = 4, kItems = 60;
  std::vector<std::vector<SharedMedia>> items(kThreads);
  const auto sizeOf = [](std::uint32_t seed) { return seed * 37 % 400; };
  const auto work = [&](std::uint32_t thread) {
    for (std::uint32_t i = 0; i < kItems; ++i) {
      const std::uint32_t seed = thread * kItems + i;
      const Bytes bytes = RandomBytes(sizeOf(seed), seed);
      const auto item = fStore->BeginItem();
      for (std::size_t done = 0; done < bytes.size();) {
        const std::size_t count = std::min<std::size_t>(bytes.size() - done, 50);
        item->Write(done, std::span(bytes).subspan(done, count));
        done += count;
      }
      items[thread].push_back(item->Finish());
      if (ReadAll(*items[thread][i / 2]).size() != items[thread][i / 2]->Size()) std::abort();
      if (i % 20 == 19) fStore->Commit();
    }
  };
  std::vector<std::thread> threads;
  for (std::uint32_t i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
  for (std::uint32_t seed = 0; seed < kThreads * kItems; ++seed) {
    EXPECT_EQ(ReadAll(*items[seed / kItems][seed % kItems]), RandomBytes(sizeOf(seed), seed));
  }
  fStore->Commit();
  EXPECT_EQ(ReadStreams(*CBlockStore::Open(fMedia)), ReadStreams(*fStore));
}

}  // namespace
}  // namespace NSBigFilePackage
