#include "package/PackageReader.h"

#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/PortablePath.h"

#include "package/BufferedReader.h"
#include "package/PackageFormat.h"
#include "package/PackageIndex.h"
#include "package/PartialMedia.h"

namespace NSTambraPacking {

using NSBigFilePackage::CBufferedReader;
using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CPartialMedia;
using NSBigFilePackage::SharedMedia;
using NSMordel::XFormatViolation;

/// Where the two regions end, as offsets from the file's start.
struct CPackageReader::CRegions {
  std::uint64_t fIndexEnd;
  std::uint64_t fDataEnd;
};

namespace {

void CheckRegionStart(std::uint32_t start, const char* name, std::uint64_t headerEnd,
                      std::uint64_t fileSize) {
  if (start >= headerEnd && start <= fileSize) return;
  throw XFormatViolation("the package's " + std::string(name) + " starts at offset " +
                         std::to_string(start) + ", but the header ends at " +
                         std::to_string(headerEnd) + " and the file at " +
                         std::to_string(fileSize));
}

/// Throws when the bytes do not lie inside a data region of `dataLength` bytes.
void CheckInsideData(std::uint32_t offset, std::uint32_t size, std::uint64_t dataLength,
                     const std::u16string& name) {
  if (std::uint64_t{offset} + size <= dataLength) return;
  throw XFormatViolation("\"" + NSTolbrook::EscapedText(name) + "\" has " + std::to_string(size) +
                         " bytes at offset " + std::to_string(offset) +
                         ", but the package's data has only " + std::to_string(dataLength) +
                         " bytes");
}

/// Throws when entries share bytes so often that reading them all costs out of proportion.
void CheckSharing(std::uint64_t sizes, std::uint64_t dataLength) {
  if (sizes <= dataLength * kGreatestSharing) return;
  throw XFormatViolation("the package's entries have " + std::to_string(sizes) +
                         " bytes, but its data has only " + std::to_string(dataLength) +
                         ", and no byte can belong to so many");
}

}  // namespace

CPackageReader::CPackageReader(SharedMedia package)
    : fPackage(std::move(package)),
      fBuffered(std::make_shared<CBufferedReader>(fPackage, kPackageBufferLength)) {
  CMediaCursor cursor(*fBuffered);
  fHeader = ReadPackageHeader(cursor);
  fHeaderEnd = cursor.Position();
}

CPackageReader::CRegions CPackageReader::CheckRegions() const {
  const std::uint64_t fileSize = fBuffered->Size();
  const std::uint64_t indexStart = fHeader.fIndexStart;
  const std::uint64_t dataStart = fHeader.fDataStart;
  CheckRegionStart(fHeader.fIndexStart, "index", fHeaderEnd, fileSize);
  CheckRegionStart(fHeader.fDataStart, "data region", fHeaderEnd, fileSize);
  CRegions regions{fileSize, fileSize};
  if (indexStart < dataStart) regions.fIndexEnd = dataStart;
  if (dataStart <= indexStart) regions.fDataEnd = indexStart;
  const std::uint64_t room = (regions.fIndexEnd - indexStart) / kLeastIndexEntryLength;
  if (fHeader.fFileCount > room) {
    throw XFormatViolation("the package claims " + std::to_string(fHeader.fFileCount) +
                           " entries, but its index has room for no more than " +
                           std::to_string(room));
  }
  CheckInsideData(fHeader.fSplashOffset, fHeader.fSplashSize, regions.fDataEnd - dataStart,
                  u"splash");
  return regions;
}

std::vector<std::shared_ptr<CPackageEntry>> CPackageReader::ReadEntries() const {
  const CRegions regions = CheckRegions();
  const std::uint64_t dataStart = fHeader.fDataStart;
  CPartialMedia upToIndexEnd(fBuffered, 0, regions.fIndexEnd);
  CMediaCursor cursor(upToIndexEnd, fHeader.fIndexStart);
  // Its size is known, where a file has to ask the system once for each entry.
  const auto whole = std::make_shared<CPartialMedia>(fPackage, 0, fBuffered->Size());
  std::vector<std::shared_ptr<CPackageEntry>> entries;
  std::uint64_t sizes = 0;
  for (std::uint32_t i = 0; i < fHeader.fFileCount; ++i) {
    CIndexEntry entry = ReadIndexEntry(cursor);
    CheckInsideData(entry.fOffset, entry.fSize, regions.fDataEnd - dataStart, entry.fName);
    sizes += entry.fSize;
    auto data = std::make_shared<CPartialMedia>(whole, dataStart + entry.fOffset, entry.fSize);
    entries.push_back(
        MakePackageEntry(std::move(entry.fName), entry.fTypeCode, entry.fFlag, std::move(data)));
  }
  CheckSharing(sizes, regions.fDataEnd - dataStart);
  return entries;
}

}  // namespace NSTambraPacking
