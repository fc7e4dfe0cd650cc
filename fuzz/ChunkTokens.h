#pragma once

#include <string>

#include "references/IFFReader.h"

namespace NSFuzz {

/// All that a range of chunks holds, groups in brackets, but for sizes, pad bytes and the data of
/// the chunks `leftOut`. Throws as the reader.
template <class Dialect>
std::string ChunkTokens(NSTolbrook::TChunkReader<Dialect> reader,
                        NSTolbrook::FourCharCode leftOut = 0) {
  std::string tokens;
  for (auto chunk = reader.FirstChunk(); chunk; chunk = reader.NextChunk(*chunk)) {
    tokens += std::to_string(static_cast<int>(chunk->fKind)) + ' ' + std::to_string(chunk->fCode);
    if (chunk->fKind != NSTolbrook::EChunkKind::kPlain) {
      tokens += '(' + ChunkTokens(reader.EnterGroup(*chunk), leftOut) + ')';
    } else if (chunk->fCode != leftOut) {
      const auto data = reader.OpenData(*chunk);
      std::vector<std::uint8_t> bytes(data->Size());
      NSBigFilePackage::ReadExactly(*data, 0, bytes);
      tokens += ' ' + std::to_string(bytes.size()) + ':';
      tokens.append(bytes.begin(), bytes.end());
    }
  }
  return tokens;
}

}  // namespace NSFuzz
