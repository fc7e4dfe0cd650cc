#pragma once

#include <memory>

#include "cli/Command.h"

namespace NSTambraCli {

/// A command over one file, its first argument.
class CFileCommand : public ICommand {
 public:
  std::string Subject() const override { return fFile; }

 protected:
  std::string fFile;
};

/// tambra info FILE: what a package says about itself.
std::unique_ptr<ICommand> MakeInfoCommand();
/// tambra list FILE: the entries of a package.
std::unique_ptr<ICommand> MakeListCommand();
/// tambra verify FILE: reads every entry of a package as its type demands.
std::unique_ptr<ICommand> MakeVerifyCommand();
/// tambra extract FILE FOLDER [NAME...]: gives the files of a package back.
std::unique_ptr<ICommand> MakeExtractCommand();
/// tambra diff A B: how two packages differ.
std::unique_ptr<ICommand> MakeDiffCommand();
/// tambra dump FILE: every field of a file's structure.
std::unique_ptr<ICommand> MakeDumpCommand();
/// tambra dwop encode|decode|info: compresses, restores and describes single samples.
std::unique_ptr<ICommand> MakeDWOPEncodeCommand();
std::unique_ptr<ICommand> MakeDWOPDecodeCommand();
std::unique_ptr<ICommand> MakeDWOPInfoCommand();

}  // namespace NSTambraCli
