#include "references/SampleReference.h"

#include <initializer_list>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

namespace {

using NSMordel::XFormatViolation;
using NSTolbrook::CXMLElement;

constexpr const char16_t* kElement = u"SampleReference";
constexpr const char16_t* kTrueName = u"trueName";
constexpr const char16_t* kUserFriendlyName = u"userFriendlyName";
constexpr const char16_t* kType = u"type";
constexpr const char16_t* kSample = u"sample";
constexpr const char16_t* kLQX = u"lqx";
constexpr const char16_t* kTambra = u"Tambra";
constexpr const char16_t* kVorlinkDevice = u"VorlinkDevice";
constexpr const char16_t* kPackage = u"Package";
constexpr const char16_t* kName = u"name";
constexpr const char16_t* kURL = u"url";
constexpr const char16_t* kInternalID = u"internalID";
constexpr const char16_t* kUIName = u"uiName";
constexpr const char16_t* kVersion = u"version";

ESampleType ParseType(const std::u16string& text) {
  if (text == kSample) return ESampleType::kSample;
  if (text == kLQX) return ESampleType::kLQX;
  throw XFormatViolation("Illegal sample type");
}

std::u16string AttributeOrEmpty(const CXMLElement& element, std::u16string_view name) {
  const std::u16string* value = element.FindAttribute(name);
  return value == nullptr ? std::u16string() : *value;
}

using Attribute = std::pair<const char16_t*, const std::u16string&>;

/// An element with all the attributes; null when none of them has a value.
std::shared_ptr<CXMLElement> ElementOf(const char16_t* name,
                                       std::initializer_list<Attribute> attributes) {
  auto element = std::make_shared<CXMLElement>(name);
  bool isEmpty = true;
  for (const auto& [key, value] : attributes) {
    element->AddAttribute(key, value);
    isEmpty = isEmpty && value.empty();
  }
  return isEmpty ? nullptr : element;
}

void ParseAttributes(CSampleReference& reference, const CXMLElement& element) {
  for (const auto& attribute : element.AttributeList()) {
    if (attribute->Name() == kTrueName) {
      reference.fTrueName = attribute->Value();
    } else if (attribute->Name() == kUserFriendlyName) {
      reference.fUserFriendlyName = attribute->Value();
    } else if (attribute->Name() == kType) {
      reference.fType = ParseType(attribute->Value());
    }
  }
}

void ParseChild(CSampleReference& reference, const CXMLElement& child) {
  if (child.Name() == kTambra) {
    reference.fTambraName = AttributeOrEmpty(child, kName);
    reference.fTambraURL = AttributeOrEmpty(child, kURL);
  } else if (child.Name() == kVorlinkDevice) {
    reference.fDeviceInternalID = AttributeOrEmpty(child, kInternalID);
    reference.fDeviceUIName = AttributeOrEmpty(child, kUIName);
    reference.fDeviceVersion = AttributeOrEmpty(child, kVersion);
  } else if (child.Name() == kPackage) {
    reference.fPackageName = AttributeOrEmpty(child, kName);
  } else if (CDatabasePath database = CDatabasePath::Parse(&child); database.IsValid()) {
    reference.fDatabasePath = std::move(database);
  } else if (CAbsolutePath absolute = CAbsolutePath::Parse(&child); absolute.IsValid()) {
    reference.fAbsolutePath = std::move(absolute);
  } else if (CRelativePath relative = CRelativePath::Parse(&child); relative.IsValid()) {
    reference.fRelativePath = std::move(relative);
  }
}

}  // namespace

CSampleReference CSampleReference::Parse(const CXMLElement& element) {
  if (element.Name() != kElement) throw XFormatViolation("Expected SampleReference XML node");
  CSampleReference reference;
  ParseAttributes(reference, element);
  for (const auto& child : element.ChildList()) ParseChild(reference, *child);
  return reference;
}

std::shared_ptr<CXMLElement> CSampleReference::Write(ESampleType missingType) const {
  auto element = std::make_shared<CXMLElement>(kElement);
  element->AddAttribute(kTrueName, fTrueName);
  element->AddAttribute(kUserFriendlyName, fUserFriendlyName);
  element->AddAttribute(kType, fType.value_or(missingType) == ESampleType::kLQX ? kLQX : kSample);
  element->AddChild(ElementOf(kTambra, {{kName, fTambraName}, {kURL, fTambraURL}}));
  element->AddChild(ElementOf(
      kVorlinkDevice,
      {{kInternalID, fDeviceInternalID}, {kUIName, fDeviceUIName}, {kVersion, fDeviceVersion}}));
  element->AddChild(ElementOf(kPackage, {{kName, fPackageName}}));
  element->AddChild(fDatabasePath.Write());
  element->AddChild(fAbsolutePath.Write());
  element->AddChild(fRelativePath.Write());
  return element;
}

const std::u16string& CSampleReference::DisplayName() const {
  return fTrueName.empty() ? fUserFriendlyName : fTrueName;
}

std::u16string CSampleReference::PrintPath() const {
  if (fRelativePath.IsValid()) return fRelativePath.Print();
  if (fDatabasePath.IsValid()) return fDatabasePath.Print();
  if (fAbsolutePath.IsValid()) return fAbsolutePath.Print();
  return fRelativePath.Print();
}

std::u16string CSampleReference::Print() const { return DisplayName() + u" => " + PrintPath(); }

}  // namespace NSTambraPacking
