#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FormFault.h"
#include "app/SampleFile.h"
#include "cli/Commands.h"
#include "cli/ExitStatus.h"
#include "cli/FailureReport.h"
#include "cli/JobSession.h"
#include "cli/LabelledLines.h"
#include "cli/StopSignal.h"
#include "filetypes/dwop/DWOPStreamCheck.h"
#include "package/StdioMedia.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CDWOPStreamParts;
using NSTambraPacking::CTextResources;
using NSTolbrook::TextFromUtf8;

constexpr const char* kStream = "no DWOP stream, or a damaged one: ";
constexpr const char* kAudioFile = "no WAVE or AIFF file, or a damaged one: ";

/// The command that the three stand below.
CLI::App& Parent(CLI::App& program) {
  constexpr const char* kName = "dwop";
  for (CLI::App* const command : program.get_subcommands([](CLI::App*) { return true; })) {
    if (command->get_name() == kName) return *command;
  }
  CLI::App* const parent = program.add_subcommand(kName, "Work on single compressed samples");
  parent->require_subcommand(1);
  parent->footer(
      "Examples:\n"
      "  tambra dwop encode Kick.wav Kick.dwop\n"
      "  tambra dwop decode Kick.dwop Kick.wav\n"
      "  tambra dwop info Kick.dwop");
  return *parent;
}

/// Encoding and decoding: one file is made of another.
class CConvertCommand : public CFileCommand {
 public:
  explicit CConvertCommand(NSTambraPacking::ESampleWork work) : fWork(work) {}
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;

 private:
  NSTambraPacking::ESampleWork fWork;
  std::string fOutput;
  bool fReplace = false;
};

CLI::App* CConvertCommand::Register(CLI::App& program) {
  const bool encodes = fWork == NSTambraPacking::ESampleWork::kEncode;
  CLI::App* const command =
      encodes ? Parent(program).add_subcommand("encode", "Compress a WAVE or AIFF file")
              : Parent(program).add_subcommand("decode", "Restore the file of a DWOP stream");
  command->add_option("IN", fFile, encodes ? "The WAVE or AIFF file" : "The DWOP stream")
      ->type_name(kFileValue)
      ->required();
  command->add_option("OUT", fOutput, encodes ? "The DWOP stream" : "The WAVE or AIFF file")
      ->type_name(kFileValue)
      ->required();
  command->add_flag("--replace", fReplace, "Replace OUT when it is there already");
  command->footer(encodes ? "Example:\n  tambra dwop encode Kick.wav Kick.dwop"
                          : "Example:\n  tambra dwop decode Kick.dwop Kick.wav");
  return command;
}

int CConvertCommand::Run(const CGlobalOptions& options) {
  const CConsole console = options.Console();
  const CTextResources texts = LoadTexts(options);
  const CStopSignal signal;
  try {
    using EExisting = NSTolbrook::IOutputFile::EExisting;
    const bool encodes = fWork == NSTambraPacking::ESampleWork::kEncode;
    const NSTambraPacking::CConvertedSample converted =
        NSTambraPacking::WithFormFault(encodes ? kAudioFile : kStream, [&] {
          return NSTambraPacking::ConvertSample(fWork, PathArgument(fFile), PathArgument(fOutput),
                                                fReplace ? EExisting::kReplace : EExisting::kRefuse,
                                                ThrowIfStopped);
        });
    if (console.Json()) {
      console.PrintJson({{"output", fOutput},
                         {"size", converted.fSize},
                         {"byte_for_byte", converted.fByteForByte},
                         {"reason", converted.fReason}});
    } else if (!converted.fByteForByte) {
      console.Warn(Printable(texts.Text(NSTambraPacking::kExtractedDifferent,
                                        {TextFromUtf8(fOutput), TextFromUtf8(converted.fReason)})));
    }
    return kExitDone;
  } catch (const NSMordel::XAlreadyExists&) {
    return ReportTaken(console, texts, std::current_exception());
  }
}

class CDWOPInfoCommand : public CFileCommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;
};

CLI::App* CDWOPInfoCommand::Register(CLI::App& program) {
  CLI::App* const command = Parent(program).add_subcommand("info", "Describe a DWOP stream");
  command->add_option("IN", fFile, "The DWOP stream")->type_name(kFileValue)->required();
  command->footer("Example:\n  tambra dwop info Kick.dwop");
  return command;
}

