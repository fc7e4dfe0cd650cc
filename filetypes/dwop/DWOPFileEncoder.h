#pragma once

#include <functional>
#include <string>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/AudioFormat.h"

namespace NSTambraPacking {

/// What a stream keeps of the audio file that it was made of.
struct CKeptReport {
  /// False when the samples were converted to the stream's width.
  bool fSamplesKept = true;
  /// True when the file can be had back byte for byte.
  bool fSourceKept = true;
  /// Why it cannot; empty when it can.
  std::string fReason;
};

/// Writes the DWOP stream of the audio file `source` to the empty media `destination`: header,
/// residual bit stream and, unless the file is the plain WAVE file that the stream alone gives, the
/// extra info. Memory does not grow with the sample. `checkStop` is called now and then and may
/// throw. Throws as CAudioFile::Open, XFormatViolation for other than 1 or 2 channels or more than
/// 2^32 - 1 frames, and as Read and Write of the media.
CKeptReport EncodeAudioFile(const NSBigFilePackage::SharedMedia& source, EAudioContainer container,
                            NSBigFilePackage::IMedia& destination,
                            const std::function<void()>& checkStop);

/// What EncodeAudioFile would report of such a file.
CKeptReport JudgeKept(const CAudioFormat& format, const CSampleChunkLayout& layout);

/// Throws XFormatViolation with an empty text unless a stream can hold the samples: 1 or 2
/// channels, at most 2^32 - 1 frames.
void CheckAudioFormat(const CAudioFormat& format);

}  // namespace NSTambraPacking
