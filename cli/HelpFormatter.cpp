#include "cli/HelpFormatter.h"

#include <algorithm>

#include "cli/OptionValue.h"

namespace NSTambraCli {

CHelpFormatter::CHelpFormatter() { label("Positionals", "Arguments"); }

std::string CHelpFormatter::make_help(const CLI::App* app, std::string name,
                                      CLI::AppFormatMode mode) const {
  if (mode == CLI::AppFormatMode::Sub) return make_expanded(app);
  return app->get_description() + "\n\n" + make_footer(app) + "\nUsage: " + UsageLine(*app, name) +
         "\n" + make_positionals(app) + OptionGroups(*app) + make_subcommands(app, mode);
}

std::string CHelpFormatter::OptionGroups(const CLI::App& command) const {
  std::vector<const CLI::Option*> own = OptionsOf(command);
  const auto common = std::stable_partition(own.begin(), own.end(), [](const CLI::Option* option) {
    return option->get_group() != kCommonOptions;
  });
  const std::vector<const CLI::Option*> shared(common, own.end());
  own.erase(common, own.end());
  std::string text;
  if (!own.empty()) text += make_group("Options", false, own);
  if (!shared.empty()) text += make_group(kCommonOptions, false, shared);
  return text;
}

std::string CHelpFormatter::make_option_opts(const CLI::Option* option) const {
  if (option->get_positional() || !TakesValue(*option)) return {};
  const bool isRepeated = option->get_items_expected_max() > 1;
  return " " + ValueName(*option) + (isRepeated ? " ..." : "");
}

std::string UsageLine(const CLI::App& command, const std::string& name) {
  std::string usage = name;
  if (!CommandsOf(command).empty()) usage += " COMMAND";
  for (const CLI::Option* const option : PositionalsOf(command)) {
    const bool isRepeated = option->get_items_expected_max() > 1;
    const std::string shown = option->get_name() + (isRepeated ? "..." : "");
    usage += option->get_required() ? " " + shown : " [" + shown + "]";
  }
  return usage + " [OPTIONS]";
}

}  // namespace NSTambraCli
