#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace NSTambraPacking {

/// The answers of an alert: its last-listed button, and the one listed before it.
inline constexpr int kLastButton = 33;
inline constexpr int kButtonBefore = 34;

enum class EAlertKind { kNone, kStop, kNote, kWarn };

/// The text of an alert: "[NOTE][Pack complete]The message.[Open Log File][OK]". The kind is
/// followed by a title, which may be missing, the message and at least one button. Inside, "[",
/// "]" and "\" that mean themselves have a backslash before them; in the parts below it is gone.
struct CAlertText {
  EAlertKind fKind = EAlertKind::kNone;
  std::u16string fTitle;  ///< empty when there is none
  std::u16string fMessage;
  std::vector<std::u16string> fButtons;  ///< as listed, at least one

  /// Throws XFormatViolation when `text` breaks the grammar.
  static CAlertText Parse(std::u16string_view text);

  /// What the alert returns for the button `index` of fButtons.
  int Answer(std::size_t index) const;
};

/// `argument` with a backslash before each "[", "]" and backslash, so that it can be put into the
/// text of an alert without ever opening or closing a bracket of the alert's own.
std::u16string EscapeAlertArgument(std::u16string_view argument);

/// `text` with each of "^0" to "^9" replaced by the argument of that number. Arguments are put in
/// as they stand, what looks like a placeholder in them stays; a placeholder without an argument
/// stays too.
std::u16string FillPlaceholders(std::u16string_view text,
                                const std::vector<std::u16string>& arguments);

}  // namespace NSTambraPacking
