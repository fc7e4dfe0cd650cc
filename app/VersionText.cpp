#include "app/VersionText.h"

#include <charconv>
#include <optional>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "package/PackageFormat.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::CFormatVersion;

constexpr std::string_view kStageLetters = "dabf";

/// Takes a decimal number of 32 bits from the front of `rest`; false when there is none.
bool TakeNumber(std::string_view& rest, std::uint32_t& number) {
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (error != std::errc()) return false;
  rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  return true;
}

std::optional<CFormatVersion> Parse(std::string_view rest) {
  CFormatVersion version;
  if (!TakeNumber(rest, version.fMajor)) return std::nullopt;
  for (std::uint32_t* part : {&version.fMinor, &version.fBugFix}) {
    if (!rest.starts_with('.')) break;
    rest.remove_prefix(1);
    if (!TakeNumber(rest, *part)) return std::nullopt;
  }
  if (rest.empty()) return version;
  const std::size_t stage = kStageLetters.find(rest.front());
  if (stage == kStageLetters.npos) return std::nullopt;
  version.fStage = static_cast<std::uint32_t>(stage + 1);
  rest.remove_prefix(1);
  if (!TakeNumber(rest, version.fBuild) || !rest.empty()) return std::nullopt;
  return version;
}

std::u16string Decimal(std::uint32_t number) {
  return NSTolbrook::TextFromUtf8(std::to_string(number));
}

}  // namespace

CFormatVersion ParseVersionText(std::u16string_view text) {
  if (text.empty()) return {};
  const std::string bytes = NSTolbrook::Utf8FromText(text);
  const NSMordel::CContext context{{kVersionKey, bytes}};
  const std::optional<CFormatVersion> version = Parse(bytes);
  if (!version) {
    throw NSMordel::XFormatViolation("the version text \"" + bytes + "\" is not a version",
                                     context);
  }
  if (*version > kSupportedPackageVersion) {
    const std::string latest = kSupportedPackageVersion.Text();
    NSMordel::XVersionTooNew failure("the version " + bytes + " is later than " + latest, context);
    failure.AddContext(NSMordel::kSecondaryObjectId, latest);
    throw failure;
  }
  return *version;
}

std::u16string DisplayVersion(const CTextResources& texts, const CFormatVersion& version) {
  CStringNumber format = kVersionFormat;
  const bool isPlain = version.fStage == CFormatVersion::kFinalStage && version.fBuild == 0;
  if (!isPlain) format.fEntry += static_cast<int>(version.fStage);
  return texts.Text(format, {Decimal(version.fMajor), Decimal(version.fMinor),
                             Decimal(version.fBugFix), Decimal(version.fBuild)});
}

}  // namespace NSTambraPacking
