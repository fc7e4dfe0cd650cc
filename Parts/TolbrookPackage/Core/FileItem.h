#pragma once

#include <string>
#include <string_view>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

namespace NSTolbrook {

/// A file or folder of the platform together with its own name as text.
class CFileItem {
 public:
  CFileItem() = default;
  /// The name is the last component of `path`; what is not Unicode in it becomes U+FFFD.
  explicit CFileItem(NativePath path);

  const NativePath& Path() const { return fPath; }
  const std::u16string& Name() const { return fName; }

  /// True when the name ends with one of the extensions, each with its leading dot, separated by
  /// ";" (".wav;.wave"); case is ignored, and a name that is nothing but the extension counts too.
  bool IsOfType(std::u16string_view extensions) const;

  /// The item `name` inside this folder.
  CFileItem Child(std::u16string_view name) const;

 private:
  NativePath fPath;
  std::u16string fName;
};

}  // namespace NSTolbrook
