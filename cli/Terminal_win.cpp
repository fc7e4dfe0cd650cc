#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <iostream>
#include <memory>
#include <windows.h>
// Behind the header that it needs.
#include <shellapi.h>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {

constexpr int kUsualWidth = 80;
/// A console takes no more at once.
constexpr std::size_t kConsoleUnits = 8192;
/// An interrupt ends the reading of a line a little before its handler runs.
constexpr DWORD kInterruptMilliseconds = 10;
constexpr int kInterruptWaits = 100;

DWORD HandleNumber(EStandardStream stream) {
  switch (stream) {
    case EStandardStream::kInput:
      return STD_INPUT_HANDLE;
    case EStandardStream::kOutput:
      return STD_OUTPUT_HANDLE;
    case EStandardStream::kError:
      return STD_ERROR_HANDLE;
  }
  return STD_ERROR_HANDLE;
}

HANDLE HandleOf(EStandardStream stream) { return GetStdHandle(HandleNumber(stream)); }

std::string Utf8FromWide(std::wstring_view text) {
  return NSTolbrook::Utf8FromText(std::u16string(text.begin(), text.end()));
}

/// Whatever code page the console has: no byte of a character can stray into a call of its own.
bool WriteToConsole(HANDLE console, std::string_view text) {
  const std::u16string units = NSTolbrook::TextFromUtf8(text);
  const std::wstring wide(units.begin(), units.end());
  for (std::size_t start = 0; start < wide.size();) {
    std::size_t count = std::min(wide.size() - start, kConsoleUnits);
    const bool isSplit = start + count < wide.size() && IS_HIGH_SURROGATE(wide[start + count - 1]);
    if (isSplit) --count;
    DWORD written = 0;
    const auto wanted = static_cast<DWORD>(count);
    if (!WriteConsoleW(console, wide.data() + start, wanted, &written, nullptr) || written == 0) {
      errno = EIO;
      return false;
    }
    start += written;
  }
  return true;
}

/// What the C library says of a piece of text. It takes a pipe that nobody reads for an invalid
/// argument.
bool IsWritten(bool written) {
  const bool isClosedPipe = _doserrno == ERROR_NO_DATA || _doserrno == ERROR_PIPE_NOT_CONNECTED;
  if (!written && isClosedPipe) errno = EPIPE;
  return written;
}

/// A line as it was typed, with its end; nothing at the end of the input and when it was broken
/// off.
std::optional<std::wstring> ReadConsoleLine(HANDLE console) {
  std::wstring line;
  while (!line.ends_with(L'\n')) {
    std::array<wchar_t, 256> piece{};
    DWORD count = 0;
    if (!ReadConsoleW(console, piece.data(), static_cast<DWORD>(piece.size()), &count, nullptr)) {
      return std::nullopt;
    }
    line.append(piece.data(), count);
    if (count == 0 || line.starts_with(L'\x1A')) return std::nullopt;
  }
  return line;
}

}  // namespace

std::vector<std::string> ProgramArguments(int, char**) {
  // Those of main are in the user's code page, which lacks most characters.
  int count = 0;
  const auto release = [](wchar_t** list) { LocalFree(list); };
  const std::unique_ptr<wchar_t*, decltype(release)> list(
      CommandLineToArgvW(GetCommandLineW(), &count), release);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8FromWide(list.get()[i]));
  return arguments;
}

bool IsTerminal(EStandardStream stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

bool TakesEscapes(EStandardStream stream) {
  // An old console does not let it be switched on.
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0 &&
         (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

int TerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(HandleOf(EStandardStream::kError), &info)) return kUsualWidth;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

std::optional<std::string> ReadLine(const std::function<bool()>& stopRequested) {
  std::string line;
  if (IsTerminal(EStandardStream::kInput)) {
    const auto typed = ReadConsoleLine(HandleOf(EStandardStream::kInput));
    for (int i = 0; !typed && i < kInterruptWaits && !stopRequested(); ++i) {
      Sleep(kInterruptMilliseconds);
    }
    if (!typed || stopRequested()) return std::nullopt;
    line = Utf8FromWide(*typed);
    line.pop_back();
  } else if (!std::getline(std::cin, line) || stopRequested()) {
    return std::nullopt;
  }
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

bool WriteText(EStandardStream stream, std::string_view text) {
  if (IsTerminal(stream)) return WriteToConsole(HandleOf(stream), text);
  std::FILE* const file = stream == EStandardStream::kOutput ? stdout : stderr;
  return IsWritten(std::fwrite(text.data(), 1, text.size(), file) == text.size());
}

bool FlushText() { return IsWritten(std::fflush(stdout) == 0); }

void PrepareConsole() {
  // A line ends with one character on every system.
  for (std::FILE* const file : {stdin, stdout, stderr}) _setmode(_fileno(file), _O_BINARY);
  for (const EStandardStream stream : {EStandardStream::kOutput, EStandardStream::kError}) {
    DWORD mode = 0;
    if (!GetConsoleMode(HandleOf(stream), &mode)) continue;
    SetConsoleMode(HandleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
}

}  // namespace NSTambraCli
