#pragma once

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace NSTest {

/// Hands every beginning of `whole` (bytes or a text) that is shorter than it to `take`.
template <class Bytes, class Take>
void ForEachCut(const Bytes& whole, const Take& take) {
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE("cut to " + std::to_string(length));
    take(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
  }
}

/// Hands `whole` to `take` once for each of its bits, with that bit turned.
template <class Bytes, class Take>
void ForEachTurnedBit(const Bytes& whole, const Take& take) {
  for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
    SCOPED_TRACE("bit " + std::to_string(bit));
    Bytes damaged = whole;
    auto& byte = damaged[bit / 8];
    byte = static_cast<typename Bytes::value_type>(byte ^ (0x80 >> bit % 8));
    take(damaged);
  }
}

}  // namespace NSTest
