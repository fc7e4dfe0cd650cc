#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPExtraInfo.h"
#include "filetypes/dwop/DWOPHeader.h"

namespace NSTambraPacking {

/// The parts of a stream that was found whole.
struct CDWOPStreamParts {
  CDWOPHeader fHeader;
  /// Position of the residual bit stream and its 32-bit words.
  std::uint64_t fBitStream = 0;
  std::uint64_t fWords = 0;
  std::optional<CExtraInfoBlock> fExtraInfo;
};

/// Decodes all of a stream and finds where its parts lie. `checkStop` is called now and then and
/// may throw. Throws as ReadDWOPHeader, COptimizedDWOPDecompressor::Decode and ReadExtraInfo.
CDWOPStreamParts CheckDWOPStream(NSBigFilePackage::IMedia& stream,
                                 const std::function<void()>& checkStop);

}  // namespace NSTambraPacking
