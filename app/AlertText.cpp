#include "app/AlertText.h"

#include <array>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/TextTable.h"

namespace NSTambraPacking {

namespace {

constexpr std::array<std::pair<std::u16string_view, EAlertKind>, 4> kKinds{
    {{u"NONE", EAlertKind::kNone},
     {u"STOP", EAlertKind::kStop},
     {u"NOTE", EAlertKind::kNote},
     {u"WARN", EAlertKind::kWarn}}};

/// Takes the text of an alert apart from left to right.
class CAlertReader {
 public:
  explicit CAlertReader(std::u16string_view text) : fText(text), fRest(text) {}

  bool AtEnd() const { return fRest.empty(); }
  bool AtBracket() const { return fRest.starts_with(u'['); }

  std::u16string ReadBracketed() {
    if (!AtBracket()) Fail("a '[' is missing");
    fRest.remove_prefix(1);
    std::u16string content = ReadUnbracketed();
    if (!fRest.starts_with(u']')) Fail("a ']' is missing");
    fRest.remove_prefix(1);
    return content;
  }

  /// Everything up to the next bracket that means itself, or the end.
  std::u16string ReadUnbracketed() {
    std::size_t end = 0;
    while (end < fRest.size() && fRest[end] != u'[' && fRest[end] != u']') {
      end += fRest[end] == u'\\' && end + 1 < fRest.size() ? 2U : 1U;
    }
    std::u16string content = UnescapeText(fRest.substr(0, end));
    fRest.remove_prefix(end);
    return content;
  }

  [[noreturn]] void Fail(const std::string& fault) const {
    throw NSMordel::XFormatViolation("the alert text \"" + NSTolbrook::Utf8FromText(fText) +
                                     "\" is malformed: " + fault);
  }

 private:
  std::u16string_view fText;
  std::u16string_view fRest;
};

EAlertKind ReadKind(CAlertReader& reader) {
  const std::u16string word = reader.ReadBracketed();
  for (const auto& [name, kind] : kKinds) {
    if (word == name) return kind;
  }
  reader.Fail("it does not begin with a kind");
}

}  // namespace

CAlertText CAlertText::Parse(std::u16string_view text) {
  CAlertReader reader(text);
  CAlertText alert;
  alert.fKind = ReadKind(reader);
  if (reader.AtBracket()) alert.fTitle = reader.ReadBracketed();
  alert.fMessage = reader.ReadUnbracketed();
  if (alert.fMessage.empty()) reader.Fail("it has no message");
  while (!reader.AtEnd()) alert.fButtons.push_back(reader.ReadBracketed());
  if (alert.fButtons.empty()) reader.Fail("it has no button");
  return alert;
}

int CAlertText::Answer(std::size_t index) const {
  return kLastButton + static_cast<int>(fButtons.size() - 1 - index);
}

std::u16string EscapeAlertArgument(std::u16string_view argument) {
  std::u16string escaped;
  for (const char16_t unit : argument) {
    if (unit == u'[' || unit == u']' || unit == u'\\') escaped += u'\\';
    escaped += unit;
  }
  return escaped;
}

std::u16string FillPlaceholders(std::u16string_view text,
                                const std::vector<std::u16string>& arguments) {
  std::u16string filled;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPlaceholder =
        text[i] == u'^' && i + 1 < text.size() && text[i + 1] >= u'0' && text[i + 1] <= u'9';
    const std::size_t index = isPlaceholder ? static_cast<std::size_t>(text[i + 1] - u'0') : 0;
    if (isPlaceholder && index < arguments.size()) {
      filled += arguments[index];
      ++i;
    } else {
      filled += text[i];
    }
  }
  return filled;
}

}  // namespace NSTambraPacking
