#include "filetypes/ChunkDocumentPacker.h"

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/DocumentReferences.h"
#include "filetypes/ProhibitedDevices.h"

namespace NSTambraPacking {

void VerifyChunkDocument(const NSBigFilePackage::SharedMedia& source, EChunkDocumentKind kind,
                         CVerifyContext& context, const char16_t* deviceName) {
  const CChunkDocument document(source, kind);
  ResolveReferences(KindedReferences(document.References()), context);
  if (deviceName != nullptr) {
    TestProhibitedDevice(deviceName, context);
    return;
  }
  for (const std::u16string& name : document.DeviceNames()) TestProhibitedDevice(name, context);
}

void PackChunkDocument(const NSTolbrook::CFileItem& source, EChunkDocumentKind kind,
                       NSBigFilePackage::IMedia& destination, CPackContext& context) {
  const NSBigFilePackage::SharedMedia input = OpenSource(source);
  if (input == nullptr) throw NSMordel::XOpen();
  const CChunkDocument document(input, kind);
  const std::vector<CSampleReference> relocated =
      RelocateReferences(KindedReferences(document.References()), context);
  NSBigFilePackage::CMediaCursor output(destination);
  document.Write(output, relocated);
}

}  // namespace NSTambraPacking
