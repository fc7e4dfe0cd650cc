#include "codecs/SoundFontTable.h"

#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

CSoundFontTable::CSoundFontTable(NSBigFilePackage::SharedMedia data,
                                 const NSSoundFont::CTableLayout& layout)
    : fData(std::move(data)), fLayout(layout) {
  const std::uint64_t size = fData->Size();  // a chunk's: 32 bits
  fRecordCount = static_cast<std::uint32_t>(size / layout.fRecordLength);
  if (size % layout.fRecordLength != 0) ThrowFault("the table ends inside a record", fRecordCount);
  if (fRecordCount < layout.fLeastRecords) ThrowFault("the table is too short", fRecordCount);
}

void CSoundFontTable::ThrowFault(const char* what, std::uint32_t index) const {
  throw NSMordel::XFormatViolation(std::string("SoundFont bank: ") + what + " (\"" +
                                   NSTolbrook::FourCharCodeText(fLayout.fID) + "\" record " +
                                   std::to_string(index) + ")");
}

}  // namespace NSTambraPacking
