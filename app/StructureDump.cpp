#include "app/StructureDump.h"

#include <array>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"

#include "app/FieldDump.h"
#include "app/FormFault.h"
#include "filetypes/dwop/DWOPHeader.h"
#include "package/BlockStoreFormat.h"

namespace NSTambraPacking {

namespace {

/// Everything that is nothing else is taken for a package.
constexpr const char* kNothingKnown = "no package, DWOP stream or block store, or a damaged one: ";

bool BeginsLikeBlockStore(const NSBigFilePackage::IMedia& file) {
  std::array<std::uint8_t, 8> bytes{};
  return file.Read(0, bytes) == bytes.size() &&
         NSTolbrook::LoadBigEndian<std::uint64_t>(bytes) ==
             NSBigFilePackage::NSBlockStoreFormat::kSignature;
}

bool BeginsLikeStream(NSBigFilePackage::IMedia& file) {
  try {
    NSBigFilePackage::CMediaCursor cursor(file);
    ReadDWOPHeader(cursor);
    return true;
  } catch (const NSMordel::XFormatViolation&) {
  } catch (const NSMordel::XVersionTooNew&) {
  } catch (const NSMordel::XVersionTooOld&) {
  }
  return false;
}

}  // namespace

EDumpedFile KindOfFile(const NSBigFilePackage::SharedMedia& file) {
  if (BeginsLikeBlockStore(*file)) return EDumpedFile::kBlockStore;
  return BeginsLikeStream(*file) ? EDumpedFile::kDWOPStream : EDumpedFile::kPackage;
}

void DumpFile(const NSBigFilePackage::SharedMedia& file, EDumpedFile kind,
              const CTextResources& texts, const CDumpReport& report,
              const std::function<void()>& checkStop) {
  switch (kind) {
    case EDumpedFile::kPackage:
      return WithFormFault(kNothingKnown, [&] { DumpPackage(file, texts, report, checkStop); });
    case EDumpedFile::kDWOPStream:
      return DumpDWOPStream(file, 0, 0, report, checkStop);
    case EDumpedFile::kBlockStore:
      return DumpBlockStore(file, report);
  }
}

}  // namespace NSTambraPacking
