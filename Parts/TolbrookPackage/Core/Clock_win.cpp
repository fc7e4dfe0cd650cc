#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include "Parts/TolbrookPackage/Core/Clock.h"
#include "Parts/TolbrookPackage/Core/StdException.h"

namespace NSTolbrook {

std::uint64_t CSystemClock::Milliseconds() const {
  constexpr std::uint64_t kPerSecond = 1000;
  LARGE_INTEGER counter{};
  LARGE_INTEGER frequency{};
  ::QueryPerformanceCounter(&counter);
  ::QueryPerformanceFrequency(&frequency);
  // In two parts, so that the product stays inside 64 bits.
  const auto ticks = static_cast<std::uint64_t>(counter.QuadPart);
  const auto each = static_cast<std::uint64_t>(frequency.QuadPart);
  return ticks / each * kPerSecond + ticks % each * kPerSecond / each;
}

CLocalTime CSystemClock::Now() const {
  FILETIME time{};
  SYSTEMTIME universal{};
  SYSTEMTIME local{};
  ::GetSystemTimeAsFileTime(&time);
  if (::FileTimeToSystemTime(&time, &universal) == 0 ||
      ::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local) == 0) {
    throw NSMordel::NSMordelDetails::XStdRuntimeError("the local time cannot be told");
  }
  return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

}  // namespace NSTolbrook
