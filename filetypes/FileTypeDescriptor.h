#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "Parts/TolbrookPackage/Core/FileItem.h"
#include "Parts/TolbrookPackage/Core/FourCharCode.h"

namespace NSTambraPacking {

/// What files of a type look like from outside: their extensions and their classic type code.
class CFileTypeDescriptor {
 public:
  /// Code units of the extension list, terminator included.
  static constexpr std::size_t kCapacity = 1024;

  /// `extensions` is ASCII: extensions with their leading dots, separated by ";". What does not fit
  /// is cut off. `typeCode` is 0 for types that have none.
  CFileTypeDescriptor(std::string_view extensions, NSTolbrook::FourCharCode typeCode);

  std::u16string_view Extensions() const;
  NSTolbrook::FourCharCode TypeCode() const { return fTypeCode; }

  /// True when the file is of this type by its name; its content is not looked at.
  bool Matches(const NSTolbrook::CFileItem& file) const;

  /// By extension list, then type code: the order in which registries are walked.
  friend bool operator<(const CFileTypeDescriptor& left, const CFileTypeDescriptor& right);

 private:
  std::array<char16_t, kCapacity> fExtensions{};
  NSTolbrook::FourCharCode fTypeCode;
};

}  // namespace NSTambraPacking
