#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// Where an extra info block lies in a stream: bytes from the stream's start.
struct CExtraInfoBlock {
  std::uint64_t fStart = 0;
  std::uint64_t fDataStart = 0;
  std::uint32_t fDataLength = 0;

  friend bool operator==(const CExtraInfoBlock&, const CExtraInfoBlock&) = default;
};

/// Writes a block that holds all of `data`; the cursor moves on behind it. `checkStop` is called
/// before each piece of 8,192 bytes and may throw. Throws XOutOfSpace "extra info to large", before
/// anything is written, when the length does not fit 32 bits; otherwise as Read and Write.
void WriteExtraInfo(NSBigFilePackage::CMediaCursor& output, const NSBigFilePackage::IMedia& data,
                    const std::function<void()>& checkStop);

/// The block that begins at `position` and ends with the stream, or nothing when the stream ends at
/// `position`. Throws XFormatViolation when anything else follows.
std::optional<CExtraInfoBlock> ReadExtraInfo(const NSBigFilePackage::IMedia& stream,
                                             std::uint64_t position);

/// The one block that can stand at the end of the stream, judged by the bytes alone, or nothing.
/// Samples can end in the same bytes by chance: only where the residual bit stream ends decides.
std::optional<CExtraInfoBlock> FindExtraInfoAtEnd(const NSBigFilePackage::IMedia& stream);

}  // namespace NSTambraPacking
