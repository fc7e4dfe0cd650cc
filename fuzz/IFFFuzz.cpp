#include "fuzz/FuzzInput.h"
#include "references/IFFFile.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSFuzz::CFuzzInput input(data, size);
  return NSFuzz::Try([&] {
    NSTolbrook::CIFFFileReader reader(input.Media());
    std::vector<NSTolbrook::CIFFFileLevel> levels;
    auto chunk = reader.FirstChunk();
    while (chunk || !levels.empty()) {
      if (!chunk) {
        reader.CloseLevel(levels.back());
        levels.pop_back();
      } else if (chunk->fKind != NSTolbrook::EChunkKind::kPlain) {
        levels.push_back(reader.OpenLevel());
        chunk = reader.FirstChunk();
        continue;
      }
      chunk = reader.NextChunk();
    }
  });
}
