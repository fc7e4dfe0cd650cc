#pragma once

#include <mutex>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSBigFilePackage {

/// A read-only media in front of another one that fetches `bufferSize` bytes at a time, so that
/// many short reads near each other cost one read of the other media. Put a CMediaCursor on it to
/// read in order. It keeps one window, the last one fetched; reads of at least the buffer's size
/// bypass it. What is written to the other media later need not be seen.
class CBufferedReader : public IMedia {
 public:
  static constexpr std::size_t kDefaultBufferSize = 16384;  ///< bytes

  /// `bufferSize` is at least 1.
  explicit CBufferedReader(SharedMedia media, std::size_t bufferSize = kDefaultBufferSize);

  /// The other media's size when the reader was made.
  std::uint64_t Size() const override { return fSize; }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  /// Throws XReadOnly.
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  /// Throws XReadOnly.
  void SetSize(std::uint64_t size) override;
  void Flush() override {}

 private:
  /// Copies what the window holds from `position` on; returns the number of bytes.
  std::size_t ReadFromWindow(std::uint64_t position, std::span<std::uint8_t> destination) const;

  SharedMedia fMedia;
  std::uint64_t fSize;
  mutable std::mutex fMutex;  // over the window: reading is safe from several threads
  mutable std::vector<std::uint8_t> fBuffer;
  mutable std::uint64_t fWindowStart = 0;
  mutable std::size_t fWindowLength = 0;  // bytes of fBuffer that are valid
};

}  // namespace NSBigFilePackage
