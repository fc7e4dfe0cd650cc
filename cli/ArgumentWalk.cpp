#include "cli/ArgumentWalk.h"

#include <algorithm>

#include "cli/Command.h"
#include "cli/Suggestion.h"

namespace NSTambraCli {

namespace {

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string Suggest(const std::string& given, const std::vector<std::string>& names) {
  const std::string closest = ClosestName(given, names);
  return closest.empty() ? std::string() : "; did you mean " + closest + "?";
}

bool LooksLikeOption(std::string_view argument) {
  return argument.size() > 1 && argument.front() == '-';
}

/// The long names alone: any two short ones differ in no more than a letter.
std::vector<std::string> OptionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : OptionsOf(command)) {
    names.push_back(NamesOf(*option).front());
  }
  return names;
}

std::vector<std::string> CommandNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* const child : CommandsOf(command)) names.push_back(child->get_name());
  return names;
}

[[noreturn]] void ThrowNoValue(const CLI::Option& option) {
  const std::string name = NamesOf(option).front();
  throw XWrongUsage(name + " needs a value: " + name + " " + ValueName(option));
}

bool AnyCommandHas(const CLI::App& command, const std::string& option) {
  return std::ranges::any_of(CommandsOf(command), [&](const CLI::App* child) {
    return std::ranges::count(OptionNames(*child), option) > 0 || AnyCommandHas(*child, option);
  });
}

}  // namespace

CArgumentWalk::CArgumentWalk(const CLI::App& program)
    : fCommand(&program), fName(program.get_name()) {}

void CArgumentWalk::Take(const std::string& argument) {
  if (fOpen != nullptr) {
    if (argument.empty() || Find(argument) != nullptr) return CheckComplete();
    fOpen = nullptr;
  } else if (!fOptionsEnded && argument == "--") {
    fOptionsEnded = true;
  } else if (!fOptionsEnded && LooksLikeOption(argument)) {
    TakeOption(argument);
  } else if (!CommandsOf(*fCommand).empty()) {
    TakeCommand(argument);
  } else if (const CLI::Option* const next = NextPositional(); next == nullptr) {
    throw XWrongUsage(Quoted(argument) + " is one argument too many");
  } else if (argument.empty()) {
    throw XWrongUsage(next->get_name() + " is empty: " + next->get_description());
  } else {
    fPositionals.push_back(argument);
  }
}

void CArgumentWalk::CheckComplete() const {
  if (fOpen != nullptr) ThrowNoValue(*fOpen);
  if (fCommand->get_require_subcommand_min() > 0) {
    throw XWrongUsage("a command is missing: " + CLI::detail::join(CommandNames(*fCommand), ", "));
  }
  const std::vector<const CLI::Option*> positionals = PositionalsOf(*fCommand);
  if (fPositionals.size() >= positionals.size()) return;
  const CLI::Option* const next = positionals[fPositionals.size()];
  if (!next->get_required()) return;
  throw XWrongUsage(next->get_name() + " is missing: " + next->get_description());
}

bool CArgumentWalk::Has(const CLI::Option& option) const {
  return std::ranges::count(fGiven, &option) > 0;
}

const CLI::Option* CArgumentWalk::Find(std::string_view name) const {
  for (const CLI::Option* const option : OptionsOf(*fCommand)) {
    if (std::ranges::count(NamesOf(*option), name) > 0) return option;
  }
  return nullptr;
}

const CLI::Option* CArgumentWalk::NextPositional() const {
  const std::vector<const CLI::Option*> positionals = PositionalsOf(*fCommand);
  if (fPositionals.size() < positionals.size()) return positionals[fPositionals.size()];
  const bool takesMore = !positionals.empty() && positionals.back()->get_items_expected_max() > 1;
  return takesMore ? positionals.back() : nullptr;
}

void CArgumentWalk::TakeCommand(const std::string& argument) {
  for (const CLI::App* const child : CommandsOf(*fCommand)) {
    if (child->get_name() != argument) continue;
    fCommand = child;
    fName += " " + argument;
    return;
  }
  throw XWrongUsage(Quoted(argument) + " is no command" +
                    Suggest(argument, CommandNames(*fCommand)));
}

void CArgumentWalk::TakeOption(const std::string& argument) {
  const bool isLong = argument.starts_with("--");
  const std::string name = argument.substr(0, argument.find('='));
  const CLI::Option* const option = Find(isLong ? name : name.substr(0, 2));
  if (option == nullptr) ThrowUnknownOption(name);
  const std::size_t nameSize = isLong ? name.size() : 2;
  if (!TakesValue(*option) && argument.size() > nameSize) {
    throw XWrongUsage(name + " takes no value");
  }
  if (option->get_items_expected_max() == 1 && Has(*option)) {
    throw XWrongUsage(name + " is given twice");
  }
  fGiven.push_back(option);
  if (!TakesValue(*option)) return;
  if (argument.size() == nameSize) {
    fOpen = option;
  } else if (isLong && argument.size() == nameSize + 1) {
    ThrowNoValue(*option);  // nothing behind the "="
  }
}

void CArgumentWalk::ThrowUnknownOption(const std::string& name) const {
  if (AnyCommandHas(*fCommand, name)) {
    throw XWrongUsage(name + " belongs behind the command: " + fName + " COMMAND " + name);
  }
  throw XWrongUsage(Quoted(name) + " is no option" + Suggest(name, OptionNames(*fCommand)));
}

}  // namespace NSTambraCli
