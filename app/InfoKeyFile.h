#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace NSTambraPacking {

/// Where a pair of a key file has its value: the units from fBegin to before fEnd.
struct CInfoValuePlace {
  std::u16string fKey;
  std::size_t fBegin = 0;
  std::size_t fEnd = 0;
};

/// The pairs of a key file in their order, repeated keys included:
///
///     NAME = "My library"
///     SKIP_UNUSED_SAMPLES="YES"
///
/// A key ends at a blank, a line end or "="; all up to the next double quote is ignored. A value
/// ends at the next double quote, for which there is no escape, and its line ends are dropped; a
/// value that is never closed is not stored.
std::vector<CInfoValuePlace> FindInfoValues(std::u16string_view text);

/// The same pairs with their values.
std::vector<std::pair<std::u16string, std::u16string>> ParseInfoKeyFile(std::u16string_view text);

}  // namespace NSTambraPacking
