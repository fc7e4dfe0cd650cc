#include "references/XMLElement.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTolbrook {

CXMLElement::CXMLElement(std::u16string name, std::u16string text)
    : fName(std::move(name)), fText(std::move(text)) {}

CXMLElement::~CXMLElement() {
  // The members' own destructors would recurse, one stack frame a level; and a list of what is left
  // to do would take memory, of which there may be none. So the way back up is kept where the child
  // was that the way down took (as in Schorr and Waite's marking of graphs).
  for (std::shared_ptr<CXMLElement>& own : fChildren) {
    std::shared_ptr<CXMLElement> element = std::move(own);
    if (element.use_count() > 1) continue;
    std::shared_ptr<CXMLElement> parent;
    for (;;) {
      Children& children = element->fChildren;
      if (children.empty()) {
        if (!parent) break;
        element = std::move(parent);
        parent = std::move(element->fChildren.back());
        element->fChildren.pop_back();
        continue;
      }
      std::shared_ptr<CXMLElement> child = std::move(children.back());
      if (child.use_count() > 1 || child->fChildren.empty()) {
        children.pop_back();
      } else {
        children.back() = std::move(parent);
        parent = std::move(element);
        element = std::move(child);
      }
    }
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
