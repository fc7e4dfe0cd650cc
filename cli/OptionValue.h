#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace NSTambraCli {

/// What the value of an argument or option is: its type name, shown by the help and known to the
/// completion.
inline constexpr const char* kAnswerValue = "ALERT=BUTTON";
inline constexpr const char* kCommandValue = "COMMAND";
inline constexpr const char* kEntryValue = "ENTRY";
inline constexpr const char* kFileValue = "FILE";
inline constexpr const char* kFolderValue = "FOLDER";
inline constexpr const char* kPackageValue = "PACKAGE";

/// The group of the options that every command has.
inline constexpr const char* kCommonOptions = "Options of every command";

/// The kind of the value, or the values to choose from, with "|" between them.
std::string ValueName(const CLI::Option& option);
/// The values to choose from; empty when there is no such list.
std::vector<std::string> Choices(const CLI::Option& option);
/// Whether the option stands before a value: it is no flag.
bool TakesValue(const CLI::Option& option);
/// Refuses a value that is not one of `values`, which the option's choices are then.
CLI::Validator OneOf(const std::vector<std::string>& values);
/// Refuses a value that is no whole number from `least` to `most`.
CLI::Validator NumberFrom(unsigned least, unsigned most);

/// The names as they are typed, long ones first.
std::vector<std::string> NamesOf(const CLI::Option& option);

/// The arguments of a command that have no option name, in their order.
std::vector<const CLI::Option*> PositionalsOf(const CLI::App& command);
/// The options that a command's help shows.
std::vector<const CLI::Option*> OptionsOf(const CLI::App& command);
/// The commands below a command that its help shows.
std::vector<const CLI::App*> CommandsOf(const CLI::App& command);

}  // namespace NSTambraCli
