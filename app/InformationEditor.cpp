#include "app/InformationEditor.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FileItem.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/InfoKeyFile.h"
#include "app/InfoText.h"
#include "app/InputFolder.h"
#include "package/TemporaryFile.h"

namespace NSTambraPacking {

namespace {

using Files = std::vector<CInformationFile>;

constexpr std::string_view kUtf8Declaration = "CHARACTER_ENCODING=\"UTF-8\"\r\n";

bool HasName(const CInformationFile& file, std::u16string_view name) {
  return NSTolbrook::ComparisonKey(file.fName) == NSTolbrook::ComparisonKey(name);
}

CInformationFile* Find(Files& files, std::u16string_view name) {
  const auto file = std::find_if(files.begin(), files.end(),
                                 [name](const auto& each) { return HasName(each, name); });
  return file == files.end() ? nullptr : &*file;
}

/// The bytes of `text` in an encoding, or nothing when it has none for a character.
std::optional<std::string> Encode(std::u16string_view text, ETextEncoding encoding) {
  switch (encoding) {
    case ETextEncoding::kWindows1252:
      return NSTolbrook::Windows1252FromText(text);
    case ETextEncoding::kUtf8:
      return NSTolbrook::StrictUtf8FromText(text);
    case ETextEncoding::kUtf16BigEndian:
    case ETextEncoding::kUtf16LittleEndian:
      break;
  }
  std::string bytes;
  for (const char16_t unit : text) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    const bool isBig = encoding == ETextEncoding::kUtf16BigEndian;
    bytes += {isBig ? high : low, isBig ? low : high};
  }
  return bytes;
}

/// The bytes of a file as units that can be told apart from their neighbours without loss: the
/// bytes themselves, in which no part of a longer character looks like ASCII, or UTF-16 units.
struct CUnits {
  explicit CUnits(std::string_view bytes) : fEncoding(DetectEncoding(bytes)) {
    const bool isWide = fEncoding == ETextEncoding::kUtf16BigEndian ||
                        fEncoding == ETextEncoding::kUtf16LittleEndian;
    fSize = isWide ? 2 : 1;
    const std::size_t high = fEncoding == ETextEncoding::kUtf16BigEndian ? 0 : 1;
    for (std::size_t at = 0; at + fSize <= bytes.size(); at += fSize) {
      const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
      fText += isWide ? static_cast<char16_t>(byte(at + high) << 8 | byte(at + 1 - high))
                      : static_cast<char16_t>(byte(at));
    }
    if (bytes.starts_with("\xEF\xBB\xBF")) fMark = 3;
    if (isWide && fText.starts_with(u'\uFEFF')) fMark = 1;
  }

  ETextEncoding fEncoding;
  std::size_t fSize = 1;  ///< bytes of a unit
  std::size_t fMark = 0;  ///< units of a leading byte-order mark
  std::u16string fText;
};

/// Puts `text` in place of the units from `begin` to before `end`; false when the file's encoding
/// cannot hold it.
bool Splice(std::string& bytes, const CUnits& units, std::size_t begin, std::size_t end,
            std::u16string_view text) {
  const std::optional<std::string> encoded = Encode(text, units.fEncoding);
  if (!encoded) return false;
  bytes.replace(begin * units.fSize, (end - begin) * units.fSize, *encoded);
  return true;
}

void MakeUtf8(std::string& bytes) {
  bytes =
      std::string(kUtf8Declaration) + NSTolbrook::StrictUtf8FromText(DecodeInformationText(bytes));
}

/// Runs `edit` on the bytes, and once more on the same text in UTF-8 when the encoding was in the
/// way.
bool EditBytes(std::string& bytes, const std::function<bool(std::string&)>& edit) {
  if (edit(bytes)) return true;
  MakeUtf8(bytes);
  return edit(bytes);
}

bool ReplaceValue(std::string& bytes, std::u16string_view key, std::u16string_view value) {
  const CUnits units(bytes);
  const std::vector<CInfoValuePlace> places =
      FindInfoValues(std::u16string_view(units.fText).substr(units.fMark));
  // Of a key that stands twice the last counts.
  const auto place = std::find_if(places.rbegin(), places.rend(),
                                  [key](const auto& each) { return each.fKey == key; });
  if (place == places.rend()) return true;
  return Splice(bytes, units, units.fMark + place->fBegin, units.fMark + place->fEnd, value);
}

bool AppendKey(std::string& bytes, std::u16string_view key, std::u16string_view value) {
  const CUnits units(bytes);
  const bool bareLines = units.fText.find(u'\n') != std::u16string::npos &&
                         units.fText.find(u'\r') == std::u16string::npos;
  const std::u16string lineEnd = bareLines ? u"\n" : u"\r\n";
  std::u16string line = std::u16string(key) + u"=\"" + std::u16string(value) + u"\"" + lineEnd;
  if (units.fText.size() > units.fMark && units.fText.back() != u'\n') line = lineEnd + line;
  return Splice(bytes, units, units.fText.size(), units.fText.size(), line);
}

/// All of the text file's content, behind its byte-order mark or declaration.
bool ReplaceText(std::string& bytes, std::u16string_view text) {
  const CUnits units(bytes);
  std::size_t begin = units.fMark;
  const std::u16string_view content = std::u16string_view(units.fText).substr(begin);
  constexpr std::u16string_view kDeclaration = u"CHARACTER_ENCODING=\"";
  if (NSTolbrook::FoldCase(content.substr(0, kDeclaration.size())) ==
      NSTolbrook::FoldCase(kDeclaration)) {
    const std::size_t quote = content.find(u'"', kDeclaration.size());
    if (quote != content.npos) begin += quote + 1;
    while (begin < units.fText.size() &&
           std::u16string_view(u" \t\r\n").find(units.fText[begin]) != std::u16string_view::npos) {
      ++begin;
    }
  }
  return Splice(bytes, units, begin, units.fText.size(), text);
}

/// A text of the package and the ways to write it down, the nearest to what is there first.
class CTextEdit {
 public:
  CTextEdit(const CInformationSource& source, std::u16string_view text)
      : fSource(source), fText(text) {}

