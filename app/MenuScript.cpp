#include "app/MenuScript.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr const char* kBadInteger = "failed parsing integer in menu script text";
constexpr const char* kOpenBrace = "unterminated '{' in menu script text";
constexpr const char* kBadBraceString =
    "failed parsing curly-brace-quoted string in menu script text";
constexpr const char* kBadAttributeName = "failed parsing attribute identifier in menu script text";
constexpr const char* kBadQuotedString = "failed parsing single-quoted string in menu script text";
constexpr const char* kBadAttributes = "failed parsing menu item attributes in menu script text";
constexpr const char* kBadFlags = "unkown menu item flags string";
constexpr const char* kBadItemId = "failed parsing menu item ID value string in menu script text";
constexpr const char* kBadAttributeValue = "failed parsing attribute value in menu script text";
constexpr const char* kOpenList =
    "missing termination of menu item list (no ')' character to match a leading '(') in menu "
    "script text";
constexpr const char* kBadList = "failed parsing menu item list in menu script text";

bool IsLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

/// Reads a menu script from left to right, with one function for each of its parts.
class CMenuParser {
 public:
  CMenuParser(const std::string& name, std::string_view text) : fName(name), fRest(text) {}

  std::vector<CMenu> ReadMenus() {
    std::vector<CMenu> menus;
    for (SkipEmptyLines(); !fRest.empty(); SkipEmptyLines()) menus.push_back(ReadMenu());
    return menus;
  }

 private:
  CMenu ReadMenu() {
    CMenu menu;
    menu.fId = ReadInteger(kBadInteger);
    SkipBlanks();
    menu.fTitle = ReadText(kBadBraceString);
    SkipBlanks();
    if (!Take('(')) Fail(kBadList);
    EndLine(kBadList);
    for (SkipEmptyLines(); !Take(')'); SkipEmptyLines()) {
      if (fRest.empty()) Fail(kOpenList);
      menu.fItems.push_back(ReadItem());
    }
    EndLine(kBadList);
    return menu;
  }

  CMenuItem ReadItem() {
    CMenuItem item;
    item.fText = ReadText(kBadList);
    SkipBlanks();
    if (Take('[')) {
      ReadAttributes(item);
    } else if (!item.IsSeparator()) {
      Fail(kBadAttributes);
    }
    EndLine(kBadList);
    return item;
  }

  void ReadAttributes(CMenuItem& item) {
    bool hasId = false;
    for (SkipBlanks(); !Take(']'); SkipBlanks()) {
      if (fRest.empty() || fRest.front() == '\r' || fRest.front() == '\n') Fail(kBadAttributes);
      const std::string_view name = ReadIdentifier();
      if (!Take('=')) Fail(kBadAttributes);
      if (name == "id") {
        item.fId = ReadInteger(kBadItemId);
        hasId = true;
      } else if (name == "key") {
        item.fKey = ReadText(kBadAttributeValue);
      } else if (name == "flags") {
        ReadFlags(item);
      } else {
        Fail(kBadAttributeName);
      }
    }
    if (!hasId && !item.IsSeparator()) Fail(kBadAttributes);
  }

  void ReadFlags(CMenuItem& item) {
    const std::u16string words = ReadText(kBadAttributeValue);
    for (std::size_t start = 0; start < words.size();) {
      const std::size_t end = std::min(words.find(u' ', start), words.size());
      const std::u16string_view word = std::u16string_view(words).substr(start, end - start);
      if (word == u"disabled") {
        item.fDisabled = true;
      } else if (word == u"checkable" || word == u"checked") {
        item.fCheckable = true;
        item.fChecked = item.fChecked || word == u"checked";
      } else if (!word.empty()) {
        Fail(kBadFlags);
      }
      start = end + 1;
    }
  }

  int ReadInteger(const char* fault) {
    int value = 0;
    const auto [end, error] = std::from_chars(fRest.data(), fRest.data() + fRest.size(), value);
    if (error != std::errc() || value < 0) Fail(fault);
    fRest.remove_prefix(static_cast<std::size_t>(end - fRest.data()));
    return value;
  }

  std::string_view ReadIdentifier() {
    const auto end = std::find_if_not(fRest.begin(), fRest.end(), IsLetter);
    const std::string_view name(fRest.data(), static_cast<std::size_t>(end - fRest.begin()));
    if (name.empty()) Fail(kBadAttributeName);
    fRest.remove_prefix(name.size());
    return name;
  }

  /// A text between braces or single quotes; `missing` is the fault where neither begins.
  std::u16string ReadText(const char* missing) {
    if (Take('{')) return ReadUpTo('}', kOpenBrace, kBadBraceString);
    if (Take('\'')) return ReadUpTo('\'', kBadQuotedString, kBadQuotedString);
    Fail(missing);
  }

  std::u16string ReadUpTo(char terminator, const char* unterminated, const char* notUnicode) {
    const std::string_view line = fRest.substr(0, fRest.find_first_of("\r\n"));
    const std::size_t end = line.find(terminator);
    if (end == line.npos) Fail(unterminated);
    std::optional<std::u16string> text = NSTolbrook::StrictTextFromUtf8(line.substr(0, end));
    if (!text) Fail(notUnicode);
    fRest.remove_prefix(end + 1);
    return *std::move(text);
  }

  bool Take(char byte) {
    if (!fRest.starts_with(byte)) return false;
    fRest.remove_prefix(1);
    return true;
  }

  void SkipBlanks() { fRest.remove_prefix(std::min(fRest.find_first_not_of(" \t"), fRest.size())); }

  /// Moves on behind the line end; anything but blanks before it is a fault.
  void EndLine(const char* fault) {
    SkipBlanks();
    Take('\r');
    if (!fRest.empty() && !Take('\n')) Fail(fault);
    ++fLine;
  }

  /// Moves on to the first character of a line that is neither empty nor a comment.
  void SkipEmptyLines() {
    for (SkipBlanks(); !fRest.empty(); SkipBlanks()) {
      if (fRest.starts_with("//")) fRest.remove_prefix(std::min(fRest.find('\n'), fRest.size()));
      if (!fRest.starts_with("\r\n") && !fRest.starts_with('\n') && !fRest.empty()) return;
      EndLine(kBadList);
    }
  }

  [[noreturn]] void Fail(const char* fault) const {
    throw NSMordel::XFormatViolation(
        fault, {{NSMordel::kTargetObjectType, "file"},
                {NSMordel::kTargetObjectId, fName + ", line " + std::to_string(fLine)}});
  }

  const std::string& fName;
  std::string_view fRest;
  std::size_t fLine = 1;
};

}  // namespace

CMenuScript::CMenuScript(const std::string& name, std::string_view bytes) {
  if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
  fMenus = CMenuParser(name, bytes).ReadMenus();
}

const CMenu& CMenuScript::Menu(int id) const {
  const auto menu = std::find_if(fMenus.begin(), fMenus.end(),
                                 [id](const CMenu& each) { return each.fId == id; });
  if (menu == fMenus.end()) {
    throw NSMordel::XNotFound("menu ID not found in menu resource",
                              {{NSMordel::kTargetObjectId, std::to_string(id)}});
  }
  return *menu;
}

}  // namespace NSTambraPacking
