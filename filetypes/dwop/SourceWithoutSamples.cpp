#include "filetypes/dwop/SourceWithoutSamples.h"

#include <algorithm>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

using NSTolbrook::EByteOrder;

CSourceWithoutSamples::CSourceWithoutSamples(NSBigFilePackage::SharedMedia source,
                                             EAudioContainer container,
                                             const CSampleChunkLayout& layout)
    : fSource(std::move(source)),
      fOrder(container == EAudioContainer::kWAVE ? EByteOrder::kLittleEndian
                                                 : EByteOrder::kBigEndian),
      fCut(layout.fContentsStart),
      fCutLength(layout.fContentsLength + layout.fPadLength),
      fChanges{Lessened(layout.fOuterSizePosition, fCutLength),
               Lessened(layout.fChunkSizePosition, layout.fContentsLength)} {}

CSourceWithoutSamples::CChangedField CSourceWithoutSamples::Lessened(std::uint64_t position,
                                                                     std::uint64_t takenOut) const {
  CChangedField field{position, {}};
  NSBigFilePackage::ReadExactly(*fSource, position, field.fBytes);
  const auto value = NSTolbrook::LoadInteger<std::uint32_t>(field.fBytes, fOrder);
  NSTolbrook::StoreInteger(field.fBytes, value - static_cast<std::uint32_t>(takenOut), fOrder);
  return field;
}

std::uint64_t CSourceWithoutSamples::Size() const { return fSource->Size() - fCutLength; }

std::size_t CSourceWithoutSamples::Read(std::uint64_t position,
                                        std::span<std::uint8_t> destination) const {
  std::size_t count = 0;
  if (position < fCut) {
    const std::uint64_t before = std::min<std::uint64_t>(fCut - position, destination.size());
    count = fSource->Read(position, destination.first(static_cast<std::size_t>(before)));
  }
  if (position + count >= fCut) {
    count += fSource->Read(position + count + fCutLength, destination.subspan(count));
  }
  for (const CChangedField& change : fChanges) {
    for (std::size_t i = 0; i < change.fBytes.size(); ++i) {
      const std::uint64_t place = change.fPosition + i;
      if (place < position || place - position >= count) continue;
      destination[static_cast<std::size_t>(place - position)] = change.fBytes[i];
    }
  }
  return count;
}

void CSourceWithoutSamples::Write(std::uint64_t, std::span<const std::uint8_t>) {
  throw NSMordel::XReadOnly("a source without its samples cannot be written");
}

void CSourceWithoutSamples::SetSize(std::uint64_t) {
  throw NSMordel::XReadOnly("the size of a source without its samples cannot be changed");
}

}  // namespace NSTambraPacking
