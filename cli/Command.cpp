#include "cli/Command.h"

namespace NSTambraCli {

namespace {

constexpr unsigned kMostJobs = 1024;

}  // namespace

void AddJobsOption(CLI::App& command, unsigned& jobs, const std::string& description) {
  command.add_option("--jobs", jobs, description)->type_name("N")->check(NumberFrom(1, kMostJobs));
}

NSTolbrook::NativePath PathArgument(const std::string& argument) {
  const std::u8string text(argument.begin(), argument.end());
  return NSTolbrook::NativePath(text);
}

}  // namespace NSTambraCli
