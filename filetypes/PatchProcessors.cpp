#include "filetypes/PatchProcessors.h"

#include "filetypes/ChunkDocumentPacker.h"
#include "filetypes/ProhibitedDevices.h"
#include "references/IFFReader.h"

namespace NSTambraPacking {

namespace {

constexpr NSTolbrook::FourCharCode kSecondForm = NSTolbrook::MakeFourCharCode("RBIP");

class CPatchFileTypeProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  explicit CPatchFileTypeProcessor(std::int32_t entryTypeCode) : fEntryTypeCode(entryTypeCode) {}

  std::int32_t EntryTypeCode() const override { return fEntryTypeCode; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    PackChunkDocument(source, EChunkDocumentKind::kPatch, destination, context);
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext& context) const override {
    VerifyChunkDocument(source, EChunkDocumentKind::kPatch, context);
  }

 private:
  std::int32_t fEntryTypeCode;
};

class CRBIPatchFileTypeVerifier : public IFileTypeVerifier {
 public:
  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext& context) const override {
    const bool second = ReadFormType(source) == kSecondForm;
    VerifyChunkDocument(source, EChunkDocumentKind::kPatch, context,
                        second ? kSlicedLoopDevice.data() : nullptr);
  }

 private:
  /// The first pass: walks the chunks of the file and of its outer group. Returns the group's type,
  /// or 0 when the file begins with none.
  static NSTolbrook::FourCharCode ReadFormType(const NSBigFilePackage::SharedMedia& source) {
    NSTolbrook::CIFFReader2 reader(source);
    const auto outer = reader.FirstChunk();
    if (!outer || outer->fKind == NSTolbrook::EChunkKind::kPlain) return 0;
    NSTolbrook::CIFFReader2 contents = reader.EnterGroup(*outer);
    for (auto chunk = contents.FirstChunk(); chunk; chunk = contents.NextChunk(*chunk)) {
    }
    return outer->fCode;
  }
};

}  // namespace

CFileTypeHandlers PatchFileType(std::int32_t entryTypeCode) {
  return MakeDocumentProcessor<CPatchFileTypeProcessor>(entryTypeCode);
}

CFileTypeHandlers RBIPatchFileType(std::int32_t entryTypeCode) {
  CFileTypeHandlers handlers = PatchFileType(entryTypeCode);
  const auto verifier = std::make_shared<const CRBIPatchFileTypeVerifier>();
  handlers.fVerifier = verifier;
  handlers.fPackedEntryVerifier = verifier;
  return handlers;
}

}  // namespace NSTambraPacking
