#include "references/IFFWriter.h"

#include <array>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/StdException.h"

#include "package/PartialMedia.h"

namespace NSTolbrook {

using NSBigFilePackage::SharedMedia;
using NSMordel::NSMordelDetails::XStdInvalidArgument;

template <class Dialect>
TChunkWriter<Dialect>::TChunkWriter(SharedMedia media, std::uint64_t position)
    : fMedia(std::move(media)), fChunkStart(position) {}

template <class Dialect>
SharedMedia TChunkWriter<Dialect>::OpenChunk(FourCharCode id) {
  if (ChunkKindOfID(id, Dialect::kFormID) != EChunkKind::kPlain) {
    throw XStdInvalidArgument("the ID of a group for a plain chunk: " + FourCharCodeText(id));
  }
  return Open(EChunkKind::kPlain, id, 0);
}

template <class Dialect>
SharedMedia TChunkWriter<Dialect>::OpenGroup(EChunkKind kind, FourCharCode type) {
  if (!IsValidFourCharCode(type)) {
    throw XStdInvalidArgument("invalid group type: " + FourCharCodeText(type));
  }
  return Open(kind, GroupID(kind, Dialect::kFormID), type);
}

template <class Dialect>
SharedMedia TChunkWriter<Dialect>::Open(EChunkKind kind, FourCharCode id, FourCharCode type) {
  if (IsOpen()) throw NSMordel::XIllegalCallSequence("a chunk is opened while another is open");
  if (!IsValidFourCharCode(id)) {
    throw XStdInvalidArgument("invalid chunk ID: " + FourCharCodeText(id));
  }
  std::array<std::uint8_t, kGroupHeaderLength> header{};
  StoreBigEndian(std::span<std::uint8_t>(header), id);
  StoreBigEndian(std::span<std::uint8_t>(header).subspan(kPlainHeaderLength), type);
  fMedia->Write(fChunkStart, std::span(header).first(HeaderLength(kind)));
  fOpenKind = kind;
  return std::make_shared<NSBigFilePackage::CWritablePartialMedia>(fMedia, Position());
}

template <class Dialect>
void TChunkWriter<Dialect>::CloseChunk(std::uint64_t dataLength) {
  if (!IsOpen()) throw NSMordel::XIllegalCallSequence("a chunk is closed while none is open");
  const std::uint32_t typeLength = HeaderLength(*fOpenKind) - kPlainHeaderLength;
  if (dataLength > UINT32_MAX - typeLength) {
    throw NSMordel::XOutOfSpace("a chunk of " + std::to_string(dataLength) +
                                " bytes is larger than a chunk's size can tell");
  }
  const auto size = static_cast<std::uint32_t>(dataLength + typeLength);
  std::array<std::uint8_t, 4> stored{};
  StoreInteger(std::span<std::uint8_t>(stored), size, Dialect::kByteOrder);
  fMedia->Write(fChunkStart + 4, stored);

  const std::uint64_t end = fChunkStart + kPlainHeaderLength + size;
  if (end % 2 != 0) fMedia->Write(end, std::array<std::uint8_t, 1>{});
  fChunkStart = EvenOffset(end);
  fOpenKind.reset();
}

template <class Dialect>
std::uint64_t TChunkWriter<Dialect>::Position() const {
  return IsOpen() ? fChunkStart + HeaderLength(*fOpenKind) : fChunkStart;
}

template class TChunkWriter<CIFFDialect>;
template class TChunkWriter<CRIFFDialect>;

}  // namespace NSTolbrook
