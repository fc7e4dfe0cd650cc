#include <rapidcheck.h>

#include "package/BlockStore.h"
#include "tests/package/BlockStoreFixture.h"
#include "tests/support/FailingMedia.h"

namespace NSBigFilePackage {
namespace {

using ECreate = CBlockStore::ECreate;

struct BlockStoreTest : testing::Test {
  std::shared_ptr<CMemoryMedia> fMedia = std::make_shared<CMemoryMedia>();
  std::shared_ptr<CBlockStore> fStore = CBlockStore::Create(fMedia, ECreate::kNew, kSmallBlock);

  CRootSlot Slot(unsigned slot) const { return *CBlockFile::Open(fMedia).ReadRootSlot(slot); }
  std::shared_ptr<CBlockStore> Reopen() const {
    return CBlockStore::Open(std::make_shared<CMemoryMedia>(fMedia->Bytes()));
  }
  std::uint64_t BlockCount() const { return CBlockFile::Open(fMedia).BlockCount(); }
};

TEST_F(BlockStoreTest, CommitsAlternateBetweenTheSlots) {
  for (std::uint64_t generation = 2; generation < 7; ++generation) {
    fStore->Commit();
    EXPECT_EQ(Slot(generation % 2).fGeneration, generation);
    EXPECT_EQ(Slot(1 - generation % 2).fGeneration, generation - 1);
    EXPECT_EQ(fStore->Generation(), generation);
  }
}

TEST_F(BlockStoreTest, StreamsAreFoundByTheirIdentifier) {
  EXPECT_EQ(fStore->NewStream()->Identifier(), 1u);
  const auto second = fStore->NewStream();
  second->Write(0, RandomBytes(65, 1));
  EXPECT_EQ(fStore->Lookup(2).fLength, 65u);
  EXPECT_EQ(fStore->Lookup(2).fBlocks.size(), 2u);
  second->Flush();
  fStore->NewStream()->Write(0, RandomBytes(5, 2));  // never committed
  EXPECT_THROW(fStore->Lookup(4), XStdInvalidArgument);
  EXPECT_THROW(fStore->OpenStream(0), XStdInvalidArgument);

  const auto reopened = Reopen();
  EXPECT_EQ(ReadStreams(*reopened), (Contents{{1, {}}, {2, RandomBytes(65, 1)}}));
  EXPECT_EQ(reopened->NewStream()->Identifier(), 3u);
  fStore->RemoveStream(2);
  EXPECT_THROW(second->Size(), XStdInvalidArgument);
  EXPECT_THROW(second->Write(0, Bytes(1)), XStdInvalidArgument);
}

TEST_F(BlockStoreTest, BlocksOfTwoStatesAreKeptAndOlderOnesUsedAgain) {
  auto stream = fStore->NewStream();
  std::uint64_t blocks = 0;
  for (std::uint32_t i = 0; i < 50; ++i) {
    if (i % 3 == 2) {  // opened anew, too
      fStore = CBlockStore::Open(fMedia);
      stream = fStore->OpenStream(1);
    }
    stream->Write(0, RandomBytes(200, i));
    // Until the commit the file holds the two states before, each whole.
    Bytes damaged = fMedia->Bytes();
    damaged[i % 2 == 0 ? 34 : 16] ^= 1;  // the newest slot
    const auto older = CBlockStore::Open(std::make_shared<CMemoryMedia>(damaged));
    EXPECT_EQ(ReadStreams(*older), i < 2 ? Contents{} : Contents({{1, RandomBytes(200, i - 2)}}));
    fStore->Commit();
    if (i == 3) blocks = BlockCount();
  }
  EXPECT_EQ(BlockCount(), blocks);
}

TEST_F(BlockStoreTest, ADamagedSlotFallsBackToTheOther) {
  fStore->NewStream()->Write(0, RandomBytes(100, 1));
  fStore->Commit();
  fStore->NewStream()->Write(0, RandomBytes(70, 2));
  fStore->Commit();  // in slot 1
  const std::size_t root = 52 + static_cast<std::size_t>(Slot(1).fFirstBlock) * kSmallBlock;
  std::vector<std::size_t> offsets = {root, root + 3, root + 8, root + 11};  // chain, stream count
  for (std::size_t i = 0; i < 18; ++i) offsets.push_back(34 + i);
  for (const std::size_t offset : offsets) {
    Bytes bytes = fMedia->Bytes();
    bytes[offset] ^= 0x40;
    const auto media = std::make_shared<CMemoryMedia>(bytes);
    const auto store = CBlockStore::Open(media);
    EXPECT_EQ(ReadStreams(*store), (Contents{{1, RandomBytes(100, 1)}})) << offset;
    store->NewStream();
    store->Commit();
    EXPECT_EQ(ReadStreams(*CBlockStore::Open(media)),
              (Contents{{1, RandomBytes(100, 1)}, {2, {}}}));
    bytes[16 + 17] ^= 1;
    EXPECT_THROW(CBlockStore::Open(std::make_shared<CMemoryMedia>(bytes)), NSMordel::XOpen);
  }
}

TEST_F(BlockStoreTest, AFailureToReadIsNotTakenForADamagedSlot) {
  fStore->NewStream()->Write(0, RandomBytes(300, 1));
  fStore->Commit();
  bool failed = true;
  for (std::uint64_t operation = 0; failed; ++operation) {
    const auto media = std::make_shared<NSTest::CFailingMedia>(fMedia);
    media->FailAfter<NSMordel::XRead>(operation, false);
    try {
      EXPECT_EQ(CBlockStore::Open(media)->Generation(), 2u) << operation;
    } catch (const NSMordel::XRead&) {
      EXPECT_TRUE(media->HasFailed());
      continue;
    }
    failed = media->HasFailed();
    EXPECT_FALSE(failed) << operation;
    EXPECT_GT(operation, 3u);
  }
}

TEST_F(BlockStoreTest, SmallItemsGoOnInANewStreamWhenTheirsIsRemoved) {
  for (const std::uint32_t expected : {1u, 2u}) {
    const auto item = fStore->BeginItem();
    item->Write(0, Bytes(5, 1));
    EXPECT_EQ(ReadAll(*item->Finish()), Bytes(5, 1));
    EXPECT_EQ(fStore->Streams(), std::vector{expected});
    fStore->RemoveStream(expected);
  }
}

TEST_F(BlockStoreTest, TheLastGenerationAndIdentifierCannotBeFollowed) {
  CBlockFile file = CBlockFile::Open(fMedia);
  const std::uint64_t chain[] = {0};
  WriteDirectoryChain(file, chain, SerialiseDirectory({{0xFFFFFFFF, {}}}));
  file.WriteRootSlot(1, {0xFFFFFFFFFFFFFFFF, 0});
  EXPECT_THROW(CBlockStore::Open(fMedia)->Commit(), NSMordel::XOutOfItems);
  EXPECT_THROW(CBlockStore::Open(fMedia)->NewStream(), NSMordel::XOutOfItems);
}

TEST_F(BlockStoreTest, StreamsBehaveLikeMemory) {
  const bool equal = rc::check([] {
    const auto media = std::make_shared<CMemoryMedia>();
    const auto store = CBlockStore::Create(media, ECreate::kNew, 16);
    std::vector<std::shared_ptr<IMedia>> streams = {store->NewStream(), store->NewStream(),
                                                    store->BeginItem(), store->BeginItem()};
    std::vector<CMemoryMedia> models(streams.size());
    for (int i = 0; i < 40; ++i) {
      const auto which = *rc::gen::inRange<std::size_t>(0, streams.size());
      const auto position = *rc::gen::inRange<std::uint64_t>(0, 90);
      const auto bytes = RandomBytes(*rc::gen::inRange<std::size_t>(0, 50), 1);
      switch (*rc::gen::inRange(0, 8)) {
        case 0:
          store->Commit();
          break;
        case 1:
        case 2:
          streams[which]->SetSize(position);
          models[which].SetSize(position);
          break;
        default:
          streams[which]->Write(position, bytes);
          models[which].Write(position, bytes);
      }
      for (std::size_t k = 0; k < streams.size(); ++k) {
        RC_ASSERT(ReadAll(*streams[k]) == models[k].Bytes());
        Bytes part(20), expected(20);
        part.resize(streams[k]->Read(position, part));
        expected.resize(models[k].Read(position, expected));
        RC_ASSERT(part == expected);
      }
    }
    store->Commit();
    const Contents expected = {{1, models[0].Bytes()}, {2, models[1].Bytes()}};
    RC_ASSERT(ReadStreams(*CBlockStore::Open(media)) == expected);
  });
  EXPECT_TRUE(equal);
}

/// Changes a stream, adds an item that stays small and one that does not, and commits.
void Change(CBlockStore& store) {
  store.OpenStream(1)->Write(100, RandomBytes(60, 2));
  for (const std::size_t size : {20u, 150u}) {
    const auto item = store.BeginItem();
    item->Write(0, RandomBytes(size, 3));
    item->Finish();
  }
  store.Commit();
}

TEST(BlockStoreFailureTest, AFailureAtAnyOperationLeavesOneOfTwoStates) {
  Contents before = {{1, RandomBytes(300, 1)}};
  Bytes changed = before[1];
  std::ranges::copy(RandomBytes(60, 2), changed.begin() + 100);
  for (const bool forever : {false, true}) {
    bool failed = true;
    for (std::uint64_t operation = 0; failed; ++operation) {
      const auto memory = std::make_shared<CMemoryMedia>();
      const auto media = std::make_shared<NSTest::CFailingMedia>(memory);
      const auto store = CBlockStore::Create(media, ECreate::kNew, kSmallBlock);
      store->NewStream()->Write(0, before[1]);
      store->Commit();
      media->FailAfter<NSMordel::XOutOfSpace>(operation, forever);
      try {
        Change(*store);
      } catch (const NSMordel::XOutOfSpace&) {
        EXPECT_TRUE(media->HasFailed());
      }
      failed = media->HasFailed();
      media->StopFailing();
      const Contents now =
          ReadStreams(*CBlockStore::Open(std::make_shared<CMemoryMedia>(memory->Bytes())));
      if (now.size() == 1) {
        EXPECT_EQ(now, before) << operation;
      } else {
        EXPECT_EQ(now.at(1), changed) << operation;
      }
      // What is written after a commit that failed half way is part of neither state.
      store->OpenStream(1)->Write(100, RandomBytes(60, 4));
      EXPECT_EQ(ReadStreams(*CBlockStore::Open(memory)), now) << operation;
      Change(*store);
      EXPECT_EQ(ReadStreams(*CBlockStore::Open(memory)).at(1), changed) << operation;
    }
  }
}

}  // namespace
}  // namespace NSBigFilePackage
