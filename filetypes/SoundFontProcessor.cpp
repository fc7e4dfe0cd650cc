#include "filetypes/SoundFontProcessor.h"

#include "codecs/SoundFontParser.h"
#include "filetypes/CopyPacker.h"
#include "filetypes/ProhibitedDevices.h"

namespace NSTambraPacking {

namespace {

class CSoundFontFileTypeProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  std::int32_t EntryTypeCode() const override { return 16; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    CopyToEntry(source, destination, context);
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext& context) const override {
    CSoundFontParser(source).Parse();
    TestProhibitedDevice(kSoundFontDevice, context);
  }
};

}  // namespace

CFileTypeHandlers SoundFontFileType() { return MakeProcessor<CSoundFontFileTypeProcessor>(); }

}  // namespace NSTambraPacking
