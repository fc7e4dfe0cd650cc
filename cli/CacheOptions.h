#pragma once

#include <memory>
#include <optional>

#include "app/PackCache.h"
#include "app/TextResources.h"
#include "cli/Command.h"

namespace NSTambraCli {

/// How much the cache of packed samples may hold: --cache-limit MB, else TAMBRA_CACHE_LIMIT of the
/// environment.
class CCacheLimit {
 public:
  void AddOption(CLI::App& command);
  /// Throws XWrongUsage when the environment counts and holds no such number.
  std::uint64_t Bytes() const;

 private:
  std::optional<unsigned> fMegabytes;
};

/// Where the cache is: "tambra" in the user's cache folder. Throws XNotFound when there is none.
NSTolbrook::NativePath CacheFolder();

/// What the cache did for a run: on standard error what went wrong with it, or a JSON event
/// ("cache").
void NoteCache(const CConsole& console, const NSTambraPacking::CTextResources& texts,
               const NSTambraPacking::CPackCache& cache);

}  // namespace NSTambraCli
