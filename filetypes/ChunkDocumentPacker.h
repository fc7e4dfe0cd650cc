#pragma once

#include "filetypes/FileTypeInterfaces.h"
#include "references/ChunkDocument.h"

namespace NSTambraPacking {

/// Reads a patch or song, notes the devices in the context and looks its references up. A patch of
/// a form without a device name of its own is held against the prohibited devices by `deviceName`.
void VerifyChunkDocument(const NSBigFilePackage::SharedMedia& source, EChunkDocumentKind kind,
                         CVerifyContext& context, const char16_t* deviceName = nullptr);

/// Writes the patch or song with its references relocated; every other byte stays, sizes apart.
void PackChunkDocument(const NSTolbrook::CFileItem& source, EChunkDocumentKind kind,
                       NSBigFilePackage::IMedia& destination, CPackContext& context);

}  // namespace NSTambraPacking
