#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {
constexpr int kUsualWidth = 80;
}

bool IsTerminal(EStandardStream stream) {
  switch (stream) {
    case EStandardStream::kInput:
      return isatty(STDIN_FILENO) == 1;
    case EStandardStream::kOutput:
      return isatty(STDOUT_FILENO) == 1;
    case EStandardStream::kError:
      return isatty(STDERR_FILENO) == 1;
  }
  return false;
}

int TerminalWidth() {
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualWidth;
  return size.ws_col;
}

void PrepareConsole() { signal(SIGPIPE, SIG_IGN); }

}  // namespace NSTambraCli
