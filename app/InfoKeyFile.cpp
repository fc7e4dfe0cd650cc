#include "app/InfoKeyFile.h"

namespace NSTambraPacking {

std::vector<CInfoValuePlace> FindInfoValues(std::u16string_view text) {
  enum class EState { kBetweenPairs, kInKey, kAfterKey, kInValue };

  std::vector<CInfoValuePlace> places;
  EState state = EState::kBetweenPairs;
  CInfoValuePlace place;
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char16_t unit = text[index];
    switch (state) {
      case EState::kBetweenPairs:
        if (unit == u'\r' || unit == u'\n' || unit == u' ' || unit == u'\t') break;
        place.fKey = unit;
        state = EState::kInKey;
        break;
      case EState::kInKey:
        if (unit == u'\r' || unit == u'\n' || unit == u' ' || unit == u'=') {
          state = EState::kAfterKey;
        } else {
          place.fKey += unit;
        }
        break;
      case EState::kAfterKey:
        if (unit == u'"') {
          place.fBegin = index + 1;
          state = EState::kInValue;
        }
        break;
      case EState::kInValue:
        if (unit == u'"') {
          place.fEnd = index;
          places.push_back(place);
          state = EState::kBetweenPairs;
        }
        break;
    }
  }
  return places;
}

std::vector<std::pair<std::u16string, std::u16string>> ParseInfoKeyFile(std::u16string_view text) {
  std::vector<std::pair<std::u16string, std::u16string>> pairs;
  for (CInfoValuePlace& place : FindInfoValues(text)) {
    std::u16string value(text.substr(place.fBegin, place.fEnd - place.fBegin));
    std::erase_if(value, [](char16_t unit) { return unit == u'\r' || unit == u'\n'; });
    pairs.emplace_back(std::move(place.fKey), std::move(value));
  }
  return pairs;
}

}  // namespace NSTambraPacking
