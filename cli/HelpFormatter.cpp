#include "cli/HelpFormatter.h"

namespace NSTambraCli {

std::string CHelpFormatter::make_help(const CLI::App* app, std::string name,
                                      CLI::AppFormatMode mode) const {
  if (mode == CLI::AppFormatMode::Sub) return make_expanded(app);
  return app->get_description() + "\n\n" + make_footer(app) + "\n" +
         make_usage(app, std::move(name)) + make_positionals(app) + make_groups(app, mode) +
         make_subcommands(app, mode);
}

}  // namespace NSTambraCli
