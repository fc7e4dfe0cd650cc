#include "references/XMLReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utf8.h>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "references/XMLLimits.h"

namespace NSTolbrook {

namespace {

using NSMordel::CContext;
using NSMordel::XFormatViolation;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kCommentStart = "<!--";
constexpr std::string_view kCDATAStart = "<![CDATA[";
constexpr std::u16string_view kBlankUnits = u" \t\r\n";

constexpr std::array<std::pair<std::string_view, char>, 5> kEntities = {
    {{"&gt;", '>'}, {"&lt;", '<'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}}};

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

constexpr bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
         static_cast<unsigned char>(c) >= 0x80;
}

constexpr bool IsNameByte(char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

std::u16string Trimmed(const std::u16string& text) {
  const std::size_t first = text.find_first_not_of(kBlankUnits);
  if (first == std::u16string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlankUnits) - first + 1);
}

/// Walks the text once from its start. The open elements stand on a stack of their own.
class CParser {
 public:
  CParser(std::string_view text, std::string kind) : fText(text), fKind(std::move(kind)) {
    if (fText.starts_with(kByteOrderMark)) fPosition = kByteOrderMark.size();
  }

  std::shared_ptr<CXMLElement> Document() {
    RequireUtf8();
    while (fPosition < fText.size()) {
      if (fText[fPosition] == '<') {
        Markup();
      } else {
        Characters();
      }
    }
    if (!fOpen.empty()) FailAtEnd();
    if (fRoot == nullptr) FailPlainly("Patch format error: Empty XML file");
    return std::move(fRoot);
  }

  /// Stops behind the root's last attribute that is complete.
  std::shared_ptr<CXMLElement> RootTag() {
    fText = fText.substr(0, ValidLength());
    try {
      while (fPosition < fText.size() && fRoot == nullptr) {
        if (fText[fPosition] == '<') {
          Markup();
        } else {
          Characters();
        }
      }
    } catch (const XFormatViolation& fault) {
      const std::string* kindOfFault = fault.FindContext(kXMLError);
      if (kindOfFault == nullptr || *kindOfFault != kXMLUnexpectedEndOfFileError) throw;
    }
    return std::move(fRoot);
  }

 private:
  std::size_t ValidLength() const {
    return static_cast<std::size_t>(utf8::find_invalid(fText.begin(), fText.end()) - fText.begin());
  }

  void RequireUtf8() {
    const std::size_t length = ValidLength();
    if (length < fText.size()) {
      Fail(kXMLUnexpectedCharError, length, "a byte that is not UTF-8");
    }
  }

  bool StartsWith(std::string_view start) const {
    return fText.substr(fPosition).starts_with(start);
  }

  char Peek() const {
    if (fPosition >= fText.size()) FailAtEnd();
    return fText[fPosition];
  }

  void Expect(char expected) {
    const char found = Peek();
    if (found != expected) FailExpected(expected);
    ++fPosition;
  }

  bool SkipBlanks() {
    const std::size_t start = fPosition;
    while (fPosition < fText.size() && IsBlank(fText[fPosition])) ++fPosition;
    return fPosition > start;
  }

  /// Moves behind the next `mark` and returns the text up to it.
  std::string_view TakeUpTo(std::string_view mark) {
    const std::size_t found = fText.find(mark, fPosition);
    if (found == std::string_view::npos) FailAtEnd();
    const std::string_view taken = fText.substr(fPosition, found - fPosition);
    fPosition = found + mark.size();
    return taken;
  }

  std::string_view Name() {
    if (!IsNameStart(Peek())) {
      Fail(kXMLFormatTagError, fPosition, "a name was expected", std::nullopt,
           OffendingCharacter());
    }
    const std::size_t start = fPosition;
    while (IsNameByte(Peek())) ++fPosition;
    return fText.substr(start, fPosition - start);
  }

  void Markup() {
    if (StartsWith("</")) {
      EndTag();
    } else if (StartsWith("<?")) {
      Instruction();
    } else if (StartsWith(kCommentStart)) {
      fPosition += kCommentStart.size();
      TakeUpTo("-->");
    } else if (StartsWith(kCDATAStart)) {
      CDATA();
    } else if (StartsWith("<!")) {
      const std::string_view rest = fText.substr(fPosition);
      if (kCommentStart.starts_with(rest) || kCDATAStart.starts_with(rest)) FailAtEnd();
      Fail(kXMLFormatTagError, fPosition, "only comments and CDATA may begin with \"<!\"");
    } else {
      StartTag();
    }
  }

