#pragma once

#include <cstdint>
#include <vector>

#include "codecs/JpegReader.h"

namespace NSTambraPacking {

/// The bytes of a baseline JPEG of the pixels; `quality` is 1 to 100. Throws XStdInvalidArgument
/// when there are not as many pixels as the size says, or none.
std::vector<std::uint8_t> WriteJpeg(const CPixels& pixels, int quality);

}  // namespace NSTambraPacking
