#pragma once

#include <map>
#include <string>
#include <string_view>

namespace NSTambraPacking {

/// Whose entries of a text table count: those with its suffix and those without one.
enum class EPlatform { kWin, kMac };

/// "-Win" on every system but macOS.
EPlatform ThisPlatform();

/// One text table, a file that a translator can edit. It is UTF-8, perhaps with a byte-order mark,
/// its lines end with CR LF (LF alone will do):
///
///     // a comment
///     26-Mac  {The text.\rIts second line.}   // a comment
///
/// An entry is its decimal number, perhaps "-Win" or "-Mac", blanks or tabs, and the text between
/// braces; what stands behind them is a comment. In a text, "\r" is a line break and a backslash
/// before one of \ [ ] { } stands for that character.
class CTextTable {
 public:
  /// Reads the table in `bytes`. Throws XFormatViolation that names `name` (of the file), the line
  /// and the fault. An entry for `platform` goes before one for all; the same number twice for
  /// the same platform is a fault.
  CTextTable(const std::string& name, std::string_view bytes, EPlatform platform);

  /// The text of an entry with its line breaks in place ("\n") and its other escapes kept, or
  /// nullptr when there is none.
  const std::u16string* Find(int entry) const;

 private:
  struct CEntry {
    std::u16string fText;
    bool fHasSuffix = false;
  };
  class CLineReader;

  std::map<int, CEntry> fEntries;
};

/// `text` without its escapes: each backslash gone, the character behind it kept.
std::u16string UnescapeText(std::u16string_view text);

}  // namespace NSTambraPacking
