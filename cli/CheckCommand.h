#pragma once

#include "cli/Command.h"

namespace NSTambraCli {

/// tambra check INPUT: tells what would come of packing a folder, and writes nothing.
class CCheckCommand : public ICommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;

 private:
  std::string fInput;
  unsigned fJobs = 0;
};

}  // namespace NSTambraCli
