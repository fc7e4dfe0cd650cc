#pragma once

#include <array>
#include <cstdint>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPFormat.h"

namespace NSTambraPacking {

enum class ELoopMode : std::uint8_t {
  kNone = 0,
  kForward = 1,
  kAlternating = 2,  ///< forward and backward in turn
};

/// What stands before the samples of a DWOP stream.
struct CDWOPHeader {
  NSTolbrook::CFormatVersion fVersion = kDWOPVersion;
  /// Sample frames.
  std::uint32_t fLength = 0;
  /// MIDI note number at which the sample sounds as recorded.
  std::uint8_t fRootKey = kDefaultRootKey;
  /// Cents in two's complement.
  std::uint8_t fFineTune = 0;
  /// One of ELoopMode; files may hold any other value.
  std::uint8_t fLoopMode = 0;
  /// 1 or 2.
  std::uint8_t fChannels = 1;
  /// First frame of the loop and the frame behind its last; 0 and fLength without a loop.
  std::uint32_t fLoopStart = 0;
  std::uint32_t fLoopEnd = 0;
  /// Frames a second.
  std::uint32_t fRate = 0;
  /// Bits of a sample: 16 or 24.
  std::uint8_t fWidth = 16;
  /// Only in streams of version 2.0.0 or later; what they mean is not known. Kept as read.
  std::array<std::uint32_t, 2> fVersion2Words{};
  bool fVersion2Flag = false;

  friend bool operator==(const CDWOPHeader&, const CDWOPHeader&) = default;
};

/// Writes the header; the cursor moves on behind it. Throws XFormatViolation when the channels are
/// neither 1 nor 2 or the width is neither 16 nor 24.
void WriteDWOPHeader(NSBigFilePackage::CMediaCursor& output, const CDWOPHeader& header);

/// Reads a header; the cursor moves on behind it. Throws XVersionTooOld, XVersionTooNew, and
/// XFormatViolation for a header that is cut short or breaks the rules of WriteDWOPHeader.
CDWOPHeader ReadDWOPHeader(NSBigFilePackage::CMediaCursor& input);

}  // namespace NSTambraPacking
