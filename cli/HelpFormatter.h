#pragma once

#include <CLI/CLI.hpp>

namespace NSTambraCli {

/// Help with the examples (a command's footer) in front of the options: most readers look for one.
class CHelpFormatter : public CLI::Formatter {
 public:
  CHelpFormatter();
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
  std::string make_option_opts(const CLI::Option* option) const override;

 private:
  /// The command's own options, then those of every command.
  std::string OptionGroups(const CLI::App& command) const;
};

/// "tambra pack INPUT OUTPUT [OPTIONS]", for the command of that full name.
std::string UsageLine(const CLI::App& command, const std::string& name);

}  // namespace NSTambraCli
