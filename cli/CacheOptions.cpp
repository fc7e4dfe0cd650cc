#include "cli/CacheOptions.h"

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraCli {

void CCacheLimit::AddOption(CLI::App& command) {
  command
      .add_option("--cache-limit", fMegabytes,
                  "Most megabytes that the cache of packed samples takes (default: 4000)")
      ->type_name("MB")
      ->envname("TAMBRA_CACHE_LIMIT")
      ->check(CLI::Range(0U, 1'000'000U));
}

NSTolbrook::NativePath CacheFolder() { return NSTolbrook::UserCacheFolder() / "tambra"; }

void NoteCache(const CConsole& console, const NSTambraPacking::CTextResources& texts,
               const NSTambraPacking::CPackCache& cache) {
  const auto [taken, packed, kept] = cache.Counts();
  CJson notes = CJson::Array();
  for (const auto& [number, arguments] : cache.Notes()) {
    const std::u16string note = texts.Text(number, arguments);
    if (console.Json()) {
      notes.Append(NSTolbrook::Utf8FromText(note));
    } else {
      console.Note(Printable(note));
    }
  }
  if (!console.Json()) return;
  CJson event = {{"event", "cache"}, {"taken", taken}, {"packed", packed}, {"kept", kept}};
  if (!cache.Notes().empty()) event.Add("notes", notes);
  console.PrintJson(event);
}

}  // namespace NSTambraCli
