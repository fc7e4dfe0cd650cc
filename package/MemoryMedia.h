#pragma once

#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSBigFilePackage {

/// Bytes in memory as a media.
class CMemoryMedia : public IMedia {
 public:
  CMemoryMedia() = default;
  explicit CMemoryMedia(std::vector<std::uint8_t> bytes);

  const std::vector<std::uint8_t>& Bytes() const { return fBytes; }
  /// Hands the bytes over; the media is empty afterwards.
  std::vector<std::uint8_t> TakeBytes();

  std::uint64_t Size() const override { return fBytes.size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  /// Throws XOutOfSpace when the end lies behind what memory can hold.
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  /// Throws as Write.
  void SetSize(std::uint64_t size) override;
  void Flush() override {}

 private:
  std::vector<std::uint8_t> fBytes;
};

/// Bytes that somebody else owns as a media for reading. They must outlive the view, unchanged.
class CMemoryView : public IMedia {
 public:
  explicit CMemoryView(std::span<const std::uint8_t> bytes) : fBytes(bytes) {}

  std::uint64_t Size() const override { return fBytes.size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  /// Throws XReadOnly.
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  /// Throws XReadOnly.
  void SetSize(std::uint64_t size) override;
  void Flush() override {}

 private:
  std::span<const std::uint8_t> fBytes;
};

}  // namespace NSBigFilePackage
