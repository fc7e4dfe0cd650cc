#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "filetypes/dwop/DWOPHeader.h"

namespace NSTambraPacking {

inline constexpr std::size_t kPlainWAVEHeadLength = 44;

/// The bytes before the samples of the WAVE file that a stream alone gives: RIFF header, 16-byte
/// PCM format chunk, head of the data chunk. The samples follow, and a zero byte when their bytes
/// are odd in number. Nothing when the file's sizes do not fit 32 bits.
std::optional<std::array<std::uint8_t, kPlainWAVEHeadLength>> PlainWAVEHead(
    const CDWOPHeader& header);

/// Bytes of all samples in that file.
std::uint64_t PlainSampleBytes(const CDWOPHeader& header);

}  // namespace NSTambraPacking
