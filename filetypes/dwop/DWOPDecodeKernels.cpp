#include "filetypes/dwop/DWOPDecodeKernels.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/dwop/DWOPFormat.h"
#include "filetypes/dwop/DWOPPredictor.h"

namespace NSTambraPacking {

namespace {

constexpr unsigned kBufferBits = 64;

std::uint32_t ModulusFor(std::uint32_t sum) {
  const std::uint32_t modulus = ((sum + 12) * 3) >> 7;
  return modulus == 0 ? 1 : modulus;
}

std::int32_t Narrow(std::uint32_t value, unsigned width) {
  const unsigned unused = 32 - width;
  return static_cast<std::int32_t>(value << unused) >> unused;
}

/// The next bits of the stream, the first in the highest place. Behind the fAvailable bits that
/// count there may be more of them, but nothing else: taking bytes in ORs the same bits again.
struct CBitBuffer {
  std::uint64_t fBits = 0;
  unsigned fAvailable = 0;
  const std::uint8_t* fNext = nullptr;

  /// At least 56 bits; reads 8 bytes.
  void Refill() {
    std::uint64_t word;
    std::memcpy(&word, fNext, sizeof(word));
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
    fBits |= word >> fAvailable;
    fNext += (kBufferBits - 1 - fAvailable) >> 3;
    fAvailable |= 56;
  }
  void Skip(unsigned count) {
    fBits <<= count;
    fAvailable -= count;
  }
};

/// One channel, with the choice of the next value's order made.
struct CSpeculation {
  std::uint32_t fPredictions[5];  // of the next value, by each order
  std::uint32_t fSums[5];
  std::uint64_t fKey = 0;  // eight times the smallest sum, plus its order

  explicit CSpeculation(const CDWOPDecodeChannel& state) {
    fPredictions[0] = 0;
    for (unsigned i = 0; i < 4; ++i) fPredictions[i + 1] = fPredictions[i] + state.fErrors[i];
    std::copy_n(state.fSums, 5, fSums);
    fKey = BestKey();
  }
  std::uint64_t BestKey() const {
    std::uint64_t key = std::uint64_t{fSums[0]} << 3;
    for (unsigned i = 1; i < 5; ++i) {
      const std::uint64_t other = (std::uint64_t{fSums[i]} << 3) + i;
      key = other < key ? other : key;
    }
    return key;
  }
  void Save(CDWOPDecodeChannel& state) const {
    for (unsigned i = 0; i < 4; ++i) state.fErrors[i] = fPredictions[i + 1] - fPredictions[i];
    std::copy_n(fSums, 5, state.fSums);
  }
  void TakeIn(std::uint32_t value) {
    std::uint32_t next = 0;
    for (unsigned i = 0; i < 5; ++i) {
      const std::uint32_t error = value - fPredictions[i];
      fPredictions[i] = next;
      next += error;
      fSums[i] += ZigzagFromError(error) - (fSums[i] >> 5);
    }
    fKey = BestKey();
  }
};

/// False in front of an escape.
inline bool ReadResidual(CBitBuffer& bits, std::uint32_t sum, std::uint32_t& value) {
  const auto zeros = static_cast<unsigned>(std::countl_zero(bits.fBits));
  if (zeros >= kDWOPEscapeZeros) return false;
  const std::uint64_t aligned = bits.fBits << zeros;  // the one bit is the highest
  const std::uint32_t modulus = ModulusFor(sum);
  const auto length = static_cast<unsigned>(std::bit_width(modulus));
  const auto longer = static_cast<std::uint32_t>(aligned >> (kBufferBits - 1 - length));
  const std::uint32_t half = std::uint32_t{1} << (length - 1);
  const std::uint32_t shortCode = (longer >> 1) - half;
  const std::uint32_t longCode = longer + modulus - 4 * half;
  const std::uint32_t extra = shortCode + modulus >= 2 * half ? 1 : 0;
  const std::uint32_t mask = 0 - extra;
  value = zeros * modulus + (shortCode ^ ((shortCode ^ longCode) & mask));
  bits.Skip(zeros + length + extra);
  return true;
}

struct CBitReader {
  const CDWOPDecodeState& fState;
  std::size_t fBit;

