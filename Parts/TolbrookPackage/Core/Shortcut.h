#pragma once

#include <string>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTolbrook {

/// A Windows shortcut file (Shell Link binary format, MS-SHLLINK): where it leads to.
class CShortcut {
 public:
  /// Reads the whole of `media`. Throws XFormatViolation for what is no shortcut, is cut short or
  /// holds more than a megabyte.
  static CShortcut Parse(const NSBigFilePackage::IMedia& media);

  /// From the shortcut's own folder, "\" between components; empty when the shortcut has none.
  const std::u16string& RelativePath() const { return fRelativePath; }
  /// With drive letter, "\" between components; empty when the target is on no local volume.
  const std::u16string& LocalBasePath() const { return fLocalBasePath; }

 private:
  std::u16string fRelativePath;
  std::u16string fLocalBasePath;
};

}  // namespace NSTolbrook
