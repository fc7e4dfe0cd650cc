#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/Clock.h"
#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "app/TextResources.h"

namespace NSTambraPacking {

/// What a run has to tell; entries are named by their paths, in entry order.
struct CPackLists {
  struct CEntryReferences {
    std::u16string fEntry;
    std::vector<std::u16string> fReferences;  ///< printed: "name => path"
  };
  struct CEntryNames {
    std::u16string fEntry;
    std::vector<std::u16string> fNames;  ///< in order of appearance, perhaps more than once
  };

  std::vector<std::u16string> fFailed;
  std::vector<CEntryReferences> fUnresolved;
  std::vector<CEntryReferences> fBroken;  ///< in the finished package
  std::vector<CEntryNames> fExternal;     ///< with the names of other packages
  std::vector<CEntryNames> fProhibited;   ///< with the names of the device types
  std::vector<std::u16string> fSkipped;   ///< because a sample they refer to was skipped
  std::vector<std::u16string> fUnreferenced;

  /// True when the run counts as failed.
  bool HasProblems() const;
  /// True when there is something to tell that is no problem.
  bool HasNotes() const;
};

/// Writes the plain-text log of a run: UTF-8, lines that end with CR LF, a section for each list
/// that is not empty and a closing line.
class CPackingLog {
 public:
  /// Both must outlive the log.
  CPackingLog(const CTextResources& texts, const NSTolbrook::IClock& clock)
      : fTexts(texts), fClock(clock) {}

  /// The whole text; `closingLine` is kLogComplete or kLogAborted.
  std::string Text(const CPackLists& lists, CStringNumber closingLine) const;

  /// Writes the text to a new file in `folder`, named after the package and the local time (with a
  /// counter from 2 on when the name is taken), and returns its path. A log that cannot be written
  /// as a whole is removed. Throws as CFile.
  NSTolbrook::NativePath Write(const NSTolbrook::NativePath& folder,
                               const std::u16string& packageName, const CPackLists& lists,
                               CStringNumber closingLine) const;

 private:
  NSTolbrook::CFile CreateFile(const NSTolbrook::NativePath& folder,
                               const std::u16string& packageName) const;

  const CTextResources& fTexts;
  const NSTolbrook::IClock& fClock;
};

}  // namespace NSTambraPacking
