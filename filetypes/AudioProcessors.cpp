#include "filetypes/AudioProcessors.h"

#include "codecs/AudioFile.h"
#include "filetypes/dwop/DWOPFileEncoder.h"
#include "filetypes/dwop/DWOPStreamCheck.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::IMedia;
using NSBigFilePackage::SharedMedia;

constexpr std::int32_t kSampleEntry = 11;

void VerifyAudioFile(const SharedMedia& source, EAudioContainer container) {
  CheckAudioFormat(CAudioFile::Open(source, container).Format());
}

void PackAudioFile(const NSTolbrook::CFileItem& source, EAudioContainer container,
                   IMedia& destination, CPackContext& context) {
  const CKeptReport report = EncodeAudioFile(OpenSource(source), container, destination,
                                             [&context] { context.CheckStop(); });
  if (!report.fSamplesKept) {
    context.fRemarks.insert(ERemark::kSamplesConverted);
  } else if (!report.fSourceKept) {
    context.fRemarks.insert(ERemark::kSourceNotRestorable);
  }
}

class CWAVEFileVerifier : public IFileTypeVerifier {
 public:
  void Verify(const SharedMedia& source, CVerifyContext&) const override {
    VerifyAudioFile(source, EAudioContainer::kWAVE);
  }
};

class CAIFFFileVerifier : public IFileTypeVerifier {
 public:
  void Verify(const SharedMedia& source, CVerifyContext&) const override {
    VerifyAudioFile(source, EAudioContainer::kAIFF);
  }
};

class CWAVEFileTypePacker : public IFileTypePacker {
 public:
  std::int32_t EntryTypeCode() const override { return kSampleEntry; }
  NSTolbrook::FourCharCode CacheKind() const override {
    return NSTolbrook::MakeFourCharCode("WAVE");
  }
  void Pack(const NSTolbrook::CFileItem& source, IMedia& destination,
            CPackContext& context) const override {
    PackAudioFile(source, EAudioContainer::kWAVE, destination, context);
  }
};

class CAIFFFileTypePacker : public IFileTypePacker {
 public:
  std::int32_t EntryTypeCode() const override { return kSampleEntry; }
  NSTolbrook::FourCharCode CacheKind() const override {
    return NSTolbrook::MakeFourCharCode("AIFF");
  }
  void Pack(const NSTolbrook::CFileItem& source, IMedia& destination,
            CPackContext& context) const override {
    PackAudioFile(source, EAudioContainer::kAIFF, destination, context);
  }
};

class CDWOPPackedFileVerifier : public IFileTypeVerifier {
 public:
  void Verify(const SharedMedia& source, CVerifyContext& context) const override {
    CheckDWOPStream(*source, [&context] { context.CheckStop(); });
  }
};

/// Entries of both types are the same, so they share one verifier.
std::shared_ptr<const IFileTypeVerifier> PackedFileVerifier() {
  static const auto verifier = std::make_shared<const CDWOPPackedFileVerifier>();
  return verifier;
}

}  // namespace

CFileTypeHandlers WAVEFileType() {
  return {std::make_shared<const CWAVEFileVerifier>(),
          std::make_shared<const CWAVEFileTypePacker>(), PackedFileVerifier()};
}

CFileTypeHandlers AIFFFileType() {
  return {std::make_shared<const CAIFFFileVerifier>(),
          std::make_shared<const CAIFFFileTypePacker>(), PackedFileVerifier()};
}

}  // namespace NSTambraPacking
