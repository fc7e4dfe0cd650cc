#include "references/RelativePath.h"

#include <charconv>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

using NSMordel::XFormatViolation;
using NSTolbrook::CXMLElement;

constexpr const char16_t* kElement = u"RelativePath";
constexpr const char16_t* kPath = u"Path";
constexpr const char16_t* kStepUp = u"StepUp";

/// A hostile count must not print gigabytes, nor a document of many references a hundred times its
/// own length; no library nests so deep.
constexpr std::int32_t kGreatestPrintedStepUp = 256;

std::int32_t ParseStepUp(const std::u16string& text) {
  const std::string digits = NSTolbrook::Utf8FromText(text);
  const char* const end = digits.data() + digits.size();
  std::int32_t count = 0;
  const auto parsed = std::from_chars(digits.data(), end, count);
  if (parsed.ec != std::errc{} || parsed.ptr != end) {
    throw XFormatViolation("Failed converting StepUp value to int");
  }
  if (count < 0) throw XFormatViolation("RelativePath must not have a negative StepUp value");
  return count;
}

}  // namespace

CRelativePath::CRelativePath(std::int32_t stepUp, CPathComponents components)
    : fValid(true), fStepUp(stepUp), fComponents(std::move(components)) {}

CRelativePath CRelativePath::Parse(const CXMLElement* element) {
  if (element == nullptr || element->Name() != kElement) return {};
  const CXMLElement::Children& children = element->ChildList();
  if (children.size() != 2 || children[0]->Name() != kPath || children[1]->Name() != kStepUp) {
    throw XFormatViolation("RelativePath must have two elements, Path and StepUp");
  }
  CPathComponents components =
      SplitPathText(children[0]->Text(), "RelativePath must start with a '/'");
  return CRelativePath(ParseStepUp(children[1]->Text()), std::move(components));
}

std::shared_ptr<CXMLElement> CRelativePath::Write() const {
  if (!fValid) return nullptr;
  auto element = std::make_shared<CXMLElement>(kElement);
  element->AddChild(std::make_shared<CXMLElement>(kPath, PathTextFromComponents(fComponents)));
  element->AddChild(
      std::make_shared<CXMLElement>(kStepUp, NSTolbrook::TextFromUtf8(std::to_string(fStepUp))));
  return element;
}

std::u16string CRelativePath::Print() const {
  if (!fValid) return u"*invalid relative path*";
  std::u16string text;
  for (std::int32_t i = 0; i < fStepUp && i < kGreatestPrintedStepUp; ++i) text += u"../";
  return text + JoinComponents(fComponents);
}

}  // namespace NSTambraPacking
