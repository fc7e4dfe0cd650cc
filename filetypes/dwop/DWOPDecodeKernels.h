#pragma once

#include <cstddef>
#include <cstdint>

#include "filetypes/dwop/DWOPDecodeState.h"

namespace NSTambraPacking {

/// Bytes from the next bit on with which both DecodeDWOPFrames get on.
inline constexpr std::size_t kDWOPKernelBytes = 96;
/// As many frames behind a state in which they do not are best left to DecodeDWOPFrame.
inline constexpr std::size_t kDWOPFramesApart = 256;

/// Decodes up to `frames` frames, writes them interleaved to `output` and returns their number. It
/// stops where the next few bytes are the last at hand, never reading beyond, and in front of a
/// block in which there is something that only damage or rare extremes bring about. The state is at
/// the boundary of a frame. In plain C++.
std::size_t DecodeDWOPFrames(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames);

/// The same for processors that can run EDWOPForm::kAVX2.
std::size_t DecodeDWOPFramesAVX2(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames);

/// Decodes one frame, whatever it is. Throws XFormatViolation "zero length sample" when it needs a
/// bit behind the bytes at hand, and for an escape that no encoder writes.
void DecodeDWOPFrame(CDWOPDecodeState& state, std::int32_t* output);

}  // namespace NSTambraPacking
