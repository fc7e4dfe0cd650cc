#pragma once

#include "cli/CacheOptions.h"

namespace NSTambraCli {

/// tambra cache [clear]: shows the cache of packed samples, or removes it.
class CCacheCommand : public ICommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;

 private:
  std::string fAction = "show";
  CCacheLimit fLimit;
};

}  // namespace NSTambraCli