  Files Apply(const Files& files) const {
    for (const auto way : {&CTextEdit::EditInPlace, &CTextEdit::AddKey, &CTextEdit::WriteFile}) {
      Files edited = files;
      if ((this->*way)(edited) && Read(edited) == fText) return edited;
    }
    throw NSMordel::XFormatViolation("the text for " + NSTolbrook::Utf8FromText(fSource.fKey) +
                                     " cannot be kept in the information files");
  }

  std::u16string Read(const Files& files) const {
    return ReadPackageTexts(files).fInformation.*fSource.fText;
  }

 private:
  bool EditInPlace(Files& files) const {
    CInformationFile* const own = Find(files, fSource.fFile);
    const bool ownCounts =
        own != nullptr && !TrimInformationText(DecodeInformationText(own->fBytes)).empty();
    if (ownCounts) EditBytes(own->fBytes, [&](auto& bytes) { return ReplaceText(bytes, fText); });
    CInformationFile* const keys = Find(files, kInformationKeyFile);
    // A text that goes altogether must not come back from the other place.
    if (keys != nullptr && (!ownCounts || fText.empty())) {
      EditBytes(keys->fBytes,
                [&](auto& bytes) { return ReplaceValue(bytes, fSource.fKey, fText); });
    }
    return true;
  }

  bool AddKey(Files& files) const {
    CInformationFile* keys = Find(files, kInformationKeyFile);
    if (keys == nullptr) {
      keys = &files.emplace_back(
          CInformationFile{std::u16string(kInformationKeyFile), std::string(kUtf8Declaration)});
    }
    EditBytes(keys->fBytes, [&](auto& bytes) { return AppendKey(bytes, fSource.fKey, fText); });
    return true;
  }

  bool WriteFile(Files& files) const {
    CInformationFile* own = Find(files, fSource.fFile);
    if (own == nullptr) {
      own = &files.emplace_back(CInformationFile{std::u16string(fSource.fFile), {}});
    }
    own->fBytes = std::string(kUtf8Declaration) + NSTolbrook::StrictUtf8FromText(fText);
    return true;
  }

  const CInformationSource& fSource;
  std::u16string_view fText;
};

void WriteFile(const NSTolbrook::NativePath& folder, const CInformationFile& file) {
  NSBigFilePackage::CTemporaryFile written(folder);
  written.Media()->Write(0, std::vector<std::uint8_t>(file.fBytes.begin(), file.fBytes.end()));
  written.CommitAs(NSTolbrook::CFileItem(folder).Child(file.fName).Path());
}

}  // namespace

std::vector<CInformationFile> EditInformation(std::vector<CInformationFile> files,
                                              const CPackageInformation& wanted) {
  for (const CInformationSource& source : InformationSources()) {
    const CTextEdit edit(source, TrimInformationText(wanted.*source.fText));
    const std::u16string_view text = TrimInformationText(wanted.*source.fText);
    if (edit.Read(files) != text) files = edit.Apply(files);
  }
  return files;
}

void SaveInformation(const NSTolbrook::NativePath& folder, const CPackageInformation& wanted) {
  const Files before = ReadInformationFiles(folder);
  const Files after = EditInformation(before, wanted);
  for (std::size_t index = 0; index < after.size(); ++index) {
    if (index < before.size() && before[index].fBytes == after[index].fBytes) continue;
    WriteFile(folder, after[index]);
  }
}

}  // namespace NSTambraPacking
