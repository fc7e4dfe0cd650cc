#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace NSTest {

/// Sets a variable of this process's environment; without a value it is removed.
inline void SetVariable(const char* name, const std::string& value = {}) {
#ifdef _WIN32
  _putenv_s(name, value.c_str());
#else
  value.empty() ? unsetenv(name) : setenv(name, value.c_str(), 1);
#endif
}

/// Makes a symbolic link; false on a system where that needs rights that few users have.
inline bool MakeLink([[maybe_unused]] const std::filesystem::path& target,
                     [[maybe_unused]] const std::filesystem::path& link) {
#ifdef _WIN32
  return false;
#else
  std::filesystem::create_symlink(target, link);
  return true;
#endif
}

}  // namespace NSTest
