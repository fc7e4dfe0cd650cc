#pragma once

#include <cstddef>

namespace NSTolbrook {

/// Levels of elements that a document may have, the root being the first. The documents themselves
/// have four; the limit bounds what a hostile one can cost.
inline constexpr std::size_t kGreatestXMLDepth = 256;

/// Elements and attributes together that a document may have: a node in memory is some forty times
/// as large as the shortest one in a file.
inline constexpr std::size_t kGreatestXMLNodeCount = std::size_t{1} << 20;

}  // namespace NSTolbrook
