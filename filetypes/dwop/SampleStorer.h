#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "filetypes/dwop/AudioLayout.h"

namespace NSTambraPacking {

/// Turns samples of a stream into the bytes of an audio file: the inverse of reading them, exact
/// for integers of up to 24 bits and the nearest value for all else.
class CSampleStorer {
 public:
  /// Samples are right-justified in `width` (16 or 24) bits.
  CSampleStorer(const CSampleForm& form, unsigned width);

  /// Appends the stored form of `samples` to `bytes`.
  void Store(std::span<const std::int32_t> samples, std::vector<std::uint8_t>& bytes) const;

 private:
  struct CLawCode {
    std::int32_t fValue = 0;
    std::uint8_t fCode = 0;
  };

  /// The form's bits of one sample, right-justified.
  std::uint64_t BitsOf(std::int32_t sample) const;
  std::uint8_t NearestCode(std::int32_t value) const;

  CSampleForm fForm;
  unsigned fWidth;
  /// The values of all codes of mu-law or A-law, ascending; empty for other forms.
  std::vector<CLawCode> fLawCodes;
};

/// The 16-bit values of the eight-bit codes (ITU-T G.711, scaled to 16 bits).
std::int32_t ValueFromMuLaw(std::uint8_t code);
std::int32_t ValueFromALaw(std::uint8_t code);

}  // namespace NSTambraPacking
