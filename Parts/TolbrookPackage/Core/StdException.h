#pragma once

#include <new>
#include <stdexcept>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

/// Failures of the standard library in classes of the family, so that they too carry a context.
namespace NSMordel::NSMordelDetails {

/// Wraps the standard classes that hold no message.
template <class StandardBase>
class TMessagelessException : public StandardBase, public CExceptionBodyMixin {
 public:
  explicit TMessagelessException(std::string message = {}, CContext context = {})
      : CExceptionBodyMixin(std::move(context)), fMessage(std::move(message)) {}
  const char* what() const noexcept override { return fMessage.c_str(); }
  const char* Message() const noexcept override { return fMessage.c_str(); }

 private:
  std::string fMessage;
};

// clang-format off
class XStdException : public TMessagelessException<std::exception> { using TMessagelessException::TMessagelessException; };
class XStdBadAlloc : public TMessagelessException<std::bad_alloc> { using TMessagelessException::TMessagelessException; };
class XStdLogicError : public TException<std::logic_error> { using TException::TException; };
class XStdDomainError : public TException<std::domain_error> { using TException::TException; };
class XStdInvalidArgument : public TException<std::invalid_argument> { using TException::TException; };
class XStdLengthError : public TException<std::length_error> { using TException::TException; };
class XStdOutOfRange : public TException<std::out_of_range> { using TException::TException; };
class XStdRuntimeError : public TException<std::runtime_error> { using TException::TException; };
class XStdOverflowError : public TException<std::overflow_error> { using TException::TException; };
class XStdRangeError : public TException<std::range_error> { using TException::TException; };
class XStdUnderflowError : public TException<std::underflow_error> { using TException::TException; };
// clang-format on

/// Raises the exception being handled as one of the family: as it is when it belongs to the
/// family already, else in the wrapper of its nearest standard class. What is no std::exception
/// passes through. Call it inside a catch block.
[[noreturn]] void RethrowInFamily();

}  // namespace NSMordel::NSMordelDetails
