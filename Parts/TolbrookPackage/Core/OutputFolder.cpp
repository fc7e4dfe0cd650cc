#include "Parts/TolbrookPackage/Core/OutputFolder.h"

#include "Parts/TolbrookPackage/Core/FileFailure.h"

namespace NSTolbrook {

void COutputFolder::CheckFree(const std::vector<std::u16string>& components,
                              IOutputFile::EExisting existing) const {
  const EFileKind kind = KindOf(components);
  if (kind == EFileKind::kMissing) return;
  if (kind == EFileKind::kFile && existing == IOutputFile::EExisting::kReplace) return;
  NativePath path = fPath;
  for (const std::u16string& component : components) path /= NativeFromText(component);
  if (kind == EFileKind::kFile) {
    NSFileDetails::ThrowFileRefusal<NSMordel::XAlreadyExists>("the file is there already", path);
  }
  NSFileDetails::ThrowFileRefusal<NSMordel::XAlreadyExists>(
      "something that is no file has the name", path, NSFileDetails::kFolderObject);
}

}  // namespace NSTolbrook