  void CDATA() {
    if (fOpen.empty()) {
      Fail(kXMLUnexpectedCharError, fPosition, "text outside the root element", std::nullopt, "<");
    }
    fPosition += kCDATAStart.size();
    fRun += TakeUpTo("]]>");
    fRunIsText = true;
  }

  void Instruction() {
    const std::size_t start = fPosition;
    fPosition += 2;
    const std::string_view name = Name();
    const std::string_view rest = TakeUpTo("?>");
    if (name == "xml") CheckDeclaration(rest, start);
  }

  /// `attributes` is what stands between "<?xml" and "?>".
  void CheckDeclaration(std::string_view attributes, std::size_t position) const {
    constexpr std::string_view kVersion = "version=";
    const std::size_t found = attributes.find(kVersion);
    if (found == std::string_view::npos) return;
    std::string_view value = attributes.substr(found + kVersion.size());
    if (value.empty() || (value[0] != '"' && value[0] != '\'')) {
      Fail(kXMLFormatTagError, position, "the version in the declaration is not quoted");
    }
    const std::size_t end = value.find(value[0], 1);
    if (end == std::string_view::npos) {
      Fail(kXMLFormatTagError, position, "the version in the declaration is not closed");
    }
    value = value.substr(1, end - 1);
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    const char* const last = value.data() + value.size();
    const auto whole = std::from_chars(value.data(), last, major);
    if (whole.ec == std::errc{} && whole.ptr != last && *whole.ptr == '.') {
      const auto fraction = std::from_chars(whole.ptr + 1, last, minor);
      if (fraction.ec == std::errc{} && fraction.ptr == last) {
        if (std::pair(major, minor) <= std::pair(1U, 0U)) return;
        throw NSMordel::XVersionTooNew("A newer Ostrum version is needed to read this " + fKind,
                                       Where(position));
      }
    }
    Fail(kXMLFormatTagError, position, "the version in the declaration is not a number");
  }

  void StartTag() {
    const std::size_t begin = fPosition++;
    auto element = std::make_shared<CXMLElement>(TextFromUtf8(Name()));
    CountNode();
    if (fOpen.empty()) {
      if (fRoot != nullptr) {
        FailPlainly("Patch format error: Only one top level XML element allowed");
      }
      fRoot = element;
    } else {
      FlushRun();
      fOpen.back()->AddChild(element);
    }
    element->SetSourceRange({begin, begin});
    const bool closed = TagAttributes(*element);
    if (fOpen.size() == kGreatestXMLDepth) {
      Fail(kXMLFormatTagError, begin, "the elements are nested too deep");
    }
    if (closed) {
      element->SetSourceRange({begin, fPosition});
    } else {
      fOpen.push_back(std::move(element));
    }
  }

  /// Reads up to the end of the start tag; true when the tag closes its element, too.
  bool TagAttributes(CXMLElement& element) {
    for (;;) {
      const bool separated = SkipBlanks();
      const char next = Peek();
      if (next == '>' || next == '/') {
        ++fPosition;
        if (next == '/') Expect('>');
        return next == '/';
      }
      if (!separated) FailUnexpected("in a start tag");
      Attribute(element);
    }
  }

  void Attribute(CXMLElement& element) {
    const std::string_view name = Name();
    SkipBlanks();
    Expect('=');
    SkipBlanks();
    const char quote = Peek();
    if (quote != '"' && quote != '\'') FailExpected('"');
    ++fPosition;
    std::string value;
    while (Peek() != quote) {
      if (fText[fPosition] == '<') FailUnexpected("in the value of an attribute");
      TakeCharacter(value);
    }
    ++fPosition;
    CountNode();
    element.AddAttribute(TextFromUtf8(name), TextFromUtf8(value));
  }

  void EndTag() {
    const std::size_t begin = fPosition;
    fPosition += 2;
    const std::u16string name = TextFromUtf8(Name());
    if (fOpen.empty() || fOpen.back()->Name() != name) {
      Fail(kXMLTagMismatchError, begin,
           "the end tag \"" + Utf8FromText(name) + "\" does not name the open element");
    }
    SkipBlanks();
    Expect('>');
    FlushRun();
    CXMLElement& element = *fOpen.back();
    if (!element.ChildList().empty()) element.SetText(Trimmed(element.Text()));
    element.SetSourceRange({element.SourceRange().fBegin, fPosition});
    fOpen.pop_back();
  }

