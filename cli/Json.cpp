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
  if (code < 0x20 || code == 0x7F) {
    text += fmt::format("\\u{:04x}", code);
  } else {
    text += character;
  }
}

/// The length in UTF-8 of a control character or line separator beyond ASCII at the beginning of
/// `text`, 0 when there is none. JSON allows them, terminals and line readers act on them.
std::size_t ControlSize(std::string_view text) {
  if (text.starts_with("\xE2\x80\xA8") || text.starts_with("\xE2\x80\xA9")) return 3;
  return text.size() > 1 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) < 0xA0 ? 2 : 0;
}

/// `text` is valid UTF-8.
void AppendEscaped(std::string& json, std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t size =
        static_cast<signed char>(text[at]) < 0 ? ControlSize(text.substr(at)) : 0;
    if (size == 0) {
      AppendEscaped(json, text[at++]);
      continue;
    }
    const unsigned last = static_cast<unsigned char>(text[at + size - 1]);
    json += fmt::format("\\u{:04x}", size == 2 ? last : 0x2000 + (last & 0x3F));
    at += size;
  }
}

}  // namespace

std::string CJson::NumberText(double value) { return fmt::format("{}", value); }

CJson::CJson(std::string_view text) : CJson(NSTolbrook::TextFromUtf8(text)) {}

CJson::CJson(const std::u16string& text) {
  const std::string valid = NSTolbrook::Utf8FromText(text);
  fText.reserve(valid.size() + 2);
  fText += '"';
  AppendEscaped(fText, valid);
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
