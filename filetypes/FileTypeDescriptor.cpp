#include "filetypes/FileTypeDescriptor.h"

#include <algorithm>
#include <tuple>

namespace NSTambraPacking {

CFileTypeDescriptor::CFileTypeDescriptor(std::string_view extensions,
                                         NSTolbrook::FourCharCode typeCode)
    : fTypeCode(typeCode) {
  const std::string_view text = extensions.substr(0, extensions.find('\0'));
  std::transform(text.begin(),
                 text.begin() + static_cast<std::ptrdiff_t>(std::min(text.size(), kCapacity - 1)),
                 fExtensions.begin(),
                 [](char character) { return static_cast<unsigned char>(character); });
}

std::u16string_view CFileTypeDescriptor::Extensions() const { return fExtensions.data(); }

bool CFileTypeDescriptor::Matches(const NSTolbrook::CFileItem& file) const {
  return file.IsOfType(Extensions());
}

bool operator<(const CFileTypeDescriptor& left, const CFileTypeDescriptor& right) {
  return std::make_tuple(left.Extensions(), left.fTypeCode) <
         std::make_tuple(right.Extensions(), right.fTypeCode);
}

}  // namespace NSTambraPacking
