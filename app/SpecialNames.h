#pragma once

#include <string>
#include <vector>

#include "app/PackageInformation.h"
#include "package/SpecialFiles.h"

namespace NSTambraPacking {

/// True for the splash picture in the top folder, in any case.
bool IsSplash(const std::u16string& path);

/// The application's knowledge of special names, for the composer: it gathers the information
/// files and makes the header's texts of them.
class CSpecialNames : public ISpecialFiles {
 public:
  ESpecialFile KindOf(const std::u16string& path) const override;
  void TakeInformation(const std::u16string& path,
                       const NSBigFilePackage::SharedMedia& data) override;
  void FillHeader(CPackageHeader& header) const override;

 private:
  std::vector<CInformationFile> fFiles;
};

/// The bytes of an information file. Throws XFormatViolation above 1 MiB: no such text is meant.
std::string ReadInformationBytes(const NSBigFilePackage::IMedia& media);

}  // namespace NSTambraPacking
