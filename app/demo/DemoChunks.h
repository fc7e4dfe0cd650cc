#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "package/MemoryMedia.h"
#include "references/IFFWriter.h"

namespace NSTambraPacking {

/// Chunks in memory, one behind the other. `Writer` is CIFFWriter2 or CRIFFWriter2.
template <class Writer>
class TDemoChunks {
 public:
  TDemoChunks& Chunk(NSTolbrook::FourCharCode id, std::span<const std::uint8_t> data) {
    return Fill(fWriter.OpenChunk(id), data);
  }
  /// A group whose contents, behind its type, are `chunks`.
  TDemoChunks& Group(NSTolbrook::EChunkKind kind, NSTolbrook::FourCharCode type,
                     std::span<const std::uint8_t> chunks) {
    return Fill(fWriter.OpenGroup(kind, type), chunks);
  }
  std::vector<std::uint8_t> Take() { return fMedia->TakeBytes(); }

 private:
  TDemoChunks& Fill(const NSBigFilePackage::SharedMedia& window,
                    std::span<const std::uint8_t> data) {
    if (!data.empty()) window->Write(0, data);
    fWriter.CloseChunk(data.size());
    return *this;
  }

  std::shared_ptr<NSBigFilePackage::CMemoryMedia> fMedia =
      std::make_shared<NSBigFilePackage::CMemoryMedia>();
  Writer fWriter{fMedia};
};

}  // namespace NSTambraPacking
