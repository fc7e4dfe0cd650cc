#include <cstdlib>
#include <dlfcn.h>
#include <string>

#include "Parts/TolbrookPackage/Core/DynamicLibrary.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTolbrook {

namespace {

constexpr const char* kLibraryObject = "dll";

std::string LastFailure() {
  const char* const text = ::dlerror();
  return text == nullptr ? "unknown reason" : text;
}

}  // namespace

std::optional<NativePath> PathInEnvironment(const char* variable) {
  const char* const value = std::getenv(variable);
  return value == nullptr || *value == '\0' ? std::nullopt : std::optional<NativePath>(value);
}

CDynamicLibrary::CDynamicLibrary(const NativePath& path)
    : fPath(std::filesystem::absolute(path)),
      fHandle(::dlopen(fPath.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (fHandle != nullptr) return;
  throw NSMordel::XOpen("cannot open the library: " + LastFailure(),
                        {{NSMordel::kTargetObjectType, kLibraryObject},
                         {NSMordel::kTargetObjectId, DisplayText(path)}});
}

CDynamicLibrary::~CDynamicLibrary() {
  if (fHandle != nullptr) ::dlclose(fHandle);
}

void* CDynamicLibrary::Symbol(const char* name) const {
  if (void* const symbol = ::dlsym(fHandle, name)) return symbol;
  throw NSMordel::XNotFound(std::string("the library lacks ") + name,
                            {{NSMordel::kTargetObjectType, kLibraryObject},
                             {NSMordel::kTargetObjectId, name},
                             {NSMordel::kSecondaryObjectId, DisplayText(fPath)}});
}

}  // namespace NSTolbrook
