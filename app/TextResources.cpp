#include "app/TextResources.h"

#include <span>
#include <string_view>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/ZipReader.h"

#include "resources/Bundle.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::NativePath;

constexpr int kStringTables[] = {128, 1000, kGenericAlertTable, kFileTypeNameTable};
constexpr int kAlertTables[] = {128, kGenericAlertTable};

constexpr int kFirstTextlessAlert = 200;
constexpr int kLastTextlessAlert = 208;

std::string ReadFile(const NativePath& path) {
  const NSTolbrook::CFile file = NSTolbrook::CFile::OpenForReading(path);
  std::string bytes(file.Size(), '\0');
  bytes.resize(
      file.Read(0, std::span(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size())));
  return bytes;
}

/// Reads tables by their names, "SSTR/128.txt".
class CTableSource {
 public:
  explicit CTableSource(const std::vector<NativePath>& folders)
      : fBundle(ResourceBundle()), fFolders(folders) {}

  struct CFound {
    std::string fName;  ///< for messages: the path, or the bundled name
    std::string fBytes;
  };

  CFound Read(const std::string& kind, int number) const {
    const std::string name = kind + "/" + std::to_string(number) + ".txt";
    for (auto folder = fFolders.rbegin(); folder != fFolders.rend(); ++folder) {
      const NativePath path = *folder / kind / (std::to_string(number) + ".txt");
      if (NSTolbrook::FileStatus(path, true).fKind == NSTolbrook::EFileKind::kMissing) continue;
      return {NSTolbrook::DisplayText(path), ReadFile(path)};
    }
    const auto bytes = fBundle.Read(name);
    return {name, std::string(bytes.begin(), bytes.end())};
  }

 private:
  NSTolbrook::CZipReader fBundle;
  const std::vector<NativePath>& fFolders;
};

const std::u16string& Find(const std::map<int, CTextTable>& tables, const char* kind, int table,
                           int entry) {
  const auto place = tables.find(table);
  const std::u16string* text = place == tables.end() ? nullptr : place->second.Find(entry);
  if (text == nullptr) {
    throw NSMordel::XNotFound(std::string("the ") + kind + " table " + std::to_string(table) +
                              " holds no entry " + std::to_string(entry));
  }
  return *text;
}

}  // namespace

CTextResources::CTextResources(const std::vector<NativePath>& folders, EPlatform platform) {
  const CTableSource source(folders);
  const auto readTables = [&](CTables& tables, const char* kind, std::span<const int> numbers) {
    for (const int number : numbers) {
      const CTableSource::CFound found = source.Read(kind, number);
      tables.try_emplace(number, found.fName, found.fBytes, platform);
    }
  };
  readTables(fStrings, "SSTR", kStringTables);
  readTables(fAlerts, "SALR", kAlertTables);
  const CTableSource::CFound menus = source.Read("SMNU", kMenuTable);
  fMenus.emplace(menus.fName, menus.fBytes);
}

std::vector<NativePath> CTextResources::Folders(const std::optional<NativePath>& named) {
  const auto isFolder = [](const NativePath& path) {
    return NSTolbrook::FileStatus(path, true).fKind == NSTolbrook::EFileKind::kFolder;
  };
  std::vector<NativePath> folders;
  const NativePath beside = NSTolbrook::ProgramFolder() / "resources";
  if (isFolder(beside)) folders.push_back(beside);
  if (named) {
    if (!isFolder(*named)) {
      throw NSMordel::XNotFound("the folder of text tables does not exist",
                                {{NSMordel::kTargetObjectType, "directory"},
                                 {NSMordel::kTargetObjectId, NSTolbrook::DisplayText(*named)}});
    }
    folders.push_back(*named);
  }
  return folders;
}

std::u16string CTextResources::Text(CStringNumber number,
                                    const std::vector<std::u16string>& arguments) const {
  return FillPlaceholders(UnescapeText(Find(fStrings, "string", number.fTable, number.fEntry)),
                          arguments);
}

CAlertText CTextResources::Alert(CAlertNumber number,
                                 const std::vector<std::u16string>& arguments) const {
  if (number.fTable == kGenericAlertTable && number.fEntry >= kFirstTextlessAlert &&
      number.fEntry <= kLastTextlessAlert) {
    number = kGenericFileSystem;
  }
  std::vector<std::u16string> escaped;
  for (const std::u16string& argument : arguments) escaped.push_back(EscapeAlertArgument(argument));
  return CAlertText::Parse(
      FillPlaceholders(Find(fAlerts, "alert", number.fTable, number.fEntry), escaped));
}

}  // namespace NSTambraPacking
