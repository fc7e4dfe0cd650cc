#pragma once

namespace NSTambraPacking {

struct CPackageInformation;

/// What the progress object needs from the run whose reports it gets.
class IPackJobChecks {
 public:
  virtual ~IPackJobChecks() = default;
  virtual const CPackageInformation& Information() const = 0;
  /// At the end of phase 3. Throws XAbort when entries have failed, then when entries are
  /// unresolved.
  virtual void CheckEntries() = 0;
  /// Behind CheckEntries: asks about the files that refer to other packages when `warn` is true.
  /// Throws XAbort when the user does not want to go on.
  virtual void CheckExternalReferences(bool warn) = 0;
};

}  // namespace NSTambraPacking
