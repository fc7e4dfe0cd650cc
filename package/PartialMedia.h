#pragma once

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSBigFilePackage {

/// A read-only window on another media. Its position 0 is byte `start` of the other.
class CPartialMedia : public IMedia {
 public:
  /// Throws XFormatViolation when the window does not lie wholly inside `media` as it is now.
  CPartialMedia(SharedMedia media, std::uint64_t start, std::uint64_t length);

  std::uint64_t Size() const override { return fLength; }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  /// Throws XReadOnly.
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  /// Throws XReadOnly.
  void SetSize(std::uint64_t size) override;
  /// Nothing is ever written through the window, so nothing is to be done.
  void Flush() override {}

 private:
  SharedMedia fMedia;
  std::uint64_t fStart;
  std::uint64_t fLength;
};

/// A window that can be written: all of another media from `start` to its end, wherever that end
/// is at the time. Writing behind the end makes both grow, SetSize moves the end of both.
class CWritablePartialMedia : public IMedia {
 public:
  /// `start` may lie behind the media's end: the window is empty then, and the first write fills
  /// the gap with zeros.
  CWritablePartialMedia(SharedMedia media, std::uint64_t start);

  std::uint64_t Size() const override;
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  void SetSize(std::uint64_t size) override;
  void Flush() override;

 private:
  /// The other media's position; throws XOutOfSpace when it does not fit 64 bits.
  std::uint64_t OuterPosition(std::uint64_t position) const;

  SharedMedia fMedia;
  std::uint64_t fStart;
};

}  // namespace NSBigFilePackage
