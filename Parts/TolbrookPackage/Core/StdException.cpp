#include "Parts/TolbrookPackage/Core/StdException.h"

namespace NSMordel::NSMordelDetails {

namespace {

/// Tries the most derived classes first; std::exception catches the rest.
[[noreturn]] void WrapStandardException() {
  try {
    throw;
  } catch (const std::domain_error& e) {
    throw XStdDomainError(e.what());
  } catch (const std::invalid_argument& e) {
    throw XStdInvalidArgument(e.what());
  } catch (const std::length_error& e) {
    throw XStdLengthError(e.what());
  } catch (const std::out_of_range& e) {
    throw XStdOutOfRange(e.what());
  } catch (const std::logic_error& e) {
    throw XStdLogicError(e.what());
  } catch (const std::overflow_error& e) {
    throw XStdOverflowError(e.what());
  } catch (const std::range_error& e) {
    throw XStdRangeError(e.what());
  } catch (const std::underflow_error& e) {
    throw XStdUnderflowError(e.what());
  } catch (const std::runtime_error& e) {
    throw XStdRuntimeError(e.what());
  } catch (const std::bad_alloc& e) {
    throw XStdBadAlloc(e.what());
  } catch (const std::exception& e) {
    throw XStdException(e.what());
  }
}

}  // namespace

void RethrowInFamily() {
  try {
    throw;
  } catch (const CExceptionBodyMixin&) {
    throw;
  } catch (const std::exception&) {
    WrapStandardException();
  }
}

}  // namespace NSMordel::NSMordelDetails
