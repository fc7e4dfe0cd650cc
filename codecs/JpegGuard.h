#pragma once

// jpeglib.h needs FILE and size_t before it.
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <jpeglib.h>
#include <optional>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

/// Runs calls into the JPEG library so that its failures come out as exceptions. The library's
/// frames cannot be unwound: each of its callbacks that fails notes why and jumps back to Run,
/// which raises the exception. Nothing between Run and a callback may own anything.
class CJpegGuard {
 public:
  CJpegGuard();
  CJpegGuard(const CJpegGuard&) = delete;
  CJpegGuard& operator=(const CJpegGuard&) = delete;

  /// To be set as the error manager of the library's object; the client_data of that object is
  /// to be this guard.
  jpeg_error_mgr* Manager() { return &fManager; }

  /// Calls `step` of `object`. Throws XFormatViolation or XUnsupportedFormat for what the library
  /// refuses, and what was captured by Capture.
  template <class Object>
  void Run(Object& object, void (Object::*step)()) {
    if (setjmp(fJump) == 0) {
      (object.*step)();
    } else {
      Raise();
    }
  }

  /// Keeps the exception being handled; called in a callback's catch block, before JumpBack.
  void Capture() { fCaptured.emplace(); }
  /// Notes a fault of the picture; the text must live on.
  void Note(const char* fault) { fFault = fault; }
  /// Ends the call of Run that is going on.
  [[noreturn]] void JumpBack() { longjmp(fJump, 1); }

  static CJpegGuard& Of(j_common_ptr object) {
    return *static_cast<CJpegGuard*>(object->client_data);
  }

 private:
  [[noreturn]] void Raise();
  [[noreturn]] static void OnError(j_common_ptr object);
  static void OnMessage(j_common_ptr object, int level);
  static void OnOutput(j_common_ptr) {}

  jpeg_error_mgr fManager{};
  std::jmp_buf fJump{};
  /// The library's own text of a fault.
  char fText[JMSG_LENGTH_MAX] = {};
  const char* fFault = fText;
  std::optional<NSMordel::NSMordelDetails::XTunneledError> fCaptured;
};

}  // namespace NSTambraPacking
