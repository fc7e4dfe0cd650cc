#include "filetypes/dwop/DWOPBitWriter.h"

#include <algorithm>
#include <cstring>

namespace NSTambraPacking {

namespace {

constexpr std::size_t kWordBytes = 4;

/// A word of 8 equal bytes.
constexpr std::uint64_t EightTimes(unsigned byte) { return 0x0101010101010101 * byte; }

std::uint64_t Load(const std::uint8_t* source) {
  std::uint64_t word = 0;
  std::memcpy(&word, source, sizeof(word));
  return word;
}

/// target[i] = the low bits of source[i - 1], then the high ones of source[i], for 1 <= i < count;
/// `shift` is 1 to 7. Eight bytes at a time in either byte order, since no bit leaves its byte.
void CopyShifted(const std::uint8_t* source, std::size_t count, unsigned shift,
                 std::uint8_t* target) {
  const std::uint64_t lowMask = EightTimes(0xFFu >> shift);
  std::size_t i = 1;
  for (; i + sizeof(std::uint64_t) <= count; i += sizeof(std::uint64_t)) {
    const std::uint64_t word =
        (Load(source + i) >> shift & lowMask) | (Load(source + i - 1) << (8 - shift) & ~lowMask);
    std::memcpy(target + i, &word, sizeof(word));
  }
  for (; i < count; ++i) {
    target[i] = static_cast<std::uint8_t>(source[i - 1] << (8 - shift) | source[i] >> shift);
  }
}

}  // namespace

CDWOPBitWriter::CDWOPBitWriter(NSBigFilePackage::CMediaCursor& output, std::span<std::uint8_t> room)
    : fOutput(&output), fRoom(room.first(kRoomLength)) {
  fPosition.fPlace = fRoom.data();
}

CDWOPBitPosition CDWOPBitWriter::Reserve(std::size_t bytes) {
  const auto used = static_cast<std::size_t>(fPosition.fPlace - fRoom.data());
  if (used + bytes + sizeof(std::uint64_t) > fRoom.size()) {
    // More than kDWOPWriteLength, since `bytes` is at most the rest of the room.
    fOutput->Write(fRoom.first(kDWOPWriteLength));
    std::copy_n(fRoom.begin() + kDWOPWriteLength, used - kDWOPWriteLength, fRoom.begin());
    fPosition.fPlace -= kDWOPWriteLength;
  }
  return fPosition;
}

void CDWOPBitWriter::AppendBits(const std::uint8_t* source, std::uint64_t first,
                                std::uint64_t end) {
  source += first / 8;
  end -= first / 8 * 8;
  if (const auto skipped = static_cast<unsigned>(first % 8); skipped > 0 && first % 8 < end) {
    CDWOPBitPosition position = Reserve(1);
    const auto bits = static_cast<unsigned>(std::min<std::uint64_t>(end, 8)) - skipped;
    position.Append(source[0] >> (8 - skipped - bits) & ((1u << bits) - 1), bits);
    SetPosition(position);
    if (end <= 8) return;
    ++source;
    end -= 8;
  }
  while (end >= 8) {
    const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(end / 8, kMostReserved));
    AppendBytes({source, bytes});
    source += bytes;
    end -= bytes * 8;
  }
  if (end > 0) {
    CDWOPBitPosition position = Reserve(1);
    const auto bits = static_cast<unsigned>(end);
    position.Append(source[0] >> (8 - bits), bits);
    SetPosition(position);
  }
}

void CDWOPBitWriter::AppendBytes(std::span<const std::uint8_t> source) {
  Reserve(source.size());
  const unsigned shift = fPosition.fBegunBits;
  std::uint8_t* target = fPosition.fPlace;
  if (shift == 0) {
    std::copy(source.begin(), source.end(), target);
  } else {
    target[0] = static_cast<std::uint8_t>(fPosition.fBits << (8 - shift) | source[0] >> shift);
    CopyShifted(source.data(), source.size(), shift, target);
    fPosition.fBits = source.back();
  }
  fPosition.fPlace += source.size();
}

void CDWOPBitWriter::Finish() {
  CDWOPBitPosition position = Reserve(kWordBytes);
  if (position.fBegunBits > 0) position.Append(0, 8 - position.fBegunBits);
  auto length = static_cast<std::size_t>(position.fPlace - fRoom.data());
  // What was written before are whole words.
  for (; length % kWordBytes != 0; ++length) fRoom[length] = 0;
  if (length > 0) fOutput->Write(fRoom.first(length));
  fPosition = {fRoom.data(), 0, 0};
}

}  // namespace NSTambraPacking
