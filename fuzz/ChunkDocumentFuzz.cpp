#include "fuzz/ChunkTokens.h"
#include "fuzz/Relocation.h"
#include "references/ChunkDocument.h"

using namespace NSTambraPacking;

namespace {

constexpr auto kReference = NSTolbrook::MakeFourCharCode("REFE");

std::string Skeleton(const NSBigFilePackage::SharedMedia& media) {
  return NSFuzz::ChunkTokens(NSTolbrook::CIFFReader2(media), kReference);
}

/// A document that is rewritten holds the relocated references, and all else as it was.
void RunKind(const NSBigFilePackage::SharedMedia& media, EChunkDocumentKind kind) {
  const auto document = NSFuzz::Read([&] { return CChunkDocument(media, kind); });
  if (!document) return;
  std::vector<std::pair<std::uint32_t, CSampleReference>> references;
  for (const auto& chunk : document->References()) {
    references.emplace_back(chunk.Kind(), chunk.Reference());
  }
  const auto relocated = NSFuzz::Relocated(references);
  const auto written = std::make_shared<NSBigFilePackage::CMemoryMedia>();
  NSBigFilePackage::CMediaCursor output(*written);
  document->Write(output, relocated);

  const CChunkDocument again(written, kind);
  const auto sameReference = [](const CSF10ReferenceChunk& chunk, const auto& reference) {
    return chunk.Reference() == reference;
  };
  NSFuzz::Require(std::ranges::equal(again.References(), relocated, sameReference));
  NSFuzz::Require(std::ranges::equal(again.References(), document->References(), {},
                                     &CSF10ReferenceChunk::Kind, &CSF10ReferenceChunk::Kind));
  NSFuzz::Require(again.DeviceNames() == document->DeviceNames());
  NSFuzz::Require(Skeleton(written) == Skeleton(media));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  RunKind(media, EChunkDocumentKind::kPatch);
  RunKind(media, EChunkDocumentKind::kSong);
  return 0;
}
