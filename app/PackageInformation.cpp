#include "app/PackageInformation.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/InfoKeyFile.h"
#include "app/InfoText.h"
#include "package/SplashCheck.h"

namespace NSTambraPacking {

namespace {

constexpr std::u16string_view kExtension = u".tmb";
constexpr std::u16string_view kNamelessFile = u"output.tmb";
/// The longest file name of common file systems, in UTF-8 bytes or UTF-16 units.
constexpr std::size_t kLongestFileName = 255;

constexpr std::array<CInformationSource, 5> kTexts{{
    {u"NAME.TXT", u"NAME", &CPackageInformation::fName},
    {u"URL.TXT", u"URL", &CPackageInformation::fURL},
    {u"COMMENTS.TXT", u"COMMENTS", &CPackageInformation::fComments},
    {u"COPYRIGHT.TXT", u"COPYRIGHT", &CPackageInformation::fCopyright},
    {u"VERSION.TXT", u"VERSION", &CPackageInformation::fVersion},
}};

constexpr std::array<std::pair<std::u16string_view, bool CPackOptions::*>, 5> kFlags{{
    {u"WARN_ABOUT_PROHIBITED_DEVICES", &CPackOptions::fWarnAboutProhibitedDevices},
    {u"SKIP_PROHIBITED_DEVICES", &CPackOptions::fSkipProhibitedDevices},
    {u"WARN_ABOUT_UNUSED_SAMPLES", &CPackOptions::fWarnAboutUnusedSamples},
    {u"SKIP_UNUSED_SAMPLES", &CPackOptions::fSkipUnusedSamples},
    {u"PROPAGATE_SAMPLE_SKIPPING_TO_PATCHES_AND_SONGS", &CPackOptions::fPropagateSampleSkipping},
}};

/// The parts of `text` between separators, those of no length included.
std::vector<std::u16string_view> Split(std::u16string_view text, std::u16string_view separators) {
  std::vector<std::u16string_view> parts;
  for (;;) {
    const std::size_t end = text.find_first_of(separators);
    parts.push_back(text.substr(0, end));
    if (end == text.npos) return parts;
    text.remove_prefix(end + 1);
  }
}

/// The names of a list separated by ";", blanks around each trimmed, empty ones dropped.
std::vector<std::u16string> ReadList(std::u16string_view text) {
  std::vector<std::u16string> names;
  for (const std::u16string_view part : Split(text, u";")) {
    const std::u16string_view name = TrimInformationText(part);
    if (!name.empty()) names.emplace_back(name);
  }
  return names;
}

void TakeKey(const std::u16string& key, const std::u16string& value, CPackageTexts& texts) {
  for (const CInformationSource& text : kTexts) {
    if (key == text.fKey) texts.fInformation.*text.fText = value;
  }
  for (const auto& [name, flag] : kFlags) {
    if (key == name) texts.fOptions.*flag = value == u"YES";
  }
  if (key == u"PROHIBITED_DEVICES") texts.fOptions.fProhibitedDevices = ReadList(value);
  if (key == u"SKIP_ITEM") {
    for (const std::u16string& item : ReadList(value)) texts.fOptions.fSkipItems.Add(item);
  }
}

bool HasName(std::u16string_view name, std::u16string_view informationFile) {
  return NSTolbrook::ComparisonKey(name) == NSTolbrook::ComparisonKey(informationFile);
}

/// The decoded text of the first file of that name; empty when there is none.
std::u16string TextOf(const std::vector<CInformationFile>& files, std::u16string_view name) {
  const auto file = std::find_if(files.begin(), files.end(), [name](const CInformationFile& each) {
    return HasName(each.fName, name);
  });
  return file == files.end() ? std::u16string() : DecodeInformationText(file->fBytes);
}

/// True for the names that one system takes for a device, with or without an extension.
bool IsDeviceName(std::u16string_view name) {
  std::u16string_view stem = name.substr(0, name.find(u'.'));
  stem = stem.substr(0, stem.find_last_not_of(u' ') + 1);
  const std::u16string folded = NSTolbrook::FoldCase(stem);
  for (const std::u16string_view device : {u"con", u"prn", u"aux", u"nul", u"conin$", u"conout$"}) {
    if (folded == device) return true;
  }
  return folded.size() == 4 && (folded.starts_with(u"com") || folded.starts_with(u"lpt")) &&
         std::u16string_view(u"0123456789¹²³").find(folded.back()) != std::u16string_view::npos;
}

/// What keeps `name` from being a file's name with ".tmb" behind it, or nullptr.
const char* FindNameFault(std::u16string_view name) {
  if (name == u"." || name == u"..") return "it stands for a folder";
  if (name.find_first_of(u"/\\:*?\"<>|") != name.npos) return "a character of it is reserved";
  if (NSTolbrook::HasControlCharacter(name)) return "it holds a control character";
  if (name.ends_with(u'.') || name.ends_with(u' ')) return "it ends with a dot or a blank";
  if (IsDeviceName(name)) return "it is the name of a device";
  if (NSTolbrook::Utf8FromText(name).size() + kExtension.size() > kLongestFileName) {
    return "it is too long";
  }
  return nullptr;
}

}  // namespace

std::u16string CPackageInformation::OutputFileName() const {
  if (fName.empty()) return std::u16string(kNamelessFile);
  if (const char* fault = FindNameFault(fName)) {
    const std::string name = NSTolbrook::Utf8FromText(fName);
    throw NSMordel::XFormatViolation(
        "the package name \"" + name + "\" cannot be a file name: " + fault,
        {{kTambraNameKey, name}});
  }
  return fName + std::u16string(kExtension);
}

void CSkipItems::Add(std::u16string_view path) {
  std::u16string joined;
  for (const std::u16string_view component : Split(path, u"/\\")) {
    if (component.empty()) continue;
    if (!joined.empty()) joined += u'/';
    joined += component;
  }
  if (!joined.empty()) fKeys.insert(NSTolbrook::ComparisonKey(joined));
}

bool CSkipItems::Hold(std::u16string_view path) const {
  if (fKeys.empty()) return false;
  const std::u16string key = NSTolbrook::ComparisonKey(path);
  for (std::size_t end = 0; end != key.npos;) {
    end = key.find(u'/', end + 1);
    if (fKeys.contains(key.substr(0, end))) return true;
  }
  return false;
}

std::span<const CInformationSource> InformationSources() { return kTexts; }

bool IsInformationFile(std::u16string_view name) {
  return HasName(name, kInformationKeyFile) ||
         std::any_of(kTexts.begin(), kTexts.end(),
                     [name](const CInformationSource& text) { return HasName(name, text.fFile); });
}

CPackageTexts ReadPackageTexts(const std::vector<CInformationFile>& files) {
  CPackageTexts texts;
  for (const auto& [key, value] : ParseInfoKeyFile(TextOf(files, kInformationKeyFile))) {
    TakeKey(key, value, texts);
  }
  for (const CInformationSource& source : kTexts) {
    const std::u16string text = TextOf(files, source.fFile);
    const std::u16string_view trimmed = TrimInformationText(text);
    if (!trimmed.empty()) texts.fInformation.*source.fText = trimmed;
  }
  return texts;
}

}  // namespace NSTambraPacking
