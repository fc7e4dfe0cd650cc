#include "cli/Command.h"

#include <charconv>

namespace NSTambraCli {

namespace {

constexpr unsigned kMostJobs = 1024;

std::string FaultOfJobs(const std::string& given) {
  unsigned jobs = 0;
  const char* const end = given.data() + given.size();
  const auto parsed = std::from_chars(given.data(), end, jobs);
  if (parsed.ec == std::errc{} && parsed.ptr == end && jobs >= 1 && jobs <= kMostJobs) return {};
  return "\"" + given + "\" is no number from 1 to " + std::to_string(kMostJobs);
}

}  // namespace

void AddJobsOption(CLI::App& command, unsigned& jobs, const std::string& description) {
  command.add_option("--jobs", jobs, description)->type_name("N")->check(FaultOfJobs);
}

NSTolbrook::NativePath PathArgument(const std::string& argument) {
  const std::u8string text(argument.begin(), argument.end());
  return NSTolbrook::NativePath(text);
}

}  // namespace NSTambraCli
