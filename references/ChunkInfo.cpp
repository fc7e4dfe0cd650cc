#include "references/ChunkInfo.h"

#include <string>

#include "Parts/TolbrookPackage/Core/StdException.h"

namespace NSTolbrook {

using NSMordel::NSMordelDetails::XStdLogicError;

std::uint32_t HeaderLength(EChunkKind kind) {
  switch (kind) {
    case EChunkKind::kPlain:
      return kPlainHeaderLength;
    case EChunkKind::kForm:
    case EChunkKind::kCatalogue:
    case EChunkKind::kList:
      return kGroupHeaderLength;
  }
  throw XStdLogicError("no kind of chunk: " + std::to_string(static_cast<int>(kind)));
}

EChunkKind ChunkKindOfID(FourCharCode id, FourCharCode formID) {
  if (id == formID) return EChunkKind::kForm;
  if (id == kCatalogueID) return EChunkKind::kCatalogue;
  if (id == kListID) return EChunkKind::kList;
  return EChunkKind::kPlain;
}

FourCharCode GroupID(EChunkKind kind, FourCharCode formID) {
  switch (kind) {
    case EChunkKind::kForm:
      return formID;
    case EChunkKind::kCatalogue:
      return kCatalogueID;
    case EChunkKind::kList:
      return kListID;
    case EChunkKind::kPlain:
      break;
  }
  throw XStdLogicError("no kind of group chunk: " + std::to_string(static_cast<int>(kind)));
}

void ThrowChunkFault(const char* what, FourCharCode id, std::uint64_t offset) {
  throw NSMordel::XFormatViolation(std::string(what) + " (chunk \"" + FourCharCodeText(id) +
                                   "\" at offset " + std::to_string(offset) + ")");
}

}  // namespace NSTolbrook
