// Lets memory run out inside every parser and packer: failing_allocations FOLDER PACKAGE MOST. Each
// kind of file of the demo library, written to the empty FOLDER, is verified and packed, and
// PACKAGE is read in every way, again and again while the first, second, ... allocation fails, at
// MOST places of each (0: at all of them), once or for ever. That must end with std::bad_alloc or
// the bytes of a run without a fault, and leave no memory behind. Prints what it counted as JSON.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <functional>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Shortcut.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/EntryDetails.h"
#include "app/FileTypeNames.h"
#include "app/FolderScan.h"
#include "app/PackageComparison.h"
#include "app/PackageInformation.h"
#include "app/StructureDump.h"
#include "app/demo/DemoLibrary.h"
#include "filetypes/FileTypeRegistry.h"
#include "filetypes/PackedEntryVerifier.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "package/BlockStore.h"
#include "package/MemoryMedia.h"
#include "package/PackageEntry.h"
#include "package/PackageVerifier.h"
#include "references/ReferenceLookup.h"
#include "references/StandardReferenceRelocator.h"
#include "references/StandardReferenceResolver.h"
#include "tests/support/ShortcutBuilder.h"

namespace {

std::size_t gFailAt = 0;  ///< the number of the allocation that fails, from 1; 0: none
bool gFailEver = false;
std::size_t gCount = 0;  ///< allocations
std::ptrdiff_t gLive = 0;

bool Fails() {
  ++gCount;
  return gFailAt != 0 && (gFailEver ? gCount >= gFailAt : gCount == gFailAt);
}

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = Fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  ++gLive;
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr) --gLive;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace {

using namespace NSTambraPacking;
using NSBigFilePackage::CBlockStore;
using NSBigFilePackage::CMemoryMedia;
using Bytes = std::vector<std::uint8_t>;

/// Something that is done again and again; it gives the same bytes each time.
struct CWork {
  std::string fName;
  std::function<Bytes()> fRun;
  std::function<void()> fBefore = [] {};  ///< what nothing fails in
};

Bytes BytesOf(const NSBigFilePackage::IMedia& media) {
  Bytes bytes(static_cast<std::size_t>(media.Size()));
  ReadExactly(media, 0, bytes);
  return bytes;
}

void Append(Bytes& bytes, std::u16string_view text) {
  for (const char16_t unit : text) bytes.push_back(static_cast<std::uint8_t>(unit));
}

/// The files of the demo library and what looks up references among them.
class CSubject {
 public:
  explicit CSubject(const NSTolbrook::NativePath& folder) {
    WriteDemoLibrary(folder);
    const CScanRules rules{[](const std::u16string&) { return false; }, [](std::size_t) {}};
    fFiles = ScanFolder(folder, rules).fFiles;
    for (const CScannedFile& file : fFiles) {
      const auto* const packer = CFileTypeRegistry::Instance().FindPacker(file.fItem);
      fTree.AddFile(file.fPath, packer != nullptr && IsContainerType(packer->EntryTypeCode()));
      fIncluded.insert(file.fPath);
    }
  }

  const std::vector<CScannedFile>& Files() const { return fFiles; }

  void Verify(const CScannedFile& file) const {
    CVerifyContext context;
    context.fPath = file.fPath;
    context.fResolver = &fResolver;
    CFileTypeRegistry::Instance().VerifyFile(file.fItem, context);
  }

  Bytes Pack(const CScannedFile& file) const {
    CPackContext context;
    context.fPath = file.fPath;
    context.fRelocator = &fRelocator;
    CMemoryMedia media;
    CFileTypeRegistry::Instance().FindPacker(file.fItem)->Pack(file.fItem, media, context);
    return BytesOf(media);
  }

 private:
  std::vector<CScannedFile> fFiles;
  CEntryTree fTree;
  IncludedPaths fIncluded;
  CReferenceLookup fLookup{fTree};
  CStandardReferenceResolver fResolver{fLookup, u"Demo", fIncluded};
  CStandardReferenceRelocator fRelocator{fLookup, u"Demo", u""};
};

// What is done with a package, each in the way of one of the program's commands or windows.

Bytes Verified(const NSBigFilePackage::SharedMedia& package) {
  CPackedEntryVerifier verifier(u"Demo", nullptr, [] { return false; });
  const auto result = CPackageVerifier(verifier, nullptr, nullptr).Verify(package, {});
  return {static_cast<std::uint8_t>(result.fVerifiedCount),
          static_cast<std::uint8_t>(result.fFailed.size()),
          static_cast<std::uint8_t>(result.fBroken.size())};
}

Bytes Shown(const CTextResources& texts, const NSTolbrook::NativePath& path) {
  const CPackageContents package(path);
  Bytes shown;
  for (const CDetailLine& line : DescribePackage(texts, package).fLines) Append(shown, line.fValue);
  for (const auto& entry : package.Entries()) {
    const CEntryDetails details = DescribeEntry(texts, package, *entry, [] { return false; });
    for (const CDetailLine& line : details.fLines) Append(shown, line.fValue);
    for (const CDetailItem& item : details.fItems) Append(shown, item.fText);
    Append(shown, details.fFault);
  }
  return shown;
}

Bytes Extracted(const CPackageEntries& entries, const NSTolbrook::NativePath& folder) {
  Bytes kinds;
  const auto done = [&kinds](const CPackageEntry&, const CExtractedEntry& outcome) {
    kinds.push_back(static_cast<std::uint8_t>(outcome.fKind));
  };
  CPackageExtractor(entries, folder, CPackageExtractor::EExisting::kRefuse)
      .Extract({[](std::size_t, const CPackageEntry&) {}, done, [] {}});
  return kinds;
}

Bytes Dumped(const CTextResources& texts, const NSBigFilePackage::SharedMedia& file) {
  Bytes names;
  const auto take = [&names](const CDumpField& field) {
    names.insert(names.end(), field.fName.begin(), field.fName.end());
    Append(names, field.fValue);
  };
  DumpFile(file, KindOfFile(file), texts, take, [] {});
  return names;
}

/// A store with items and streams over several commits, opened again.
std::shared_ptr<CMemoryMedia> FilledStore() {
  const auto media = std::make_shared<CMemoryMedia>();
  const auto store = CBlockStore::Create(media, CBlockStore::ECreate::kNew, 64);
  for (std::uint8_t number = 1; number < 5; ++number) {
    const auto stream = store->NewStream();
    stream->Write(0, Bytes(100 * std::size_t{number}, number));
    const auto item = store->BeginItem();
    item->Write(0, Bytes(20, number));
    static_cast<void>(item->Finish());
    store->Commit();
    if (number == 2) store->RemoveStream(stream->Identifier());
  }
  const auto opened = CBlockStore::Open(media);
  for (const std::uint32_t stream : opened->Streams()) BytesOf(*opened->OpenStream(stream));
  return media;
}

Bytes AlertsAndMenus() {
  const CTextResources texts;  // unpacks them, reads every table
  Bytes shown;
  Append(shown, texts.Alert(kAlertUnsupported, {u"A", u"B"}).fMessage);
  for (const CMenu& menu : texts.Menus().Menus()) Append(shown, menu.fTitle);
  return shown;
}

Bytes Informed() {
  const auto texts = ReadPackageTexts(
      {{u"INFO.TXT", "NAME=\"Kit\"\r\nSKIP_ITEM=\"a;b\"\r\n"}, {u"VERSION.TXT", "1.2.0"}});
  Bytes name;
  Append(name, texts.fInformation.OutputFileName());
  return name;
}

/// What is left of an extraction that failed: nothing without a name, and then nothing at all.
void Clear(const NSTolbrook::NativePath& folder) {
  if (!std::filesystem::exists(folder)) return;
  for (const auto& file : std::filesystem::recursive_directory_iterator(folder)) {
    if (!file.path().filename().string().starts_with(".tambra-")) continue;
    throw std::runtime_error("a file without a name is left");
  }
  std::filesystem::remove_all(folder);
}

std::vector<CWork> Readings(const NSTolbrook::NativePath& path,
                            const NSTolbrook::NativePath& folder) {
  static const CTextResources texts;
  const auto media = OpenPackageFile(path).fMedia;
  const auto entries = CPackageReader(media).ReadEntries();
  const auto sample = std::ranges::find(entries, kSampleEntryType, &CPackageEntry::TypeCode);
  const auto shortcut = std::make_shared<CMemoryMedia>(NSTest::MakeShortcut(u"a\\b", u"C:\\a\\b"));
  const auto store = FilledStore();
  std::vector<CWork> works{
      {"verify", [=] { return Verified(media); }},
      {"window", [=] { return Shown(texts, path); }},
      {"extract", [=] { return Extracted(entries, folder); }, [=] { Clear(folder); }},
      {"dump of a package", [=] { return Dumped(texts, media); }},
      {"dump of a store", [=] { return Dumped(texts, store); }},
      {"diff",
       [=] {
         return Bytes(ComparePackages(
             media, media, [](const CChange&) {}, [] {}));
       }},
      {"block store", [] { return BytesOf(*FilledStore()); }},
      {"texts, alerts and menus", AlertsAndMenus},
      {"information", Informed},
      {"shortcut", [=] { return NSTolbrook::CShortcut::Parse(*shortcut), Bytes(); }}};
  if (sample == entries.end()) throw std::runtime_error("the package has no sample");
  works.push_back({"decode", [stream = (*sample)->Data()] {
                     CMemoryMedia source;
                     RebuildSource(stream, source, [] {});
                     return BytesOf(source);
                   }});
  return works;
}

struct CCounts {
  std::size_t fWorks = 0, fAllocations = 0, fRuns = 0, fOutOfMemory = 0, fDone = 0;
};

/// Runs `work` with the allocation `at` failing; throws when that ends otherwise than it may.
void TryFault(const CWork& work, const Bytes& expected, std::size_t at, bool ever,
              CCounts& counts) {
  ++counts.fRuns;
  work.fBefore();
  bool same = true;
  const std::ptrdiff_t before = gLive;
  gCount = 0;
  gFailEver = ever;
  gFailAt = at;
  try {
    same = work.fRun() == expected;
    gFailAt = 0;
    ++counts.fDone;
  } catch (const std::bad_alloc&) {
    gFailAt = 0;
    ++counts.fOutOfMemory;
  } catch (const std::exception& e) {
    gFailAt = 0;
    throw std::runtime_error(fmt::format("allocation {}: {}", at, e.what()));
  }
  if (!same) throw std::runtime_error(fmt::format("allocation {}: other bytes", at));
  if (gLive != before) throw std::runtime_error(fmt::format("allocation {}: memory is left", at));
}

void TryEach(const CWork& work, std::size_t most, CCounts& counts) {
  ++counts.fWorks;
  work.fBefore();
  const Bytes expected = work.fRun();  // a first run builds what is built once
  work.fBefore();
  gCount = 0;
  static_cast<void>(work.fRun());
  const std::size_t allocations = gCount;
  counts.fAllocations += allocations;
  const std::size_t step = most == 0 ? 1 : 1 + allocations / most;
  for (std::size_t at = 1; at <= allocations; at += step) {
    TryFault(work, expected, at, false, counts);
    TryFault(work, expected, at, true, counts);
  }
  work.fBefore();
}

/// The work on one file of each kind and extension.
std::vector<CWork> WorkOn(const CSubject& subject) {
  std::vector<CWork> works;
  std::set<std::pair<std::int32_t, std::string>> kinds;
  for (const CScannedFile& file : subject.Files()) {
    const auto* const packer = CFileTypeRegistry::Instance().FindPacker(file.fItem);
    const NSTolbrook::NativePath& path = file.fItem.Path();
    if (packer == nullptr) continue;
    if (!kinds.emplace(packer->EntryTypeCode(), path.extension().string()).second) continue;
    works.push_back(
        {"verify " + path.string(), [&subject, &file] { return subject.Verify(file), Bytes(); }});
    works.push_back({"pack " + path.string(), [&subject, &file] { return subject.Pack(file); }});
  }
  return works;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    fmt::print(stderr, "usage: failing_allocations FOLDER PACKAGE MOST\n");
    return 2;
  }
  CCounts counts;
  const NSTolbrook::NativePath folder = argv[1];
  const CSubject subject(folder / "library");
  std::vector<CWork> works = WorkOn(subject);
  for (CWork& work : Readings(argv[2], folder / "extracted")) works.push_back(std::move(work));
  for (const CWork& work : works) {
    try {
      TryEach(work, std::stoul(argv[3]), counts);
    } catch (const std::exception& e) {
      fmt::print(stderr, "{}: {}\n", work.fName, e.what());
      return 1;
    }
  }
  fmt::print(
      "{{\"works\": {}, \"allocations\": {}, \"runs\": {}, \"out_of_memory\": {}, "
      "\"done_all_the_same\": {}}}\n",
      counts.fWorks, counts.fAllocations, counts.fRuns, counts.fOutOfMemory, counts.fDone);
}
