#include "Parts/TolbrookPackage/Core/DynamicLibrary.h"

#include <utility>

namespace NSTolbrook {

CDynamicLibrary::CDynamicLibrary(CDynamicLibrary&& other) noexcept
    : fPath(std::move(other.fPath)), fHandle(std::exchange(other.fHandle, nullptr)) {}

CDynamicLibrary& CDynamicLibrary::operator=(CDynamicLibrary&& other) noexcept {
  std::swap(fPath, other.fPath);
  std::swap(fHandle, other.fHandle);
  return *this;
}

}  // namespace NSTolbrook
