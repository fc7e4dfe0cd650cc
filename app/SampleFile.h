#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Parts/TolbrookPackage/Core/Media.h"
#include "Parts/TolbrookPackage/Core/OutputFolder.h"

#include "codecs/AudioFormat.h"

namespace NSTambraPacking {

enum class ESampleWork {
  kEncode,  ///< a DWOP stream of a WAVE or AIFF file
  kDecode,  ///< the WAVE or AIFF file of a DWOP stream
};

struct CConvertedSample {
  std::uint64_t fSize = 0;  ///< of the new file in bytes
  /// What was encoded can be had back, or was had back, byte for byte.
  bool fByteForByte = true;
  std::string fReason;  ///< why not
};

/// By the first bytes; what is neither counts as a WAVE file.
EAudioContainer ContainerOf(const NSBigFilePackage::IMedia& file);

/// Makes the file `output` of the file `input`; it has its name only when it is whole and on the
/// disk. Throws XAlreadyExists when the name is taken (with kReplace by other than a file), as
/// EncodeAudioFile and RebuildSource, and as IOutputFile. `checkStop` is called often and may
/// throw.
CConvertedSample ConvertSample(ESampleWork work, const NSTolbrook::NativePath& input,
                               const NSTolbrook::NativePath& output,
                               NSTolbrook::IOutputFile::EExisting existing,
                               const std::function<void()>& checkStop);

}  // namespace NSTambraPacking
