#include "cli/CacheOptions.h"

#include <cstdlib>
#include <string>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraCli {

namespace {

constexpr unsigned kUsualMegabytes = 4000;
constexpr unsigned kMostMegabytes = 1'000'000;
constexpr const char* kVariable = "TAMBRA_CACHE_LIMIT";

/// The parser's own look at the environment would fail commands that have no such option.
unsigned MegabytesOfEnvironment() {
  const char* const variable = std::getenv(kVariable);
  std::string given = variable == nullptr ? "" : variable;
  if (given.empty()) return kUsualMegabytes;
  const std::string fault = NumberFrom(0, kMostMegabytes)(given);
  if (!fault.empty()) throw XWrongUsage(std::string(kVariable) + ": " + fault);
  return static_cast<unsigned>(std::stoul(given));
}

}  // namespace

void CCacheLimit::AddOption(CLI::App& command) {
  command
      .add_option("--cache-limit", fMegabytes,
                  "Most megabytes that the cache of packed samples takes (default: 4000)")
      ->type_name("MB")
      ->check(NumberFrom(0, kMostMegabytes));
}

std::uint64_t CCacheLimit::Bytes() const {
  return std::uint64_t{fMegabytes ? *fMegabytes : MegabytesOfEnvironment()} * 1'000'000;
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
