#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "app/Advice.h"

namespace NSTambraPacking {

/// The file in the top of an input folder that changes the severities of advice about it. The scan
/// passes over it, as over all names that begin with a dot.
inline constexpr std::u16string_view kAdviceRulesName = u".tambra-check";

/// What the publisher says about advice. A file of rules is UTF-8 text, a rule a line, the later
/// before the earlier:
///
///     # comment
///     off      clipped-sample  Drums/Distorted/*
///     warning  *               Voices/*
///     error    missing-root-key
///
/// A severity (off, note, warning, error), the name of a kind or "*" for all, and the pattern of
/// the files' paths: "*" stands for any characters, "/" too, "?" for one. Without a pattern the
/// rule is for all files.
class CAdviceRules {
 public:
  /// Puts the rules of a text behind those that are there. Throws XFormatViolation with the line.
  void Add(std::string_view text);
  /// As Add, for a file; what is thrown names it.
  void AddFile(const NSTolbrook::NativePath& path);
  /// As AddFile for the file kAdviceRulesName of an input folder, when it has one.
  void AddFileOf(const NSTolbrook::NativePath& inputFolder);

  ESeverity SeverityOf(EAdvice advice, std::u16string_view file) const;

 private:
  struct CRule {
    ESeverity fSeverity;
    const CAdviceKind* fKind;  ///< null for all
    std::u16string fPattern;   ///< empty for all
  };

  static CRule ParseRule(std::string_view line);

  std::vector<CRule> fRules;
};

}  // namespace NSTambraPacking
