#include "package/PackageEntry.h"

#include <utility>

namespace NSTambraPacking {

CPackageEntry::CPackageEntry(std::u16string path, std::int32_t typeCode, std::uint8_t flag,
                             NSBigFilePackage::SharedMedia data)
    : fPath(std::move(path)), fTypeCode(typeCode), fFlag(flag), fData(std::move(data)) {}

CPackageEntry::~CPackageEntry() = default;

std::u16string CPackageEntry::Name() const {
  const std::size_t slash = fPath.rfind(u'/');
  return slash == std::u16string::npos ? fPath : fPath.substr(slash + 1);
}

bool IsContainerType(std::int32_t typeCode) {
  return typeCode == kSoundFontEntryType || typeCode == kLQX2EntryType ||
         typeCode == kLQXEntryType || typeCode == kQZLEntryType;
}

std::shared_ptr<CPackageEntry> MakePackageEntry(std::u16string path, std::int32_t typeCode,
                                                std::uint8_t flag,
                                                NSBigFilePackage::SharedMedia data) {
  if (typeCode == kSoundFontEntryType) {
    return std::make_shared<CSoundFontEntry>(std::move(path), typeCode, flag, std::move(data));
  }
  if (IsContainerType(typeCode)) {
    return std::make_shared<CLQXEntry>(std::move(path), typeCode, flag, std::move(data));
  }
  return std::make_shared<CPackageEntry>(std::move(path), typeCode, flag, std::move(data));
}

}  // namespace NSTambraPacking
