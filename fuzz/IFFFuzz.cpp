#include "fuzz/ChunkTokens.h"
#include "fuzz/FuzzInput.h"
#include "references/IFFFile.h"

using namespace NSTolbrook;

namespace {

/// Writes the chunks of `reader` again from `position` on and returns their length.
template <class Dialect>
std::uint64_t Copy(TChunkReader<Dialect> reader, const NSBigFilePackage::SharedMedia& copy,
                   std::uint64_t position) {
  TChunkWriter<Dialect> writer(copy, position);
  for (auto chunk = reader.FirstChunk(); chunk; chunk = reader.NextChunk(*chunk)) {
    if (chunk->fKind == EChunkKind::kPlain) {
      const auto data = reader.OpenData(*chunk);
      std::vector<std::uint8_t> bytes(data->Size());
      NSBigFilePackage::ReadExactly(*data, 0, bytes);
      writer.OpenChunk(chunk->fCode)->Write(0, bytes);
      writer.CloseChunk(bytes.size());
    } else {
      writer.OpenGroup(chunk->fKind, chunk->fCode);
      writer.CloseChunk(Copy(reader.EnterGroup(*chunk), copy, writer.Position()));
    }
  }
  return writer.Position() - position;
}

/// Chunks that can be read are the same when they were written and read again.
template <class Dialect>
void RunDialect(const NSBigFilePackage::SharedMedia& media) {
  using Reader = TChunkReader<Dialect>;
  const auto tokens = NSFuzz::Read([&] { return NSFuzz::ChunkTokens(Reader(media)); });
  if (!tokens) return;
  const auto copy = std::make_shared<NSBigFilePackage::CMemoryMedia>();
  Copy(Reader(media), copy, 0);
  NSFuzz::Require(NSFuzz::ChunkTokens(Reader(copy)) == *tokens);
}

/// The stack of open groups finds as many chunks as the readers do.
std::size_t CountByLevels(const NSBigFilePackage::SharedMedia& media) {
  CIFFFileReader reader(media);
  std::vector<CIFFFileLevel> levels;
  std::size_t count = 0;
  auto chunk = reader.FirstChunk();
  while (chunk || !levels.empty()) {
    if (!chunk) {
      reader.CloseLevel(levels.back());
      levels.pop_back();
    } else if (++count; chunk->fKind != EChunkKind::kPlain) {
      levels.push_back(reader.OpenLevel());
      chunk = reader.FirstChunk();
      continue;
    }
    chunk = reader.NextChunk();
  }
  return count;
}

std::size_t Count(CIFFReader2 reader) {
  std::size_t count = 0;
  for (auto chunk = reader.FirstChunk(); chunk; chunk = reader.NextChunk(*chunk), ++count) {
    if (chunk->fKind != EChunkKind::kPlain) count += Count(reader.EnterGroup(*chunk));
  }
  return count;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  RunDialect<CIFFDialect>(media);
  RunDialect<CRIFFDialect>(media);
  const auto count = NSFuzz::Read([&] { return CountByLevels(media); });
  NSFuzz::Require(count == NSFuzz::Read([&] { return Count(CIFFReader2(media)); }));
  return 0;
}
