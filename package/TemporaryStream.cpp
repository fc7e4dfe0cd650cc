#include "package/TemporaryStream.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/BlockStore.h"
#include "package/PartialMedia.h"

namespace NSBigFilePackage {

CTemporaryStream::CTemporaryStream(std::shared_ptr<CBlockStore> store) : fStore(std::move(store)) {}

CTemporaryStream::~CTemporaryStream() {
  if (fStream && !fFinished) fStore->RemoveStream(*fStream);
}

std::size_t CTemporaryStream::Read(std::uint64_t position,
                                   std::span<std::uint8_t> destination) const {
  CheckUnfinished();
  if (position >= Size()) return 0;
  std::size_t done = 0;
  if (position < fStored) {
    const std::uint64_t stored = std::min<std::uint64_t>(destination.size(), fStored - position);
    done = static_cast<std::size_t>(stored);
    ReadExactly(CStream(fStore, *fStream), position, destination.first(done));
    if (done == destination.size()) return done;
    position += done;
  }
  const auto start = static_cast<std::size_t>(position - fStored);
  const auto rest = std::span(fTail).subspan(start);
  const auto count = std::min(rest.size(), destination.size() - done);
  std::ranges::copy(rest.first(count), destination.subspan(done).begin());
  return done + count;
}

void CTemporaryStream::Write(std::uint64_t position, std::span<const std::uint8_t> source) {
  CheckUnfinished();
  if (source.empty()) return;
  if (source.size() > std::numeric_limits<std::uint64_t>::max() - position) {
    throw NSMordel::XOutOfSpace("an item cannot hold bytes at offset " + std::to_string(position));
  }
  if (position > Size()) SetSize(position);
  if (position < fStored) {
    const auto stored =
        static_cast<std::size_t>(std::min<std::uint64_t>(source.size(), fStored - position));
    fStore->WriteStream(*fStream, position, source.first(stored));
    position += stored;
    source = source.subspan(stored);
    if (source.empty()) return;
  }
  const auto start = static_cast<std::size_t>(position - fStored);
  const auto inTail = std::min(source.size(), fTail.size() - start);
  std::ranges::copy(source.first(inTail), fTail.begin() + static_cast<std::ptrdiff_t>(start));
  Append(source.subspan(inTail));
}

void CTemporaryStream::SetSize(std::uint64_t size) {
  CheckUnfinished();
  if (size < Size()) return Shrink(size);
  const std::vector<std::uint8_t> zeros(
      static_cast<std::size_t>(std::min<std::uint64_t>(size - Size(), fStore->BlockSize())));
  while (Size() < size) {
    Append(std::span(zeros).first(
        static_cast<std::size_t>(std::min<std::uint64_t>(size - Size(), zeros.size()))));
  }
}

SharedMedia CTemporaryStream::Finish() {
  CheckUnfinished();
  std::uint32_t stream = 0;
  std::uint64_t offset = 0;
  if (fStream) {
    stream = *fStream;
    fStore->WriteStream(stream, fStored, fTail);
    fStore->ListStream(stream);
  } else {
    std::tie(stream, offset) = fStore->AppendSmallItem(fTail);
  }
  fFinished = true;
  return std::make_shared<CPartialMedia>(std::make_shared<CStream>(fStore, stream), offset, Size());
}

void CTemporaryStream::CheckUnfinished() const {
  if (fFinished) throw NSMordel::XIllegalCallSequence("a packed item is used after its finish");
}

void CTemporaryStream::Append(std::span<const std::uint8_t> source) {
  while (!source.empty()) {
    const std::size_t count = std::min(source.size(), fStore->BlockSize() - fTail.size());
    fTail.insert(fTail.end(), source.begin(), source.begin() + static_cast<std::ptrdiff_t>(count));
    source = source.subspan(count);
    if (fTail.size() == fStore->BlockSize()) StoreTail();
  }
}

void CTemporaryStream::StoreTail() {
  if (!fStream) fStream = fStore->NewUnlistedStream();
  fStore->WriteStream(*fStream, fStored, fTail);
  fStored += fTail.size();
  fTail.clear();
}

void CTemporaryStream::Shrink(std::uint64_t size) {
  if (size >= fStored) return fTail.resize(static_cast<std::size_t>(size - fStored));
  const std::uint64_t stored = size - size % fStore->BlockSize();
  std::vector<std::uint8_t> tail(static_cast<std::size_t>(size - stored));
  ReadExactly(CStream(fStore, *fStream), stored, tail);
  fStore->ResizeStream(*fStream, stored);
  fStored = stored;
  fTail = std::move(tail);
}

}  // namespace NSBigFilePackage
