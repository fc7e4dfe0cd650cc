#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "package/PackageEntry.h"

namespace NSTambraPacking {

/// What can differ between an entry of one package and the entry of the same path in another.
enum class EDifference {
  kType,              ///< the file type's code
  kFlag,              ///< whether references are resolved
  kLength,            ///< of samples: frames; like the next four, of the sound itself
  kChannels,          ///< of samples
  kWidth,             ///< of samples: bits
  kRate,              ///< of samples: frames a second
  kSound,             ///< of samples: the same form, but not the same samples
  kRootKey,           ///< of samples; like the next four, of the data beside the sound
  kFineTune,          ///< of samples: cents
  kLoopMode,          ///< of samples
  kLoopStart,         ///< of samples: the first frame
  kLoopEnd,           ///< of samples: the frame behind the last
  kExtraInformation,  ///< of samples: what the source file held beside its samples
  kReferenceRemoved,  ///< of documents: a reference of the first package alone
  kReferenceAdded,    ///< of documents: one of the second package alone
  kContent,           ///< other bytes
  kDamagedBefore,     ///< the first package's entry cannot be read, so that only bytes can differ
  kDamagedAfter,      ///< as kDamagedBefore, the second package's
};

struct CDifference {
  EDifference fKind;
  /// The values before and after, the reference, or what is damaged; may be empty.
  std::u16string fBefore;
  std::u16string fAfter;
};

/// One entry, or one field of the header, that is not the same.
struct CChange {
  enum class EKind { kHeader, kRemoved, kAdded, kChanged };
  EKind fKind;
  /// The entry's path; of a header one of "name", "version", "url", "copyright", "comment".
  std::u16string fName;
  /// Of a changed entry at least one; of a header one (kContent) with the two values.
  std::vector<CDifference> fDifferences;
};

/// Hands over how the second package differs from the first: header fields, then the entries of the
/// first in its order, then those of the second alone in its order. Where in the files the entries
/// lie does not count. Returns the number of changes. `checkStop` is called often and may throw.
/// Throws as CPackageReader, XFormatViolation for two entries of one name, and XRead; memory does
/// not grow with the entries' sizes.
std::size_t ComparePackages(const NSBigFilePackage::SharedMedia& before,
                            const NSBigFilePackage::SharedMedia& after,
                            const std::function<void(const CChange&)>& report,
                            const std::function<void()>& checkStop);

}  // namespace NSTambraPacking
