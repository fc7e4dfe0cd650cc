#include "references/XMLElement.h"

#include <algorithm>
#include <iterator>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTolbrook {

CXMLElement::CXMLElement(std::u16string name, std::u16string text)
    : fName(std::move(name)), fText(std::move(text)) {}

CXMLElement::~CXMLElement() {
  // The members' own destructors would recurse, one stack frame a level.
  Children pending = std::move(fChildren);
  while (!pending.empty()) {
    const std::shared_ptr<CXMLElement> element = std::move(pending.back());
    pending.pop_back();
    if (element.use_count() > 1) continue;
    std::move(element->fChildren.begin(), element->fChildren.end(), std::back_inserter(pending));
    element->fChildren.clear();
  }
}

void CXMLElement::AddAttribute(std::u16string name, std::u16string value) {
  fAttributes.push_back(std::make_shared<CXMLAttribute>(std::move(name), std::move(value)));
}

const std::u16string* CXMLElement::FindAttribute(std::u16string_view name) const {
  const auto found =
      std::find_if(fAttributes.begin(), fAttributes.end(),
                   [name](const auto& attribute) { return attribute->Name() == name; });
  return found == fAttributes.end() ? nullptr : &(*found)->Value();
}

const std::u16string& CXMLElement::RequiredAttribute(std::u16string_view name) const {
  if (const std::u16string* value = FindAttribute(name)) return *value;
  throw NSMordel::XFormatViolation("Patch format error: Required XML attribute '" +
                                   Utf8FromText(name) + "' not found");
}

void CXMLElement::AddChild(std::shared_ptr<CXMLElement> child) {
  if (child != nullptr) fChildren.push_back(std::move(child));
}

const CXMLElement* CXMLElement::FindChild(std::u16string_view name) const {
  const auto found = std::find_if(fChildren.begin(), fChildren.end(),
                                  [name](const auto& child) { return child->Name() == name; });
  return found == fChildren.end() ? nullptr : found->get();
}

}  // namespace NSTolbrook
