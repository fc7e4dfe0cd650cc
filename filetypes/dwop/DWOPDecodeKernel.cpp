#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "filetypes/dwop/DWOPDecodeBlock.h"
#include "filetypes/dwop/DWOPDecodeKernels.h"

namespace NSTambraPacking {

namespace {

constexpr std::uint64_t kBelowTop = ~std::uint64_t{0} >> 1;

/// The first bit in the highest place. Behind the fAvailable bits that count there may be more of
/// the stream's bits, but nothing else: they are merged in once more.
class CPlainBits {
 public:
  static CPlainBits At(const std::uint8_t* bytes, std::size_t bit) {
    CPlainBits bits;
    bits.fNext = bytes + bit / 8;
    bits.Refill();
    bits.Skip(bit % 8);
    return bits;
  }

  void Refill() {
    std::uint64_t word;
    std::memcpy(&word, fNext, sizeof(word));
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
    fBits |= word >> (fAvailable & 63);
    fNext += (~fAvailable & 56) >> 3;
    fAvailable |= 56;
  }
  bool IsLow() const { return (fAvailable & 32) == 0; }
  std::uint64_t Zeros() const { return static_cast<std::uint64_t>(std::countl_zero(fBits)); }
  void Skip(std::uint64_t count) {
    fBits <<= count & 63;
    fAvailable -= count;
  }

  /// With the modulus m shifted up until its highest bit is bit 63, and the bits behind the stop
  /// bit from bit 62 down, the remainder is of the long form exactly when the sum of both carries:
  /// it says of the first b - 1 bits r that r + m >= 2^b. Then m - 2^b is added, which is the
  /// shifted m shifted down again with its sign. A mask, since a branch would be a coin's toss.
  std::uint32_t ReadCode(std::uint64_t zeros, std::uint64_t modulus) {
    const std::uint64_t payload = fBits << (zeros & 63) & kBelowTop;
    const auto up = static_cast<std::uint64_t>(std::countl_zero(modulus)) & 63;
    const std::uint64_t raised = modulus << up;
    const std::uint64_t isLong = 0 - static_cast<std::uint64_t>(payload + raised < raised);
    const std::uint64_t shift = up + isLong;
    const auto longBase = static_cast<std::uint64_t>(static_cast<std::int64_t>(raised) >> up);
    const std::uint64_t value = (payload >> (shift & 63)) + (longBase & isLong) + zeros * modulus;
    Skip(zeros - shift);
    return static_cast<std::uint32_t>(value);
  }

  std::size_t Position(const std::uint8_t* bytes) const {
    return static_cast<std::size_t>(fNext - bytes) * 8 - (fAvailable & 63);
  }

 private:
  std::uint64_t fBits = 0;
  const std::uint8_t* fNext = nullptr;
  /// Modulo 64.
  std::uint64_t fAvailable = 0;
};

// Vectors of the compiler: of 128 bits where the processor has them, plain registers elsewhere.
using CFour [[gnu::vector_size(16)]] = std::uint32_t;
using CFourSigned [[gnu::vector_size(16)]] = std::int32_t;
using CTwo [[gnu::vector_size(16)]] = std::uint64_t;

CFour Splat(std::uint32_t value) { return CFour{value, value, value, value}; }
CFour LoadFour(const std::uint32_t* from) {
  CFour four;
  std::memcpy(&four, from, sizeof(four));
  return four;
}
void StoreFour(std::uint32_t* to, CFour four) { std::memcpy(to, &four, sizeof(four)); }

CFour Signs(CFour four) {
  return reinterpret_cast<CFour>(reinterpret_cast<CFourSigned>(four) >> 31);
}
CFour ZigzagFromError(CFour error) { return (error + error) ^ Signs(error); }
CFour ErrorFromZigzag(CFour zigzag) { return (zigzag >> 1) ^ Signs(zigzag << 31); }
CFour Follow(CFour sums, CFour zigzags) { return sums - (sums >> 5) + zigzags; }
/// All ones where `left`, read with its sign, is above `right`.
CFour Above(CFour left, CFour right) {
  return reinterpret_cast<CFour>(reinterpret_cast<CFourSigned>(left) >
                                 reinterpret_cast<CFourSigned>(right));
}

/// One channel's orders 1 to 4.
template <bool kWide>
struct CPlainChannel {
  /// Of orders 0 to 3.
  CFour fErrors;
  CFour fSums;
  /// The assumed order, and one in the lanes that are below it.
  std::size_t fOrder = 0;
  CFour fBelow;
  /// Predictions of orders 0 to 4 in the last five places.
  std::array<std::uint32_t, 8> fPredictions{};

  explicit CPlainChannel(const CDWOPDecodeChannel& channel)
      : fErrors(LoadFour(channel.fErrors)), fSums(LoadFour(channel.fSums + 1)) {}

  /// Returns the sum of the order that is best.
  std::uint32_t Choose(std::uint32_t zero) {
    std::uint32_t least = zero;
    fOrder = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      if (fSums[i] < least) {
        least = fSums[i];
        fOrder = i + 1;
      }
    }
    const auto order = static_cast<std::uint32_t>(fOrder);
    fBelow = CFour{order > 1, order > 2, order > 3, 0};
    return least;
  }

