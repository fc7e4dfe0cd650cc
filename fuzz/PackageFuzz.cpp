#include "filetypes/PackedEntryVerifier.h"
#include "fuzz/FuzzInput.h"
#include "package/PackageReader.h"
#include "package/PackageVerifier.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const auto media = input.Media();
    NSTambraPacking::CPackedEntryVerifier verifier(
        NSTambraPacking::CPackageReader(media).Header().fTambraName, nullptr, [] { return false; });
    NSTambraPacking::CPackageVerifier(verifier, nullptr, nullptr).Verify(media, {});
  });
}
