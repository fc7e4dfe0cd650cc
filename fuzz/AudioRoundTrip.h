#pragma once

#include "filetypes/dwop/DWOPFileEncoder.h"
#include "filetypes/dwop/DWOPStreamCheck.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "fuzz/FuzzInput.h"

namespace NSFuzz {

/// An audio file that is packed gives a whole stream, which gives the file back where the packer
/// said so.
inline int AudioRoundTrip(const CFuzzInput& input, NSTambraPacking::EAudioContainer container) {
  const auto stream = std::make_shared<NSBigFilePackage::CMemoryMedia>();
  const auto kept = Read(
      [&] { return NSTambraPacking::EncodeAudioFile(input.Media(), container, *stream, [] {}); });
  if (!kept) return 0;
  NSTambraPacking::CheckDWOPStream(*stream, [] {});
  NSBigFilePackage::CMemoryMedia rebuilt;
  const auto report = NSTambraPacking::RebuildSource(stream, rebuilt, [] {});
  if (kept->fSourceKept) Require(report.fByteForByte && rebuilt.Bytes() == input.Bytes());
  Require(kept->fReason.empty() == kept->fSourceKept);
  return 0;
}

}  // namespace NSFuzz
