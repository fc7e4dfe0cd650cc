#include "filetypes/LQXProcessor.h"

#include "codecs/LQXLibrary.h"
#include "filetypes/CopyPacker.h"

namespace NSTambraPacking {

namespace {

class CLQXFileTypeProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  explicit CLQXFileTypeProcessor(std::int32_t entryTypeCode) : fEntryTypeCode(entryTypeCode) {}

  std::int32_t EntryTypeCode() const override { return fEntryTypeCode; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    CopyToEntry(source, destination, context);
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext& context) const override {
    if (context.fSlicedLoopLibrary != nullptr) {
      context.fSlicedLoopLibrary->Verify(*source);
      return;
    }
    VerifyLoopStructure(source);
    context.fRemarks.insert(ERemark::kLoopStructureOnly);
  }

 private:
  std::int32_t fEntryTypeCode;
};

}  // namespace

CFileTypeHandlers LQXFileType(std::int32_t entryTypeCode) {
  return MakeProcessor<CLQXFileTypeProcessor>(entryTypeCode);
}

}  // namespace NSTambraPacking
