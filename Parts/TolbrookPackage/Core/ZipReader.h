#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTolbrook {

/// Reads the members of a zip archive (APPNOTE 6.3, without zip64): stored or deflated. What is
/// known of a member comes from the central directory, so data descriptors do no harm.
class CZipReader {
 public:
  static constexpr std::uint32_t kDefaultLimit = 16 * 1024 * 1024;

  /// Reads the directory. Throws XFormatViolation for damage (a name that comes twice is damage,
  /// too) and XUnsupportedFormat for an archive in several parts or in zip64 form.
  explicit CZipReader(NSBigFilePackage::SharedMedia archive);
  /// As above, over bytes that must outlive the reader.
  explicit CZipReader(std::span<const std::uint8_t> archive);

  /// The names' bytes as they are stored, ascending.
  std::vector<std::string> Names() const;

  /// A member's bytes. Throws XNotFound for an absent name, XUnsupportedFormat for a member that
  /// is encrypted, in zip64 form, packed by another method or larger than `limit` bytes, and
  /// XFormatViolation for damage, its check value included.
  std::vector<std::uint8_t> Read(std::string_view name, std::uint32_t limit = kDefaultLimit) const;

 private:
  struct CMember {
    std::uint16_t fFlags, fMethod;
    std::uint32_t fCheckValue, fPackedSize, fSize, fHeaderOffset;
  };

  void ReadDirectory(std::uint32_t size, std::uint32_t count);
  std::vector<std::uint8_t> ReadPacked(const std::string& name, const CMember& member) const;

  NSBigFilePackage::SharedMedia fArchive;
  std::uint64_t fDirectoryOffset = 0;
  std::map<std::string, CMember, std::less<>> fMembers;
};

}  // namespace NSTolbrook
