#include "cli/Json.h"

#include <fmt/format.h>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraCli {

namespace {

void AppendEscaped(std::string& text, char character) {
  switch (character) {
    case '"':
      text += "\\\"";
      return;
    case '\\':
      text += "\\\\";
      return;
    case '\b':
      text += "\\b";
      return;
    case '\f':
      text += "\\f";
      return;
    case '\n':
      text += "\\n";
      return;
    case '\r':
      text += "\\r";
      return;
    case '\t':
      text += "\\t";
      return;
    default:
      break;
  }
  const auto code = static_cast<unsigned char>(character);
  if (code < 0x20) {
    text += fmt::format("\\u{:04x}", code);
  } else {
    text += character;
  }
}

}  // namespace

std::string CJson::NumberText(double value) { return fmt::format("{}", value); }

CJson::CJson(std::string_view text) {
  const std::string valid = NSTolbrook::Utf8FromText(NSTolbrook::TextFromUtf8(text));
  fText.reserve(valid.size() + 2);
  fText += '"';
  for (const char character : valid) AppendEscaped(fText, character);
  fText += '"';
}

CJson::CJson(std::initializer_list<CMember> members) : fText("{}") {
  for (const auto& [name, value] : members) Add(name, value);
}

CJson CJson::Array() {
  CJson array(nullptr);
  array.fText = "[]";
  return array;
}

void CJson::Add(std::string_view name, const CJson& value) {
  Insert(CJson(name).fText + ":" + value.fText);
}

void CJson::Append(const CJson& value) { Insert(value.fText); }

void CJson::Insert(const std::string& piece) {
  const char bracket = fText.back();
  fText.pop_back();
  if (fText.size() > 1) fText += ',';
  fText += piece;
  fText += bracket;
}

}  // namespace NSTambraCli
