#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPFormat.h"

namespace NSTambraPacking {

/// Where the next bits go: bytes in memory that has room for them, and 8 bytes more. A plain value,
/// so that a loop can keep it in registers.
struct CDWOPBitPosition {
  std::uint8_t* fPlace = nullptr;
  /// The lowest fBegunBits bits are those of the byte at fPlace; what is above them is arbitrary.
  std::uint64_t fBits = 0;
  /// 0 to 7.
  unsigned fBegunBits = 0;

  /// The lowest `count` (1 to 57) bits of `value`, the highest first; those above must be 0.
  void Append(std::uint64_t value, unsigned count) {
    fBits = fBits << count | value;
    fBegunBits += count;
    // Always 8 bytes: what lies behind the begun byte is overwritten by the next call.
    NSTolbrook::StoreBigEndian(std::span<std::uint8_t>(fPlace, sizeof(fBits)),
                               fBits << (64 - fBegunBits));
    fPlace += fBegunBits / 8;
    fBegunBits %= 8;
  }

  /// The residual code of `value`: zero bits that count the modulus (at least 1), with escapes, a
  /// one bit, and the remainder in truncated binary. At most kDWOPLongestCode bytes.
  void AppendResidual(std::uint32_t value, std::uint32_t modulus);
};

/// The most bytes that a residual takes: 15 escapes, 6 zeros, a one bit and a remainder of 32 bits.
inline constexpr std::size_t kDWOPLongestCode = 18;

/// Collects bits, the most significant first, and writes them to a cursor, which must outlive the
/// writer, in pieces of kDWOPWriteLength bytes. What was written is complete only after Finish.
class CDWOPBitWriter {
 public:
  /// `room` is memory of kRoomLength bytes.
  CDWOPBitWriter(NSBigFilePackage::CMediaCursor& output, std::span<std::uint8_t> room);

  /// The most bytes that can be asked for at once.
  static constexpr std::size_t kMostReserved = 32768;
  static constexpr std::size_t kRoomLength =
      kDWOPWriteLength + kMostReserved + sizeof(std::uint64_t);

  /// The position, with room for `bytes` (at most kMostReserved) behind it. Whoever appends there
  /// sets it again. Throws as Write of the media, as do the others.
  CDWOPBitPosition Reserve(std::size_t bytes);
  void SetPosition(const CDWOPBitPosition& position) { fPosition = position; }

  /// The bits [first, end) of `source`, the most significant of its first byte being bit 0.
  void AppendBits(const std::uint8_t* source, std::uint64_t first, std::uint64_t end);

  /// Fills a 32-bit word that has been begun with zero bits and writes what is buffered.
  void Finish();

 private:
  /// Whole bytes, at most kMostReserved of them.
  void AppendBytes(std::span<const std::uint8_t> source);

  NSBigFilePackage::CMediaCursor* fOutput;
  std::span<std::uint8_t> fRoom;
  CDWOPBitPosition fPosition;
};

inline void CDWOPBitPosition::AppendResidual(std::uint32_t value, std::uint32_t modulus) {
  std::uint32_t quotient = value / modulus;
  while (quotient >= kDWOPEscapeZeros) [[unlikely]] {
      Append(0, kDWOPEscapeZeros);
      value -= kDWOPEscapeZeros * modulus;
      modulus <<= kDWOPEscapeShift;
      quotient = value / modulus;
    }
  const std::uint32_t remainder = value - quotient * modulus;
  // With 2^t the power of two that is not above m: the short code is s = 2^t + r, the long one, for
  // s >= 3 * 2^t - m, has one bit more and is s + 3 * 2^t - m.
  const unsigned topBit = 31u ^ static_cast<unsigned>(std::countl_zero(modulus));
  const std::uint64_t power = std::uint64_t{1} << topBit;
  const std::uint64_t code = power + remainder;
  const std::uint64_t limit = 3 * power - modulus;
  // 1 or 0 by arithmetic: a branch would be mispredicted every other time.
  const std::uint64_t isLong = (limit - 1 - code) >> 63;
  Append(code + (limit & (0 - isLong)), quotient + 1 + topBit + static_cast<unsigned>(isLong));
}

}  // namespace NSTambraPacking
