#include "references/AbsolutePath.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

namespace {

using NSMordel::XFormatViolation;
using NSTolbrook::CXMLElement;

constexpr const char16_t* kElement = u"AbsolutePath";
constexpr const char16_t* kVolume = u"Volume";
constexpr const char16_t* kName = u"name";
constexpr const char16_t* kType = u"type";
constexpr const char16_t* kPath = u"Path";
constexpr const char16_t* kPartOfTambra = u"partOfTambra";
constexpr const char16_t* kNativeURL = u"NativeURL";
constexpr const char16_t* kMode = u"mode";

/// Keywords in the order of the enumerators.
constexpr std::array<std::u16string_view, 6> kVolumeTypes = {u"floppy", u"hd",      u"removable",
                                                             u"cdrom",  u"network", u"unknown"};
constexpr std::array<std::u16string_view, 4> kModes = {u"OSXDirectory", u"OSXFile",
                                                       u"Win32Directory", u"Win32File"};

/// The index of `keyword`, or the array's size.
template <std::size_t Count>
std::size_t IndexOf(const std::array<std::u16string_view, Count>& keywords,
                    std::u16string_view keyword) {
  return static_cast<std::size_t>(std::find(keywords.begin(), keywords.end(), keyword) -
                                  keywords.begin());
}

template <std::size_t Count, class Enum>
std::u16string KeywordOf(const std::array<std::u16string_view, Count>& keywords, Enum value) {
  return std::u16string(keywords.at(static_cast<std::size_t>(value)));
}

}  // namespace

CAbsolutePath::CAbsolutePath(std::u16string volumeName, CPathComponents components)
    : fValid(true), fVolumeName(std::move(volumeName)), fComponents(std::move(components)) {}

CAbsolutePath CAbsolutePath::Parse(const CXMLElement* element) {
  if (element == nullptr || element->Name() != kElement) return {};
  CAbsolutePath path;
  path.fValid = true;
  for (const auto& child : element->ChildList()) {
    if (child->Name() == kVolume) {
      path.ParseVolume(*child);
    } else if (child->Name() == kPath) {
      path.ParsePath(*child);
    } else if (child->Name() == kNativeURL) {
      path.ParseNativeURL(*child);
    }
  }
  return path;
}

void CAbsolutePath::ParseVolume(const CXMLElement& element) {
  if (const std::u16string* name = element.FindAttribute(kName)) fVolumeName = *name;
  const std::u16string* type = element.FindAttribute(kType);
  const std::size_t index = type == nullptr ? kVolumeTypes.size() : IndexOf(kVolumeTypes, *type);
  fVolumeType =
      index < kVolumeTypes.size() ? static_cast<EVolumeType>(index) : EVolumeType::kUnknown;
}

void CAbsolutePath::ParsePath(const CXMLElement& element) {
  const std::u16string* partOfTambra = element.FindAttribute(kPartOfTambra);
  if (partOfTambra == nullptr) {
    throw XFormatViolation("AbsolutePath/Path element must have a 'partOfTambra' attribute");
  }
  if (*partOfTambra != u"yes" && *partOfTambra != u"no") {
    throw XFormatViolation("'partOfTambra' attribute must be either 'yes' or 'no'");
  }
  fIsPartOfPackage = *partOfTambra == u"yes";
  // The database form's wording is what this form has always reported.
  fComponents = SplitPathText(element.Text(), "DatabasePath must start with a '/'");
}

void CAbsolutePath::ParseNativeURL(const CXMLElement& element) {
  const std::u16string* mode = element.FindAttribute(kMode);
  if (mode == nullptr) {
    throw XFormatViolation("AbsolutePath/NativeURL element must have a 'mode' attribute");
  }
  const std::size_t index = IndexOf(kModes, *mode);
  if (index == kModes.size()) {
    throw XFormatViolation("AbsolutePath/NativeURL/@mode attribute set to illegal value");
  }
  fNativeURLMode = static_cast<ENativeURLMode>(index);
  fNativeURL = element.Text();
}

std::shared_ptr<CXMLElement> CAbsolutePath::Write() const {
  if (!fValid) return nullptr;
  auto element = std::make_shared<CXMLElement>(kElement);
  auto volume = std::make_shared<CXMLElement>(kVolume);
  volume->AddAttribute(kName, fVolumeName);
  volume->AddAttribute(kType, KeywordOf(kVolumeTypes, fVolumeType));
  element->AddChild(std::move(volume));
  auto path = std::make_shared<CXMLElement>(kPath, PathTextFromComponents(fComponents));
  path->AddAttribute(kPartOfTambra, fIsPartOfPackage ? u"yes" : u"no");
  element->AddChild(std::move(path));
  auto url = std::make_shared<CXMLElement>(kNativeURL, fNativeURL);
  url->AddAttribute(kMode, KeywordOf(kModes, fNativeURLMode));
  element->AddChild(std::move(url));
  return element;
}

std::u16string CAbsolutePath::Print() const {
  if (!fValid) return u"*invalid absolute path*";
  const std::u16string path = JoinComponents(fComponents);
  return fVolumeName.empty() ? path : fVolumeName + u"/" + path;
}

}  // namespace NSTambraPacking
