#include "filetypes/JPEGProcessor.h"

#include "codecs/JpegReader.h"
#include "filetypes/CopyPacker.h"

namespace NSTambraPacking {

namespace {

class CJPEGFileTypeProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  std::int32_t EntryTypeCode() const override { return 9; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    CopyToEntry(source, destination, context);
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext&) const override {
    CJpegReader().ReadPictureSize(source);
  }
};

}  // namespace

CFileTypeHandlers JPEGFileType() { return MakeProcessor<CJPEGFileTypeProcessor>(); }

}  // namespace NSTambraPacking
