#include "Parts/TolbrookPackage/Core/Shortcut.h"

#include "fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] { NSTolbrook::CShortcut::Parse(*input.Media()); });
}
