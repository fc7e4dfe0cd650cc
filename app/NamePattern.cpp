#include "app/NamePattern.h"

#include <cstddef>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

/// UTF-16 units of the character at `index`.
std::size_t CharacterLength(std::u16string_view text, std::size_t index) {
  const bool isPair = text[index] >= 0xD800 && text[index] < 0xDC00 && index + 1 < text.size();
  return isPair ? 2 : 1;
}

}  // namespace

bool MatchesPattern(std::u16string_view path, std::u16string_view pattern) {
  const std::u16string text = NSTolbrook::NormalizeText(path);
  const std::u16string wanted = NSTolbrook::NormalizeText(pattern);
  constexpr std::size_t kNone = std::u16string::npos;
  std::size_t at = 0;
  std::size_t in = 0;
  // Only the last star can have to take more: what an earlier one took leaves as much room as any.
  std::size_t star = kNone;
  std::size_t starEnd = 0;
  while (at < text.size()) {
    if (in < wanted.size() && wanted[in] == u'*') {
      star = in++;
      starEnd = at;
    } else if (in < wanted.size() && wanted[in] == u'?') {
      at += CharacterLength(text, at);
      ++in;
    } else if (in < wanted.size() && wanted[in] == text[at]) {
      ++at;
      ++in;
    } else if (star != kNone) {
      starEnd += CharacterLength(text, starEnd);
      at = starEnd;
      in = star + 1;
    } else {
      return false;
    }
  }
  while (in < wanted.size() && wanted[in] == u'*') ++in;
  return in == wanted.size();
}

}  // namespace NSTambraPacking
