#include "package/PackageComposer.h"

#include <algorithm>
#include <span>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/MemoryMedia.h"
#include "package/PackageFormat.h"
#include "package/PackageIndex.h"
#include "package/SpecialFiles.h"
#include "package/SplashCheck.h"

namespace NSTambraPacking {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CMemoryMedia;
using NSBigFilePackage::IMedia;

namespace {

constexpr std::uint64_t kPieceLength = 1 << 20;

void RequireData(const CPackageEntry& entry) {
  if (entry.Data() != nullptr) return;
  throw NSMordel::XOpen("the data of the entry could not be opened",
                        FileContext(entry.Path(), entry.TypeCode()));
}

void ReadPiece(const CPackageEntry& entry, std::uint64_t position, std::span<std::uint8_t> piece) {
  try {
    NSBigFilePackage::ReadExactly(*entry.Data(), position, piece);
  } catch (NSMordel::CExceptionBodyMixin& failure) {
    for (auto& [key, value] : FileContext(entry.Path(), entry.TypeCode())) {
      failure.AddContext(key, value);
    }
    throw;
  }
}

std::uint32_t HeaderLength(const CPackageHeader& header) {
  CMemoryMedia media;
  CMediaCursor cursor(media);
  WritePackageHeader(cursor, header);
  return FitPackageLimit(cursor.Position(), "the header's length");
}

}  // namespace

/// What is to be written: the entries that stay and the header, complete once they are laid out.
struct CPackageComposer::CPlan {
  CPackageHeader fHeader;
  CEntries fEntries;
  /// Never null when the walk is done; one of fEntries.
  std::shared_ptr<CPackageEntry> fSplash;
  /// One for each of fEntries.
  std::vector<CIndexEntry> fIndex;

  void CheckRequiredItems() const;
  void LayOutData();
  void WriteFront(IMedia& output);
};

void CPackageComposer::CPlan::CheckRequiredItems() const {
  if (fHeader.fTambraName.empty()) {
    throw NSMordel::XNotFound("tambra name not found", {{kTambraNameKey, ""}});
  }
  if (fSplash == nullptr) {
    throw NSMordel::XNotFound("splash file not found", {{kSplashKey, ""}});
  }
}

/// Gives each entry its place in the data region and notes that of the splash in the header.
void CPackageComposer::CPlan::LayOutData() {
  fIndex.reserve(fEntries.size());
  std::uint64_t end = 0;
  for (const auto& entry : fEntries) {
    RequireData(*entry);
    const std::uint64_t start = end;
    const std::uint64_t size = entry->Data()->Size();
    // Each sum is checked before the next one, so none of them can wrap.
    FitPackageLimit(size, "an entry's size in bytes");
    end = FitPackageLimit(start + size, "the size of the package's data in bytes");
    fIndex.push_back({entry->Path(), entry->TypeCode(), static_cast<std::uint32_t>(start),
                      static_cast<std::uint32_t>(size), entry->Flag()});
    if (entry == fSplash) {
      fHeader.fSplashOffset = fIndex.back().fOffset;
      fHeader.fSplashSize = fIndex.back().fSize;
    }
  }
  fHeader.fFileCount = FitPackageLimit(fIndex.size(), "the number of entries");
}

/// Writes header and index. They are put together in memory first: what does not fit is refused
/// before anything is written, and the file is written from its start to its end.
void CPackageComposer::CPlan::WriteFront(IMedia& output) {
  fHeader.fIndexStart = HeaderLength(fHeader);
  CMemoryMedia front;
  CMediaCursor cursor(front, fHeader.fIndexStart);
  for (const CIndexEntry& entry : fIndex) WriteIndexEntry(cursor, entry);
  fHeader.fDataStart = FitPackageLimit(cursor.Position(), "the start of the data in bytes");
  cursor.SetPosition(0);
  WritePackageHeader(cursor, fHeader);
  output.Write(0, front.Bytes());
}

CPackageComposer::CPackageComposer(ISpecialFiles& specialFiles, const IPictureReader& pictureReader,
                                   CTambraPacker* job, ITambraPackingProgress* progress)
    : fSpecialFiles(specialFiles),
      fPictureReader(pictureReader),
      fReport(job, progress, kComposePhase) {}

CPackageHeader CPackageComposer::Compose(const CEntries& entries, IMedia& output) {
  fReport.CheckStop();
  fReport.Begin(entries.size());
  CPlan plan = WalkEntries(entries);
  plan.CheckRequiredItems();
  plan.LayOutData();
  plan.WriteFront(output);
  WriteData(plan, output);
  fReport.End();
  return plan.fHeader;
}

CPackageComposer::CPlan CPackageComposer::WalkEntries(const CEntries& entries) {
  CPlan plan;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const CPackageEntry& entry = *entries[i];
    fReport.Item(i, entry);
    const ESpecialFile kind = fSpecialFiles.KindOf(entry.Path());
    if (kind != ESpecialFile::kNone) RequireData(entry);
    if (kind == ESpecialFile::kInformation) {
      fSpecialFiles.TakeInformation(entry.Path(), entry.Data());
      continue;
    }
    if (kind == ESpecialFile::kSplash) {
      CheckSplashSize(entry.Path(), entry.TypeCode(), entry.Data(), fPictureReader);
      if (plan.fSplash == nullptr) plan.fSplash = entries[i];
    }
    plan.fEntries.push_back(entries[i]);
  }
  fSpecialFiles.FillHeader(plan.fHeader);
  return plan;
}

void CPackageComposer::WriteData(const CPlan& plan, IMedia& output) const {
  std::vector<std::uint8_t> buffer(kPieceLength);
  CMediaCursor cursor(output, plan.fHeader.fDataStart);
  for (std::size_t i = 0; i < plan.fEntries.size(); ++i) {
    fReport.CheckStop();
    const std::uint64_t size = plan.fIndex[i].fSize;
    for (std::uint64_t done = 0; done < size;) {
      if (done > 0) fReport.CheckStop();
      const auto length = static_cast<std::size_t>(std::min(kPieceLength, size - done));
      const std::span<std::uint8_t> piece = std::span(buffer).first(length);
      ReadPiece(*plan.fEntries[i], done, piece);
      cursor.Write(piece);
      done += length;
    }
  }
}

}  // namespace NSTambraPacking
