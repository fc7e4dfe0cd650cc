#include <map>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "cli/Commands.h"
#include "cli/ExitStatus.h"
#include "cli/JobSession.h"
#include "cli/PackageFile.h"

namespace NSTambraCli {

namespace {

using Entries = std::vector<std::shared_ptr<NSTambraPacking::CPackageEntry>>;

/// Written piece by piece: a tree of as many objects would take longer than all the rest.
void PrintJson(const CConsole& console, const NSTambraPacking::CTextResources& texts,
               const Entries& entries) {
  std::map<std::int32_t, std::string> names;  // as JSON
  std::string list;
  for (const auto& entry : entries) {
    std::string& name = names[entry->TypeCode()];
    if (name.empty()) {
      name = CJson(NSTambraPacking::EntryTypeName(texts, entry->TypeCode())).Text();
    }
    list += list.empty() ? "{\"path\":" : ",{\"path\":";
    list += CJson(entry->Path()).Text() + ",\"type\":" + std::to_string(entry->TypeCode()) +
            ",\"type_name\":" + name + ",\"size\":" + std::to_string(entry->Data()->Size()) +
            ",\"flag\":" + std::to_string(entry->Flag()) + "}";
  }
  console.Print("{\"entries\":[" + list + "]}");
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
  for (auto& [code, name] : names) name = "  " + PadRight(name, nameWidth) + "  ";
  for (const auto& entry : entries) {
    console.Print(PadLeft(std::to_string(entry->Data()->Size()), sizeWidth) +
                  names[entry->TypeCode()] + Printable(entry->Path()));
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
  command->add_option("FILE", fFile, "The package")->type_name(kPackageValue)->required();
  command->footer("Example:\n  tambra list Packages/Library.tmb");
  return command;
}

int CListCommand::Run(const CGlobalOptions& options) {
  const Entries entries = OpenPackage(fFile).fReader.ReadEntries();
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
