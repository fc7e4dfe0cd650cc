#pragma once

#include <cstddef>
#include <cstdint>

#include "filetypes/dwop/DWOPDecodeState.h"

/// The decoder's loop, the same for every form. What is special to a form comes as the type `Form`,
/// which lies in the unnamed namespace of its source file: so each form has its own copy of all
/// that is here, and code compiled for one processor never serves another form.
///
/// What is long in decoding is the way from a residual over the sample, its five errors and five
/// sums to the order of the next value. It is not waited for: scalar registers follow the sum of
/// the order chosen last, and the next value is read as if the order stayed. Vectors compute all
/// orders beside it, and a branch that is seldom taken finds that another order has become best;
/// then the scalars are set anew. So the processor reads bits some frames ahead of the sums, and
/// nothing is ever undone by the program.
///
/// A block of frames is decoded without any test for what only damage brings about, above all for
/// numbers beyond the range that the loop is made for: it remembers the bits of all values it saw,
/// which are tested at its end. A block that fails, or meets something that is not handled here, is
/// dropped as if it had not been begun.
namespace NSTambraPacking {

inline constexpr std::size_t kDecodeBlockFrames = 256;
/// No sum of a stream in range falls below.
inline constexpr std::uint32_t kLeastDWOPSum = 31;

/// The values of a block, before they are narrowed and joined. A form may store each up to four
/// times, the later ones over the copies of the former.
struct CDWOPBlockValues {
  std::int32_t fFirst[kDecodeBlockFrames + 4];
  std::int32_t fSecond[kDecodeBlockFrames + 4];
};

/// Bounds that keep a block's arithmetic in range if the zigzags of all its values are below
/// kSeenLimit. A running sum a of numbers below z goes to a - a/32 + z at most, so that one of at
/// most 32z stays so.
///
/// 16 bits: the sum of order 0 stays at most 2^23, and so does the smallest; the modulus is below
/// 2^18 and a code at most 6 + 1 + 18 bits, so that two fit into 56. Errors of order k are below
/// 2^(17 + k), but for four frames behind such as Hold accepts, and all sums below 2^30.
///
/// 24 bits: the smallest sum is at most 2^30, the modulus below 2^25 and a code at most 32 bits.
/// The sums of orders 1 to 4 may wrap around.
template <class Form, bool kWide>
struct CDWOPBounds {
  static constexpr std::uint32_t kSeenLimit = kWide ? 1u << 25 : 1u << 18;

  static bool Hold(const CDWOPDecodeChannel& channel) {
    bool hold = channel.fSums[0] <= 32 * kSeenLimit;
    for (const std::uint32_t sum : channel.fSums) {
      hold &= sum >= kLeastDWOPSum && (kWide || sum < 1u << 28);
    }
    for (const std::uint32_t error : channel.fErrors) {
      hold &= kWide || error + (1u << 22) < 1u << 23;
    }
    return hold;
  }
};

/// `Form` has
/// - CBits: the next bits of the stream. At(bytes, bit); Refill to at least 56, reading 8 bytes and
///   moving on by up to 7; IsLow, below 32; Zeros in front; Skip; ReadCode(zeros, modulus), which
///   returns the residual of up to 6 zeros; Position in the bytes.
/// - CPredictors<kStereo, kWide>: made from the state, with the best orders chosen; Choose them
///   anew; FirstSum and SecondSum of the chosen; TakeIn the zigzags of a frame and store its values
///   where a pointer to the first channel's says, true when another order has become best; SawAbove
///   a limit that is a power of two; Save.
/// - Write<kStereo>(values, width, output, frames): narrows values and writes the samples.
template <class Form, bool kStereo, bool kWide>
class CDWOPBlockDecoder {
 public:
  explicit CDWOPBlockDecoder(CDWOPDecodeState& state) : fState(state) {}

