#pragma once

#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/AudioFormat.h"

namespace NSTambraPacking {

/// Reads the chunks of a WAVE file: "fmt ", "data", and "smpl" or else "inst". A rest of the data
/// that is no whole frame is left out. Codings: PCM of 8 to 32 bits, floating point of 32 and 64,
/// mu-law and A-law, each also in the extensible form.
///
/// Throws XUnsupportedFormat for RIFX, RF64 and other codings; XFormatViolation for anything
/// broken: an outer or inner chunk that runs past the file's end, a missing or short chunk, a
/// "fmt " that contradicts itself. The number of channels is not judged.
CAudioHeader ReadWAVEHeader(const NSBigFilePackage::SharedMedia& media);

}  // namespace NSTambraPacking
