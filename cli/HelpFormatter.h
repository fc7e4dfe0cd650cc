#pragma once

#include <CLI/CLI.hpp>

namespace NSTambraCli {

/// Help with the examples (a command's footer) in front of the options: most readers look for one.
class CHelpFormatter : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
};

}  // namespace NSTambraCli
