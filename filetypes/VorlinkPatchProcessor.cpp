#include "filetypes/VorlinkPatchProcessor.h"

#include <span>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "filetypes/DocumentReferences.h"
#include "filetypes/ProhibitedDevices.h"
#include "references/VorlinkPatch.h"

namespace NSTambraPacking {

namespace {

class CVorlinkDevicePatchProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  explicit CVorlinkDevicePatchProcessor(std::int32_t entryTypeCode)
      : fEntryTypeCode(entryTypeCode) {}

  std::int32_t EntryTypeCode() const override { return fEntryTypeCode; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    const NSBigFilePackage::SharedMedia input = OpenSource(source);
    if (input == nullptr) throw NSMordel::XOpen();
    const CVorlinkPatch patch(*input, NSTolbrook::Utf8FromText(context.fPath));
    const std::string text =
        patch.Rewritten(RelocateReferences(KindedReferences(patch.References()), context));
    destination.Write(0, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext& context) const override {
    TestProhibitedDevice(ReadVorlinkDeviceIdentifier(*source), context);
    const CVorlinkPatch patch(*source, NSTolbrook::Utf8FromText(context.fPath));
    ResolveReferences(KindedReferences(patch.References()), context);
  }

 private:
  std::int32_t fEntryTypeCode;
};

}  // namespace

CFileTypeHandlers VorlinkPatchFileType(std::int32_t entryTypeCode) {
  return MakeDocumentProcessor<CVorlinkDevicePatchProcessor>(entryTypeCode);
}

}  // namespace NSTambraPacking
