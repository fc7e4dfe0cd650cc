#include "Parts/TolbrookPackage/Core/PortablePath.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <utf8proc.h>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTolbrook {

namespace {

constexpr std::u16string_view kReservedCharacters = u"\\:*?\"<>|";
/// Join letters and pictures into one in several scripts; names differ in nothing else by them.
constexpr std::u16string_view kJoiners = u"\u200C\u200D";
/// Names of devices on Windows, whatever follows behind a dot.
constexpr std::array<std::u16string_view, 7> kDevices = {u"con",    u"prn",     u"aux",   u"nul",
                                                         u"conin$", u"conout$", u"clock$"};
/// With a digit behind them.
constexpr std::array<std::u16string_view, 2> kNumberedDevices = {u"com", u"lpt"};
constexpr std::u16string_view kDeviceDigits = u"0123456789\u00B9\u00B2\u00B3";

/// The code point at `index`, which moves on behind it; a lone surrogate stands for itself.
char32_t TakeCodePoint(std::u16string_view text, std::size_t& index) {
  const char16_t unit = text[index++];
  if (unit < 0xD800 || unit >= 0xDC00 || index == text.size()) return unit;
  const char16_t low = text[index];
  if (low < 0xDC00 || low >= 0xE000) return unit;
  ++index;
  return 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{low} - 0xDC00);
}

bool IsUnseen(char32_t code) {
  switch (utf8proc_category(static_cast<utf8proc_int32_t>(code))) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    case UTF8PROC_CATEGORY_CF:
      return code > 0xFFFF || kJoiners.find(static_cast<char16_t>(code)) == kJoiners.npos;
    case UTF8PROC_CATEGORY_CN:  // of these the noncharacters; others may be letters of tomorrow
      return (code & 0xFFFE) == 0xFFFE || (code >= 0xFDD0 && code <= 0xFDEF);
    default:
      return false;
  }
}

bool HasUnseen(std::u16string_view text) {
  for (std::size_t index = 0; index < text.size();) {
    if (IsUnseen(TakeCodePoint(text, index))) return true;
  }
  return false;
}

bool IsDeviceName(std::u16string_view name) {
  std::u16string base = FoldCase(name.substr(0, name.find(u'.')));
  while (base.ends_with(u' ')) base.pop_back();
  if (std::ranges::find(kDevices, base) != kDevices.end()) return true;
  return base.size() == 4 && kDeviceDigits.find(base.back()) != kDeviceDigits.npos &&
         std::ranges::find(kNumberedDevices, base.substr(0, 3)) != kNumberedDevices.end();
}

const char* FaultOfName(std::u16string_view name) {
  if (name.empty()) return "begins or ends with a \"/\" or has two side by side";
  if (name == u"." || name == u"..") return "goes by \".\" or \"..\"";
  if (name.find_first_of(kReservedCharacters) != name.npos) {
    return "holds one of the reserved characters \\ : * ? \" < > |";
  }
  if (HasUnseen(name)) return "holds characters that cannot be seen";
  if (name.ends_with(u'.') || name.ends_with(u' '))
    return "has a name that ends with a dot or blank";
  if (IsDeviceName(name)) return "has the name of a device";
  if (Utf8FromText(name).size() > kGreatestPortableName) return "has too long a name";
  return "";
}

/// The next component of a path, which is taken off with the "/" behind it.
std::u16string_view TakeComponent(std::u16string_view& path) {
  const std::size_t end = std::min(path.find(u'/'), path.size());
  const std::u16string_view name = path.substr(0, end);
  path.remove_prefix(end);
  return name;
}

/// Two paths that some system takes for one have the same key.
std::u16string KeyOf(std::u16string_view path) {
  std::u16string plain(path);
  std::erase_if(plain, [](char16_t unit) { return kJoiners.find(unit) != kJoiners.npos; });
  return ComparisonKey(plain);
}

[[noreturn]] void Refuse(std::u16string_view path, const std::string& fault) {
  throw NSMordel::XFormatViolation("\"" + EscapedText(path) + "\" " + fault);
}

/// The paths by their keys. Throws when two files have one.
std::map<std::u16string, const std::u16string*> ByKey(const std::vector<std::u16string>& paths) {
  std::map<std::u16string, const std::u16string*> files;
  for (const std::u16string& path : paths) {
    const auto [other, isNew] = files.emplace(KeyOf(path), &path);
    if (isNew) continue;
    Refuse(path, path == *other->second ? "stands in the package twice"
                                        : "differs from \"" + EscapedText(*other->second) +
                                              "\" in nothing that every system tells apart");
  }
  return files;
}

}  // namespace

std::string FaultOfPortablePath(std::u16string_view path) {
  if (Utf8FromText(path).size() > kGreatestPortablePath) return "is too long";
  while (true) {
    const std::string fault = FaultOfName(TakeComponent(path));
    if (!fault.empty() || path.empty()) return fault;
    path.remove_prefix(1);
  }
}

void CheckPortablePaths(const std::vector<std::u16string>& paths) {
  for (const std::u16string& path : paths) {
    const std::string fault = FaultOfPortablePath(path);
    if (!fault.empty()) Refuse(path, fault);
  }
  const auto files = ByKey(paths);
  for (const auto& [key, path] : files) {
    for (std::size_t end = key.find(u'/'); end != key.npos; end = key.find(u'/', end + 1)) {
      const auto file = files.find(key.substr(0, end));
      if (file == files.end()) continue;
      Refuse(*path, "lies in \"" + EscapedText(*file->second) + "\", which is a file");
    }
  }
}

std::string EscapedText(std::u16string_view text) {
  std::string shown;
  for (std::size_t index = 0; index < text.size();) {
    const std::size_t start = index;
    const bool isUnseen = IsUnseen(TakeCodePoint(text, index));
    const std::u16string_view units = text.substr(start, index - start);
    if (!isUnseen) shown += Utf8FromText(units);
    for (const char16_t unit : isUnseen ? units : std::u16string_view()) {
      std::array<char, 7> code{};
      std::snprintf(code.data(), code.size(), "\\u%04X", static_cast<unsigned>(unit));
      shown += code.data();
    }
  }
  return shown;
}

}  // namespace NSTolbrook
