#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace NSTolbrook {

/// Name and value of an attribute.
class CXMLAttribute {
 public:
  CXMLAttribute(std::u16string name, std::u16string value)
      : fName(std::move(name)), fValue(std::move(value)) {}

  const std::u16string& Name() const { return fName; }
  const std::u16string& Value() const { return fValue; }

 private:
  std::u16string fName;
  std::u16string fValue;
};

/// The bytes of a text that an element was read from: from the "<" of its start tag (`fBegin`) to
/// the ">" of its end tag (`fEnd` is the index behind it). Both are 0 for an element that was
/// built.
struct CXMLSourceRange {
  std::size_t fBegin = 0;
  std::size_t fEnd = 0;
};

/// A node of an XML tree. Attributes and children keep the order of the document; lookups by name
/// take the first match. However deep a tree is, destroying it takes no more than a little stack.
class CXMLElement {
 public:
  using Attributes = std::vector<std::shared_ptr<CXMLAttribute>>;
  using Children = std::vector<std::shared_ptr<CXMLElement>>;

  explicit CXMLElement(std::u16string name, std::u16string text = {});
  CXMLElement(const CXMLElement&) = delete;
  CXMLElement& operator=(const CXMLElement&) = delete;
  ~CXMLElement();

  const std::u16string& Name() const { return fName; }
  const std::u16string& Text() const { return fText; }
  void SetText(std::u16string text) { fText = std::move(text); }
  void AppendText(std::u16string_view text) { fText += text; }

  const Attributes& AttributeList() const { return fAttributes; }
  void AddAttribute(std::u16string name, std::u16string value);
  /// The value of the first attribute of that name, or nullptr.
  const std::u16string* FindAttribute(std::u16string_view name) const;
  /// As FindAttribute, but throws XFormatViolation "Patch format error: Required XML attribute
  /// 'name' not found" when there is none.
  const std::u16string& RequiredAttribute(std::u16string_view name) const;

  const Children& ChildList() const { return fChildren; }
  /// Adds `child` as the last one; a null pointer adds nothing.
  void AddChild(std::shared_ptr<CXMLElement> child);
  /// The first child of that name, or nullptr.
  const CXMLElement* FindChild(std::u16string_view name) const;

  const CXMLSourceRange& SourceRange() const { return fSourceRange; }
  void SetSourceRange(CXMLSourceRange range) { fSourceRange = range; }

 private:
  std::u16string fName;
  std::u16string fText;
  Attributes fAttributes;
  Children fChildren;
  CXMLSourceRange fSourceRange;
};

}  // namespace NSTolbrook
