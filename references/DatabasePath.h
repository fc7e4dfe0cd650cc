#pragma once

#include <memory>
#include <string>

#include "references/PathText.h"
#include "references/XMLElement.h"

namespace NSTambraPacking {

enum class EDatabasePathKind { kPlain, kPackage, kDeviceContent };

/// Where a file lies inside an installed package or a device's content.
class CDatabasePath {
 public:
  /// An invalid form.
  CDatabasePath() = default;
  /// A valid one.
  CDatabasePath(EDatabasePathKind kind, std::u16string packageName, CPathComponents components);

  /// An element that is missing (nullptr) or has another name gives an invalid form. Throws
  /// XFormatViolation for a path that does not begin with "/".
  static CDatabasePath Parse(const NSTolbrook::CXMLElement* element);
  /// Null for an invalid form.
  std::shared_ptr<NSTolbrook::CXMLElement> Write() const;
  /// "name:a/b.wav", "a/b.wav" without a package name, or "*invalid database path*".
  std::u16string Print() const;

  bool IsValid() const { return fValid; }
  EDatabasePathKind Kind() const { return fKind; }
  const std::u16string& PackageName() const { return fPackageName; }
  const CPathComponents& Components() const { return fComponents; }

  friend bool operator==(const CDatabasePath&, const CDatabasePath&) = default;

 private:
  bool fValid = false;
  EDatabasePathKind fKind = EDatabasePathKind::kPlain;
  std::u16string fPackageName;
  CPathComponents fComponents;
};

}  // namespace NSTambraPacking
