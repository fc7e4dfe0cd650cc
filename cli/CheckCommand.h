#pragma once

#include "cli/CheckRun.h"

namespace NSTambraCli {

/// tambra check INPUT: tells what would come of packing a folder, and writes nothing.
class CCheckCommand : public ICommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;

 private:
  int Explain(const CGlobalOptions& options) const;

  CCheckOptions fCheck;
  std::string fFailOn = "error";
  std::string fExplain;
  bool fList = false;
};

}  // namespace NSTambraCli
