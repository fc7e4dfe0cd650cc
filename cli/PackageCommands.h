#pragma once

#include "cli/Command.h"

namespace NSTambraCli {

/// tambra info FILE: what a package says about itself.
class CInfoCommand : public ICommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;
  std::string Subject() const override { return fFile; }

 private:
  std::string fFile;
};

/// tambra list FILE: the entries of a package.
class CListCommand : public ICommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;
  std::string Subject() const override { return fFile; }

 private:
  std::string fFile;
};

/// tambra verify FILE: reads every entry of a package as its type demands.
class CVerifyCommand : public ICommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;
  std::string Subject() const override { return fFile; }

 private:
  std::string fFile;
  unsigned fJobs = 0;
};

}  // namespace NSTambraCli
