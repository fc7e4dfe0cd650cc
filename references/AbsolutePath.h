#pragma once

#include <memory>
#include <string>

#include "references/PathText.h"
#include "references/XMLElement.h"

namespace NSTambraPacking {

enum class EVolumeType { kFloppy, kHardDisk, kRemovable, kCDROM, kNetwork, kUnknown };
enum class ENativeURLMode { kOSXDirectory, kOSXFile, kWin32Directory, kWin32File };

/// Where a file lay on the machine on which the document was saved.
class CAbsolutePath {
 public:
  /// An invalid form.
  CAbsolutePath() = default;
  /// A valid one, on a volume of unknown type, outside any package and without native URL.
  CAbsolutePath(std::u16string volumeName, CPathComponents components);

  /// An element that is missing (nullptr) or has another name gives an invalid form. Throws
  /// XFormatViolation for every other fault; a volume type that is not known is kUnknown.
  static CAbsolutePath Parse(const NSTolbrook::CXMLElement* element);
  /// Null for an invalid form.
  std::shared_ptr<NSTolbrook::CXMLElement> Write() const;
  /// "volume/a/b.wav", or "*invalid absolute path*".
  std::u16string Print() const;

  bool IsValid() const { return fValid; }
  const std::u16string& VolumeName() const { return fVolumeName; }
  EVolumeType VolumeType() const { return fVolumeType; }
  const CPathComponents& Components() const { return fComponents; }
  /// True when the file lay inside a package, which then is the thing to look for.
  bool IsPartOfPackage() const { return fIsPartOfPackage; }
  const std::u16string& NativeURL() const { return fNativeURL; }
  ENativeURLMode NativeURLMode() const { return fNativeURLMode; }

  friend bool operator==(const CAbsolutePath&, const CAbsolutePath&) = default;

 private:
  void ParseVolume(const NSTolbrook::CXMLElement& element);
  void ParsePath(const NSTolbrook::CXMLElement& element);
  void ParseNativeURL(const NSTolbrook::CXMLElement& element);

  bool fValid = false;
  std::u16string fVolumeName;
  EVolumeType fVolumeType = EVolumeType::kUnknown;
  CPathComponents fComponents;
  bool fIsPartOfPackage = false;
  std::u16string fNativeURL;
  ENativeURLMode fNativeURLMode = ENativeURLMode::kWin32File;
};

}  // namespace NSTambraPacking