  /// The value in all lanes.
  CFour TakeIn(CFour error) {
    const CFour none{};
    const CFour twofold = fErrors + __builtin_shufflevector(none, fErrors, 3, 4, 5, 6);
    const CFour predictions = twofold + __builtin_shufflevector(none, twofold, 2, 3, 4, 5);
    StoreFour(fPredictions.data() + 4, predictions);
    const CFour value = error + Splat(fPredictions[3 + fOrder]);
    const CFour errors = value - predictions;
    fErrors = __builtin_shufflevector(value, errors, 0, 4, 5, 6);
    fSums = Follow(fSums, ZigzagFromError(errors));
    return value;
  }

  /// Ones where an order is better than the assumed one, of sum `assumed` (below 2^31, in all
  /// lanes): a lower one whose sum is not above, a higher one whose sum is below.
  CFour Better(CFour assumed) const {
    CFour least = assumed + fBelow;
    CFour sums = fSums;
    if constexpr (kWide) {
      // They may be any 32 bits.
      least ^= Splat(1u << 31);
      sums ^= Splat(1u << 31);
    }
    return Above(least, sums);
  }

  void Save(CDWOPDecodeChannel& channel) const {
    StoreFour(channel.fErrors, fErrors);
    StoreFour(channel.fSums + 1, fSums);
  }
};

template <bool kStereo, bool kWide>
class CPlainPredictors {
 public:
  explicit CPlainPredictors(const CDWOPDecodeState& state)
      : fFirst(state.fChannels[0]),
        fSecond(state.fChannels[kStereo]),
        fSide{state.fChannels[0].fSums[0], state.fChannels[kStereo].fSums[0], 0, 0},
        fSeen{} {
    Choose();
  }

  void Choose() {
    const std::uint32_t first = fFirst.Choose(fSide[0]);
    const std::uint32_t second = kStereo ? fSecond.Choose(fSide[1]) : first;
    fSide = CFour{fSide[0], fSide[1], first, second};
    fSideBelow = CFour{fFirst.fOrder > 0, kStereo && fSecond.fOrder > 0, 0, 0};
  }

  std::uint32_t FirstSum() const { return fSide[2]; }
  std::uint32_t SecondSum() const { return fSide[3]; }

  bool TakeIn(std::uint32_t first, std::uint32_t second, std::int32_t* values) {
    const CFour zigzags{kStereo ? 0 : first, kStereo ? 0 : first, first, kStereo ? second : first};
    const CFour errors = ErrorFromZigzag(zigzags);
    const CFour firstValue = fFirst.TakeIn(__builtin_shufflevector(errors, errors, 2, 2, 2, 2));
    CFour secondValue = firstValue;
    values[0] = static_cast<std::int32_t>(firstValue[0]);
    if constexpr (kStereo) {
      secondValue = fSecond.TakeIn(__builtin_shufflevector(errors, errors, 3, 3, 3, 3));
      values[offsetof(CDWOPBlockValues, fSecond) / sizeof(std::int32_t)] =
          static_cast<std::int32_t>(secondValue[0]);
    }
    const CFour valueZigzags =
        ZigzagFromError(__builtin_shufflevector(firstValue, secondValue, 0, 4, 1, 5));
    fSeen |= valueZigzags;
    fSide = Follow(fSide, __builtin_shufflevector(valueZigzags, zigzags, 0, 1, 6, 7));

    const CFour assumed = __builtin_shufflevector(fSide, fSide, 2, 3, 2, 3);
    CFour better = Above(assumed + fSideBelow, fSide) |
                   fFirst.Better(__builtin_shufflevector(fSide, fSide, 2, 2, 2, 2));
    if constexpr (kStereo) {
      better |= fSecond.Better(__builtin_shufflevector(fSide, fSide, 3, 3, 3, 3));
    }
    return !IsZero(better);
  }

  bool SawAbove(std::uint32_t limit) const { return !IsZero(fSeen & Splat(~(limit - 1))); }

  void Save(CDWOPDecodeState& state) const {
    fFirst.Save(state.fChannels[0]);
    state.fChannels[0].fSums[0] = fSide[0];
    if constexpr (!kStereo) return;
    fSecond.Save(state.fChannels[1]);
    state.fChannels[1].fSums[0] = fSide[1];
  }

 private:
  static bool IsZero(CFour four) {
    const auto two = reinterpret_cast<CTwo>(four);
    return (two | __builtin_shufflevector(two, two, 1, 0))[0] == 0;
  }

  CPlainChannel<kWide> fFirst;
  CPlainChannel<kWide> fSecond;
  /// The sums of order 0 of both channels, then those of the assumed orders (mono: twice the same).
  CFour fSide;
  /// One in the lanes of order 0 if the assumed order is above.
  CFour fSideBelow;
  CFour fSeen;
};

struct CPlainForm {
  using CBits = CPlainBits;
  template <bool kStereo, bool kWide>
  using CPredictors = CPlainPredictors<kStereo, kWide>;

  template <bool kStereo>
  static void Write(const CDWOPBlockValues& values, unsigned width, std::int32_t* output,
                    std::size_t frames) {
    const unsigned unused = 32 - width;
    const auto narrow = [unused](std::uint32_t value) {
      return static_cast<std::int32_t>(value << unused) >> unused;
    };
    for (std::size_t i = 0; i < frames; ++i) {
      const auto first = static_cast<std::uint32_t>(values.fFirst[i]);
      output[kStereo ? 2 * i : i] = narrow(first);
      if constexpr (kStereo) {
        output[2 * i + 1] = narrow(first + static_cast<std::uint32_t>(values.fSecond[i]));
      }
    }
  }
};

}  // namespace

std::size_t DecodeDWOPFrames(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames) {
  return DecodeDWOPFramesBy<CPlainForm>(state, output, frames);
}

}  // namespace NSTambraPacking
