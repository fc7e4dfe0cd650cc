#include "app/Advice.h"

#include <algorithm>
#include <fmt/format.h>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {
constexpr int kTextsOfKind = 5;
}

const std::vector<CAdviceKind>& AdviceKinds() {
  static const std::vector<CAdviceKind> kinds = {
      {EAdvice::kStrayFile, "stray-file", ESeverity::kError},
      {EAdvice::kSearchedReference, "searched-reference", ESeverity::kWarning},
      {EAdvice::kCaseClash, "case-clash", ESeverity::kWarning},
      {EAdvice::kSizeLimit, "size-limit", ESeverity::kWarning},
      {EAdvice::kEmptySample, "empty-sample", ESeverity::kWarning},
      {EAdvice::kSilentSample, "silent-sample", ESeverity::kWarning},
      {EAdvice::kClippedSample, "clipped-sample", ESeverity::kWarning},
      {EAdvice::kDCOffset, "dc-offset", ESeverity::kWarning},
      {EAdvice::kLoopClick, "loop-click", ESeverity::kWarning},
      {EAdvice::kMissingRootKey, "missing-root-key", ESeverity::kWarning},
      {EAdvice::kSamplesConverted, "samples-converted", ESeverity::kNote},
      {EAdvice::kSourceNotKept, "source-not-kept", ESeverity::kNote},
      {EAdvice::kDuplicateAudio, "duplicate-audio", ESeverity::kNote},
      {EAdvice::kUnportableName, "unportable-name", ESeverity::kWarning},
  };
  return kinds;
}

const CAdviceKind& AdviceKind(EAdvice advice) {
  return AdviceKinds().at(static_cast<std::size_t>(advice));
}

const CAdviceKind* FindAdviceKind(std::string_view id) {
  const auto found = std::ranges::find(AdviceKinds(), id, &CAdviceKind::fId);
  return found == AdviceKinds().end() ? nullptr : &*found;
}

CStringNumber AdviceText(EAdvice advice, EAdviceText text) {
  return {
      kFirstAdviceText.fTable,
      kFirstAdviceText.fEntry + kTextsOfKind * static_cast<int>(advice) + static_cast<int>(text)};
}

std::u16string CAdviceValue::Text() const {
  if (const auto* const text = std::get_if<std::u16string>(&fValue)) return *text;
  if (const auto* const fraction = std::get_if<double>(&fValue)) {
    return NSTolbrook::TextFromUtf8(fmt::format("{:.2f}", *fraction));
  }
  return NSTolbrook::TextFromUtf8(std::to_string(std::get<std::uint64_t>(fValue)));
}

std::u16string CAdvice::Detail(const CTextResources& texts) const {
  std::vector<std::u16string> arguments;
  for (const CAdviceValue& value : fValues) arguments.push_back(value.Text());
  return texts.Text(AdviceText(fAdvice, EAdviceText::kDetail), arguments);
}

}  // namespace NSTambraPacking
