#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// Entry type codes that the package layer itself tells apart; the others are plain files to it.
inline constexpr std::int32_t kSoundFontEntryType = 16;
inline constexpr std::int32_t kLQX2EntryType = 6;
inline constexpr std::int32_t kLQXEntryType = 7;
inline constexpr std::int32_t kQZLEntryType = 12;

/// One file of a package: on its way in (with its packed bytes) or read back (with its window on
/// the package file).
class CPackageEntry {
 public:
  /// `path` has its components joined with "/". `flag` is 1 when the entry is taken as it is, any
  /// other value when its references are resolved before it is verified. `data` may be null until
  /// the entry is packed.
  CPackageEntry(std::u16string path, std::int32_t typeCode, std::uint8_t flag,
                NSBigFilePackage::SharedMedia data);
  virtual ~CPackageEntry();

  const std::u16string& Path() const { return fPath; }
  /// The last component of the path.
  std::u16string Name() const;
  std::int32_t TypeCode() const { return fTypeCode; }
  std::uint8_t Flag() const { return fFlag; }
  const NSBigFilePackage::SharedMedia& Data() const { return fData; }
  void SetData(NSBigFilePackage::SharedMedia data) { fData = std::move(data); }

  /// True for a file that a reference's path may go on inside of, as if it were a folder.
  virtual bool IsContainer() const { return false; }

 private:
  std::u16string fPath;
  std::int32_t fTypeCode;
  std::uint8_t fFlag;
  NSBigFilePackage::SharedMedia fData;
};

/// A SoundFont bank: its presets and samples can be named by a reference.
class CSoundFontEntry : public CPackageEntry {
 public:
  using CPackageEntry::CPackageEntry;
  bool IsContainer() const override { return true; }
};

/// A sliced-loop file: its slices can be named by a reference.
class CLQXEntry : public CPackageEntry {
 public:
  using CPackageEntry::CPackageEntry;
  bool IsContainer() const override { return true; }
};

/// True for the type codes whose entries are containers.
bool IsContainerType(std::int32_t typeCode);

/// An entry of the class that belongs to its type code.
std::shared_ptr<CPackageEntry> MakePackageEntry(std::u16string path, std::int32_t typeCode,
                                                std::uint8_t flag,
                                                NSBigFilePackage::SharedMedia data);

}  // namespace NSTambraPacking
