#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTolbrook {

/// Little-endian data from outside, every access checked against its end. The bytes must outlive
/// the object.
class CCheckedBytes {
 public:
  /// `what` names the data in messages, for instance "the shortcut".
  CCheckedBytes(std::span<const std::uint8_t> bytes, std::string what)
      : fBytes(bytes), fWhat(std::move(what)) {}

  /// Throws XFormatViolation when the part does not lie inside the data.
  std::span<const std::uint8_t> Part(std::uint64_t offset, std::uint64_t size) const {
    if (offset > fBytes.size() || size > fBytes.size() - offset) {
      throw NSMordel::XFormatViolation(fWhat + " ends before the " + std::to_string(size) +
                                       " bytes at offset " + std::to_string(offset));
    }
    return fBytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
  }

  /// All from `offset` on, which may be the end. Throws as Part.
  std::span<const std::uint8_t> From(std::uint64_t offset) const {
    return fBytes.subspan(static_cast<std::size_t>(offset + Part(offset, 0).size()));
  }

  template <std::unsigned_integral T>
  T Integer(std::uint64_t offset) const {
    return LoadLittleEndian<T>(Part(offset, sizeof(T)));
  }

 private:
  std::span<const std::uint8_t> fBytes;
  std::string fWhat;
};

}  // namespace NSTolbrook
