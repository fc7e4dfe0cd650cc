#include "filetypes/dwop/DWOPExtraInfo.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/dwop/DWOPFormat.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::IMedia;

/// Head and tail of a block are three 32-bit words each.
using CThreeWords = std::array<std::uint32_t, 3>;
static_assert(sizeof(CThreeWords) == kExtraInfoHeadLength &&
              sizeof(CThreeWords) == kExtraInfoTailLength);

CThreeWords HeadFor(std::uint32_t length) { return {kExtraInfoBegin, kExtraInfoMark, length}; }
CThreeWords TailFor(std::uint32_t length) { return {kExtraInfoMark, length, kExtraInfoEnd}; }

void WriteWords(CMediaCursor& output, const CThreeWords& words) {
  std::array<std::uint8_t, sizeof(CThreeWords)> bytes;
  for (std::size_t i = 0; i < words.size(); ++i) {
    NSTolbrook::StoreBigEndian(std::span(bytes).subspan(i * 4), words[i]);
  }
  output.Write(bytes);
}

CThreeWords ReadWords(const IMedia& media, std::uint64_t position) {
  std::array<std::uint8_t, sizeof(CThreeWords)> bytes;
  NSBigFilePackage::ReadExactly(media, position, bytes);
  CThreeWords words;
  for (std::size_t i = 0; i < words.size(); ++i) {
    words[i] = NSTolbrook::LoadBigEndian<std::uint32_t>(std::span(bytes).subspan(i * 4));
  }
  return words;
}

}  // namespace

void WriteExtraInfo(CMediaCursor& output, const IMedia& data,
                    const std::function<void()>& checkStop) {
  const std::uint64_t size = data.Size();
  if (size > std::numeric_limits<std::uint32_t>::max()) {
    throw NSMordel::XOutOfSpace("extra info to large");
  }
  const auto length = static_cast<std::uint32_t>(size);
  WriteWords(output, HeadFor(length));
  std::array<std::uint8_t, kExtraInfoPiece> buffer;
  for (std::uint64_t position = 0; position < size;) {
    if (checkStop) checkStop();
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(size - position, buffer.size()));
    const std::span<std::uint8_t> piece = std::span(buffer).first(count);
    NSBigFilePackage::ReadExactly(data, position, piece);
    output.Write(piece);
    position += count;
  }
  WriteWords(output, TailFor(length));
}

std::optional<CExtraInfoBlock> ReadExtraInfo(const IMedia& stream, std::uint64_t position) {
  if (position == stream.Size()) return std::nullopt;
  const std::optional<CExtraInfoBlock> block = FindExtraInfoAtEnd(stream);
  if (block && block->fStart == position) return block;
  throw NSMordel::XFormatViolation("what follows the samples at offset " +
                                   std::to_string(position) + " is no extra info block");
}

std::optional<CExtraInfoBlock> FindExtraInfoAtEnd(const IMedia& stream) {
  const std::uint64_t size = stream.Size();
  if (size < kExtraInfoHeadLength + kExtraInfoTailLength) return std::nullopt;
  const CThreeWords tail = ReadWords(stream, size - kExtraInfoTailLength);
  const std::uint32_t length = tail[1];
  if (tail != TailFor(length)) return std::nullopt;
  if (length > size - kExtraInfoHeadLength - kExtraInfoTailLength) return std::nullopt;
  const std::uint64_t dataStart = size - kExtraInfoTailLength - length;
  const std::uint64_t start = dataStart - kExtraInfoHeadLength;
  if (ReadWords(stream, start) != HeadFor(length)) return std::nullopt;
  return CExtraInfoBlock{start, dataStart, length};
}

}  // namespace NSTambraPacking
