#include "app/InfoKeyFile.h"

namespace NSTambraPacking {

std::vector<std::pair<std::u16string, std::u16string>> ParseInfoKeyFile(std::u16string_view text) {
  enum class EState { kBetweenPairs, kInKey, kAfterKey, kInValue };

  std::vector<std::pair<std::u16string, std::u16string>> pairs;
  EState state = EState::kBetweenPairs;
  std::u16string key;
  std::u16string value;
  for (const char16_t unit : text) {
    const bool isLineEnd = unit == u'\r' || unit == u'\n';
    switch (state) {
      case EState::kBetweenPairs:
        if (isLineEnd || unit == u' ' || unit == u'\t') break;
        key = unit;
        state = EState::kInKey;
        break;
      case EState::kInKey:
        if (isLineEnd || unit == u' ' || unit == u'=') {
          state = EState::kAfterKey;
        } else {
          key += unit;
        }
        break;
      case EState::kAfterKey:
        if (unit == u'"') {
          value.clear();
          state = EState::kInValue;
        }
        break;
      case EState::kInValue:
        if (unit == u'"') {
          pairs.emplace_back(key, value);
          state = EState::kBetweenPairs;
        } else if (!isLineEnd) {
          value += unit;
        }
        break;
    }
  }
  return pairs;
}

}  // namespace NSTambraPacking
