#include "app/MenuScript.h"
#include "fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] { const NSTambraPacking::CMenuScript script("fuzz", input.Text()); });
}
