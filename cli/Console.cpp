#include "cli/Console.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utf8proc.h>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {

constexpr std::u16string_view kCut = u"…";

[[noreturn]] void ThrowWriteFault() {
  const int error = errno;
  // Only the user's interrupt comes in between.
  if (error == EINTR) throw NSMordel::XSilentAbort("User aborted");
  if (error == EPIPE) throw XOutputClosed("standard output was closed");
  throw NSMordel::XWrite(std::string("cannot write to standard output: ") + std::strerror(error));
}

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

/// Whether the stream is a terminal that knows more than lines.
bool IsScreen(EStandardStream stream) {
  const char* const terminal = std::getenv("TERM");
  const bool isDumb = terminal != nullptr && std::string_view(terminal) == "dumb";
  return TakesEscapes(stream) && !isDumb;
}

bool HasColours(EStandardStream stream) { return IsScreen(stream) && !IsSet("NO_COLOR"); }

const char* ColourCode(EColour colour) {
  switch (colour) {
    case EColour::kBold:
      return "1";
    case EColour::kDim:
      return "2";
    case EColour::kRed:
      return "31";
    case EColour::kGreen:
      return "32";
    case EColour::kYellow:
      return "33";
  }
  return "0";
}

std::string Paint(const std::string& text, EColour colour) {
  return "\x1B[" + std::string(ColourCode(colour)) + "m" + text + "\x1B[0m";
}

/// The code point at `index`, which moves on behind it.
utf8proc_int32_t TakeCodePoint(std::u16string_view text, std::size_t& index) {
  const auto unit = static_cast<std::uint32_t>(text[index++]);
  const bool paired = unit >= 0xD800 && unit < 0xDC00 && index < text.size() &&
                      text[index] >= 0xDC00 && text[index] < 0xE000;
  if (!paired) return static_cast<utf8proc_int32_t>(unit);
  const auto low = static_cast<std::uint32_t>(text[index++]);
  return static_cast<utf8proc_int32_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
}

std::size_t CharacterWidth(utf8proc_int32_t code) {
  return static_cast<std::size_t>(std::max(0, utf8proc_charwidth(code)));
}

std::size_t PaddingOf(const std::string& text, std::size_t width) {
  const std::size_t taken = DisplayWidth(NSTolbrook::TextFromUtf8(text));
  return taken < width ? width - taken : 0;
}

}  // namespace

CConsole::CConsole(bool json, bool quiet)
    : fJson(json),
      fQuiet(quiet),
      fHasColours(HasColours(EStandardStream::kOutput)),
      fHasNoteColours(HasColours(EStandardStream::kError)) {}

bool CConsole::Redraws() const { return IsScreen(EStandardStream::kError); }

void CConsole::Print(std::string_view line) const {
  if (!WriteText(EStandardStream::kOutput, std::string(line) + '\n')) ThrowWriteFault();
}

std::string CConsole::Painted(const std::string& text, EColour colour) const {
  return fHasColours ? Paint(text, colour) : text;
}

std::string CConsole::PaintedNote(const std::string& text, EColour colour) const {
  return fHasNoteColours ? Paint(text, colour) : text;
}

void CConsole::PrintJson(const CJson& value) const {
  Print(value.Text());
  Flush();
}

void CConsole::Flush() const {
  if (!FlushText()) ThrowWriteFault();
}

void CConsole::Note(std::string_view line) const {
  if (!fQuiet) Warn(line);
}

void CConsole::Warn(std::string_view line) const {
  // What cannot be told on standard error cannot be told at all: nothing else is left to tell it.
  WriteText(EStandardStream::kError, std::string(line) + '\n');
}

std::size_t DisplayWidth(std::u16string_view text) {
  std::size_t width = 0;
  for (std::size_t index = 0; index < text.size();) {
    width += CharacterWidth(TakeCodePoint(text, index));
  }
  return width;
}

std::u16string FitWidth(std::u16string_view text, std::size_t width) {
  if (DisplayWidth(text) <= width) return std::u16string(text);
  if (width == 0) return {};
  std::size_t taken = 0;
  std::size_t index = 0;
  while (index < text.size()) {
    std::size_t next = index;
    taken += CharacterWidth(TakeCodePoint(text, next));
    if (taken > width - DisplayWidth(kCut)) break;
    index = next;
  }
  return std::u16string(text.substr(0, index)).append(kCut);
}

std::string PadRight(const std::string& text, std::size_t width) {
  return text + std::string(PaddingOf(text, width), ' ');
}

std::string PadLeft(const std::string& text, std::size_t width) {
  return std::string(PaddingOf(text, width), ' ') + text;
}

}  // namespace NSTambraCli
