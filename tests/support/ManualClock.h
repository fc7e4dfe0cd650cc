#pragma once

#include <cstdint>

#include "Parts/TolbrookPackage/Core/Clock.h"

namespace NSTest {

/// A clock that stands still until the test moves it.
class CManualClock : public NSTolbrook::IClock {
 public:
  std::uint64_t Milliseconds() const override { return fMilliseconds; }
  NSTolbrook::CLocalTime Now() const override { return fNow; }

  void SetMilliseconds(std::uint64_t milliseconds) { fMilliseconds = milliseconds; }
  void Advance(std::uint64_t milliseconds) { fMilliseconds += milliseconds; }
  void SetNow(const NSTolbrook::CLocalTime& now) { fNow = now; }

 private:
  std::uint64_t fMilliseconds = 0;
  NSTolbrook::CLocalTime fNow;
};

}  // namespace NSTest
