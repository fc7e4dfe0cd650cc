#include "Parts/TolbrookPackage/Core/SystemCalls_posix.h"

#include <system_error>

namespace NSTolbrook::NSFileDetails {

namespace {

EFailure FailureKind(int number) {
  switch (number) {
    case ENOENT:
      return EFailure::kNotFound;
    case EACCES:
    case EPERM:
      return EFailure::kPermission;
    case EROFS:
      return EFailure::kReadOnly;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return EFailure::kOutOfSpace;
    case ENOMEM:
      return EFailure::kOutOfMemory;
    case EBUSY:
    case ETXTBSY:
      return EFailure::kLocked;
    case EMFILE:
    case ENFILE:
      return EFailure::kOutOfItems;
    case ENXIO:
    case ENODEV:
      return EFailure::kNotReady;
    case EEXIST:
      return EFailure::kAlreadyExists;
    default:
      return EFailure::kOther;
  }
}

}  // namespace

CSystemFailure Failure(int number) {
  return {FailureKind(number), std::to_string(number), std::generic_category().message(number)};
}

}  // namespace NSTolbrook::NSFileDetails
