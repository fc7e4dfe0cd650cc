#include "cli/LastResort.h"

#include <cstdio>
#include <exception>
#include <new>

namespace NSTambraCli {

EExitStatus ShowLastFailure() noexcept {
  const char* message = kUnknownErrorText;
  const auto show = [&message] {
    std::fputs(message, stderr);
    std::fputc('\n', stderr);
  };
  try {
    throw;
  } catch (const std::bad_alloc&) {
    message = kOutOfMemoryText;
    show();
  } catch (const std::exception& e) {
    message = e.what();  // lives as long as the handler
    show();
  } catch (...) {
    show();
  }
  return kExitFailed;
}

}  // namespace NSTambraCli