void PrintJson(const CConsole& console, const CDWOPStreamParts& parts) {
  const NSTambraPacking::CDWOPHeader& header = parts.fHeader;
  CJson extraInfo = nullptr;
  if (parts.fExtraInfo) {
    extraInfo = {{"offset", parts.fExtraInfo->fDataStart}, {"size", parts.fExtraInfo->fDataLength}};
  }
  console.PrintJson(
      {{"version", header.fVersion.Text()},
       {"frames", header.fLength},
       {"channels", header.fChannels},
       {"bits", header.fWidth},
       {"rate", header.fRate},
       {"root_key", header.fRootKey},
       {"fine_tune", static_cast<std::int8_t>(header.fFineTune)},
       {"loop",
        {{"mode", header.fLoopMode}, {"start", header.fLoopStart}, {"end", header.fLoopEnd}}},
       {"samples", {{"offset", parts.fBitStream}, {"size", parts.fWords * sizeof(std::uint32_t)}}},
       {"extra_info", extraInfo}});
}

std::u16string LoopText(const CTextResources& texts, const NSTambraPacking::CDWOPHeader& header) {
  const std::u16string start = TextFromUtf8(std::to_string(header.fLoopStart));
  const std::u16string end = TextFromUtf8(std::to_string(header.fLoopEnd));
  switch (static_cast<NSTambraPacking::ELoopMode>(header.fLoopMode)) {
    case NSTambraPacking::ELoopMode::kNone:
      return texts.Text(NSTambraPacking::kThereIsNone);
    case NSTambraPacking::ELoopMode::kForward:
      return texts.Text(NSTambraPacking::kLoopForward, {start, end});
    case NSTambraPacking::ELoopMode::kAlternating:
      return texts.Text(NSTambraPacking::kLoopAlternating, {start, end});
  }
  return texts.Text(NSTambraPacking::kLoopOther,
                    {TextFromUtf8(std::to_string(header.fLoopMode)), start, end});
}

void PrintLines(const CConsole& console, const CTextResources& texts,
                const CDWOPStreamParts& parts) {
  using namespace NSTambraPacking;
  const CDWOPHeader& header = parts.fHeader;
  const auto number = [](std::int64_t value) { return TextFromUtf8(std::to_string(value)); };
  const auto place = [&](std::uint64_t offset, std::uint64_t size) {
    return texts.Text(kBytesAt,
                      {TextFromUtf8(std::to_string(size)), TextFromUtf8(std::to_string(offset))});
  };
  PrintLabelled(console, texts,
                {{kInfoVersion, TextFromUtf8(header.fVersion.Text())},
                 {kSampleFrames, number(header.fLength)},
                 {kSampleChannels, number(header.fChannels)},
                 {kSampleBits, number(header.fWidth)},
                 {kSampleRate, number(header.fRate)},
                 {kSampleRootKey, number(header.fRootKey)},
                 {kSampleFineTune, number(static_cast<std::int8_t>(header.fFineTune))},
                 {kSampleLoop, LoopText(texts, header)},
                 {kSampleBitStream, place(parts.fBitStream, parts.fWords * sizeof(std::uint32_t))},
                 {kSampleRest, parts.fExtraInfo ? place(parts.fExtraInfo->fDataStart,
                                                        parts.fExtraInfo->fDataLength)
                                                : texts.Text(kThereIsNone)}});
}

int CDWOPInfoCommand::Run(const CGlobalOptions& options) {
  const CConsole console = options.Console();
  const CStopSignal signal;
  const auto media = NSBigFilePackage::CStdioMedia::OpenForReading(PathArgument(fFile));
  const CDWOPStreamParts parts = NSTambraPacking::WithFormFault(
      kStream, [&] { return NSTambraPacking::CheckDWOPStream(*media, ThrowIfStopped); });
  if (console.Json()) {
    PrintJson(console, parts);
  } else {
    PrintLines(console, LoadTexts(options), parts);
  }
  return kExitDone;
}

}  // namespace

std::unique_ptr<ICommand> MakeDWOPEncodeCommand() {
  return std::make_unique<CConvertCommand>(NSTambraPacking::ESampleWork::kEncode);
}

std::unique_ptr<ICommand> MakeDWOPDecodeCommand() {
  return std::make_unique<CConvertCommand>(NSTambraPacking::ESampleWork::kDecode);
}

std::unique_ptr<ICommand> MakeDWOPInfoCommand() { return std::make_unique<CDWOPInfoCommand>(); }

}  // namespace NSTambraCli
