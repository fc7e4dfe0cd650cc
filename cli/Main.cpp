#include <string>
#include <vector>

#include "cli/CommandLine.h"

int main(int argc, char** argv) {
  return NSTambraCli::RunTambra(std::vector<std::string>(argv + 1, argv + argc));
}
