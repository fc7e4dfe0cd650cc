#include "filetypes/FileTypeInterfaces.h"

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/StdioMedia.h"

namespace NSTambraPacking {

void CHandlerContext::CheckStop() const {
  if (fStopRequested && fStopRequested()) throw NSMordel::XSilentAbort("User aborted");
}

NSBigFilePackage::SharedMedia OpenSource(const NSTolbrook::CFileItem& source) {
  return NSBigFilePackage::CStdioMedia::OpenForReading(source.Path());
}

}  // namespace NSTambraPacking
