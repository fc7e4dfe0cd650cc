#include "fuzz/FuzzInput.h"
#include "references/XMLReader.h"
#include "references/XMLWriter.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const std::string written = NSTolbrook::WriteXML(*NSTolbrook::ReadXML(input.Text()));
    NSFuzz::Require(NSTolbrook::WriteXML(*NSTolbrook::ReadXML(written)) == written);
  });
}
