#pragma once

#include <cstdint>
#include <string>

namespace NSTolbrook {

/// A date and time of day in the user's time zone.
struct CLocalTime {
  int fYear = 1970, fMonth = 1, fDay = 1, fHour = 0, fMinute = 0, fSecond = 0;
};

/// Where time comes from; tests put a clock of their own in its place.
class IClock {
 public:
  virtual ~IClock() = default;
  /// Milliseconds of a counter that only rises, from a start of no meaning.
  virtual std::uint64_t Milliseconds() const = 0;
  virtual CLocalTime Now() const = 0;
};

/// The system's high-resolution counter and local time. Throws XStdRuntimeError when the system
/// cannot tell them.
class CSystemClock : public IClock {
 public:
  std::uint64_t Milliseconds() const override;
  CLocalTime Now() const override;
};

}  // namespace NSTolbrook
