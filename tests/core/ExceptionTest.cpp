#include <gtest/gtest.h>
#include <type_traits>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/ExceptionResponder.h"
#include "Parts/TolbrookPackage/Core/StdException.h"

namespace {

using namespace NSMordel;
using namespace NSMordel::NSMordelDetails;

/// Each class reaches a handler of its standard base, and of none beside it, with its message and
/// context whole.
template <class Base, class... Kinds>
void ExpectKindsOf() {
  static_assert((std::is_base_of_v<Base, Kinds> && ...));
  static_assert((std::is_base_of_v<CExceptionBodyMixin, Kinds> && ...));
  static_assert(!std::is_same_v<Base, std::exception> ||
                !(std::is_base_of_v<std::runtime_error, Kinds> || ...));
  static_assert(!std::is_same_v<Base, std::exception> ||
                !(std::is_base_of_v<std::logic_error, Kinds> || ...));
  const auto expectCarried = [](const auto& thrown) {
    try {
      throw thrown;
    } catch (const Base& e) {
      EXPECT_STREQ(e.what(), "what is wrong");
      const auto& body = dynamic_cast<const CExceptionBodyMixin&>(e);
      EXPECT_STREQ(body.Message(), "what is wrong");
      EXPECT_EQ(body.Context(), (CContext{{"error_code", "5"}, {"target_object_id", "a"}}));
    }
  };
  (expectCarried(Kinds("what is wrong", {{kErrorCode, "5"}, {kTargetObjectId, "a"}})), ...);
}

TEST(Exception, EveryKindHasItsBaseMessageAndContext) {
  ExpectKindsOf<std::runtime_error, XAbort, XSilentAbort, XAlreadyExists, XClose, XCreate, XDelete,
                XFormatViolation, XLocked, XNotFound, XNotReady, XOpen, XOutOfItems, XOutOfSpace,
                XPermission, XRead, XReadOnly, XResolve, XTimeout, XUnsupportedFormat,
                XVersionTooNew, XVersionTooOld, XWrite, XStdRuntimeError, XStdOverflowError,
                XStdRangeError, XStdUnderflowError>();
  ExpectKindsOf<std::logic_error, XIllegalCallSequence, XInvariantCorrupt, XStdLogicError,
                XStdDomainError, XStdInvalidArgument, XStdLengthError, XStdOutOfRange>();
  ExpectKindsOf<std::exception, XUnitTestFailure, XStdException, XStdBadAlloc>();
  static_assert(std::is_base_of_v<std::bad_alloc, XStdBadAlloc>);
  static_assert(std::is_base_of_v<std::out_of_range, XStdOutOfRange>);
}

TEST(Exception, TheInnermostContextStays) {
  XRead failure("m", {{kErrorCode, "1"}});
  failure.AddContext(kErrorCode, "2");
  failure.AddContext(kTargetObjectId, "file");
  EXPECT_EQ(failure.Context(), (CContext{{kErrorCode, "1"}, {kTargetObjectId, "file"}}));
  EXPECT_EQ(*failure.FindContext(kErrorCode), "1");
  EXPECT_EQ(failure.FindContext("none"), nullptr);
}

template <class Thrown, class Expected>
void ExpectWrapped(const Thrown& thrown) {
  try {
    try {
      throw thrown;
    } catch (...) {
      RethrowInFamily();
    }
  } catch (const CExceptionBodyMixin& e) {
    EXPECT_EQ(typeid(e), typeid(Expected));
    EXPECT_STREQ(e.Message(), thrown.what());
  } catch (...) {
    ADD_FAILURE() << "not of the family: " << typeid(Thrown).name();
  }
}

TEST(StdException, EveryStandardClassHasItsWrapper) {
  struct COwn : std::exception {
    const char* what() const noexcept override { return "own"; }
  };
  ExpectWrapped<std::domain_error, XStdDomainError>(std::domain_error("d"));
  ExpectWrapped<std::invalid_argument, XStdInvalidArgument>(std::invalid_argument("i"));
  ExpectWrapped<std::length_error, XStdLengthError>(std::length_error("l"));
  ExpectWrapped<std::out_of_range, XStdOutOfRange>(std::out_of_range("o"));
  ExpectWrapped<std::logic_error, XStdLogicError>(std::logic_error("g"));
  ExpectWrapped<std::overflow_error, XStdOverflowError>(std::overflow_error("v"));
  ExpectWrapped<std::range_error, XStdRangeError>(std::range_error("r"));
  ExpectWrapped<std::underflow_error, XStdUnderflowError>(std::underflow_error("u"));
  ExpectWrapped<std::runtime_error, XStdRuntimeError>(std::runtime_error("t"));
  ExpectWrapped<std::bad_alloc, XStdBadAlloc>(std::bad_alloc());
  ExpectWrapped<COwn, XStdException>(COwn());
  ExpectWrapped<XNotFound, XNotFound>(XNotFound("as it is"));
  EXPECT_THROW(
      try { throw 5; } catch (...) { RethrowInFamily(); }, int);
}

TEST(TunneledError, RaisesTheSameFailureOnTheFarSide) {
  const auto capture = [] {
    try {
      throw XFormatViolation("inside", {{kTargetObjectId, "chunk"}});
    } catch (...) {
      return XTunneledError();
    }
  };
  try {
    capture().Rethrow();
    FAIL();
  } catch (const XFormatViolation& e) {
    EXPECT_STREQ(e.what(), "inside");
    EXPECT_EQ(*e.FindContext(kTargetObjectId), "chunk");
  }
  EXPECT_THROW(XTunneledError().Rethrow(), XInvariantCorrupt);  // nothing was being handled
}

TEST(CheckInvariant, CallsTheDebuggerInDebugBuildsOnlyAndThrows) {
  struct CCounter : IDebugger {
    void Break(const std::string& message) override { fMessages += message; }
    std::string fMessages;
  } counter;
  SetDebugger(&counter);
  EXPECT_NO_THROW(CheckInvariant(true, "holds"));
  EXPECT_THROW(CheckInvariant(false, "broken"), XInvariantCorrupt);
  SetDebugger(nullptr);
  EXPECT_THROW(CheckInvariant(false, "again"), XInvariantCorrupt);
#ifdef NDEBUG
  EXPECT_EQ(counter.fMessages, "");
#else
  EXPECT_EQ(counter.fMessages, "broken");
#endif
}

}  // namespace
