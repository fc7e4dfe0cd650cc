#include <time.h>

#include "Parts/TolbrookPackage/Core/Clock.h"
#include "Parts/TolbrookPackage/Core/StdException.h"

namespace NSTolbrook {

namespace {

timespec TimeOf(clockid_t clock) {
  timespec time{};
  if (::clock_gettime(clock, &time) == 0) return time;
  throw NSMordel::NSMordelDetails::XStdRuntimeError("the system's clock cannot be read");
}

}  // namespace

std::uint64_t CSystemClock::Milliseconds() const {
  constexpr std::uint64_t kPerSecond = 1000;
  constexpr std::uint64_t kNanosecondsEach = 1'000'000;
  const timespec time = TimeOf(CLOCK_MONOTONIC);
  return static_cast<std::uint64_t>(time.tv_sec) * kPerSecond +
         static_cast<std::uint64_t>(time.tv_nsec) / kNanosecondsEach;
}

CLocalTime CSystemClock::Now() const {
  const timespec time = TimeOf(CLOCK_REALTIME);
  tm local{};
  if (::localtime_r(&time.tv_sec, &local) == nullptr) {
    throw NSMordel::NSMordelDetails::XStdRuntimeError("the local time cannot be told");
  }
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
          local.tm_hour,        local.tm_min,     local.tm_sec};
}

}  // namespace NSTolbrook
