#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/Command.h"

namespace NSTambraCli {

/// The one table of everything that can stand on the command line: commands, arguments, options and
/// their help. Parser, help, completion and manual page are made of it.
class CProgram {
 public:
  CProgram();

  CLI::App& App() { return fApp; }
  const CLI::App& App() const { return fApp; }
  const CGlobalOptions& Options() const { return fOptions; }
  /// The command that was parsed; null when there is none.
  ICommand* Parsed() const;

 private:
  void Add(std::unique_ptr<ICommand> command);

  CGlobalOptions fOptions;
  CLI::App fApp;
  std::vector<std::pair<std::unique_ptr<ICommand>, CLI::App*>> fCommands;
};

}  // namespace NSTambraCli
