#include "filetypes/dwop/DWOPBitWriter.h"

#include <algorithm>
#include <bit>
#include <span>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"

namespace NSTambraPacking {

namespace {

constexpr unsigned kWordBits = 32;

}  // namespace

CDWOPBitWriter::CDWOPBitWriter(NSBigFilePackage::CMediaCursor& output) : fOutput(&output) {}

void CDWOPBitWriter::WriteBits(std::uint32_t value, unsigned count) {
  // 64 bits, since an empty accumulator is shifted by all of its 32.
  const std::uint64_t accumulator = fAccumulator;
  if (count <= fFreeBits) {
    fAccumulator = static_cast<std::uint32_t>((accumulator << count) | value);
    fFreeBits -= count;
    return;
  }
  const unsigned rest = count - fFreeBits;
  fAccumulator =
      static_cast<std::uint32_t>((accumulator << fFreeBits) | (std::uint64_t{value} >> rest));
  fFreeBits = 0;
  StoreWord();
  fAccumulator = static_cast<std::uint32_t>(value & ((std::uint64_t{1} << rest) - 1));
  fFreeBits = kWordBits - rest;
}

void CDWOPBitWriter::WriteResidual(std::uint32_t value, std::uint32_t modulus) {
  for (;;) {
    const std::uint32_t count = std::min(value / modulus, kDWOPEscapeZeros);
    WriteBits(0, count);
    value -= count * modulus;
    if (count < kDWOPEscapeZeros) break;
    modulus <<= kDWOPEscapeShift;
  }
  WriteBits(1, 1);
  const auto length = static_cast<unsigned>(std::bit_width(modulus));
  const auto shortCodes = static_cast<std::uint32_t>((std::uint64_t{1} << length) - modulus);
  if (value < shortCodes) {
    WriteBits(value, length - 1);
  } else {
    WriteBits(value + shortCodes, length);
  }
}

void CDWOPBitWriter::Finish() {
  if (fFreeBits < kWordBits) {
    fAccumulator = static_cast<std::uint32_t>(std::uint64_t{fAccumulator} << fFreeBits);
    StoreWord();
  }
  WriteBuffer();
}

void CDWOPBitWriter::StoreWord() {
  NSTolbrook::StoreBigEndian(std::span(fBuffer).subspan(fBuffered), fAccumulator);
  fBuffered += sizeof(fAccumulator);
  fAccumulator = 0;
  fFreeBits = kWordBits;
  if (fBuffered == fBuffer.size()) WriteBuffer();
}

void CDWOPBitWriter::WriteBuffer() {
  if (fBuffered > 0) fOutput->Write(std::span(fBuffer).first(fBuffered));
  fBuffered = 0;
}

}  // namespace NSTambraPacking
