#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace NSTambraPacking {

/// The descriptive texts of a package; an empty one was not given.
struct CPackageInformation {
  std::u16string fName;
  std::u16string fCopyright;
  std::u16string fURL;
  std::u16string fComments;
  std::u16string fVersion;  ///< as written; ParseVersionText reads it
  std::uint64_t fFileCount = 0;

  /// The name with ".tmb" behind it, nothing in it replaced; "output.tmb" without a name. Throws
  /// XFormatViolation with kTambraNameKey (the name) for a name that cannot be a file name on every
  /// system.
  std::u16string OutputFileName() const;
};

/// The files and folders that the publisher wants left out.
class CSkipItems {
 public:
  /// `path` leads from the input root, with "/" or "\\" between its components.
  void Add(std::u16string_view path);

  /// True when the file or folder at `path` (components joined with "/") is one of the items or
  /// lies inside one; case is ignored.
  bool Hold(std::u16string_view path) const;
  bool IsEmpty() const { return fKeys.empty(); }

 private:
  std::set<std::u16string> fKeys;
};

/// The choices that the publisher made in "INFO.TXT".
struct CPackOptions {
  std::vector<std::u16string> fProhibitedDevices;
  bool fWarnAboutProhibitedDevices = false;
  bool fSkipProhibitedDevices = false;
  bool fWarnAboutUnusedSamples = false;
  bool fSkipUnusedSamples = false;
  bool fPropagateSampleSkipping = false;
  CSkipItems fSkipItems;
};

/// A file of the input folder's top and its bytes.
struct CInformationFile {
  std::u16string fName;
  std::string fBytes;
};

struct CPackageTexts {
  CPackageInformation fInformation;
  CPackOptions fOptions;
};

/// A text of the package, the file of its own that it can stand in and its key in the key file.
struct CInformationSource {
  std::u16string_view fFile;
  std::u16string_view fKey;
  std::u16string CPackageInformation::*fText;
};

inline constexpr std::u16string_view kInformationKeyFile = u"INFO.TXT";

std::span<const CInformationSource> InformationSources();

/// True for the names of information files ("INFO.TXT" and so on), in any case.
bool IsInformationFile(std::u16string_view name);

/// Reads the information files among `files`, which are in scan order: the first of a name counts.
/// A single file ("NAME.TXT") wins over its key in "INFO.TXT" unless its text is empty.
CPackageTexts ReadPackageTexts(const std::vector<CInformationFile>& files);

}  // namespace NSTambraPacking
