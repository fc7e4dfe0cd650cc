#pragma once

#include <cstdint>
#include <span>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/AudioFormat.h"

namespace NSTambraPacking {

/// Reads the chunks of an AIFF or AIFF-C file: "COMM", "SSND", and "INST" with "MARK". Codings:
/// big-endian integers of 1 to 32 bits, in AIFF-C also little-endian ones ("sowt"), 8-bit offset
/// binary ("raw "), floating point, mu-law and A-law.
///
/// Throws XUnsupportedFormat for other codings; XFormatViolation for anything broken: an outer or
/// inner chunk that runs past the file's end, a missing or short chunk, fewer sample bytes than
/// "COMM" promises, a rate that is no u32. The number of channels is not judged.
CAudioHeader ReadAIFFHeader(const NSBigFilePackage::SharedMedia& media);

/// An 80-bit extended number (IEEE 754, big-endian: sign and exponent in 2 bytes, 8 bytes of
/// mantissa with its integer bit) rounded to the nearest integer, halves up. Throws
/// XFormatViolation when that is no u32. `bytes` holds 10.
std::uint32_t RateOfExtended(std::span<const std::uint8_t> bytes);

}  // namespace NSTambraPacking
