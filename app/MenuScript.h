#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace NSTambraPacking {

struct CMenuItem {
  std::u16string fText;
  int fId = 0;             ///< the command; 0 for a separator
  std::u16string fKey;     ///< standard key, such as "Ctrl+I"; empty when there is none
  bool fDisabled = false;  ///< shown, but cannot be chosen at the start
  bool fCheckable = false;
  bool fChecked = false;  ///< at the start; implies fCheckable

  bool IsSeparator() const { return fText == u"-"; }
};

struct CMenu {
  int fId = 0;
  std::u16string fTitle;
  std::vector<CMenuItem> fItems;
};

/// The menus of a window, read from a text that a translator can edit:
///
///     2 {Tambra} (
///     	{Select Input Folder…} [id=101 key='Ctrl+I']
///     	{-}
///     	{Warn} [id=104 flags='checkable checked']
///     )
///
/// Numbers are decimal; texts stand between braces or single quotes, on one line; "{-}" is a
/// separator. Attributes, separated by blanks: id (a number; every item but a separator has one),
/// key (a text) and flags (a text of the words checkable, checked and disabled). Empty lines and
/// lines that begin with "//" are left out.
class CMenuScript {
 public:
  /// Throws XFormatViolation for a fault; its context names `name` and the line.
  CMenuScript(const std::string& name, std::string_view bytes);

  /// In the order of the text.
  const std::vector<CMenu>& Menus() const { return fMenus; }
  /// Throws XNotFound "menu ID not found in menu resource".
  const CMenu& Menu(int id) const;

 private:
  std::vector<CMenu> fMenus;
};

}  // namespace NSTambraPacking
