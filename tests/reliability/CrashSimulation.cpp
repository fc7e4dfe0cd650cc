// Simulated crashes of the block store: crash_simulation IMAGES [FIRST_SEED]. Scripts of random
// changes and commits run on a recording disk until so many images of crashes have been opened;
// each must hold the state of the last commit or of the one under way, to the byte, and be a store
// to go on with. Prints what it counted as JSON.

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/BlockStore.h"
#include "tests/reliability/CrashingDisk.h"

namespace {

using namespace NSBigFilePackage;
using Bytes = NSTest::CCrashingDisk::Bytes;
using Contents = std::map<std::uint32_t, Bytes>;

constexpr int kCommits = 40;
constexpr std::size_t kSamples = 4;

struct CCounts {
  std::size_t fScripts = 0, fCommits = 0, fOperations = 0, fImages = 0;
  std::size_t fBefore = 0, fAfter = 0, fNoStore = 0;
};

Bytes RandomBytes(std::mt19937& random, std::size_t count) {
  Bytes bytes(count);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

Contents ReadStreams(CBlockStore& store) {
  Contents contents;
  for (const auto identifier : store.Streams()) {
    const auto stream = store.OpenStream(identifier);
    Bytes bytes(static_cast<std::size_t>(stream->Size()));
    ReadExactly(*stream, 0, bytes);
    contents[identifier] = std::move(bytes);
  }
  return contents;
}

std::shared_ptr<CMemoryMedia> MediaOf(const Bytes& image) {
  auto media = std::make_shared<CMemoryMedia>();
  media->Write(0, image);
  return media;
}

/// A store that changes at random and remembers what each of its commits held.
class CScript {
 public:
  explicit CScript(std::uint32_t seed) : fRandom(seed) {
    constexpr std::uint32_t kBlockSizes[] = {32, 64, 512, 1024};
    fStore = CBlockStore::Create(fDisk, CBlockStore::ECreate::kNew, kBlockSizes[seed % 4]);
    Remember();
    for (int commit = 0; commit < kCommits; ++commit) {
      for (auto changes = fRandom() % 6; changes > 0; --changes) Change();
      fStore->Commit();
      Remember();
    }
  }

  void CheckImages(CCounts& counts, std::size_t limit) {
    ++counts.fScripts;
    counts.fCommits += fStates.size();
    counts.fOperations += fDisk->Operations();
    fDisk->ForEachImage(kSamples, fRandom, [&](const Bytes& image, std::size_t operations) {
      if (counts.fImages >= limit) return;
      ++counts.fImages;
      Check(image, operations, counts);
    });
  }

 private:
  void Remember() {
    fEnds.push_back(fDisk->Operations());
    fStates.push_back(ReadStreams(*fStore));
  }

  void Change() {
    const auto streams = fStore->Streams();
    const Bytes bytes = RandomBytes(fRandom, fRandom() % (3 * fStore->BlockSize()));
    const auto action = fRandom() % 6;
    if (streams.size() < 3 || action == 0) {
      fStore->NewStream()->Write(0, bytes);
    } else if (action == 1) {
      const auto item = fStore->BeginItem();
      item->Write(0, bytes);
      item->Finish();
    } else {
      const auto identifier = streams[fRandom() % streams.size()];
      const auto stream = fStore->OpenStream(identifier);
      if (action == 2) return fStore->RemoveStream(identifier);
      if (action == 3) return stream->SetSize(fRandom() % (4 * fStore->BlockSize()));
      stream->Write(fRandom() % (stream->Size() + 1), bytes);
    }
  }

  /// How many commits (the creation is the first) were over after so many operations.
  std::size_t CommitsAfter(std::size_t operations) const {
    return static_cast<std::size_t>(std::ranges::upper_bound(fEnds, operations) - fEnds.begin());
  }

  void Check(const Bytes& image, std::size_t operations, CCounts& counts) {
    const std::size_t commits = CommitsAfter(operations);
    const auto media = MediaOf(image);
    std::shared_ptr<CBlockStore> store;
    try {
      store = CBlockStore::Open(media);
    } catch (const NSMordel::XOpen&) {
      Require(commits == 0, "a store that had been committed does not open", operations);
      ++counts.fNoStore;
      return;
    }
    Contents found = ReadStreams(*store);
    const bool isBefore = commits > 0 && found == fStates[commits - 1];
    const bool isAfter = commits < fStates.size() && found == fStates[commits];
    Require(isBefore || isAfter, "neither the state before nor that after", operations);
    ++(isBefore ? counts.fBefore : counts.fAfter);

    const auto stream = store->NewStream();
    found[stream->Identifier()] = RandomBytes(fRandom, 100);
    stream->Write(0, found[stream->Identifier()]);
    store->Commit();
    Require(ReadStreams(*CBlockStore::Open(media)) == found, "cannot go on", operations);
  }

  static void Require(bool holds, const char* fault, std::size_t operations) {
    if (!holds) throw std::runtime_error(fmt::format("after {} operations: {}", operations, fault));
  }

  std::mt19937 fRandom;
  std::shared_ptr<NSTest::CCrashingDisk> fDisk = std::make_shared<NSTest::CCrashingDisk>();
  std::shared_ptr<CBlockStore> fStore;
  std::vector<std::size_t> fEnds;  // operations when a commit was over
  std::vector<Contents> fStates;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    fmt::print(stderr, "usage: crash_simulation IMAGES [FIRST_SEED]\n");
    return 2;
  }
  const std::size_t images = std::stoull(argv[1]);
  const auto first = static_cast<std::uint32_t>(argc > 2 ? std::stoul(argv[2]) : 1);
  CCounts counts;
  for (std::uint32_t seed = first; counts.fImages < images; ++seed) {
    try {
      CScript(seed).CheckImages(counts, images);
    } catch (const std::exception& e) {
      fmt::print(stderr, "seed {}: {}\n", seed, e.what());
      return 1;
    }
  }
  fmt::print(
      "{{\"images\": {}, \"first_seed\": {}, \"scripts\": {}, \"commits\": {}, \"operations\": {}, "
      "\"state_before\": {}, \"state_after\": {}, \"no_store_yet\": {}}}\n",
      counts.fImages, first, counts.fScripts, counts.fCommits, counts.fOperations, counts.fBefore,
      counts.fAfter, counts.fNoStore);
}
