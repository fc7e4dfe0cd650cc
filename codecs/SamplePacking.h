#pragma once

namespace NSTambraPacking {

/// How the samples of an interleaved block lie in memory. All are two's complement.
enum class ESamplePacking {
  k16Little,  ///< 2 bytes, the lowest first
  k16Big,     ///< 2 bytes, the highest first
  k24Little,  ///< 3 bytes, the lowest first
  k24Big,     ///< 3 bytes, the highest first
  kInt32,     ///< 4 bytes in this machine's order, right-justified and sign-extended
};

}  // namespace NSTambraPacking