  /// Decodes a block of at most kDecodeBlockFrames and returns its length, 0 when there are too few
  /// bytes or it cannot be done here.
  std::size_t Decode(std::int32_t* output, std::size_t frames) {
    const std::size_t room = fState.fByteCount - fState.fBit / 8;
    if (room < kReserve + kFrameBytes) return 0;
    std::size_t count = (room - kReserve) / kFrameBytes;
    if (count > kDecodeBlockFrames) count = kDecodeBlockFrames;
    if (count > frames) count = frames;

    CBits bits = CBits::At(fState.fBytes, fState.fBit);
    CPredictors predictors(fState);
    std::uint32_t firstSum = predictors.FirstSum(), secondSum = predictors.SecondSum();
    CDWOPBlockValues values;
    std::int32_t* next = values.fFirst;
    const std::int32_t* end = next + count;
    do {
      bits.Refill();
      std::uint32_t first, second = 0;
      const std::uint64_t firstZeros = bits.Zeros();
      if (firstZeros < kEscapeZeros) [[likely]] {
        first = bits.ReadCode(firstZeros, ModulusFor(firstSum));
      } else {
        const CEscaped escaped = ReadEscaped(bits, firstSum);
        if (!escaped.fUsable) return 0;
        bits = escaped.fBits;
        first = escaped.fValue;
        bits.Refill();
        end = next + 1;
      }
      if constexpr (kStereo) {
        if (kWide && bits.IsLow()) bits.Refill();
        const std::uint64_t secondZeros = bits.Zeros();
        if (secondZeros < kEscapeZeros) [[likely]] {
          second = bits.ReadCode(secondZeros, ModulusFor(secondSum));
        } else {
          bits.Refill();
          const CEscaped escaped = ReadEscaped(bits, secondSum);
          if (!escaped.fUsable) return 0;
          bits = escaped.fBits;
          second = escaped.fValue;
          end = next + 1;
        }
        secondSum += second - (secondSum >> 5);
      }
      firstSum += first - (firstSum >> 5);
      const bool changed = predictors.TakeIn(first, second, next);
      ++next;
      if (changed) [[unlikely]] {
        predictors.Choose();
        firstSum = predictors.FirstSum();
        secondSum = predictors.SecondSum();
        // A sum that wrapped around may become the best.
        if (kWide && (firstSum < kLeastDWOPSum || secondSum < kLeastDWOPSum)) return 0;
      }
    } while (next != end);

    if (predictors.SawAbove(CDWOPBounds<Form, kWide>::kSeenLimit)) return 0;
    count = static_cast<std::size_t>(next - values.fFirst);
    predictors.Save(fState);
    fState.fBit = bits.Position(fState.fBytes);
    Form::template Write<kStereo>(values, fState.fWidth, output, count);
    return count;
  }

 private:
  using CBits = typename Form::CBits;
  using CPredictors = typename Form::template CPredictors<kStereo, kWide>;

  static constexpr std::uint64_t kEscapeZeros = 7;
  static constexpr std::uint32_t kEscapeLimit = std::uint32_t{1} << 30;
  /// Taking bits in moves on by 7 bytes at most.
  static constexpr std::size_t kFrameBytes = kWide && kStereo ? 14 : 7;
  /// What is read beyond that: the start, 8 bytes at a time, and the escapes of one frame, of at
  /// most 20 bytes a value: 15 times 7 bits, since each quadruples a modulus below 2^30, and what
  /// follows. A block ends with the frame that has one.
  static constexpr std::size_t kReserve = 24 + 2 * 20;

  /// A value that begins with an escape; not usable when it is one that no encoder writes.
  struct CEscaped {
    CBits fBits;  // behind the value
    std::uint32_t fValue;
    bool fUsable;
  };

  static std::uint32_t ModulusFor(std::uint32_t sum) { return (3 * sum + 36) >> 7; }

  [[gnu::noinline]] static CEscaped ReadEscaped(CBits bits, std::uint32_t sum) {
    std::uint32_t modulus = ModulusFor(sum);
    std::uint32_t escapes = 0;
    for (; bits.Zeros() >= kEscapeZeros; bits.Refill()) {
      if (modulus >= kEscapeLimit) return {bits, 0, false};
      escapes += 7 * modulus;
      modulus <<= 2;
      bits.Skip(kEscapeZeros);
    }
    const std::uint32_t value = escapes + bits.ReadCode(bits.Zeros(), modulus);
    return {bits, value, true};
  }

  CDWOPDecodeState& fState;
};

template <class Form, bool kStereo, bool kWide>
std::size_t DecodeDWOPBlocks(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames) {
  for (unsigned i = 0; i < (kStereo ? 2 : 1); ++i) {
    if (!CDWOPBounds<Form, kWide>::Hold(state.fChannels[i])) return 0;
  }
  CDWOPBlockDecoder<Form, kStereo, kWide> decoder(state);
  std::size_t done = 0;
  while (done < frames) {
    const std::size_t count = decoder.Decode(output + done * (kStereo ? 2 : 1), frames - done);
    if (count == 0) break;
    done += count;
  }
  return done;
}

template <class Form>
std::size_t DecodeDWOPFramesBy(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames) {
  const bool wide = state.fWidth != 16;
  if (state.fChannelCount == 2) {
    return wide ? DecodeDWOPBlocks<Form, true, true>(state, output, frames)
                : DecodeDWOPBlocks<Form, true, false>(state, output, frames);
  }
  return wide ? DecodeDWOPBlocks<Form, false, true>(state, output, frames)
              : DecodeDWOPBlocks<Form, false, false>(state, output, frames);
}

}  // namespace NSTambraPacking
