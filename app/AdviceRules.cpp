#include "app/AdviceRules.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/NamePattern.h"
#include "app/SpecialNames.h"
#include "package/StdioMedia.h"

namespace NSTambraPacking {

namespace {

using NSMordel::XFormatViolation;

constexpr std::string_view kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
}

/// The text up to the next blank, which leaves the rest in `text`.
std::string_view TakeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  text = Trimmed(text.substr(word.size()));
  return word;
}

}  // namespace

void CAdviceRules::Add(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const std::string_view rule = Trimmed(line);
    if (rule.empty() || rule.starts_with('#')) continue;
    try {
      fRules.push_back(ParseRule(rule));
    } catch (const XFormatViolation& e) {
      throw XFormatViolation("line " + std::to_string(number) + ": " + e.Message());
    }
  }
}

CAdviceRules::CRule CAdviceRules::ParseRule(std::string_view line) {
  const std::string_view severity = TakeWord(line);
  const auto name = std::ranges::find(kSeverityNames, severity);
  if (name == kSeverityNames.end()) {
    throw XFormatViolation("\"" + std::string(severity) +
                           "\" is no severity, but error, warning, note and off are");
  }
  const std::string_view id = TakeWord(line);
  const CAdviceKind* const kind = FindAdviceKind(id);
  if (kind == nullptr && id != "*") {
    throw XFormatViolation("\"" + std::string(id) + "\" is no kind of advice");
  }
  const auto pattern = NSTolbrook::StrictTextFromUtf8(line);
  if (!pattern) throw XFormatViolation("the pattern is not valid UTF-8");
  return {static_cast<ESeverity>(name - kSeverityNames.begin()), kind, *pattern};
}

void CAdviceRules::AddFile(const NSTolbrook::NativePath& path) {
  try {
    Add(ReadInformationBytes(*NSBigFilePackage::CStdioMedia::OpenForReading(path)));
  } catch (NSMordel::CExceptionBodyMixin& e) {
    e.AddContext(NSMordel::kTargetObjectType, "file");
    e.AddContext(NSMordel::kTargetObjectId, NSTolbrook::DisplayText(path));
    throw;
  }
}

void CAdviceRules::AddFileOf(const NSTolbrook::NativePath& inputFolder) {
  const NSTolbrook::NativePath path = inputFolder / NSTolbrook::NativePath(kAdviceRulesName);
  if (NSTolbrook::FileStatus(path, true).fKind == NSTolbrook::EFileKind::kFile) AddFile(path);
}

ESeverity CAdviceRules::SeverityOf(EAdvice advice, std::u16string_view file) const {
  const auto isMeant = [&](const CRule& rule) {
    return (rule.fKind == nullptr || rule.fKind->fAdvice == advice) &&
           (rule.fPattern.empty() || MatchesPattern(file, rule.fPattern));
  };
  const auto last = std::find_if(fRules.rbegin(), fRules.rend(), isMeant);
  return last == fRules.rend() ? AdviceKind(advice).fSeverity : last->fSeverity;
}

}  // namespace NSTambraPacking
