#include <algorithm>

#include "tests/package/BlockStoreFixture.h"
#include "tests/support/RecordingMedia.h"

namespace NSBigFilePackage {
namespace {

using NSTest::CRecordingMedia;

/// A store that changes at random and remembers what each of its commits held.
class CCrashRun {
 public:
  explicit CCrashRun(std::uint32_t seed) : fRandom(seed) {
    fStore = CBlockStore::Create(fMedia, CBlockStore::ECreate::kNew, 32);
    Remember();
  }

  void Commit() {
    const auto changes = fRandom() % 5;
    for (std::uint_fast32_t i = 0; i < changes; ++i) Change();
    fStore->Commit();
    Remember();
  }

  const CRecordingMedia& Media() const { return *fMedia; }

  /// How many commits (the creation is the first) were over after so many operations.
  std::size_t CommitsAfter(std::size_t operations) const {
    return static_cast<std::size_t>(std::ranges::upper_bound(fEnds, operations) - fEnds.begin());
  }

  /// Opens what a crash left: it must be the last state committed or the one being committed, and
  /// a store to go on with.
  void Check(const SharedMedia& image, std::size_t operations) const {
    const std::size_t commits = CommitsAfter(operations);
    Contents found;
    try {
      found = ReadStreams(*CBlockStore::Open(image));
    } catch (const NSMordel::XOpen&) {
      ASSERT_EQ(commits, 0u);
      return;
    }
    const bool last = commits > 0 && found == fStates[commits - 1];
    const bool next = commits < fStates.size() && found == fStates[commits];
    ASSERT_TRUE(last || next) << "neither state " << commits << " nor the next";

    const auto store = CBlockStore::Open(image);
    const auto stream = store->NewStream();
    found[stream->Identifier()] = RandomBytes(100, 9);
    stream->Write(0, found[stream->Identifier()]);
    store->Commit();
    ASSERT_EQ(ReadStreams(*CBlockStore::Open(image)), found);
  }

 private:
  void Remember() {
    fEnds.push_back(fMedia->Operations());
    fStates.push_back(ReadStreams(*fStore));
  }

  void Change() {
    const auto streams = fStore->Streams();
    const auto bytes = RandomBytes(fRandom() % 90, static_cast<std::uint32_t>(fRandom()));
    const auto action = fRandom() % 6;
    if (streams.empty() || action == 0) {
      fStore->NewStream()->Write(0, bytes);
    } else if (action == 1) {
      const auto item = fStore->BeginItem();
      item->Write(0, bytes);
      item->Finish();
    } else {
      const auto identifier = streams[fRandom() % streams.size()];
      const auto stream = fStore->OpenStream(identifier);
      if (action == 2) return fStore->RemoveStream(identifier);
      if (action == 3) return stream->SetSize(fRandom() % 100);
      stream->Write(fRandom() % (stream->Size() + 1), bytes);
    }
  }

  std::mt19937 fRandom;
  std::shared_ptr<CRecordingMedia> fMedia = std::make_shared<CRecordingMedia>();
  std::shared_ptr<CBlockStore> fStore;
  std::vector<std::size_t> fEnds;  // operations when a commit was over
  std::vector<Contents> fStates;
};

TEST(BlockStoreCrashTest, EveryImageOpensToTheStateBeforeOrAfter) {
  std::size_t images = 0;
  for (std::uint32_t seed = 0; seed < 3; ++seed) {
    CCrashRun run(seed);
    for (int i = 0; i < 14; ++i) run.Commit();
    for (std::size_t operations = 0; operations <= run.Media().Operations(); ++operations) {
      for (const auto unflushed :
           {CRecordingMedia::EUnflushed::kKept, CRecordingMedia::EUnflushed::kDropped,
            CRecordingMedia::EUnflushed::kMixed, CRecordingMedia::EUnflushed::kMixed}) {
        const auto image =
            run.Media().Image(operations, unflushed, static_cast<std::uint32_t>(images++));
        ASSERT_NO_FATAL_FAILURE(run.Check(image, operations))
            << "seed " << seed << ", " << operations << " operations";
      }
    }
  }
  EXPECT_GT(images, 1000u);
}

}  // namespace
}  // namespace NSBigFilePackage
