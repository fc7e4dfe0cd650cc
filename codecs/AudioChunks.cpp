#include "codecs/AudioChunks.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "references/FlatIFFReader.h"

namespace NSTambraPacking {

using NSBigFilePackage::SharedMedia;
using NSTolbrook::CChunkInfo;
using NSTolbrook::FourCharCode;

namespace {

/// The IDs that tell something about samples; no others are kept, so that a file of a million
/// little chunks takes no memory.
bool IsOfUse(FourCharCode id) {
  using NSTolbrook::MakeFourCharCode;
  switch (id) {
    case MakeFourCharCode("fmt "):
    case MakeFourCharCode("data"):
    case MakeFourCharCode("smpl"):
    case MakeFourCharCode("inst"):
    case MakeFourCharCode("COMM"):
    case MakeFourCharCode("SSND"):
    case MakeFourCharCode("INST"):
    case MakeFourCharCode("MARK"):
      return true;
    default:
      return false;
  }
}

}  // namespace

CAudioChunks::CAudioChunks(SharedMedia media, NSTolbrook::EByteOrder order, std::uint64_t start,
                           std::uint64_t end)
    : fMedia(std::move(media)) {
  NSTolbrook::CIFFReader walk(fMedia, order, start, end);
  while (walk.AtChunk()) {
    const CChunkInfo chunk = *walk.NextChunk();
    if (IsOfUse(chunk.fCode)) fChunks.emplace(chunk.fCode, chunk);
  }
}

const CChunkInfo* CAudioChunks::Find(FourCharCode id) const {
  const auto found = fChunks.find(id);
  return found == fChunks.end() ? nullptr : &found->second;
}

const CChunkInfo& CAudioChunks::Get(FourCharCode id) const {
  const CChunkInfo* chunk = Find(id);
  if (chunk == nullptr) {
    throw NSMordel::XFormatViolation("the audio file has no chunk \"" +
                                     NSTolbrook::FourCharCodeText(id) + "\"");
  }
  return *chunk;
}

std::vector<std::uint8_t> CAudioChunks::Read(const CChunkInfo& chunk, std::uint32_t length) const {
  if (chunk.fSize < length) {
    NSTolbrook::ThrowChunkFault("a chunk is too short", chunk.fCode, chunk.fPosition);
  }
  std::vector<std::uint8_t> bytes(length);
  NSBigFilePackage::ReadExactly(*fMedia, chunk.fPosition + NSTolbrook::kPlainHeaderLength, bytes);
  return bytes;
}

CSampleChunkLayout CAudioChunks::Layout(const CChunkInfo& samples, std::uint32_t leading) const {
  if (samples.fSize < leading) {
    NSTolbrook::ThrowChunkFault("a chunk is too short", samples.fCode, samples.fPosition);
  }
  CSampleChunkLayout layout;
  layout.fSourceSize = fMedia->Size();
  layout.fChunkSizePosition = samples.fPosition + 4;
  layout.fContentsStart = samples.fPosition + NSTolbrook::kPlainHeaderLength + leading;
  layout.fContentsLength = samples.fSize - leading;
  const std::uint64_t end = layout.fContentsStart + layout.fContentsLength;
  if (end % 2 != 0 && end < layout.fSourceSize) {
    layout.fPadLength = 1;
    NSBigFilePackage::ReadExactly(*fMedia, end, std::span(&layout.fPadValue, 1));
  }
  return layout;
}

}  // namespace NSTambraPacking
