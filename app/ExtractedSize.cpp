#include "app/ExtractedSize.h"

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/FileTypeNames.h"
#include "filetypes/dwop/SourceRebuilder.h"

namespace NSTambraPacking {

std::optional<std::uint64_t> ExtractedSize(const CPackageEntry& entry) {
  if (entry.TypeCode() != kSampleEntryType) return entry.Data()->Size();
  try {
    return RebuiltSize(entry.Data());
  } catch (const NSMordel::XFormatViolation&) {
    return std::nullopt;
  } catch (const NSMordel::XVersionTooNew&) {
    return std::nullopt;
  } catch (const NSMordel::XVersionTooOld&) {
    return std::nullopt;
  }
}

}  // namespace NSTambraPacking
