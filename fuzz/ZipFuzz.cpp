#include "Parts/TolbrookPackage/Core/ZipReader.h"

#include "fuzz/FuzzInput.h"

/// No member is larger than it may be.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const NSTolbrook::CZipReader archive(input.View());
    const auto names = archive.Names();
    NSFuzz::Require(names.size() <= size / 46);
    for (const std::string& name : names) {
      NSFuzz::Try([&] { NSFuzz::Require(archive.Read(name, 1U << 16).size() <= 1U << 16); });
    }
  });
}
