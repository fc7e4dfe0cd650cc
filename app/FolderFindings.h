#pragma once

#include <exception>
#include <string>
#include <vector>

#include "app/PackJobState.h"
#include "app/TextResources.h"

namespace NSTambraPacking {

enum class EFinding {
  kProblem,  ///< keeps the folder from being packed
  kLeftOut,  ///< a file that will not be in the package
  kNote,     ///< goes into the log, or is good to know
  kAdvice,   ///< can be packed, and is yet not as it should be
};

/// Something to know about a folder before it is packed.
struct CFolderFinding {
  EFinding fKind = EFinding::kProblem;
  std::u16string fFile;  ///< from the input root; empty when it concerns the folder
  std::u16string fText;
  std::vector<std::u16string> fHints;

  bool operator==(const CFolderFinding&) const = default;
};

/// What is wrong with the folder as a whole, with the way to mend it: the package's name, version
/// or splash, a shortcut, or whatever else an alert tells.
CFolderFinding FaultAsFinding(const CTextResources& texts, const std::exception_ptr& fault);

/// What a check found: problems first, then what is left out, then notes.
std::vector<CFolderFinding> CheckAsFindings(const CTextResources& texts,
                                            const CPackJobState& state);

/// The advice of a check but what its findings tell already.
std::vector<CFolderFinding> AdviceAsFindings(const CTextResources& texts,
                                             const CPackJobState& state);

}  // namespace NSTambraPacking
