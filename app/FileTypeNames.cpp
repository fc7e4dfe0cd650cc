#include "app/FileTypeNames.h"

#include "Parts/TolbrookPackage/Core/Text.h"

#include "filetypes/FileTypeTable.h"

namespace NSTambraPacking {

std::u16string EntryTypeName(const CTextResources& texts, std::int32_t typeCode) {
  if (typeCode == kSampleEntryType) return texts.Text(kSampleType);
  const std::vector<CFileTypeRow>& rows = RegisteredFileTypes();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (rows[row].fHandlers.fPacker->EntryTypeCode() == typeCode) {
      return texts.Text({kFileTypeNameTable, static_cast<int>(row) + 1});
    }
  }
  return texts.Text(kUnknownType, {NSTolbrook::TextFromUtf8(std::to_string(typeCode))});
}

}  // namespace NSTambraPacking
