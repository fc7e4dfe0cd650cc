#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/FourCharCode.h"

namespace NSTambraPacking {

/// Bytes that grow at their end, integers in one byte order.
class CDemoBytes {
 public:
  explicit CDemoBytes(NSTolbrook::EByteOrder order) : fOrder(order) {}

  template <std::unsigned_integral T>
  CDemoBytes& Add(T value) {
    fBytes.resize(fBytes.size() + sizeof(T));
    NSTolbrook::StoreInteger(std::span(fBytes).last(sizeof(T)), value, fOrder);
    return *this;
  }
  CDemoBytes& Code(NSTolbrook::FourCharCode code) {
    fBytes.resize(fBytes.size() + sizeof(code));
    NSTolbrook::StoreBigEndian(std::span(fBytes).last(sizeof(code)), code);
    return *this;
  }
  CDemoBytes& Text(std::string_view text) {
    fBytes.insert(fBytes.end(), text.begin(), text.end());
    return *this;
  }
  /// The text, cut or filled with zeros to `length` bytes.
  CDemoBytes& Field(std::string_view text, std::size_t length) {
    Text(text.substr(0, length));
    return Zeros(length - std::min(text.size(), length));
  }
  CDemoBytes& Zeros(std::size_t count) {
    fBytes.resize(fBytes.size() + count);
    return *this;
  }
  CDemoBytes& Bytes(std::span<const std::uint8_t> bytes) {
    fBytes.insert(fBytes.end(), bytes.begin(), bytes.end());
    return *this;
  }
  const std::vector<std::uint8_t>& Bytes() const { return fBytes; }
  std::vector<std::uint8_t> Take() { return std::move(fBytes); }

 private:
  NSTolbrook::EByteOrder fOrder;
  std::vector<std::uint8_t> fBytes;
};

}  // namespace NSTambraPacking