  unsigned Bit() {
    if (fBit / 8 >= fState.fByteCount) throw NSMordel::XFormatViolation("zero length sample");
    const unsigned bit = fState.fBytes[fBit / 8] >> (7 - fBit % 8) & 1u;
    ++fBit;
    return bit;
  }
  std::uint32_t Bits(unsigned count) {
    std::uint32_t value = 0;
    for (; count > 0; --count) value = value << 1 | Bit();
    return value;
  }
  /// Zero bits up to seven; fewer than seven are followed by a one bit, which is taken too.
  std::uint32_t Zeros() {
    std::uint32_t zeros = 0;
    while (zeros < kDWOPEscapeZeros && Bit() == 0) ++zeros;
    return zeros;
  }
  std::uint32_t Residual(std::uint32_t modulus) {
    std::uint32_t value = 0;
    std::uint32_t zeros = Zeros();
    for (; zeros == kDWOPEscapeZeros; zeros = Zeros()) {
      if (modulus >= kDWOPEscapeLimit) {
        throw NSMordel::XFormatViolation("a DWOP residual is beyond 32 bits");
      }
      value += kDWOPEscapeZeros * modulus;
      modulus <<= kDWOPEscapeShift;
    }
    const auto length = static_cast<unsigned>(std::bit_width(modulus));
    const auto shortCodes = static_cast<std::uint32_t>((std::uint64_t{1} << length) - modulus);
    std::uint32_t remainder = Bits(length - 1);
    if (remainder >= shortCodes) remainder = (remainder << 1) + Bit() - shortCodes;
    return value + zeros * modulus + remainder;
  }
};

std::uint32_t DecodeValue(CBitReader& reader, CDWOPDecodeChannel& channel) {
  CSpeculation coder(channel);
  const auto sum = static_cast<std::uint32_t>(coder.fKey >> 3);
  const std::uint32_t zigzag = reader.Residual(ModulusFor(sum));
  const std::uint32_t value = ErrorFromZigzag(zigzag) + coder.fPredictions[coder.fKey & 7];
  coder.TakeIn(value);
  coder.Save(channel);
  return value;
}

template <bool kStereo>
std::size_t DecodeFrames(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames) {
  constexpr std::size_t kFrameBytes = kStereo ? 14 : 7;
  const std::size_t room = state.fByteCount - state.fBit / 8;
  if (room < 2 * kFrameBytes + 8) return 0;
  frames = std::min(frames, (room - 8) / kFrameBytes - 1);
  CSpeculation first(state.fChannels[0]);
  CSpeculation second(state.fChannels[kStereo ? 1 : 0]);
  CBitBuffer bits;
  bits.fNext = state.fBytes + state.fBit / 8;
  bits.Refill();
  bits.Skip(state.fBit % 8);
  const unsigned width = state.fWidth;
  std::uint64_t keyFirst = first.fKey, keySecond = second.fKey;
  std::size_t i = 0;
  const std::uint8_t* next = bits.fNext;
  unsigned available = bits.fAvailable;
  for (; i < frames; ++i) {
    next = bits.fNext;
    available = bits.fAvailable;
    bits.Refill();
    std::uint32_t zigzag = 0;
    if (!ReadResidual(bits, static_cast<std::uint32_t>(keyFirst >> 3), zigzag)) break;
    std::uint32_t other = 0;
    if constexpr (kStereo) {
      bits.Refill();
      if (!ReadResidual(bits, static_cast<std::uint32_t>(keySecond >> 3), other)) break;
    }
    const std::uint32_t left = ErrorFromZigzag(zigzag) + first.fPredictions[keyFirst & 7];
    first.TakeIn(left);
    // A branch that foretells the key: if the order stays, the next value need not wait.
    const auto guess = [](std::uint64_t key, std::uint32_t z) {
      const auto sum = static_cast<std::uint32_t>(key >> 3);
      return std::uint64_t{sum - (sum >> 5) + z} << 3 | (key & 7);
    };
    keyFirst = guess(keyFirst, zigzag);
    if (keyFirst != first.fKey) [[unlikely]] {
      keyFirst = first.fKey;
      asm volatile("" : "+r"(keyFirst));
    }
    if constexpr (kStereo) {
      const std::uint32_t difference = ErrorFromZigzag(other) + second.fPredictions[keySecond & 7];
      second.TakeIn(difference);
      keySecond = guess(keySecond, other);
      if (keySecond != second.fKey) [[unlikely]] {
        keySecond = second.fKey;
        asm volatile("" : "+r"(keySecond));
      }
      output[2 * i] = Narrow(left, width);
      output[2 * i + 1] = Narrow(left + difference, width);
    } else {
      output[i] = Narrow(left, width);
    }
  }
  if (i == frames) {
    next = bits.fNext;
    available = bits.fAvailable;
  }
  first.Save(state.fChannels[0]);
  if constexpr (kStereo) second.Save(state.fChannels[1]);
  state.fBit = static_cast<std::size_t>(next - state.fBytes) * 8 - available;
  return i;
}

}  // namespace

std::size_t DecodeDWOPFrames(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames) {
  return state.fChannelCount == 2 ? DecodeFrames<true>(state, output, frames)
                                  : DecodeFrames<false>(state, output, frames);
}

void DecodeDWOPFrame(CDWOPDecodeState& state, std::int32_t* output) {
  CBitReader reader{state, state.fBit};
  const std::uint32_t first = DecodeValue(reader, state.fChannels[0]);
  output[0] = Narrow(first, state.fWidth);
  if (state.fChannelCount == 2) {
    output[1] = Narrow(first + DecodeValue(reader, state.fChannels[1]), state.fWidth);
  }
  state.fBit = reader.fBit;
}

}  // namespace NSTambraPacking
