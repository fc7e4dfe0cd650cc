#include "references/XMLWriter.h"

#include <string_view>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "references/XMLLimits.h"

namespace NSTolbrook {

namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\"?>";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kIndentation = 4;

std::string Escaped(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&apos;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string TextAsXML(const std::u16string& text) {
  const std::string bytes = StrictUtf8FromText(text);
  const auto holds = [&bytes](std::string_view part) { return bytes.find(part) != bytes.npos; };
  // A CDATA section cannot hold its own end.
  const bool asCDATA = (holds("</") || holds("/>")) && !holds("]]>");
  return asCDATA ? "<![CDATA[" + bytes + "]]>" : Escaped(bytes);
}

/// Appends the element from "<" to ">"; recursion ends at the greatest depth.
void AppendElement(std::string& output, const CXMLElement& element, std::size_t depth) {
  if (depth >= kGreatestXMLDepth) {
    throw NSMordel::XFormatViolation("an XML document is nested deeper than " +
                                     std::to_string(kGreatestXMLDepth) + " levels");
  }
  const std::string name = StrictUtf8FromText(element.Name());
  output.append("<").append(name);
  for (const auto& attribute : element.AttributeList()) {
    output.append(" ").append(StrictUtf8FromText(attribute->Name())).append("=\"");
    output.append(Escaped(StrictUtf8FromText(attribute->Value()))).append("\"");
  }
  if (element.Text().empty() && element.ChildList().empty()) {
    output += "/>";
    return;
  }
  output.append(">").append(TextAsXML(element.Text()));
  for (const auto& child : element.ChildList()) {
    output.append(kLineEnd).append((depth + 1) * kIndentation, ' ');
    AppendElement(output, *child, depth + 1);
  }
  if (!element.ChildList().empty()) output.append(kLineEnd).append(depth * kIndentation, ' ');
  output.append("</").append(name).append(">");
}

}  // namespace

std::string WriteXML(const CXMLElement& root) {
  std::string output(kDeclaration);
  output += kLineEnd;
  AppendElement(output, root, 0);
  output += kLineEnd;
  return output;
}

std::string WriteXMLFragment(const CXMLElement& element, std::size_t depth) {
  std::string output;
  AppendElement(output, element, depth);
  return output;
}

}  // namespace NSTolbrook
