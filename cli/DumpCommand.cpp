#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/StructureDump.h"
#include "cli/Commands.h"
#include "cli/ExitStatus.h"
#include "cli/JobSession.h"
#include "cli/StopSignal.h"
#include "package/StdioMedia.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CDumpField;
using NSTambraPacking::EDumpedFile;

const char* KindName(EDumpedFile kind) {
  switch (kind) {
    case EDumpedFile::kPackage:
      return "package";
    case EDumpedFile::kDWOPStream:
      return "dwop";
    case EDumpedFile::kBlockStore:
      return "block_store";
  }
  return "";
}

std::string HexOf(std::uint64_t value, std::size_t digits) {
  std::string text;
  for (; value != 0 || text.size() < digits; value >>= 4) {
    text.insert(text.begin(), "0123456789ABCDEF"[value & 0xF]);
  }
  return text;
}

std::string HexOf(const CDumpField& field) {
  std::string text;
  for (const std::uint8_t byte : field.fBytes) text += HexOf(byte, 2);
  return text;
}

void PrintLine(const CConsole& console, const CDumpField& field) {
  constexpr std::size_t kOffsetDigits = 8;
  constexpr std::size_t kSizeWidth = 10;
  constexpr std::size_t kNameWidth = 20;
  constexpr std::size_t kHexWidth = 2 * NSTambraPacking::kDumpedBytes + 1;
  const std::string indent(static_cast<std::size_t>(field.fDepth) * 2, ' ');
  const bool isCut = field.fSize > field.fBytes.size() && !field.fBytes.empty();
  std::string line =
      HexOf(field.fOffset, kOffsetDigits) + PadLeft(std::to_string(field.fSize), kSizeWidth) +
      "  " + PadRight(indent + field.fName, kNameWidth) + "  " +
      PadRight(HexOf(field) + (isCut ? "…" : ""), kHexWidth) + "  " + Printable(field.fValue);
  line.erase(line.find_last_not_of(' ') + 1);
  console.Print(field.fDepth == 0 ? console.Painted(line, EColour::kBold) : line);
}

void PrintEvent(const CConsole& console, const CDumpField& field) {
  const bool isPart = field.fBytes.empty();
  CJson event = {{"event", isPart ? "part" : "field"},
                 {"depth", field.fDepth},
                 {"offset", field.fOffset},
                 {"size", field.fSize},
                 {"name", field.fName},
                 {"value", NSTolbrook::Utf8FromText(field.fValue)}};
  if (!isPart) event.Add("hex", HexOf(field));
  console.PrintJson(event);
}

class CDumpCommand : public CFileCommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;
};

CLI::App* CDumpCommand::Register(CLI::App& program) {
  CLI::App* const command = program.add_subcommand(
      "dump", "Show every field of a package, a DWOP stream or a block store");
  command->add_option("FILE", fFile, "The file; what it is shows in its first bytes")
      ->type_name(kFileValue)
      ->required();
  command->footer(
      "Examples:\n"
      "  tambra dump Library.tmb | less\n"
      "  tambra dump Library.tmb --json | jq 'select(.name == \"rate\")'");
  return command;
}

int CDumpCommand::Run(const CGlobalOptions& options) {
  const CConsole console = options.Console();
  const NSTambraPacking::CTextResources texts = LoadTexts(options);
  const CStopSignal signal;
  const auto media = NSBigFilePackage::CStdioMedia::OpenForReading(PathArgument(fFile));
  const EDumpedFile kind = NSTambraPacking::KindOfFile(media);
  const auto report = [&](const CDumpField& field) {
    if (console.Json()) {
      PrintEvent(console, field);
    } else {
      PrintLine(console, field);
    }
  };
  NSTambraPacking::DumpFile(media, kind, texts, report, ThrowIfStopped);
  if (console.Json()) {
    console.PrintJson({{"event", "result"}, {"status", kExitDone}, {"kind", KindName(kind)}});
  }
  return kExitDone;
}

}  // namespace

std::unique_ptr<ICommand> MakeDumpCommand() { return std::make_unique<CDumpCommand>(); }

}  // namespace NSTambraCli
