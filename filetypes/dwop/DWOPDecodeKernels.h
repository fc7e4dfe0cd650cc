#pragma once

#include <cstddef>
#include <cstdint>

#include "filetypes/dwop/DWOPDecodeState.h"

/// The decoder's inner loops. A kernel decodes frames only while it is sure of them: it stops in
/// front of an escape, of a state that it does not handle, and of the last few bytes at hand (from
/// which it never reads beyond). Whoever calls goes on with the next slower kernel.
namespace NSTambraPacking {

/// Writes up to `frames` frames, interleaved, to `output` and returns their number. Plain C++,
/// exact for every state.
std::size_t DecodeDWOPFrames(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames);

/// As DecodeDWOPFrames, for processors that can run EDWOPForm::kAVX2. `others` is set to the number
/// of frames (at least 1) that are better left to the other kernels before this one is called
/// again.
std::size_t DecodeDWOPFramesAVX2(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames,
                                 std::size_t& others);

/// Decodes one frame bit by bit, escapes included. Throws XFormatViolation "zero length sample"
/// when it needs a bit behind the bytes at hand, and for an escape that no encoder writes.
void DecodeDWOPFrame(CDWOPDecodeState& state, std::int32_t* output);

}  // namespace NSTambraPacking
