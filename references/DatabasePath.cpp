#include "references/DatabasePath.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::CXMLElement;

constexpr const char16_t* kElement = u"DatabasePath";
constexpr const char16_t* kTambraName = u"TambraName";
constexpr const char16_t* kPath = u"Path";
constexpr const char16_t* kPathKind = u"pathKind";
constexpr const char16_t* kVorlink = u"vorlink";

}  // namespace

CDatabasePath::CDatabasePath(EDatabasePathKind kind, std::u16string packageName,
                             CPathComponents components)
    : fValid(true),
      fKind(kind),
      fPackageName(std::move(packageName)),
      fComponents(std::move(components)) {}

CDatabasePath CDatabasePath::Parse(const CXMLElement* element) {
  if (element == nullptr || element->Name() != kElement) return {};
  CDatabasePath path;
  path.fValid = true;
  bool isDeviceContent = false;
  for (const auto& child : element->ChildList()) {
    if (child->Name() == kTambraName) {
      path.fPackageName = child->Text();
    } else if (child->Name() == kPath) {
      path.fComponents = SplitPathText(child->Text(), "DatabasePath must start with a '/'");
    } else if (child->Name() == kPathKind) {
      isDeviceContent = isDeviceContent || child->Text() == kVorlink;
    }
  }
  if (isDeviceContent) {
    path.fKind = EDatabasePathKind::kDeviceContent;
  } else if (!path.fPackageName.empty()) {
    path.fKind = EDatabasePathKind::kPackage;
  }
  return path;
}

std::shared_ptr<CXMLElement> CDatabasePath::Write() const {
  if (!fValid) return nullptr;
  auto element = std::make_shared<CXMLElement>(kElement);
  if (!fPackageName.empty()) {
    element->AddChild(std::make_shared<CXMLElement>(kTambraName, fPackageName));
  }
  element->AddChild(std::make_shared<CXMLElement>(kPath, PathTextFromComponents(fComponents)));
  if (fKind == EDatabasePathKind::kDeviceContent) {
    element->AddChild(std::make_shared<CXMLElement>(kPathKind, kVorlink));
  }
  return element;
}

std::u16string CDatabasePath::Print() const {
  if (!fValid) return u"*invalid database path*";
  const std::u16string path = JoinComponents(fComponents);
  return fPackageName.empty() ? path : fPackageName + u":" + path;
}

}  // namespace NSTambraPacking
