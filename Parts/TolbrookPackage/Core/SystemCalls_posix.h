#pragma once

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "Parts/TolbrookPackage/Core/FileFailure.h"

/// What the platform files of POSIX systems share.
namespace NSTolbrook::NSFileDetails {

/// The failure of a system call with its number (errno).
CSystemFailure Failure(int number);

/// Calls again as long as a signal interrupts.
template <class Call>
auto Repeat(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

inline CFileIdentity IdentityOf(const struct stat& status) {
  return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

/// A descriptor that is closed unless it is released.
class CDescriptor {
 public:
  explicit CDescriptor(int number) : fNumber(number) {}
  CDescriptor(const CDescriptor&) = delete;
  CDescriptor& operator=(const CDescriptor&) = delete;
  ~CDescriptor() {
    if (fNumber >= 0) ::close(fNumber);
  }
  int Number() const { return fNumber; }
  int Release() { return std::exchange(fNumber, -1); }
  /// In place of none.
  void Reset(int number) { fNumber = number; }

 private:
  int fNumber;
};

}  // namespace NSTolbrook::NSFileDetails
