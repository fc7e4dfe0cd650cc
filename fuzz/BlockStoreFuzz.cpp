#include "fuzz/FuzzInput.h"
#include "package/BlockStore.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const auto media = input.Media();
    const auto store = NSBigFilePackage::CBlockStore::Open(media);
    std::vector<std::uint8_t> piece(4096);
    for (const std::uint32_t stream : store->Streams()) {
      store->ReadStream(stream, 0, piece);
      store->WriteStream(stream, store->StreamLength(stream) / 2, piece);
    }
    store->Commit();
    NSFuzz::Require(NSBigFilePackage::CBlockStore::Open(media)->Streams() == store->Streams());
  });
}
