#include "gui/Application.h"

int main(int argc, char** argv) { return NSTambraGui::RunTambraPacker(argc, argv); }
