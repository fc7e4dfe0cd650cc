#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FieldDump.h"
#include "app/FileTypeNames.h"
#include "package/BufferedReader.h"
#include "package/PackageFormat.h"
#include "package/PackageIndex.h"
#include "package/PackageReader.h"
#include "package/PartialMedia.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::TextFromUtf8;

struct CStarts {
  std::uint32_t fFileCount = 0;
  std::uint32_t fIndexStart = 0;
  std::uint32_t fDataStart = 0;
};

CStarts DumpHeader(CFieldDump& dump) {
  CStarts starts;
  dump.Part("header", {}, [&] {
    dump.Text("tambraname");
    dump.Text("comment");
    dump.Text("url");
    dump.Text("copyright");
    starts.fFileCount = dump.U32("filecount");
    starts.fIndexStart = dump.U32("indexstart");
    starts.fDataStart = dump.U32("datastart");
    CheckPackageVersion(dump.Version("version"));
    dump.U32("splashoffset", "from datastart");
    dump.U32("splashsize", "bytes");
  });
  return starts;
}

CIndexEntry DumpIndexEntry(CFieldDump& dump, const CTextResources& texts, std::uint32_t number) {
  CIndexEntry entry;
  dump.Part("index entry", TextFromUtf8(std::to_string(number)), [&] {
    entry.fName = dump.Text("name");
    entry.fTypeCode = dump.U8("type");
    dump.Explain(TextFromUtf8(std::to_string(entry.fTypeCode) + " ") +
                 EntryTypeName(texts, entry.fTypeCode));
    entry.fOffset = dump.U32("offset", "from datastart");
    entry.fSize = dump.U32("size", "bytes");
    entry.fFlag = dump.U8("flag");
  });
  return entry;
}

}  // namespace

void DumpPackage(const NSBigFilePackage::SharedMedia& file, const CTextResources& texts,
                 const CDumpReport& report, const std::function<void()>& checkStop) {
  NSBigFilePackage::CBufferedReader buffered(file, kPackageBufferLength);
  CFieldDump dump(buffered, 0, report);
  CStarts starts = DumpHeader(dump);
  if (starts.fIndexStart > file->Size()) starts.fFileCount = 0;  // the reader tells of it below
  dump.Cursor().SetPosition(starts.fIndexStart);
  std::vector<CIndexEntry> entries;
  for (std::uint32_t i = 0; i < starts.fFileCount; ++i) {
    if (checkStop) checkStop();
    entries.push_back(DumpIndexEntry(dump, texts, i));
  }
  std::uint64_t sizes = 0;
  for (const CIndexEntry& entry : entries) {
    if (checkStop) checkStop();
    const std::uint64_t offset = std::uint64_t{starts.fDataStart} + entry.fOffset;
    sizes += entry.fSize;
    const std::uint64_t fileSize = buffered.Size();
    if (offset + entry.fSize > fileSize || sizes > fileSize * kGreatestSharing) break;
    const auto data = std::make_shared<NSBigFilePackage::CPartialMedia>(file, offset, entry.fSize);
    dump.Range("data", offset, entry.fSize, entry.fName);
    if (entry.fTypeCode == kSampleEntryType) DumpDWOPStream(data, offset, 1, report, checkStop);
  }
  CPackageReader(file).ReadEntries();  // throws what is wrong with the whole
}

}  // namespace NSTambraPacking
