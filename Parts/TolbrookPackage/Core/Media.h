#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace NSBigFilePackage {

/// A container of bytes with a size, read and written at absolute positions (in bytes from its
/// start). Reading from several threads at once is safe; writing is not.
class IMedia {
 public:
  virtual ~IMedia() = default;

  virtual std::uint64_t Size() const = 0;

  /// Reads up to destination.size() bytes from `position`. Returns the number of bytes read, which
  /// is less than asked for only where the media ends (0 at or behind its end). Throws XRead.
  virtual std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const = 0;

  /// Writes all of `source` at `position`; the media grows when the end lies behind its own, and a
  /// gap reads as zeros. Throws XWrite, XOutOfSpace, and XReadOnly when it cannot be written.
  virtual void Write(std::uint64_t position, std::span<const std::uint8_t> source) = 0;

  /// Cuts the media or makes it longer with zeros. Throws as Write.
  virtual void SetSize(std::uint64_t size) = 0;

  /// Returns when all that was written is on stable storage. Throws XWrite.
  virtual void Flush() = 0;
};

using SharedMedia = std::shared_ptr<IMedia>;

/// Fills all of `destination` from `position`; throws XRead when the media ends earlier.
void ReadExactly(const IMedia& media, std::uint64_t position, std::span<std::uint8_t> destination);

/// A current position on a media: each read and write moves it on by the bytes handled. The media
/// must outlive the cursor.
class CMediaCursor {
 public:
  explicit CMediaCursor(IMedia& media, std::uint64_t position = 0);

  IMedia& Media() const { return *fMedia; }
  std::uint64_t Position() const { return fPosition; }
  void SetPosition(std::uint64_t position) { fPosition = position; }
  /// Bytes from the position to the media's end; 0 behind it.
  std::uint64_t Remaining() const;

  /// As IMedia::Read.
  std::size_t Read(std::span<std::uint8_t> destination);
  /// Throws XRead, the position unchanged, when fewer bytes remain.
  void ReadExactly(std::span<std::uint8_t> destination);
  void Write(std::span<const std::uint8_t> source);

 private:
  IMedia* fMedia;
  std::uint64_t fPosition;
};

}  // namespace NSBigFilePackage
