#include <exception>
#include <fstream>
#include <iostream>

#include "packaging/manual/ManualPage.h"

/// manual FILE DATE: writes the manual page.
int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    const NSTambraCli::CProgram program;
    std::ofstream file(argv[1], std::ios::binary | std::ios::trunc);
    file << NSTambraCli::ManualPage(program, argv[2]);
    file.close();
    if (file) return 0;
    std::cerr << "cannot write " << argv[1] << "\n";
  } catch (const std::exception& e) {
    std::cerr << e.what() << "\n";
  }
  return 1;
}
