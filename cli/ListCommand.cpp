#include <map>
#include <nlohmann/json.hpp>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "cli/Commands.h"
#include "cli/ExitStatus.h"
#include "cli/JobSession.h"
#include "package/PackageReader.h"
#include "package/StdioMedia.h"

namespace NSTambraCli {

namespace {

using Entries = std::vector<std::shared_ptr<NSTambraPacking::CPackageEntry>>;

void PrintJson(const CConsole& console, const NSTambraPacking::CTextResources& texts,
               const Entries& entries) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const auto& entry : entries) {
    list.push_back({{"path", NSTolbrook::Utf8FromText(entry->Path())},
                    {"type", entry->TypeCode()},
                    {"type_name", NSTolbrook::Utf8FromText(
                                      NSTambraPacking::EntryTypeName(texts, entry->TypeCode()))},
                    {"size", entry->Data()->Size()},
                    {"flag", entry->Flag()}});
  }
  console.PrintJson({{"entries", std::move(list)}});
}

/// Size, type and path in columns that are as wide as what stands in them.
void PrintTable(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                const Entries& entries) {
  std::map<std::int32_t, std::string> names;
  std::size_t nameWidth = 0;
  std::uint64_t total = 0;
  std::uint64_t greatest = 0;
  for (const auto& entry : entries) {
    std::string& name = names[entry->TypeCode()];
    if (name.empty()) name = Printable(NSTambraPacking::EntryTypeName(texts, entry->TypeCode()));
    nameWidth = std::max(nameWidth, DisplayWidth(NSTolbrook::TextFromUtf8(name)));
    total += entry->Data()->Size();
    greatest = std::max(greatest, entry->Data()->Size());
  }
  const std::size_t sizeWidth = std::to_string(greatest).size();
  for (const auto& entry : entries) {
    console.Print(PadLeft(std::to_string(entry->Data()->Size()), sizeWidth) + "  " +
                  PadRight(names[entry->TypeCode()], nameWidth) + "  " + Printable(entry->Path()));
  }
  console.Note(Printable(texts.Text(NSTambraPacking::kListTotal,
                                    {NSTolbrook::TextFromUtf8(std::to_string(entries.size())),
                                     NSTolbrook::TextFromUtf8(std::to_string(total))})));
}

class CListCommand : public CFileCommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;
};

}  // namespace

CLI::App* CListCommand::Register(CLI::App& program) {
  CLI::App* const command = program.add_subcommand("list", "List the entries of a package");
  command->add_option("FILE", fFile, "The package")->required();
  command->footer("Example:\n  tambra list Packages/Library.tmb");
  return command;
}

int CListCommand::Run(const CGlobalOptions& options) {
  const auto media = NSBigFilePackage::CStdioMedia::OpenForReading(PathArgument(fFile));
  const Entries entries = NSTambraPacking::CPackageReader(media).ReadEntries();
  const CConsole console = options.Console();
  const NSTambraPacking::CTextResources texts = LoadTexts(options);
  if (console.Json()) {
    PrintJson(console, texts, entries);
  } else {
    PrintTable(console, texts, entries);
  }
  return kExitDone;
}

std::unique_ptr<ICommand> MakeListCommand() { return std::make_unique<CListCommand>(); }

}  // namespace NSTambraCli
