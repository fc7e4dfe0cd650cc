#pragma once

#include <exception>
#include <string>

namespace NSMordel {

/// Turns a caught exception into a message for the user or a line of a log.
class IExceptionResponder {
 public:
  virtual ~IExceptionResponder() = default;
  /// Called once for each failure that reaches the top; `failure` is never null.
  virtual void Respond(std::exception_ptr failure) = 0;
};

/// Lets a failed consistency check stop in a debugger before it throws.
class IDebugger {
 public:
  virtual ~IDebugger() = default;
  virtual void Break(const std::string& message) = 0;
};

/// Installs the hook; nullptr (as at the start) takes it away. The caller keeps the ownership and
/// must keep `debugger` alive while it is installed.
void SetDebugger(IDebugger* debugger) noexcept;

/// Throws XInvariantCorrupt with `message` when `holds` is false; a debug build calls the
/// installed debugger first.
void CheckInvariant(bool holds, const char* message);

}  // namespace NSMordel
