#include "cli/CommandLine.h"
#include "cli/LastResort.h"
#include "cli/Terminal.h"

int main(int argc, char** argv) {
  try {
    return NSTambraCli::RunTambra(NSTambraCli::ProgramArguments(argc, argv));
  } catch (...) {
    return NSTambraCli::ShowLastFailure();
  }
}
