#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "references/PathText.h"
#include "references/XMLElement.h"

namespace NSTambraPacking {

/// Where a file lies seen from the folder of the document that refers to it: so many folders up,
/// then down the components.
class CRelativePath {
 public:
  /// An invalid form.
  CRelativePath() = default;
  /// A valid one; `stepUp` must not be negative.
  CRelativePath(std::int32_t stepUp, CPathComponents components);

  /// An element that is missing (nullptr) or has another name gives an invalid form. Throws
  /// XFormatViolation for every other fault.
  static CRelativePath Parse(const NSTolbrook::CXMLElement* element);
  /// Null for an invalid form.
  std::shared_ptr<NSTolbrook::CXMLElement> Write() const;
  /// "../../a/b.wav", or "*invalid relative path*".
  std::u16string Print() const;

  bool IsValid() const { return fValid; }
  std::int32_t StepUp() const { return fStepUp; }
  const CPathComponents& Components() const { return fComponents; }

  friend bool operator==(const CRelativePath&, const CRelativePath&) = default;

 private:
  bool fValid = false;
  std::int32_t fStepUp = 0;
  CPathComponents fComponents;
};

}  // namespace NSTambraPacking
