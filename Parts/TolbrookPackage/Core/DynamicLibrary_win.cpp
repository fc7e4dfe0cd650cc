#include <cstdlib>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/DynamicLibrary.h"
#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

namespace NSTolbrook {

namespace {
constexpr const char* kLibraryObject = "dll";
}

std::optional<NativePath> PathInEnvironment(const char* variable) {
  // The C library's variables are in the user's code page, which lacks most characters.
  const wchar_t* const value = ::_wgetenv(NativePath(variable).c_str());
  return value == nullptr || *value == L'\0' ? std::nullopt : std::optional<NativePath>(value);
}

CDynamicLibrary::CDynamicLibrary(const NativePath& path)
    : fPath(std::filesystem::absolute(path)),
      fHandle(::LoadLibraryExW(fPath.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
  if (fHandle != nullptr) return;
  const NSFileDetails::CSystemFailure failure = NSFileDetails::WindowsFailure(::GetLastError());
  throw NSMordel::XOpen("cannot open the library: " + failure.fReason,
                        {{NSMordel::kErrorCode, failure.fNumber},
                         {NSMordel::kTargetObjectType, kLibraryObject},
                         {NSMordel::kTargetObjectId, DisplayText(path)}});
}

CDynamicLibrary::~CDynamicLibrary() {
  if (fHandle != nullptr) ::FreeLibrary(static_cast<HMODULE>(fHandle));
}

void* CDynamicLibrary::Symbol(const char* name) const {
  const FARPROC symbol = ::GetProcAddress(static_cast<HMODULE>(fHandle), name);
  if (symbol != nullptr) return reinterpret_cast<void*>(symbol);
  throw NSMordel::XNotFound(std::string("the library lacks ") + name,
                            {{NSMordel::kTargetObjectType, kLibraryObject},
                             {NSMordel::kTargetObjectId, name},
                             {NSMordel::kSecondaryObjectId, DisplayText(fPath)}});
}

}  // namespace NSTolbrook
