#include "cli/CacheCommand.h"

#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/ExitStatus.h"
#include "cli/JobSession.h"
#include "cli/LabelledLines.h"
#include "package/StreamCache.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CTextResources;

/// What there is to know of the cache's file.
struct CCacheView {
  bool fIsSound = true;  ///< or not there
  std::size_t fSamples = 0;
  std::uint64_t fSize = 0;  ///< bytes
};

CCacheView Look(const NSTolbrook::NativePath& file) {
  CCacheView view;
  const NSTolbrook::CFileStatus status = NSTolbrook::FileStatus(file, true);
  view.fSize = status.fSize;
  if (status.fSize == 0) return view;
  try {
    view.fSamples = NSBigFilePackage::CStreamCache::OpenForReading(file)->Count();
  } catch (const NSMordel::CExceptionBodyMixin&) {
    view.fIsSound = false;
  }
  return view;
}

std::u16string Number(std::uint64_t value) {
  return NSTolbrook::TextFromUtf8(std::to_string(value));
}

void Show(const CConsole& console, const CTextResources& texts, const NSTolbrook::NativePath& file,
          const CCacheView& view, std::uint64_t limit) {
  using namespace NSTambraPacking;
  const std::string path = NSTolbrook::DisplayText(file);
  if (console.Json()) {
    console.PrintJson({{"file", path},
                       {"sound", view.fIsSound},
                       {"samples", view.fSamples},
                       {"size", view.fSize},
                       {"limit", limit}});
    return;
  }
  const CLabelledLines lines = {{kCacheFile, NSTolbrook::TextFromUtf8(path)},
                                {kCacheSamples, Number(view.fSamples)},
                                {kCacheSize, Number(view.fSize)},
                                {kCacheLimit, Number(limit)}};
  PrintLabelled(console, texts, lines);
  if (!view.fIsSound) console.Note(Printable(texts.Text(kCacheUnsound)));
}

}  // namespace

CLI::App* CCacheCommand::Register(CLI::App& program) {
  CLI::App* const command =
      program.add_subcommand("cache", "Show or remove the packed samples that are kept");
  command->add_option("ACTION", fAction, "What to do (default: show)")
      ->check(OneOf({"show", "clear"}));
  fLimit.AddOption(*command);
  command->footer(
      "Examples:\n"
      "  tambra cache          where it is, what it holds and what it may take\n"
      "  tambra cache clear    removes it; the next run packs everything afresh");
  return command;
}

int CCacheCommand::Run(const CGlobalOptions& options) {
  const CConsole console = options.Console();
  const CTextResources texts = LoadTexts(options);
  const NSTolbrook::NativePath file = NSTambraPacking::CPackCache::File(CacheFolder());
  const CCacheView view = Look(file);
  if (fAction == "show") {
    Show(console, texts, file, view, fLimit.Bytes());
    return kExitDone;
  }
  const bool wasThere = NSBigFilePackage::CStreamCache::Remove(file);
  if (console.Json()) {
    console.PrintJson({{"file", NSTolbrook::DisplayText(file)}, {"removed", wasThere}});
    return kExitDone;
  }
  console.Note(Printable(wasThere ? texts.Text(NSTambraPacking::kCacheCleared, {Number(view.fSize)})
                                  : texts.Text(NSTambraPacking::kCacheNone)));
  return kExitDone;
}

}  // namespace NSTambraCli
