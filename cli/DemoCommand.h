#pragma once

#include "cli/Command.h"

namespace NSTambraCli {

/// tambra demo FOLDER: writes a small content library to try the packer on.
class CDemoCommand : public ICommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;

 private:
  std::string fFolder;
};

}  // namespace NSTambraCli
