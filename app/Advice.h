#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "app/TextResources.h"

namespace NSTambraPacking {

/// What a check can say about a library beyond whether it can be packed, in the order of the
/// report.
enum class EAdvice {
  kStrayFile,
  kSearchedReference,
  kCaseClash,
  kSizeLimit,
  kEmptySample,
  kSilentSample,
  kClippedSample,
  kDCOffset,
  kLoopClick,
  kMissingRootKey,
  kSamplesConverted,
  kSourceNotKept,
  kDuplicateAudio,
  kUnportableName,
};

/// From the lightest.
enum class ESeverity { kOff, kNote, kWarning, kError };

inline constexpr std::array<std::string_view, 4> kSeverityNames = {"off", "note", "warning",
                                                                   "error"};

/// A kind of advice: its stable name and how bad it is unless the publisher says otherwise.
struct CAdviceKind {
  EAdvice fAdvice;
  std::string_view fId;
  ESeverity fSeverity;
};

/// All kinds, in the order of EAdvice.
const std::vector<CAdviceKind>& AdviceKinds();
const CAdviceKind& AdviceKind(EAdvice advice);
/// nullptr when no kind has this name.
const CAdviceKind* FindAdviceKind(std::string_view id);

/// The texts of a kind; "^0" and so on in the detail are the advice's values.
enum class EAdviceText { kTitle, kDetail, kWhat, kWhy, kHow };
CStringNumber AdviceText(EAdvice advice, EAdviceText text);

/// A measured or found value with its name for programs.
struct CAdviceValue {
  std::string_view fName;
  std::variant<std::uint64_t, double, std::u16string> fValue;

  /// Fractions with two digits.
  std::u16string Text() const;
};

/// One piece of advice about one file.
struct CAdvice {
  EAdvice fAdvice{};
  ESeverity fSeverity{};
  std::u16string fFile;
  std::vector<CAdviceValue> fValues;

  /// What was found, in words.
  std::u16string Detail(const CTextResources& texts) const;
};

}  // namespace NSTambraPacking
