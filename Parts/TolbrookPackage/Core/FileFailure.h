#pragma once

#include <new>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FileSystem.h"

/// How the platform files turn a number of the system into an exception.
namespace NSTolbrook::NSFileDetails {

/// The kinds of failure that are told apart whatever was attempted.
enum class EFailure {
  kOther,
  kNotFound,
  kPermission,
  kReadOnly,
  kOutOfSpace,
  kOutOfMemory,
  kLocked,
  kOutOfItems,
  kNotReady,
  kAlreadyExists
};

inline constexpr const char* kFileObject = "file";
inline constexpr const char* kFolderObject = "directory";

/// The system's last failure: what it is, its number and the system's words for it.
struct CSystemFailure {
  EFailure fKind = EFailure::kOther;
  std::string fNumber;
  std::string fReason;
};

/// Throws the class of the failure's kind (std::bad_alloc for memory), or `XFallback` when it has
/// none. `action` begins the message, for instance "cannot open the file".
template <class XFallback>
[[noreturn]] void ThrowFileFailure(const std::string& action, const NativePath& path,
                                   const CSystemFailure& failure,
                                   const char* objectType = kFileObject) {
  const std::string message = action + ": " + failure.fReason;
  const char* const type = failure.fKind == EFailure::kOutOfSpace ? "disk" : objectType;
  NSMordel::CContext context = {{NSMordel::kErrorCode, failure.fNumber},
                                {NSMordel::kTargetObjectType, type},
                                {NSMordel::kTargetObjectId, DisplayText(path)}};
  switch (failure.fKind) {
    case EFailure::kNotFound:
      throw NSMordel::XNotFound(message, std::move(context));
    case EFailure::kPermission:
      throw NSMordel::XPermission(message, std::move(context));
    case EFailure::kReadOnly:
      throw NSMordel::XReadOnly(message, std::move(context));
    case EFailure::kOutOfSpace:
      throw NSMordel::XOutOfSpace(message, std::move(context));
    case EFailure::kOutOfMemory:
      throw std::bad_alloc();  // as wherever else memory is out: no fault of the file's
    case EFailure::kLocked:
      throw NSMordel::XLocked(message, std::move(context));
    case EFailure::kOutOfItems:
      throw NSMordel::XOutOfItems(message, std::move(context));
    case EFailure::kNotReady:
      throw NSMordel::XNotReady(message, std::move(context));
    case EFailure::kAlreadyExists:
      throw NSMordel::XAlreadyExists(message, std::move(context));
    case EFailure::kOther:
      break;
  }
  throw XFallback(message, std::move(context));
}

/// For a failure that has no number of the system.
template <class XKind>
[[noreturn]] void ThrowFileRefusal(const std::string& message, const NativePath& path,
                                   const char* objectType = kFileObject) {
  throw XKind(message, {{NSMordel::kTargetObjectType, objectType},
                        {NSMordel::kTargetObjectId, DisplayText(path)}});
}

/// Makes one folder; returns without a fault when something has the name already. Throws XCreate.
void MakeFolder(const NativePath& folder);

}  // namespace NSTolbrook::NSFileDetails
