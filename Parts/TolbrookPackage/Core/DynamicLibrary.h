#pragma once

#include <optional>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

namespace NSTolbrook {

/// The path that a variable of the environment holds; nothing when it is not set or empty.
std::optional<NativePath> PathInEnvironment(const char* variable);

/// A shared library opened while the program runs, closed with the object. Move only.
class CDynamicLibrary {
 public:
  /// Opens the file at `path` itself (no search in system folders). Throws XOpen with the path and
  /// the type "dll".
  explicit CDynamicLibrary(const NativePath& path);
  CDynamicLibrary(CDynamicLibrary&& other) noexcept;
  CDynamicLibrary& operator=(CDynamicLibrary&& other) noexcept;
  ~CDynamicLibrary();

  const NativePath& Path() const { return fPath; }

  /// The address of an exported function or object. Throws XNotFound with its name, and the path
  /// as the secondary object.
  void* Symbol(const char* name) const;

 private:
  NativePath fPath;
  void* fHandle = nullptr;
};

}  // namespace NSTolbrook
