#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FileFailure.h"

namespace NSTolbrook {

void MakeFolders(const NativePath& folder) {
  std::vector<NativePath> missing;
  for (NativePath at = folder; !at.empty() && !FileStatus(at, true).IsFolder();
       at = at.parent_path()) {
    missing.push_back(at);
    if (at == at.parent_path()) break;
  }
  for (auto at = missing.rbegin(); at != missing.rend(); ++at) {
    NSFileDetails::MakeFolder(*at);
    if (FileStatus(*at, true).IsFolder()) continue;
    NSFileDetails::ThrowFileRefusal<NSMordel::XCreate>(
        "cannot make the folder: something else has its name", *at, NSFileDetails::kFolderObject);
  }
}

CFile::CFile(Handle handle, NativePath path) : fHandle(handle), fPath(std::move(path)) {}

CFile::CFile(CFile&& other) noexcept
    : fHandle(std::exchange(other.fHandle, kNoHandle)), fPath(std::move(other.fPath)) {}

CFile& CFile::operator=(CFile&& other) noexcept {
  CFile old(std::move(*this));
  fHandle = std::exchange(other.fHandle, kNoHandle);
  fPath = std::move(other.fPath);
  return *this;
}

}  // namespace NSTolbrook
