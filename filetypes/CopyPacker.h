#pragma once

#include "filetypes/FileTypeInterfaces.h"

namespace NSTambraPacking {

/// Copies the source file to the entry unchanged, in pieces of 8,192 bytes. Throws XOpen when the
/// source cannot be opened, XOutOfSpace when it is longer than a package can hold, and XSilentAbort
/// on a stop request.
void CopyToEntry(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
                 const CPackContext& context);

}  // namespace NSTambraPacking
