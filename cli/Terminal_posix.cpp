#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {
constexpr int kUsualWidth = 80;
constexpr int kStopCheckMilliseconds = 100;
}  // namespace

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

bool TakesEscapes(EStandardStream stream) { return IsTerminal(stream); }

int TerminalWidth() {
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualWidth;
  return size.ws_col;
}

std::optional<std::string> ReadLine(const std::function<bool()>& stopRequested) {
  std::string line;
  while (!stopRequested()) {
    // An interrupt just before the call would not end it, hence the limit.
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, kStopCheckMilliseconds) <= 0) continue;
    char character = 0;
    if (read(STDIN_FILENO, &character, 1) != 1) {
      return line.empty() ? std::nullopt : std::optional(line);
    }
    if (character == '\n') return line;
    line += character;
  }
  return std::nullopt;
}

std::vector<std::string> ProgramArguments(int count, char** arguments) {
  return {arguments + 1, arguments + count};
}

bool WriteText(EStandardStream stream, std::string_view text) {
  std::FILE* const file = stream == EStandardStream::kOutput ? stdout : stderr;
  return std::fwrite(text.data(), 1, text.size(), file) == text.size();
}

bool FlushText() { return std::fflush(stdout) == 0; }

void PrepareConsole() {
  signal(SIGPIPE, SIG_IGN);
  // A stream that is closed would leave its number, and all that is written to it, to the next file
  // that is opened. What is opened here the wrong way round fails like a closed stream.
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) != -1) continue;
    if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) == -1) return;
  }
}

}  // namespace NSTambraCli
