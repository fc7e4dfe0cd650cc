#include "package/Stream.h"

#include <utility>

#include "package/BlockStore.h"

namespace NSBigFilePackage {

CStream::CStream(std::shared_ptr<CBlockStore> store, std::uint32_t identifier)
    : fStore(std::move(store)), fIdentifier(identifier) {}

std::uint64_t CStream::Size() const { return fStore->StreamLength(fIdentifier); }

std::size_t CStream::Read(std::uint64_t position, std::span<std::uint8_t> destination) const {
  return fStore->ReadStream(fIdentifier, position, destination);
}

void CStream::Write(std::uint64_t position, std::span<const std::uint8_t> source) {
  fStore->WriteStream(fIdentifier, position, source);
}

void CStream::SetSize(std::uint64_t size) { fStore->ResizeStream(fIdentifier, size); }

void CStream::Flush() { fStore->Commit(); }

}  // namespace NSBigFilePackage
