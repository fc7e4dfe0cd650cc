#include "Parts/TolbrookPackage/Core/FileItem.h"

#include <algorithm>
#include <utility>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTolbrook {

CFileItem::CFileItem(NativePath path)
    : fPath(std::move(path)), fName(TextFromUtf8(DisplayText(fPath.filename()))) {}

bool CFileItem::IsOfType(std::u16string_view extensions) const {
  const std::u16string name = FoldCase(fName);
  while (!extensions.empty()) {
    const std::u16string_view extension = extensions.substr(0, extensions.find(u';'));
    if (!extension.empty() && name.ends_with(FoldCase(extension))) return true;
    extensions.remove_prefix(std::min(extension.size() + 1, extensions.size()));
  }
  return false;
}

CFileItem CFileItem::Child(std::u16string_view name) const {
  return CFileItem(fPath / NativeFromText(name));
}

}  // namespace NSTolbrook
