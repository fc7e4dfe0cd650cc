#include <string>
#include <vector>

#include "cli/CommandLine.h"
#include "cli/LastResort.h"

int main(int argc, char** argv) {
  try {
    return NSTambraCli::RunTambra(std::vector<std::string>(argv + 1, argv + argc));
  } catch (...) {
    return NSTambraCli::ShowLastFailure();
  }
}
