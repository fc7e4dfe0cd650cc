#include "Parts/TolbrookPackage/Core/ExceptionResponder.h"

#include <atomic>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSMordel {

namespace {
std::atomic<IDebugger*> gDebugger = nullptr;
}

void SetDebugger(IDebugger* debugger) noexcept { gDebugger = debugger; }

void CheckInvariant(bool holds, const char* message) {
  if (holds) return;
#ifndef NDEBUG
  if (IDebugger* const debugger = gDebugger) debugger->Break(message);
#endif
  throw XInvariantCorrupt(message);
}

}  // namespace NSMordel
