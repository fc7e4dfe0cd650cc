#include "filetypes/dwop/DWOPStreamCheck.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    const auto stream = input.Media();
    const auto parts = NSTambraPacking::CheckDWOPStream(*stream, [] {});
    NSFuzz::Require(parts.fBitStream + parts.fWords * 4 <= size);
    NSBigFilePackage::CMemoryMedia source;
    NSTambraPacking::RebuildSource(stream, source, [] {});
  });
}
