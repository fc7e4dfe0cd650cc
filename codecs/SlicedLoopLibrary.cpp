#include "codecs/SlicedLoopLibrary.h"

#include <utility>
#include <vector>

#include "package/BufferedReader.h"
#include "references/IFFReader.h"

namespace NSTambraPacking {

using NSTolbrook::CChunkInfo;
using NSTolbrook::CIFFReader2;
using NSTolbrook::EChunkKind;

namespace {

/// A range of chunks and the one to look at next.
struct CLevel {
  CIFFReader2 fReader;
  std::optional<CChunkInfo> fChunk;
};

[[noreturn]] void ThrowFault(const char* what, const CLevel& level) {
  const NSTolbrook::FourCharCode code = level.fChunk ? level.fChunk->fCode : 0;
  const std::uint64_t position = level.fChunk ? level.fChunk->fPosition : 0;
  NSTolbrook::ThrowChunkFault(what, code, level.fReader.Start() + position);
}

/// Opens the contents of a range; nothing at all is as good as chunks, a part of a header is not.
CLevel OpenLevel(CIFFReader2 reader) {
  CLevel level{std::move(reader), std::nullopt};
  level.fChunk = level.fReader.FirstChunk();
  if (!level.fChunk && level.fReader.Size() != 0) ThrowFault("a group ends in a header", level);
  return level;
}

}  // namespace

void VerifyLoopStructure(const NSBigFilePackage::SharedMedia& media) {
  std::vector<CLevel> levels;
  levels.push_back(
      OpenLevel(CIFFReader2(std::make_shared<NSBigFilePackage::CBufferedReader>(media))));
  const CLevel& outermost = levels.front();
  if (!outermost.fChunk || outermost.fChunk->fKind == EChunkKind::kPlain) {
    ThrowFault("a sliced-loop file does not begin with a group", outermost);
  }
  while (!levels.empty()) {
    CLevel& level = levels.back();
    if (!level.fChunk) {
      levels.pop_back();
      continue;
    }
    const CChunkInfo chunk = *level.fChunk;
    const bool deepest = levels.size() > kDeepestLoopGroup;
    if (chunk.fKind != EChunkKind::kPlain && deepest) ThrowFault("groups nest too deep", level);
    level.fChunk = level.fReader.NextChunk(chunk);
    if (chunk.fKind != EChunkKind::kPlain)
      levels.push_back(OpenLevel(level.fReader.EnterGroup(chunk)));
  }
}

}  // namespace NSTambraPacking
