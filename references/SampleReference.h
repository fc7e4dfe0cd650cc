#pragma once

#include <memory>
#include <optional>
#include <string>

#include "references/AbsolutePath.h"
#include "references/DatabasePath.h"
#include "references/RelativePath.h"
#include "references/XMLElement.h"

namespace NSTambraPacking {

enum class ESampleType { kSample, kLQX };

/// What a patch or song knows about a sample or sliced loop that it uses: names, where the file
/// came from, and up to three forms of its path.
struct CSampleReference {
  /// The file's own name.
  std::u16string fTrueName;
  std::u16string fUserFriendlyName;
  /// Nothing when the document does not say.
  std::optional<ESampleType> fType;
  /// The package that the file came from, and its web address.
  std::u16string fTambraName;
  std::u16string fTambraURL;
  /// The plug-in device whose content the file is.
  std::u16string fDeviceInternalID;
  std::u16string fDeviceUIName;
  std::u16string fDeviceVersion;
  /// The package's name as the host lists it.
  std::u16string fPackageName;
  CDatabasePath fDatabasePath;
  CAbsolutePath fAbsolutePath;
  CRelativePath fRelativePath;

  /// Throws XFormatViolation "Expected SampleReference XML node" for an element of another name,
  /// "Illegal sample type", and what the three forms throw. Unknown attributes and children are
  /// ignored.
  static CSampleReference Parse(const NSTolbrook::CXMLElement& element);
  /// `missingType` is written when the reference has no type of its own. Children without any
  /// value and invalid forms are left out.
  std::shared_ptr<NSTolbrook::CXMLElement> Write(ESampleType missingType) const;

  /// The true name, or the user-friendly one when that is empty.
  const std::u16string& DisplayName() const;
  /// The first valid form, in the order relative, database, absolute.
  std::u16string PrintPath() const;
  /// "name => path", as it stands in the packing log.
  std::u16string Print() const;

  friend bool operator==(const CSampleReference&, const CSampleReference&) = default;
};

}  // namespace NSTambraPacking
