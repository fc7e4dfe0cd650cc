#include "filetypes/dwop/DWOPStreamCheck.h"

#include <algorithm>
#include <span>
#include <vector>

#include "filetypes/dwop/DWOPDecompressor.h"

namespace NSTambraPacking {

CDWOPStreamParts CheckDWOPStream(NSBigFilePackage::IMedia& stream,
                                 const std::function<void()>& checkStop) {
  CDWOPStreamParts parts;
  NSBigFilePackage::CMediaCursor input(stream);
  parts.fHeader = ReadDWOPHeader(input);
  parts.fBitStream = input.Position();
  COptimizedDWOPDecompressorFromMedia decompressor(parts.fHeader, stream, parts.fBitStream);
  const std::size_t channels = parts.fHeader.fChannels;
  std::vector<std::int32_t> block(kDWOPBlockFrames * channels);
  for (std::uint32_t remaining = parts.fHeader.fLength; remaining > 0;) {
    if (checkStop) checkStop();
    const std::size_t frames = std::min<std::size_t>(remaining, kDWOPBlockFrames);
    decompressor.Decode(std::span(block).first(frames * channels));
    remaining -= static_cast<std::uint32_t>(frames);
  }
  parts.fWords = decompressor.WordsConsumed();
  parts.fExtraInfo = ReadExtraInfo(stream, parts.fBitStream + parts.fWords * sizeof(std::uint32_t));
  return parts;
}

}  // namespace NSTambraPacking