  void Characters() {
    if (fOpen.empty()) {
      if (SkipBlanks()) return;
      const bool elementless = fRoot == nullptr && fText.find('<', fPosition) == fText.npos;
      if (elementless) FailPlainly("Patch format error: Empty XML file");
      FailUnexpected("outside the root element");
    }
    while (fPosition < fText.size() && fText[fPosition] != '<') {
      fRunIsText = fRunIsText || !IsBlank(fText[fPosition]);
      TakeCharacter(fRun);
    }
  }

  /// Appends one byte, or the character that an entity stands for.
  void TakeCharacter(std::string& destination) {
    if (fText[fPosition] != '&') {
      destination += fText[fPosition++];
      return;
    }
    for (const auto& [entity, character] : kEntities) {
      if (!StartsWith(entity)) continue;
      destination += character;
      fPosition += entity.size();
      return;
    }
    Fail(kXMLUnsupportedAmpError, fPosition, "an entity that is not supported", std::nullopt, "&");
  }

  /// Hands the text since the last tag over to the innermost open element.
  void FlushRun() {
    if (fRunIsText) fOpen.back()->AppendText(TextFromUtf8(fRun));
    fRun.clear();
    fRunIsText = false;
  }

  void CountNode() {
    if (++fNodeCount > kGreatestXMLNodeCount) {
      Fail(kXMLFormatTagError, fPosition, "there are too many elements and attributes");
    }
  }

  std::string OffendingCharacter() const {
    std::size_t end = fPosition + 1;
    while (end < fText.size() && (static_cast<unsigned char>(fText[end]) & 0xC0) == 0x80) ++end;
    return std::string(fText.substr(fPosition, end - fPosition));
  }

  CContext Where(std::size_t position) const {
    const auto lineFeeds =
        std::count(fText.begin(), fText.begin() + static_cast<std::ptrdiff_t>(position), '\n');
    return {{NSMordel::kTargetObjectType, kXMLFormat},
            {kXMLLineNumber, std::to_string(lineFeeds + 1)}};
  }

  [[noreturn]] void FailPlainly(const std::string& message) const {
    throw XFormatViolation(message, Where(fPosition));
  }

  [[noreturn]] void FailAtEnd() const {
    Fail(kXMLUnexpectedEndOfFileError, fText.size(), "the text ends inside an element or tag");
  }

  [[noreturn]] void FailUnexpected(const std::string& place) const {
    const std::string found = OffendingCharacter();
    Fail(kXMLUnexpectedCharError, fPosition, "\"" + found + "\" may not stand " + place,
         std::nullopt, found);
  }

  [[noreturn]] void FailExpected(char expected) const {
    const std::string found = OffendingCharacter();
    Fail(kXMLExpectedCharError, fPosition,
         std::string("\"") + expected + "\" was expected but \"" + found + "\" found", expected,
         found);
  }

  [[noreturn]] void Fail(const char* error, std::size_t position, const std::string& detail,
                         std::optional<char> expected = std::nullopt,
                         const std::optional<std::string>& offending = std::nullopt) const {
    CContext context = Where(position);
    context.emplace_back(kXMLError, error);
    if (expected) context.emplace_back(kXMLExpectedCharacter, std::string(1, *expected));
    if (offending) context.emplace_back(kXMLOffendingCharacter, *offending);
    const std::string line = context[1].second;
    throw XFormatViolation("XML, line " + line + ": " + detail, std::move(context));
  }

  std::string_view fText;
  std::string fKind;
  std::size_t fPosition = 0;
  std::size_t fNodeCount = 0;
  std::shared_ptr<CXMLElement> fRoot;
  std::vector<std::shared_ptr<CXMLElement>> fOpen;
  /// The characters since the last tag, and whether they are more than layout.
  std::string fRun;
  bool fRunIsText = false;
};

}  // namespace

std::shared_ptr<CXMLElement> ReadXML(std::string_view text, const std::string& kind) {
  return CParser(text, kind).Document();
}

std::shared_ptr<CXMLElement> LoadXMLDocument(std::string_view text, const std::string& kind,
                                             const std::string& name) {
  try {
    return ReadXML(text, kind);
  } catch (const XFormatViolation& fault) {
    if (fault.FindContext(kXMLError) == nullptr) throw;
    CContext context = fault.Context();
    context.emplace_back(kXMLMessage, fault.Message());
    throw XFormatViolation("Format error in " + name, std::move(context));
  }
}

std::shared_ptr<CXMLElement> ReadXMLRootTag(std::string_view head) {
  return CParser(head, "document").RootTag();
}

}  // namespace NSTolbrook
