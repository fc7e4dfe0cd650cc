#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/OptionValue.h"

namespace NSTambraCli {

/// Goes through a command line argument by argument, as the parser would, to find out what is wrong
/// with it in the user's words, or what may come next.
class CArgumentWalk {
 public:
  explicit CArgumentWalk(const CLI::App& program);

  /// Throws XWrongUsage, with what may have been meant, for a command or option that does not
  /// exist, an option without its value, and an argument that is empty or one too many.
  void Take(const std::string& argument);
  /// Throws XWrongUsage when something is still missing.
  void CheckComplete() const;

  /// The innermost command that was named.
  const CLI::App& Command() const { return *fCommand; }
  /// As the user calls it: "tambra dwop encode".
  const std::string& Name() const { return fName; }
  const std::vector<std::string>& Positionals() const { return fPositionals; }
  /// The option whose value comes next; null when there is none.
  const CLI::Option* Open() const { return fOpen; }
  bool Has(const CLI::Option& option) const;
  /// Whether "--" has ended the options.
  bool OptionsEnded() const { return fOptionsEnded; }
  /// The option of a name with its dashes, without "=VALUE"; null when the command has none.
  const CLI::Option* Find(std::string_view name) const;
  /// What the next argument without an option's name is; null when there may be none.
  const CLI::Option* NextPositional() const;

 private:
  void TakeCommand(const std::string& argument);
  void TakeOption(const std::string& argument);
  [[noreturn]] void ThrowUnknownOption(const std::string& name) const;

  const CLI::App* fCommand;
  std::string fName;
  std::vector<std::string> fPositionals;
  std::vector<const CLI::Option*> fGiven;
  const CLI::Option* fOpen = nullptr;
  bool fOptionsEnded = false;
};

}  // namespace NSTambraCli
