#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The one family of failures. A failure is classified by its class, carries a plain English
/// message for the log and an ordered list of named values that say which object it concerns.
namespace NSMordel {

namespace NSMordelDetails {

/// Named values of a failure, in the order in which they were added.
using CContext = std::vector<std::pair<std::string, std::string>>;

/// What every exception of the family carries beside its message.
class CExceptionBodyMixin {
 public:
  explicit CExceptionBodyMixin(CContext context = {});
  CExceptionBodyMixin(const CExceptionBodyMixin&) = default;
  CExceptionBodyMixin& operator=(const CExceptionBodyMixin&) = default;
  virtual ~CExceptionBodyMixin();

  const CContext& Context() const noexcept { return fContext; }

  /// The value of `key`, or nullptr when the thrower did not set it.
  const std::string* FindContext(std::string_view key) const noexcept;

  /// Adds a value; one that is there already stays, since the innermost thrower knows best.
  void AddContext(std::string key, std::string value);

  /// The message text, the same as what() of the standard base.
  virtual const char* Message() const noexcept = 0;

 private:
  CContext fContext;
};

/// A kind of failure: a standard base for the message and the mixin for the context.
template <class StandardBase>
class TException : public StandardBase, public CExceptionBodyMixin {
 public:
  explicit TException(const std::string& message = {}, CContext context = {})
      : StandardBase(message), CExceptionBodyMixin(std::move(context)) {}
  const char* Message() const noexcept override { return StandardBase::what(); }
};

/// Kinds that are plain exceptions: std::exception holds no message of its own.
class CPlainException : public std::exception, public CExceptionBodyMixin {
 public:
  explicit CPlainException(std::string message = {}, CContext context = {});
  const char* what() const noexcept override { return fMessage.c_str(); }
  const char* Message() const noexcept override { return fMessage.c_str(); }

 private:
  std::string fMessage;
};

using CRuntimeException = TException<std::runtime_error>;
using CLogicException = TException<std::logic_error>;

/// Carries the exception being handled across a boundary that cannot pass exceptions (a callback
/// from C code, a thread) to be raised again on the far side.
class XTunneledError : public CPlainException {
 public:
  /// Captures the exception being handled; call it inside a catch block.
  XTunneledError();
  /// Raises the captured exception again.
  [[noreturn]] void Rethrow() const;

 private:
  std::exception_ptr fFailure;
};

}  // namespace NSMordelDetails

using NSMordelDetails::CContext;
using NSMordelDetails::CExceptionBodyMixin;

/// Keys of context values.
inline constexpr const char* kErrorCode = "error_code";
inline constexpr const char* kTargetObjectType = "target_object_type";
inline constexpr const char* kTargetObjectId = "target_object_id";
inline constexpr const char* kSecondaryObjectId = "secondary_object_id";

// clang-format off
/// The user or the program asked to stop an operation.
class XAbort : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// As XAbort, but nothing is shown to the user.
class XSilentAbort : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// An object to be created exists already.
class XAlreadyExists : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Closing a file or handle failed.
class XClose : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Creating a file or folder failed.
class XCreate : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Deleting failed.
class XDelete : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Data (a file, an XML document, a chunk) breaks its format.
class XFormatViolation : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// A file is locked or busy.
class XLocked : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// A file, folder or item does not exist.
class XNotFound : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// A device (drive) is not ready.
class XNotReady : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Opening failed.
class XOpen : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// A fixed supply of items (handles, slots) is exhausted.
class XOutOfItems : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// The disk is full.
class XOutOfSpace : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Access was denied.
class XPermission : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Reading failed or ended early.
class XRead : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Writing was attempted on something read-only.
class XReadOnly : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// A reference, shortcut or alias could not be resolved.
class XResolve : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// A wait ran out.
class XTimeout : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Data is well formed but of a kind or version that is not supported.
class XUnsupportedFormat : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// A document was written by a newer version.
class XVersionTooNew : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// A document is older than the oldest supported version.
class XVersionTooOld : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// Writing failed.
class XWrite : public NSMordelDetails::CRuntimeException { using TException::TException; };
/// An object was used in the wrong order (for instance a chunk writer closed twice).
class XIllegalCallSequence : public NSMordelDetails::CLogicException { using TException::TException; };
/// An internal consistency check failed.
class XInvariantCorrupt : public NSMordelDetails::CLogicException { using TException::TException; };
/// A self-test assertion failed.
class XUnitTestFailure : public NSMordelDetails::CPlainException { using CPlainException::CPlainException; };
// clang-format on

}  // namespace NSMordel
