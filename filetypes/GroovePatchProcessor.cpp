#include "filetypes/GroovePatchProcessor.h"

#include "Parts/TolbrookPackage/Core/Text.h"

#include "filetypes/CopyPacker.h"
#include "filetypes/DocumentText.h"
#include "references/XMLReader.h"

namespace NSTambraPacking {

namespace {

class CGroovePatchFileTypeProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  std::int32_t EntryTypeCode() const override { return 23; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    CopyToEntry(source, destination, context);
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext& context) const override {
    NSTolbrook::LoadXMLDocument(ReadDocumentText(*source), "groove patch",
                                NSTolbrook::Utf8FromText(context.fPath));
  }
};

}  // namespace

CFileTypeHandlers GroovePatchFileType() { return MakeProcessor<CGroovePatchFileTypeProcessor>(); }

}  // namespace NSTambraPacking
