#include "fuzz/FuzzInput.h"
#include "references/VorlinkPatch.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const NSTambraPacking::CVorlinkPatch patch{std::string(input.Text())};
    const NSTambraPacking::CVorlinkPatch again(patch.Rewritten(patch.References()));
    NSFuzz::Require(again.References().size() == patch.References().size());
  });
}
