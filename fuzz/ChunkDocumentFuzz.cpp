#include "fuzz/FuzzInput.h"
#include "references/ChunkDocument.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    for (const auto kind : {NSTambraPacking::EChunkDocumentKind::kPatch,
                            NSTambraPacking::EChunkDocumentKind::kSong}) {
      const NSTambraPacking::CChunkDocument document(input.Media(), kind);
      std::vector<NSTambraPacking::CSampleReference> references;
      for (const auto& chunk : document.References()) references.push_back(chunk.Reference());
      const auto written = std::make_shared<NSBigFilePackage::CMemoryMedia>();
      NSBigFilePackage::CMediaCursor output(*written);
      document.Write(output, references);
      const NSTambraPacking::CChunkDocument again(written, kind);
      NSFuzz::Require(again.References().size() == references.size());
      for (std::size_t i = 0; i < references.size(); ++i) {
        NSFuzz::Require(again.References()[i].Kind() == document.References()[i].Kind());
      }
    }
  });
}
