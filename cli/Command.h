#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "cli/Console.h"
#include "cli/OptionValue.h"

namespace NSTambraCli {

/// The command line is wrong in a way that the parser cannot see. The message tells.
class XWrongUsage : public NSMordel::XFormatViolation {
  using XFormatViolation::XFormatViolation;
};

/// Options that every command has.
struct CGlobalOptions {
  bool fJson = false;
  bool fQuiet = false;
  std::string fTextFolder;
  std::string fLoopLibrary;

  CConsole Console() const { return CConsole(fJson, fQuiet); }
};

/// One command of the program.
class ICommand {
 public:
  virtual ~ICommand() = default;
  /// Adds the command with its options to the program's.
  virtual CLI::App* Register(CLI::App& program) = 0;
  /// Does the work; returns the exit status. Failures that are thrown are shown by the caller.
  virtual int Run(const CGlobalOptions& options) = 0;
  /// The file that a failure is about when it names none itself; may be empty.
  virtual std::string Subject() const { return {}; }
};

/// Adds --jobs N, 1 to 1024. `jobs` keeps its value when the option is not given.
void AddJobsOption(CLI::App& command, unsigned& jobs, const std::string& description);

/// A path as the command line gives it (UTF-8).
NSTolbrook::NativePath PathArgument(const std::string& argument);

}  // namespace NSTambraCli
