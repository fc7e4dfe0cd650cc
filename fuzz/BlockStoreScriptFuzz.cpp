#include <map>

#include "fuzz/FuzzInput.h"
#include "package/BlockStore.h"

using namespace NSBigFilePackage;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes All(const IMedia& media) {
  Bytes bytes(media.Size());
  ReadExactly(media, 0, bytes);
  return bytes;
}

/// A store, what should be in it, and what should be left of that by a crash.
class CModel {
 public:
  explicit CModel(std::uint32_t blockSize)
      : fStore(CBlockStore::Create(fMedia, CBlockStore::ECreate::kNew, blockSize)) {}

  void Step(NSFuzz::CFuzzInput& script) {
    const unsigned operation = script.TakeByte() % 8;
    const auto chosen = Choose(script);
    if (operation == 0 && fStreams.size() < 16) fStreams[fStore->NewStream()->Identifier()];
    if (operation == 1 && chosen != fStreams.end()) Write(chosen->first, chosen->second, script);
    if (operation == 2 && chosen != fStreams.end()) {
      chosen->second.resize(script.TakeNumber() % 1024);
      fStore->ResizeStream(chosen->first, chosen->second.size());
    }
    if (operation == 3 && chosen != fStreams.end()) {
      fStore->RemoveStream(chosen->first);
      fStreams.erase(chosen);
    }
    if (operation == 4) WriteItem(script);
    if (operation == 5) {
      fStore->Commit();
      fCommitted = fStreams;
    }
    if (operation == 6) {  // a crash
      fItems.clear();
      fMedia = std::make_shared<CMemoryMedia>(fMedia->Bytes());
      fStore = CBlockStore::Open(fMedia);
      fStreams = fCommitted;
    }
  }

  void Check() const {
    for (const auto& [stream, bytes] : fStreams) {
      NSFuzz::Require(All(*fStore->OpenStream(stream)) == bytes);
    }
    for (const auto& [item, bytes] : fItems) NSFuzz::Require(All(*item) == bytes);
  }

 private:
  using CStreams = std::map<std::uint32_t, Bytes>;

  CStreams::iterator Choose(NSFuzz::CFuzzInput& script) {
    const std::size_t number = fStreams.empty() ? 0 : script.TakeByte() % fStreams.size();
    return std::next(fStreams.begin(), static_cast<std::ptrdiff_t>(number));
  }

  static void Put(Bytes& bytes, std::size_t position, std::span<const std::uint8_t> piece) {
    bytes.resize(std::max(bytes.size(), position + piece.size()));
    std::ranges::copy(piece, bytes.begin() + static_cast<std::ptrdiff_t>(position));
  }

  void Write(std::uint32_t stream, Bytes& bytes, NSFuzz::CFuzzInput& script) {
    const std::size_t position = script.TakeNumber() % 1024;
    const Bytes piece(script.TakeByte() + 1U, script.TakeByte());
    Put(bytes, position, piece);
    fStore->WriteStream(stream, position, piece);
  }

  void WriteItem(NSFuzz::CFuzzInput& script) {
    const auto item = fStore->BeginItem();
    Bytes bytes;
    for (unsigned writes = script.TakeByte() % 4; writes > 0; --writes) {
      const std::size_t position = std::min<std::size_t>(script.TakeByte(), bytes.size());
      const Bytes piece(script.TakeByte(), script.TakeByte());
      Put(bytes, position, piece);
      item->Write(position, piece);
    }
    NSFuzz::Require(All(*item) == bytes);
    if (fItems.size() < 16 && script.TakeByte() % 4 > 0) fItems.emplace_back(item->Finish(), bytes);
  }

  std::shared_ptr<CMemoryMedia> fMedia = std::make_shared<CMemoryMedia>();
  std::shared_ptr<CBlockStore> fStore;
  CStreams fStreams, fCommitted;
  std::vector<std::pair<SharedMedia, Bytes>> fItems;
};

}  // namespace

/// The input is a script of operations on a store, beside which a map of byte vectors is kept.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NSFuzz::CFuzzInput script(data, std::min<std::size_t>(size, 400));
  CModel model(NSBlockStoreFormat::kMinimumBlockSize + script.TakeByte() % 120);
  while (!script.AtEnd()) {
    model.Step(script);
    model.Check();
  }
  return 0;
}
