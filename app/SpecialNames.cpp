#include "app/SpecialNames.h"

#include <span>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/VersionText.h"
#include "package/PackageHeader.h"

namespace NSTambraPacking {

namespace {
constexpr std::uint64_t kGreatestInformationFile = 1u << 20;
}

bool IsSplash(const std::u16string& path) {
  return NSTolbrook::ComparisonKey(path) == u"splash.jpg";
}

ESpecialFile CSpecialNames::KindOf(const std::u16string& path) const {
  if (path.find(u'/') != std::u16string::npos) return ESpecialFile::kNone;
  if (IsInformationFile(path)) return ESpecialFile::kInformation;
  return IsSplash(path) ? ESpecialFile::kSplash : ESpecialFile::kNone;
}

void CSpecialNames::TakeInformation(const std::u16string& path,
                                    const NSBigFilePackage::SharedMedia& data) {
  fFiles.push_back({path, ReadInformationBytes(*data)});
}

void CSpecialNames::FillHeader(CPackageHeader& header) const {
  const CPackageInformation information = ReadPackageTexts(fFiles).fInformation;
  header.fTambraName = information.fName;
  header.fURL = information.fURL;
  header.fComment = information.fComments;
  header.fCopyright = information.fCopyright;
  header.fVersion = ParseVersionText(information.fVersion);
}

std::string ReadInformationBytes(const NSBigFilePackage::IMedia& media) {
  const std::uint64_t size = media.Size();
  if (size > kGreatestInformationFile) {
    throw NSMordel::XFormatViolation("the information file has " + std::to_string(size) +
                                     " bytes; at most " + std::to_string(kGreatestInformationFile) +
                                     " can be read");
  }
  std::string bytes(static_cast<std::size_t>(size), '\0');
  NSBigFilePackage::ReadExactly(
      media, 0, std::span(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()));
  return bytes;
}

}  // namespace NSTambraPacking
