#pragma once

#include <vector>

#include "cli/CacheOptions.h"

namespace NSTambraCli {

/// tambra pack INPUT OUTPUT: makes a package of a folder.
class CPackCommand : public ICommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;

 private:
  /// Null when the run is to do without.
  std::unique_ptr<NSTambraPacking::CPackCache> MakeCache() const;

  std::string fInput;
  std::string fOutput;
  std::vector<std::string> fAnswers;
  bool fWarnForExternal = false;
  bool fReplace = false;
  bool fYes = false;
  bool fDryRun = false;
  unsigned fJobs = 0;
  bool fNoCache = false;
  CCacheLimit fCacheLimit;
};

/// Threads that a job uses when the user does not say: as many as the processor runs.
unsigned DefaultJobs();

}  // namespace NSTambraCli
