#include "app/PackCache.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "codecs/RawLibraryDecoder.h"
#include "package/StdioMedia.h"

namespace NSTambraPacking {

using NSBigFilePackage::CDigest;
using NSBigFilePackage::CDigester;
using NSBigFilePackage::CDigestSecret;
using NSBigFilePackage::CStdioMedia;
using NSBigFilePackage::CStreamCache;
using NSBigFilePackage::IMedia;
using NSBigFilePackage::SharedMedia;

namespace {

constexpr const char* kFileName = "samples.cache";
constexpr std::array kRemarks = {ERemark::kSamplesConverted, ERemark::kSourceNotRestorable,
                                 ERemark::kLoopStructureOnly};

std::uint8_t StoredRemarks(const std::set<ERemark>& remarks) {
  std::uint8_t bits = 0;
  for (std::size_t i = 0; i < kRemarks.size(); ++i) {
    if (remarks.contains(kRemarks[i])) bits = static_cast<std::uint8_t>(bits | 1U << i);
  }
  return bits;
}

void AddRemarks(std::uint8_t bits, std::set<ERemark>& remarks) {
  for (std::size_t i = 0; i < kRemarks.size(); ++i) {
    if ((bits >> i & 1U) != 0) remarks.insert(kRemarks[i]);
  }
}

/// The program's own bytes, and the library that decodes for it: a build that packs or verifies
/// otherwise, be it by a mistake, has another one.
CDigest DigestOfProgram(const CDigestSecret& secret) {
  CDigester digester(secret);
  const auto program = CStdioMedia::OpenForReading(NSTolbrook::ProgramFile());
  NSBigFilePackage::ReadThrough(*program,
                                [&](std::span<const std::uint8_t> piece) { digester.Add(piece); });
  const std::string library = SoundLibraryVersion();
  digester.Add({reinterpret_cast<const std::uint8_t*>(library.data()), library.size()});
  return digester.Finish();
}

}  // namespace

CPackCache::CPackCache(NSTolbrook::NativePath folder, std::uint64_t limit)
    : fFolder(std::move(folder)), fLimit(limit) {}

CPackCache::~CPackCache() = default;

NSTolbrook::NativePath CPackCache::File(const NSTolbrook::NativePath& folder) {
  return folder / kFileName;
}

void CPackCache::Open() {
  try {
    NSTolbrook::MakeFolders(fFolder);
    fCache = CStreamCache::Open(File(fFolder), fLimit);
    fProgram = DigestOfProgram(fCache->Secret());
    if (fCache->WasDamaged()) fNotes.push_back({kCacheBegunAnew, {}});
  } catch (const std::exception& e) {
    NoteTrouble(e);
    fCache.reset();
  }
}

void CPackCache::Close() { fCache.reset(); }

SharedMedia CPackCache::Pack(NSTolbrook::FourCharCode kind, const NSTolbrook::CFileItem& source,
                             CPackContext& context, std::optional<CCacheTicket>& ticket,
                             const std::function<SharedMedia()>& pack) {
  ticket.reset();
  if (!IsOpen() || kind == 0) return pack();
  const std::optional<CDigest> key = KeyOf(kind, source, context);
  if (!key) return pack();
  CStreamCache::CFound found;
  const auto search = fCache->Find(*key, found, [&context] { context.CheckStop(); });
  if (search == CStreamCache::ESearch::kFound) {
    ++fTaken;
    AddRemarks(found.fNote, context.fRemarks);
    ticket = CCacheTicket{*key, true, found.fDigest, found.fNote};
    return std::move(found.fMedia);
  }
  if (search == CStreamCache::ESearch::kDamaged) ++fDamaged;
  SharedMedia packed = pack();
  ++fPacked;
  // Of a file that changes meanwhile nobody knows which bytes were packed.
  if (KeyOf(kind, source, context) == key) {
    ticket = CCacheTicket{*key, false, std::nullopt, StoredRemarks(context.fRemarks)};
  }
  return packed;
}

std::optional<CDigest> CPackCache::KeyOf(NSTolbrook::FourCharCode kind,
                                         const NSTolbrook::CFileItem& source,
                                         const CPackContext& context) const {
  CDigester digester(fCache->Secret());
  std::array<std::uint8_t, 12> head;
  try {
    const SharedMedia media = OpenSource(source);
    if (media == nullptr) return std::nullopt;
    NSTolbrook::StoreBigEndian(std::span(head), kind);
    NSTolbrook::StoreBigEndian(std::span(head).subspan(4), media->Size());
    digester.Add(fProgram);
    digester.Add(head);
    NSBigFilePackage::ReadThrough(*media, [&](std::span<const std::uint8_t> piece) {
      context.CheckStop();
      digester.Add(piece);
    });
  } catch (const NSMordel::XSilentAbort&) {
    throw;
  } catch (const NSMordel::CExceptionBodyMixin&) {
    return std::nullopt;  // packing it tells what is wrong
  }
  return digester.Finish();
}

CDigest CPackCache::DigestOf(const IMedia& media, const std::function<void()>& checkStop) const {
  return NSBigFilePackage::DigestOf(media, fCache->Secret(), checkStop);
}

void CPackCache::Keep(const std::vector<CCandidate>& candidates,
                      const std::function<bool()>& stopRequested) {
  if (!IsOpen()) return;
  if (fDamaged > 0) {
    fNotes.push_back({kCacheDamaged, {NSTolbrook::TextFromUtf8(std::to_string(fDamaged))}});
  }
  try {
    std::vector<CCandidate> wanted;
    std::uint64_t bytes = 0;
    for (const CCandidate& candidate : candidates) {
      if (candidate.fTicket->fIsTaken || !candidate.fTicket->fProven) continue;
      wanted.push_back(candidate);
      bytes += CStreamCache::RoomFor(candidate.fData->Size());
    }
    std::uint64_t room = fCache->MakeRoom(std::min(bytes, FreeRoom()));
    const auto checkStop = [&stopRequested] {
      if (stopRequested()) throw NSMordel::XSilentAbort("User aborted");
    };
    for (const auto& [ticket, data] : wanted) {
      const std::uint64_t needed = CStreamCache::RoomFor(data->Size());
      if (needed > room) continue;
      if (fCache->Contains(ticket->fKey)) continue;  // two files with the same bytes
      if (!fCache->Keep(ticket->fKey, *data, *ticket->fProven, ticket->fRemarks, checkStop)) {
        continue;
      }
      room -= needed;
      ++fKept;
    }
    checkStop();
    fCache->Save();
  } catch (const NSMordel::XSilentAbort&) {
    fKept = 0;  // saving would have the user wait for the disk
  } catch (const std::exception& e) {
    fKept = 0;
    NoteTrouble(e);
  }
}

void CPackCache::NoteTrouble(const std::exception& trouble) {
  fNotes.push_back({kCacheNotUsed, {NSTolbrook::TextFromUtf8(trouble.what())}});
}

/// Half of what is free on the disk: the cache is the last thing to fill it.
std::uint64_t CPackCache::FreeRoom() const {
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(fFolder, error);
  return error ? 0 : space.available / 2;
}

}  // namespace NSTambraPacking
