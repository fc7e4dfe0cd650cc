#include "app/TextTable.h"

#include <charconv>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kComment = "//";
constexpr std::string_view kEscapable = "r\\[]{}";

/// A backslash and the "r" behind it become a line break; the other escapes stay.
std::u16string WithLineBreaks(std::u16string_view text) {
  std::u16string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'\\') {
      result += text[i];
    } else if (text[++i] == u'r') {
      result += u'\n';
    } else {
      result.append({u'\\', text[i]});
    }
  }
  return result;
}

}  // namespace

/// Takes one line of a table apart from left to right.
class CTextTable::CLineReader {
 public:
  CLineReader(const std::string& table, std::size_t lineNumber, std::string_view line)
      : fTable(table), fLineNumber(lineNumber), fRest(line) {}

  bool HoldsNoEntry() const {
    return fRest.find_first_not_of(kBlanks) == fRest.npos || fRest.starts_with(kComment);
  }

  int ReadNumber() {
    int number = 0;
    const auto [end, error] = std::from_chars(fRest.data(), fRest.data() + fRest.size(), number);
    if (error != std::errc() || fRest.front() == '-') Fail("an entry begins with its number");
    fRest.remove_prefix(static_cast<std::size_t>(end - fRest.data()));
    return number;
  }

  /// The suffix without its dash; empty when there is none.
  std::string_view ReadSuffix() {
    const std::string_view suffix = fRest.substr(0, fRest.find_first_of(" \t{"));
    if (!suffix.empty() && suffix != "-Win" && suffix != "-Mac") {
      Fail("only -Win or -Mac and blanks may stand behind an entry's number");
    }
    fRest.remove_prefix(suffix.size());
    return suffix.empty() ? suffix : suffix.substr(1);
  }

  std::u16string ReadText() {
    const std::size_t start = fRest.find_first_not_of(kBlanks);
    if (start == 0) Fail("a blank is missing between an entry's number and its text");
    if (start == fRest.npos || fRest[start] != '{') Fail("an entry's text begins with '{'");
    fRest.remove_prefix(start + 1);
    std::size_t end = 0;
    while (end < fRest.size() && fRest[end] != '}') {
      if (fRest[end] == '\\') {
        if (++end == fRest.size()) break;
        if (kEscapable.find(fRest[end]) == kEscapable.npos) {
          Fail(R"(a backslash may only stand before one of r \ [ ] { })");
        }
      }
      ++end;
    }
    if (end == fRest.size()) Fail("an entry's text ends with '}' on the same line");
    const std::optional<std::u16string> text = NSTolbrook::StrictTextFromUtf8(fRest.substr(0, end));
    if (!text) Fail("an entry's text is not valid UTF-8");
    return WithLineBreaks(*text);
  }

  [[noreturn]] void Fail(const std::string& fault) const {
    throw NSMordel::XFormatViolation(
        fTable + ", line " + std::to_string(fLineNumber) + ": " + fault,
        {{NSMordel::kTargetObjectType, "file"}, {NSMordel::kTargetObjectId, fTable}});
  }

 private:
  const std::string& fTable;
  std::size_t fLineNumber;
  std::string_view fRest;
};

EPlatform ThisPlatform() {
#ifdef __APPLE__
  return EPlatform::kMac;
#else
  return EPlatform::kWin;
#endif
}

CTextTable::CTextTable(const std::string& name, std::string_view bytes, EPlatform platform) {
  const std::string_view ownSuffix = platform == EPlatform::kMac ? "Mac" : "Win";
  if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
  for (std::size_t lineNumber = 1; !bytes.empty(); ++lineNumber) {
    const std::size_t end = bytes.find('\n');
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == bytes.npos ? bytes.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);

    CLineReader reader(name, lineNumber, line);
    if (reader.HoldsNoEntry()) continue;
    const int number = reader.ReadNumber();
    const std::string_view suffix = reader.ReadSuffix();
    CEntry entry{reader.ReadText(), !suffix.empty()};
    if (entry.fHasSuffix && suffix != ownSuffix) continue;

    const auto [place, isNew] = fEntries.try_emplace(number, entry);
    if (isNew) continue;
    if (place->second.fHasSuffix == entry.fHasSuffix) {
      reader.Fail("the entry " + std::to_string(number) + " is there already");
    }
    if (entry.fHasSuffix) place->second = std::move(entry);
  }
}

const std::u16string* CTextTable::Find(int entry) const {
  const auto place = fEntries.find(entry);
  return place == fEntries.end() ? nullptr : &place->second.fText;
}

std::u16string UnescapeText(std::u16string_view text) {
  std::u16string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\\' && i + 1 < text.size()) ++i;
    result += text[i];
  }
  return result;
}

}  // namespace NSTambraPacking
