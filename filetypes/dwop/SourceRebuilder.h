#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// What became of a stream that was turned back into an audio file.
struct CRebuildReport {
  /// True when the file is the source byte for byte, as far as the stream tells: a source whose
  /// sample chunk held more than whole frames, or whose pad byte was missing or not zero, is known
  /// to differ only while it is packed.
  bool fByteForByte = true;
  /// Why it is not; empty when it is.
  std::string fReason;
};

/// Writes the source file of the DWOP stream `stream` to the empty media `output`: by the stream's
/// extra info, or as a plain WAVE file where there is none (or none of use). Memory does not grow
/// with the sample. `checkStop` is called now and then and may throw. Throws XFormatViolation for a
/// damaged stream, XOutOfSpace when the samples do not fit an audio file's 32-bit sizes, and as
/// Read and Write of the media; the output is unspecified then.
CRebuildReport RebuildSource(const NSBigFilePackage::SharedMedia& stream,
                             NSBigFilePackage::IMedia& output,
                             const std::function<void()>& checkStop);

/// The length in bytes of the file that RebuildSource would write, judged by the stream's header
/// and extra info alone: no sample is decoded. Throws XFormatViolation and the version exceptions
/// for a header that cannot be read, and as Read of the media.
std::uint64_t RebuiltSize(const NSBigFilePackage::SharedMedia& stream);

}  // namespace NSTambraPacking
