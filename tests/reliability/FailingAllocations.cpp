// Lets memory run out inside every parser and packer: failing_allocations FOLDER MOST. Each kind of
// file of the demo library, written to the empty FOLDER, is verified and packed again and again
// while the first, second, ... allocation fails, at MOST places of each (0: at all of them), once
// or for ever. That must end with std::bad_alloc or the bytes of a run without a fault, and leave
// no memory behind. Prints what it counted as JSON.

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/FolderScan.h"
#include "app/demo/DemoLibrary.h"
#include "filetypes/FileTypeRegistry.h"
#include "package/MemoryMedia.h"
#include "package/PackageEntry.h"
#include "references/ReferenceLookup.h"
#include "references/StandardReferenceRelocator.h"
#include "references/StandardReferenceResolver.h"

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
using Bytes = std::vector<std::uint8_t>;

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
    NSBigFilePackage::CMemoryMedia media;
    CFileTypeRegistry::Instance().FindPacker(file.fItem)->Pack(file.fItem, media, context);
    Bytes bytes(static_cast<std::size_t>(media.Size()));
    ReadExactly(media, 0, bytes);
    return bytes;
  }

 private:
  std::vector<CScannedFile> fFiles;
  CEntryTree fTree;
  IncludedPaths fIncluded;
  CReferenceLookup fLookup{fTree};
  CStandardReferenceResolver fResolver{fLookup, u"Demo", fIncluded};
  CStandardReferenceRelocator fRelocator{fLookup, u"Demo", u""};
};

struct CCounts {
  std::size_t fKinds = 0, fAllocations = 0, fRuns = 0, fOutOfMemory = 0, fDone = 0;
};

/// Runs `work` with the allocation `at` failing; throws when that ends otherwise than it may.
template <class Work>
void TryFault(const Work& work, const Bytes& expected, std::size_t at, bool ever, CCounts& counts) {
  ++counts.fRuns;
  bool same = true;
  const std::ptrdiff_t before = gLive;
  gCount = 0;
  gFailEver = ever;
  gFailAt = at;
  try {
    same = work() == expected;
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

template <class Work>
void TryEach(const Work& work, std::size_t most, CCounts& counts) {
  const Bytes expected = work();  // a first run builds what is built once
  gCount = 0;
  static_cast<void>(work());
  const std::size_t allocations = gCount;
  counts.fAllocations += allocations;
  const std::size_t step = most == 0 ? 1 : 1 + allocations / most;
  for (std::size_t at = 1; at <= allocations; at += step) {
    TryFault(work, expected, at, false, counts);
    TryFault(work, expected, at, true, counts);
  }
}

/// One file of each kind and extension.
std::map<std::pair<std::int32_t, std::string>, const CScannedFile*> Kinds(const CSubject& subject) {
  std::map<std::pair<std::int32_t, std::string>, const CScannedFile*> kinds;
  for (const CScannedFile& file : subject.Files()) {
    const auto* const packer = CFileTypeRegistry::Instance().FindPacker(file.fItem);
    if (packer == nullptr) continue;
    kinds.try_emplace({packer->EntryTypeCode(), file.fItem.Path().extension().string()}, &file);
  }
  return kinds;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    fmt::print(stderr, "usage: failing_allocations FOLDER MOST\n");
    return 2;
  }
  CCounts counts;
  const CSubject subject(argv[1]);
  for (const auto& [kind, file] : Kinds(subject)) {
    ++counts.fKinds;
    try {
      TryEach([&, file = file] { return subject.Verify(*file), Bytes(); }, std::stoul(argv[2]),
              counts);
      TryEach([&, file = file] { return subject.Pack(*file); }, std::stoul(argv[2]), counts);
    } catch (const std::exception& e) {
      fmt::print(stderr, "{}: {}\n", file->fItem.Path().string(), e.what());
      return 1;
    }
  }
  fmt::print(
      "{{\"kinds_of_files\": {}, \"allocations\": {}, \"runs\": {}, \"out_of_memory\": {}, "
      "\"done_all_the_same\": {}}}\n",
      counts.fKinds, counts.fAllocations, counts.fRuns, counts.fOutOfMemory, counts.fDone);
}
