#include <io.h>
#include <iostream>
#include <windows.h>

#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {

constexpr int kUsualWidth = 80;

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

}  // namespace

bool IsTerminal(EStandardStream stream) {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(HandleNumber(stream)), &mode) != 0;
}

int TerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info)) return kUsualWidth;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

std::optional<std::string> ReadLine(const std::function<bool()>& stopRequested) {
  std::string line;
  if (!std::getline(std::cin, line) || stopRequested()) return std::nullopt;
  return line;
}

void PrepareConsole() {
  SetConsoleOutputCP(CP_UTF8);
  SetConsoleCP(CP_UTF8);
  const HANDLE handle = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(handle, &mode)) {
    SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
}

}  // namespace NSTambraCli
