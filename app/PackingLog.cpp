#include "app/PackingLog.h"

#include <algorithm>
#include <fmt/format.h>
#include <span>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/NameLists.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::CFile;

constexpr std::u16string_view kLineEnd = u"\r\n";
constexpr std::u16string_view kItemIndent = u"    ";
constexpr std::u16string_view kDetailIndent = u"        ";

/// Puts the sections of a log together.
class CLogText {
 public:
  explicit CLogText(const CTextResources& texts) : fTexts(texts) {}

  void AddLine(std::u16string_view indent, std::u16string_view text) {
    fText += indent;
    for (const char16_t unit : text) {
      // A name read from a file must not be able to begin a line of its own.
      const bool isControl = unit < u' ' || (unit >= 0x7F && unit < 0xA0);
      fText += isControl ? u'\uFFFD' : unit;
    }
    fText += kLineEnd;
  }

  void AddTitle(CStringNumber title) { AddLine({}, fTexts.Text(title)); }

  void AddItems(CStringNumber title, const std::vector<std::u16string>& items) {
    if (items.empty()) return;
    AddTitle(title);
    for (const std::u16string& item : items) AddLine(kItemIndent, item);
  }

  void AddReferences(CStringNumber title, const std::vector<CPackLists::CEntryReferences>& items) {
    if (items.empty()) return;
    AddTitle(title);
    for (const auto& [entry, references] : items) {
      AddLine(kItemIndent, entry);
      for (const std::u16string& reference : references) AddLine(kDetailIndent, reference);
    }
  }

  void AddExternal(const std::vector<CPackLists::CEntryNames>& items) {
    if (items.empty()) return;
    AddTitle(kLogExternal);
    for (const auto& [entry, names] : items) {
      AddLine(kItemIndent, entry);
      for (const std::u16string& name : DistinctNames(names)) AddLine(kDetailIndent, name);
    }
  }

  void AddProhibited(const std::vector<CPackLists::CEntryNames>& items) {
    if (items.empty()) return;
    AddTitle(kLogProhibited);
    for (const auto& [entry, names] : items) {
      AddLine(kItemIndent, fTexts.Text(kLogProhibitedLine, {entry, SortedList(names)}));
    }
  }

  std::string Utf8() const { return NSTolbrook::Utf8FromText(fText); }

 private:
  /// Each of `names` once, ascending by code unit.
  std::u16string SortedList(std::vector<std::u16string> names) const {
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return JoinNames(fTexts, names);
  }

  const CTextResources& fTexts;
  std::u16string fText;
};

/// "YYYY-MM-DD HH.MM.SS"
std::u16string TimeText(const NSTolbrook::CLocalTime& time) {
  return NSTolbrook::TextFromUtf8(fmt::format("{:04}-{:02}-{:02} {:02}.{:02}.{:02}", time.fYear,
                                              time.fMonth, time.fDay, time.fHour, time.fMinute,
                                              time.fSecond));
}

/// The longest file name of common file systems, in UTF-8 bytes or UTF-16 units.
constexpr std::size_t kLongestFileName = 255;

/// The log's name from `entry` and the arguments behind the package's name, which loses its end
/// when the whole would be too long for a file name: a package that is done must not lack its log.
std::u16string LogName(const CTextResources& texts, CStringNumber entry, std::u16string package,
                       const std::vector<std::u16string>& rest) {
  std::vector<std::u16string> arguments = {{}};
  arguments.insert(arguments.end(), rest.begin(), rest.end());
  const std::size_t ending = NSTolbrook::Utf8FromText(texts.Text(entry, arguments)).size();
  while (!package.empty() && NSTolbrook::Utf8FromText(package).size() + ending > kLongestFileName) {
    const bool isPair = package.size() > 1 && package.back() >= 0xDC00 && package.back() < 0xE000;
    package.resize(package.size() - (isPair ? 2 : 1));
  }
  arguments.front() = std::move(package);
  return texts.Text(entry, arguments);
}

}  // namespace

bool CPackLists::HasProblems() const {
  return !fFailed.empty() || !fUnresolved.empty() || !fBroken.empty();
}

bool CPackLists::HasNotes() const {
  return !fExternal.empty() || !fProhibited.empty() || !fSkipped.empty() || !fUnreferenced.empty();
}

std::string CPackingLog::Text(const CPackLists& lists, CStringNumber closingLine) const {
  CLogText text(fTexts);
  text.AddItems(kLogFailed, lists.fFailed);
  text.AddReferences(kLogUnresolved, lists.fUnresolved);
  text.AddReferences(kLogBroken, lists.fBroken);
  text.AddExternal(lists.fExternal);
  text.AddProhibited(lists.fProhibited);
  text.AddItems(kLogSkipped, lists.fSkipped);
  text.AddItems(kLogUnreferenced, lists.fUnreferenced);
  text.AddTitle(closingLine);
  return text.Utf8();
}

NSTolbrook::NativePath CPackingLog::Write(const NSTolbrook::NativePath& folder,
                                          const std::u16string& packageName,
                                          const CPackLists& lists,
                                          CStringNumber closingLine) const {
  const std::string text = Text(lists, closingLine);
  CFile file = CreateFile(folder, packageName);
  NSTolbrook::NativePath path = file.Path();
  try {
    file.Write(0, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    file.Close();
  } catch (...) {
    file = CFile();  // not every system removes an open file
    NSTolbrook::RemoveFile(path);
    throw;
  }
  return path;
}

CFile CPackingLog::CreateFile(const NSTolbrook::NativePath& folder,
                              const std::u16string& packageName) const {
  const std::u16string time = TimeText(fClock.Now());
  std::u16string name = LogName(fTexts, kLogName, packageName, {time});
  for (int counter = 2;; ++counter) {
    try {
      return CFile::Create(folder / NSTolbrook::NativeFromText(name), CFile::ECreate::kNew);
    } catch (const NSMordel::XAlreadyExists&) {
      const std::u16string number = NSTolbrook::TextFromUtf8(std::to_string(counter));
      name = LogName(fTexts, kNumberedLogName, packageName, {time, number});
    }
  }
}

}  // namespace NSTambraPacking
