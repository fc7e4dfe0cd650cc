#include "filetypes/MIDIProcessor.h"

#include "codecs/MIDIParser.h"
#include "filetypes/CopyPacker.h"

namespace NSTambraPacking {

namespace {

class CMIDIFileTypeProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  std::int32_t EntryTypeCode() const override { return 10; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    CopyToEntry(source, destination, context);
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext&) const override {
    CMIDIParser(*source).Parse();
  }
};

}  // namespace

CFileTypeHandlers MIDIFileType() { return MakeProcessor<CMIDIFileTypeProcessor>(); }

}  // namespace NSTambraPacking
