#include "packaging/manual/ManualPage.h"

#include <algorithm>
#include <string_view>

#include "cli/HelpFormatter.h"
#include "cli/OptionValue.h"

namespace NSTambraCli {

namespace {

/// Text as it is shown: no character of it is a request or an escape.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char character = text[index];
    const bool beginsLine = index == 0 || text[index - 1] == '\n';
    if (beginsLine && (character == '.' || character == '\'')) escaped += "\\&";
    switch (character) {
      case '\\':
        escaped += "\\e";
        break;
      case '-':
        escaped += "\\-";
        break;
      case '"':
        escaped += "\\(dq";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

std::string Section(const std::string& title) { return ".SH " + title + "\n"; }

std::string Item(const std::string& tag, const std::string& text) {
  return ".TP\n" + tag + "\n" + Escaped(text) + "\n";
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Escaped(text) + "\\fR"; }

std::string OptionItem(const CLI::Option& option) {
  std::string tag;
  for (const std::string& name : NamesOf(option)) {
    tag += (tag.empty() ? "" : ", ") + Bold(name);
    if (TakesValue(option)) tag += " " + Italic(ValueName(option));
  }
  return Item(tag, option.get_description() + ".");
}

/// What stands under a command's usage: its arguments, its own options, its examples.
std::string CommandText(const CLI::App& command) {
  std::string text = Escaped(command.get_description()) + ".\n";
  for (const CLI::Option* const option : PositionalsOf(command)) {
    text += Item(Italic(option->get_name()), option->get_description() + ".");
  }
  for (const CLI::Option* const option : OptionsOf(command)) {
    if (option->get_group() != kCommonOptions) text += OptionItem(*option);
  }
  return text + ".PP\n.EX\n" + Escaped(command.get_footer()) + "\n.EE\n";
}

std::string CommandTexts(const CLI::App& parent, const std::string& name) {
  std::string text;
  for (const CLI::App* const command : CommandsOf(parent)) {
    const std::string full = name + " " + command->get_name();
    if (CommandsOf(*command).empty()) {
      text += ".SS " + Escaped(UsageLine(*command, full)) + "\n" + CommandText(*command);
    } else {
      text += CommandTexts(*command, full);
    }
  }
  return text;
}

/// The options that all commands with such options have, those of any one of them.
std::string CommonOptions(const CLI::App& program) {
  std::string text;
  for (const CLI::Option* const option : OptionsOf(*CommandsOf(program).front())) {
    if (option->get_group() == kCommonOptions) text += OptionItem(*option);
  }
  return text;
}

/// What stands before the first blank line of the program's footer; the page tells the rest itself.
std::string Examples(const CLI::App& program) {
  const std::string footer = program.get_footer();
  return footer.substr(0, footer.find("\n\n"));
}

constexpr std::pair<const char*, const char*> kStatuses[] = {
    {"0", "Packed, the check passed, or the command did its work."},
    {"1", "Packed, and the log tells of problems; diff found differences."},
    {"2", "Wrong usage."},
    {"3",
     "Ended by the run's own tests or a refused question;\n"
     "the check failed; a file would have had to be replaced."},
    {"4", "Ended by an error, a folder that cannot be used, or a package that is not sound."},
    {"130", "Stopped by the user (interrupt from the keyboard, or SIGTERM)."}};

constexpr std::pair<const char*, const char*> kFiles[] = {
    {"~/.cache/tambra/samples.cache", "The samples that earlier runs packed."},
    {"INPUT/.tambra-check", "Rules that turn advice up, down or off."}};

constexpr std::pair<const char*, const char*> kVariables[] = {
    {"NO_COLOR", "Any value but an empty one: no colours, even on a terminal."},
    {"TAMBRA_CACHE_LIMIT", "What --cache-limit is where it is not given."},
    {"TAMBRA_LQX_LIBRARY", "The host's sliced-loop library, where --lqx-library names none."},
    {"TERM", "The value dumb means a terminal without colours."},
    {"XDG_CACHE_HOME", "The folder for the cache, in place of ~/.cache."}};

}  // namespace

std::string ManualPage(const CProgram& program, const std::string& date) {
  const CLI::App& app = program.App();
  const std::string name = app.get_name();
  std::string upper = name;
  std::ranges::transform(upper, upper.begin(), [](char c) { return static_cast<char>(c - 32); });
  std::string page = ".TH " + upper + " 1 \"" + date +
                     "\" \"Tambra Packer " TAMBRA_VERSION "\" \"User Commands\"\n";
  page += Section("NAME") + name + " \\- pack content libraries into package files\n";
  page += Section("SYNOPSIS") + Bold(name) + " " + Italic("COMMAND") + " [" + Italic("ARGUMENT") +
          "]... [" + Italic("OPTION") + "]...\n";
  page += Section("DESCRIPTION") + Escaped(app.get_description()) +
          "\nData goes to standard output, everything else to standard error.\n.PP\n.EX\n" +
          Escaped(Examples(app)) + "\n.EE\n";
  page += Section("COMMANDS") + CommandTexts(app, name);
  page += Section("OPTIONS") + "Every command but help has these.\n" + CommonOptions(app) +
          OptionItem(*app.get_version_ptr());
  page += Section("EXIT STATUS");
  for (const auto& [status, text] : kStatuses) page += Item(Bold(status), text);
  page += Section("ENVIRONMENT");
  for (const auto& [variable, text] : kVariables) page += Item(Bold(variable), text);
  page += Section("FILES");
  for (const auto& [file, text] : kFiles) page += Item(Italic(file), text);
  return page + Section("SEE ALSO") + ".BR tambra\\-packer (1)\n";
}

}  // namespace NSTambraCli
