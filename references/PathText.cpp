#include "references/PathText.h"

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

CPathComponents SplitPathText(std::u16string_view text, const char* startMessage) {
  if (!text.starts_with(u'/')) throw NSMordel::XFormatViolation(startMessage);
  return SplitEntryPath(text);
}

std::u16string PathTextFromComponents(const CPathComponents& components) {
  return u"/" + JoinComponents(components);
}

}  // namespace NSTambraPacking
