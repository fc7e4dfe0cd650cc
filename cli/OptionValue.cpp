#include "cli/OptionValue.h"

#include <algorithm>
#include <charconv>

#include "cli/Suggestion.h"

namespace NSTambraCli {

std::vector<std::string> Choices(const CLI::Option& option) {
  // The parser's own list of values tells itself as "{one,two}" behind the type.
  const std::string type = option.get_type_name();
  const std::size_t begin = type.find('{');
  const std::size_t end = type.find('}', begin);
  if (begin == std::string::npos || end == std::string::npos) return {};
  return CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
}

namespace {

/// With more the help's lines get too long.
constexpr std::size_t kMostChoicesShown = 4;

}  // namespace

std::string ValueName(const CLI::Option& option) {
  const std::vector<std::string> choices = Choices(option);
  if (!choices.empty() && choices.size() <= kMostChoicesShown) {
    return CLI::detail::join(choices, "|");
  }
  const std::string type = option.get_type_name();
  return type.substr(0, type.find(':'));
}

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

CLI::Validator OneOf(const std::vector<std::string>& values) {
  const auto fault = [values](const std::string& given) -> std::string {
    if (std::ranges::find(values, given) != values.end()) return {};
    const std::string meant = ClosestName(given, values);
    if (!meant.empty()) return "there is no \"" + given + "\"; did you mean " + meant + "?";
    return "\"" + given + "\" is none of: " + CLI::detail::join(values, ", ");
  };
  return {fault, "{" + CLI::detail::join(values, ",") + "}"};
}

CLI::Validator NumberFrom(unsigned least, unsigned most) {
  const auto fault = [least, most](const std::string& given) -> std::string {
    unsigned number = 0;
    const char* const end = given.data() + given.size();
    const auto parsed = std::from_chars(given.data(), end, number);
    const bool isNumber = parsed.ec == std::errc{} && parsed.ptr == end;
    if (isNumber && number >= least && number <= most) return {};
    return "\"" + given + "\" is no number from " + std::to_string(least) + " to " +
           std::to_string(most);
  };
  return {fault, {}};
}

std::vector<std::string> NamesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  return names;
}

std::vector<const CLI::Option*> PositionalsOf(const CLI::App& command) {
  return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<const CLI::Option*> OptionsOf(const CLI::App& command) {
  return command.get_options([](const CLI::Option* option) {
    return option->nonpositional() && !option->get_group().empty();
  });
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& command) {
  return command.get_subcommands([](const CLI::App* child) { return !child->get_group().empty(); });
}

}  // namespace NSTambraCli
