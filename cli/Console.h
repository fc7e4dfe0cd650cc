#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/PrintableText.h"
#include "cli/Json.h"

namespace NSTambraCli {

/// Standard output is a pipe that nobody reads any more: no fault worth a word.
class XOutputClosed : public NSMordel::XWrite {
  using XWrite::XWrite;
};

enum class EColour { kBold, kDim, kRed, kGreen, kYellow };

/// Where the program's output goes: data to standard output, everything else to standard error.
/// Text from files can hold anything; Printable makes it harmless for a terminal.
class CConsole {
 public:
  CConsole(bool json, bool quiet);

  bool Json() const { return fJson; }
  bool Quiet() const { return fQuiet; }
  /// Whether lines on standard error can be written over.
  bool Redraws() const;

  /// A line of data. Throws XWrite when standard output takes no more, of these XOutputClosed for
  /// a closed pipe; what is still buffered fails in Flush. Throws XSilentAbort when the user's
  /// interrupt came while a full pipe held the line up.
  void Print(std::string_view line) const;
  /// The text in a colour, when standard output is a terminal that has them and NO_COLOR is not set
  /// in the environment.
  std::string Painted(const std::string& text, EColour colour) const;
  /// As Painted, for a line on standard error, when that is such a terminal.
  std::string PaintedNote(const std::string& text, EColour colour) const;
  /// One JSON value on a line of its own, written at once.
  void PrintJson(const CJson& value) const;
  void Flush() const;
  /// A line for the user on standard error; nothing when quiet.
  void Note(std::string_view line) const;
  /// As Note, even when quiet: what went wrong, and questions.
  void Warn(std::string_view line) const;

 private:
  bool fJson;
  bool fQuiet;
  bool fHasColours;
  bool fHasNoteColours;
};

using NSTambraPacking::Printable;
using NSTambraPacking::PrintableLines;

/// Columns that `text` takes on a terminal: 2 for wide East Asian characters, 0 for combining ones.
std::size_t DisplayWidth(std::u16string_view text);

/// `text` cut to at most `width` columns, with "…" at the cut.
std::u16string FitWidth(std::u16string_view text, std::size_t width);

/// `text` with blanks behind it up to `width` columns.
std::string PadRight(const std::string& text, std::size_t width);
/// `text` with blanks before it up to `width` columns.
std::string PadLeft(const std::string& text, std::size_t width);

}  // namespace NSTambraCli
