#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

/// Integers in byte buffers, one byte after the other whatever the processor's own order.
namespace NSTolbrook {

enum class EByteOrder { kBigEndian, kLittleEndian };

/// The unsigned integer in the first sizeof(T) bytes; the span must hold at least as many.
template <std::unsigned_integral T>
constexpr T LoadInteger(std::span<const std::uint8_t> bytes, EByteOrder order) {
  T value = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    const std::size_t index = order == EByteOrder::kBigEndian ? i : sizeof(T) - 1 - i;
    value = static_cast<T>((static_cast<std::uint64_t>(value) << 8) | bytes[index]);
  }
  return value;
}

/// Stores `value` into the first sizeof(T) bytes; the span must hold at least as many.
template <std::unsigned_integral T>
constexpr void StoreInteger(std::span<std::uint8_t> bytes, T value, EByteOrder order) {
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    const std::size_t index = order == EByteOrder::kBigEndian ? sizeof(T) - 1 - i : i;
    bytes[index] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i));
  }
}

template <std::unsigned_integral T>
constexpr T LoadBigEndian(std::span<const std::uint8_t> bytes) {
  return LoadInteger<T>(bytes, EByteOrder::kBigEndian);
}

template <std::unsigned_integral T>
constexpr T LoadLittleEndian(std::span<const std::uint8_t> bytes) {
  return LoadInteger<T>(bytes, EByteOrder::kLittleEndian);
}

template <std::unsigned_integral T>
constexpr void StoreBigEndian(std::span<std::uint8_t> bytes, T value) {
  StoreInteger(bytes, value, EByteOrder::kBigEndian);
}

template <std::unsigned_integral T>
constexpr void StoreLittleEndian(std::span<std::uint8_t> bytes, T value) {
  StoreInteger(bytes, value, EByteOrder::kLittleEndian);
}

}  // namespace NSTolbrook
