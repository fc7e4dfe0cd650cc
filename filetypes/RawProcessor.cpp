#include "filetypes/RawProcessor.h"

#include <algorithm>
#include <array>

#include "filetypes/CopyPacker.h"

namespace NSTambraPacking {

namespace {

constexpr std::uint64_t kProbeSize = 4'096;

/// Reads the beginning, the middle and the end: proves that the whole file is readable without
/// reading all of it.
class CRawFileTypeProcessor : public IFileTypePacker, public IFileTypeVerifier {
 public:
  explicit CRawFileTypeProcessor(std::int32_t entryTypeCode) : fEntryTypeCode(entryTypeCode) {}

  std::int32_t EntryTypeCode() const override { return fEntryTypeCode; }

  void Pack(const NSTolbrook::CFileItem& source, NSBigFilePackage::IMedia& destination,
            CPackContext& context) const override {
    CopyToEntry(source, destination, context);
  }

  void Verify(const NSBigFilePackage::SharedMedia& source, CVerifyContext&) const override {
    const std::uint64_t size = source->Size();
    if (size < 1) return;
    Probe(*source, 0, std::min(size, kProbeSize));
    if (size <= kProbeSize) return;
    Probe(*source, size / 2, std::min(size - size / 2, kProbeSize));
    Probe(*source, size - kProbeSize, kProbeSize);
  }

 private:
  static void Probe(const NSBigFilePackage::IMedia& source, std::uint64_t position,
                    std::uint64_t count) {
    std::array<std::uint8_t, kProbeSize> buffer;
    NSBigFilePackage::ReadExactly(source, position,
                                  std::span(buffer).first(static_cast<std::size_t>(count)));
  }

  std::int32_t fEntryTypeCode;
};

}  // namespace

CFileTypeHandlers RawFileType(std::int32_t entryTypeCode) {
  return MakeProcessor<CRawFileTypeProcessor>(entryTypeCode);
}

}  // namespace NSTambraPacking
