#include "filetypes/dwop/DWOPFileEncoder.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const auto stream = std::make_shared<NSBigFilePackage::CMemoryMedia>();
    const auto kept = NSTambraPacking::EncodeAudioFile(
        input.Media(), NSTambraPacking::EAudioContainer::kAIFF, *stream, [] {});
    NSBigFilePackage::CMemoryMedia rebuilt;
    NSTambraPacking::RebuildSource(stream, rebuilt, [] {});
    if (kept.fSourceKept) NSFuzz::Require(rebuilt.Bytes() == input.Bytes());
  });
}
