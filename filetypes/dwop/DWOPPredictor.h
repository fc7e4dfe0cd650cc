#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "filetypes/dwop/DWOPFormat.h"

namespace NSTambraPacking {

/// Folds the sign into the lowest bit: 0, -1, 1, -2, 2 (in two's complement) become 0, 1, 2, 3, 4.
constexpr std::uint32_t ZigzagFromError(std::uint32_t error) {
  return (error << 1) ^ (std::uint32_t{0} - (error >> 31));
}
/// The inverse of ZigzagFromError.
constexpr std::uint32_t ErrorFromZigzag(std::uint32_t zigzag) {
  return (zigzag >> 1) ^ (std::uint32_t{0} - (zigzag & 1));
}

/// The adaptive predictor of one channel: predicts each value by the polynomials of order 0 to 4
/// through the last values, and picks the order that did best lately. All arithmetic is unsigned
/// 32-bit with wrap-around, so that every sequence of values can be coded.
///
/// One value: BestOrder, then Modulus and either Advance (encoding, for the error to write) or
/// ValueFromError and Advance (decoding), then UpdateSums.
class CDWOPPredictor {
 public:
  CDWOPPredictor() { fSums.fill(kDWOPInitialSum); }

  /// The order (0 to 4) with the smallest running sum; of equals the lowest.
  std::size_t BestOrder() const {
    std::size_t best = 0;
    for (std::size_t order = 1; order < kDWOPOrders; ++order) {
      if (fSums[order] < fSums[best]) best = order;
    }
    return best;
  }

  /// The modulus of the residual code for an order; never 0.
  std::uint32_t Modulus(std::size_t order) const {
    const std::uint32_t modulus = ((fSums[order] + 12) * 3) >> 7;
    return modulus == 0 ? 1 : modulus;
  }

  /// The last value's error under the predictor of an order; that of order 0 is the value itself.
  std::uint32_t Error(std::size_t order) const { return fErrors[order]; }

  /// The value whose error under `order` would be `error`, if it came next.
  std::uint32_t ValueFromError(std::size_t order, std::uint32_t error) const {
    for (std::size_t lower = 0; lower < order; ++lower) error += fErrors[lower];
    return error;
  }

  /// Takes in the next value: computes its errors under all orders.
  void Advance(std::uint32_t value) {
    std::uint32_t difference = value;
    for (std::uint32_t& error : fErrors) {
      const std::uint32_t previous = error;
      error = difference;
      difference -= previous;
    }
  }

  /// Lets the running sums follow the errors of the last value.
  void UpdateSums() {
    for (std::size_t order = 0; order < kDWOPOrders; ++order) {
      fSums[order] += ZigzagFromError(fErrors[order]) - (fSums[order] >> 5);
    }
  }

 private:
  std::array<std::uint32_t, kDWOPOrders> fErrors{};
  std::array<std::uint32_t, kDWOPOrders> fSums;
};

}  // namespace NSTambraPacking
