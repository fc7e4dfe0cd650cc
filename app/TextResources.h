#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "app/AlertText.h"
#include "app/MenuScript.h"
#include "app/TextNumbers.h"
#include "app/TextTable.h"

namespace NSTambraPacking {

/// Every text that the program shows. The tables are bundled with the program; a folder can hold
/// others, each of which replaces the bundled one of its name as a whole ("SSTR/128.txt"). All are
/// read by the constructor; afterwards every function is safe from several threads.
class CTextResources {
 public:
  /// Where there is a table in more than one of the folders, the last counts. Throws
  /// XFormatViolation for a table that cannot be read, with its name, line and fault.
  explicit CTextResources(const std::vector<NSTolbrook::NativePath>& folders = {},
                          EPlatform platform = ThisPlatform());

  /// The folders to look in: "resources" beside the program, if there is one, then `named`, the
  /// user's choice, if there is one. Throws XNotFound when `named` is no folder.
  static std::vector<NSTolbrook::NativePath> Folders(
      const std::optional<NSTolbrook::NativePath>& named);

  /// The text with its arguments in place of "^0", "^1" … Throws XNotFound, with the numbers of
  /// table and entry, for one that is missing.
  std::u16string Text(CStringNumber number,
                      const std::vector<std::u16string>& arguments = {}) const;

  /// As Text. The generic alerts 200 to 208 have the text of 21. Throws XFormatViolation when a
  /// table's text breaks the grammar of alerts.
  CAlertText Alert(CAlertNumber number, const std::vector<std::u16string>& arguments = {}) const;

  const CMenuScript& Menus() const { return *fMenus; }

 private:
  using CTables = std::map<int, CTextTable>;

  CTables fStrings;
  CTables fAlerts;
  std::optional<CMenuScript> fMenus;
};

}  // namespace NSTambraPacking
