#include "Parts/TolbrookPackage/Core/ZipReader.h"

#include "fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const NSTolbrook::CZipReader archive(input.Media());
    for (const std::string& name : archive.Names()) archive.Read(name, 1U << 20);
  });
}
