#include "filetypes/SongProcessors.h"

#include "filetypes/ChunkDocumentPacker.h"

namespace NSTambraPacking {

namespace {

class CQ27SongFileTypeProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  explicit CQ27SongFileTypeProcessor(std::int32_t entryTypeCode) : fEntryTypeCode(entryTypeCode) {}

  std::int32_t EntryTypeCode() const override { return fEntryTypeCode; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    PackChunkDocument(source, EChunkDocumentKind::kSong, destination, context);
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext& context) const override {
    VerifyChunkDocument(source, EChunkDocumentKind::kSong, context);
  }

 private:
  std::int32_t fEntryTypeCode;
};

class CONSFileTypeProcessor : public CQ27SongFileTypeProcessor {
 public:
  CONSFileTypeProcessor() : CQ27SongFileTypeProcessor(1) {}
};

class CPublishedSongFileTypeProcessor : public CQ27SongFileTypeProcessor {
 public:
  CPublishedSongFileTypeProcessor() : CQ27SongFileTypeProcessor(13) {}
};

}  // namespace

CFileTypeHandlers SongFileType(std::int32_t entryTypeCode) {
  return MakeDocumentProcessor<CQ27SongFileTypeProcessor>(entryTypeCode);
}

CFileTypeHandlers OlderSongFileType() { return MakeDocumentProcessor<CONSFileTypeProcessor>(); }

CFileTypeHandlers PublishedSongFileType() {
  return MakeDocumentProcessor<CPublishedSongFileTypeProcessor>();
}

}  // namespace NSTambraPacking
