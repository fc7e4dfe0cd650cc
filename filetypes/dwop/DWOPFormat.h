#pragma once

#include <cstddef>
#include <cstdint>

#include "Parts/TolbrookPackage/Core/FormatVersion.h"
#include "Parts/TolbrookPackage/Core/FourCharCode.h"

/// The numbers of a DWOP stream (lossless compressed samples): a header, the residual bit stream in
/// whole 32-bit words, and optionally the extra info block. All integers are big-endian.
namespace NSTambraPacking {

/// The version that the encoder writes.
inline constexpr NSTolbrook::CFormatVersion kDWOPVersion{1, 0, 0};
/// From this version on the header has two words and a flag more.
inline constexpr NSTolbrook::CFormatVersion kDWOPVersionWithFlag{2, 0, 0};
inline constexpr std::uint32_t kOldestDWOPMajor = 1;
inline constexpr std::uint32_t kNewestDWOPMajor = 2;

/// Bytes of the header behind its version, without and with the fields of version 2.
inline constexpr std::size_t kDWOPFieldsLength = 21;
inline constexpr std::size_t kDWOPVersion2FieldsLength = 12;

inline constexpr std::uint8_t kDefaultRootKey = 60;

/// The predictor has the orders 0 to 4; each keeps a running sum that starts at this value.
inline constexpr std::size_t kDWOPOrders = 5;
inline constexpr std::uint32_t kDWOPInitialSum = 2560;

/// So many zero bits are an escape: the modulus is multiplied by 4 (a shift by 2).
inline constexpr std::uint32_t kDWOPEscapeZeros = 7;
inline constexpr unsigned kDWOPEscapeShift = 2;
/// A modulus from here on cannot be multiplied in 32 bits. No encoder gets there: seven times such
/// a modulus is beyond every 32-bit value.
inline constexpr std::uint32_t kDWOPEscapeLimit = std::uint32_t{1} << 30;

/// Samples are decoded in blocks of so many frames; streams are written in pieces of so many bytes
/// and read in pieces of so many words.
inline constexpr std::size_t kDWOPBlockFrames = 4096;
inline constexpr std::size_t kDWOPWriteLength = 65536;
inline constexpr std::size_t kDWOPReadWords = 16384;

/// Extra info block: kBegin, kMark, u32 length, the data, kMark, the length again, kEnd.
inline constexpr NSTolbrook::FourCharCode kExtraInfoBegin = NSTolbrook::MakeFourCharCode("DwMB");
inline constexpr NSTolbrook::FourCharCode kExtraInfoMark = NSTolbrook::MakeFourCharCode("DwTM");
inline constexpr NSTolbrook::FourCharCode kExtraInfoEnd = NSTolbrook::MakeFourCharCode("DwME");
inline constexpr std::size_t kExtraInfoHeadLength = 12;
inline constexpr std::size_t kExtraInfoTailLength = 12;
inline constexpr std::size_t kExtraInfoPiece = 8192;

}  // namespace NSTambraPacking
