#pragma once

#include <optional>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSBigFilePackage {

class CBlockStore;

/// One packed item while it is written: it can be read, rewritten and resized at will until
/// Finish. Its last, partly filled block stays in memory (never more than one block), the blocks
/// before it are in a stream of its own that the directory does not list yet. An item that stays
/// below one block never gets a stream: Finish appends it to one that all small items share, so
/// that it costs no block. An item that is not finished leaves nothing behind.
///
/// One item belongs to one thread at a time; several items of a store may be written at once.
class CTemporaryStream : public IMedia {
 public:
  explicit CTemporaryStream(std::shared_ptr<CBlockStore> store);
  CTemporaryStream(const CTemporaryStream&) = delete;
  CTemporaryStream& operator=(const CTemporaryStream&) = delete;
  /// Gives the blocks of an unfinished item back.
  ~CTemporaryStream() override;

  std::uint64_t Size() const override { return fStored + fTail.size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  void SetSize(std::uint64_t size) override;
  /// Does nothing: an item can only be kept by Finish and the store's next commit.
  void Flush() override {}

  /// The finished item: read-only, readable from any thread at once, in the directory from the
  /// next commit on. It keeps the store alive. Afterwards this object is done with: its calls throw
  /// XIllegalCallSequence. An item whose Finish failed is still unfinished.
  SharedMedia Finish();

 private:
  void CheckUnfinished() const;
  /// Puts bytes behind the item's end.
  void Append(std::span<const std::uint8_t> source);
  void StoreTail();
  void Shrink(std::uint64_t size);

  std::shared_ptr<CBlockStore> fStore;
  std::optional<std::uint32_t> fStream;  ///< once a block was full
  std::uint64_t fStored = 0;             ///< bytes in the stream: whole blocks
  std::vector<std::uint8_t> fTail;       ///< the bytes behind them, less than a block
  bool fFinished = false;
};

}  // namespace NSBigFilePackage
