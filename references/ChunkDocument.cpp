#include "references/ChunkDocument.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/MemoryMedia.h"
#include "references/DeviceDescriptionChunk.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::IMedia;
using NSMordel::XFormatViolation;
using NSTolbrook::CChunkInfo;
using NSTolbrook::CIFFReader2;
using NSTolbrook::EChunkKind;

constexpr auto kReferenceID = NSTolbrook::MakeFourCharCode("REFE");
constexpr auto kDescriptionID = NSTolbrook::MakeFourCharCode("DESC");
constexpr auto kDeviceGroupType = NSTolbrook::MakeFourCharCode("DEVL");

/// From a chunk's first byte.
constexpr std::uint64_t kSizeOffset = 4;
constexpr std::uint64_t kBodyOffset = NSTolbrook::kPlainHeaderLength;

constexpr std::size_t kCopyLength = 65536;

/// The pad byte behind a chunk of odd size may be missing at the end of its range.
std::uint32_t PadLength(const CIFFReader2& reader, const CChunkInfo& chunk) {
  const std::uint64_t end = chunk.fPosition + kBodyOffset + chunk.fSize;
  return (chunk.fSize & 1) != 0 && end < reader.Size() ? 1 : 0;
}

/// Reads a body, whose faults then say where it stands.
void ReadBody(NSTolbrook::CABCFormat& body, const CIFFReader2& reader, const CChunkInfo& chunk) {
  const NSBigFilePackage::SharedMedia data = reader.OpenData(chunk);
  CMediaCursor input(*data);
  try {
    body.Read(input);
  } catch (NSMordel::CExceptionBodyMixin& fault) {
    fault.AddContext("chunk_offset", std::to_string(reader.Start() + chunk.fPosition));
    throw;
  }
}

void Copy(const IMedia& source, std::uint64_t from, std::uint64_t to, CMediaCursor& output) {
  std::vector<std::uint8_t> buffer(
      static_cast<std::size_t>(std::min<std::uint64_t>(kCopyLength, to - from)));
  while (from < to) {
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), to - from));
    const auto piece = std::span(buffer).first(length);
    NSBigFilePackage::ReadExactly(source, from, piece);
    output.Write(piece);
    from += length;
  }
}

std::vector<std::uint8_t> SizeBytes(std::uint32_t size) {
  std::vector<std::uint8_t> bytes(sizeof(size));
  NSTolbrook::StoreBigEndian(std::span<std::uint8_t>(bytes), size);
  return bytes;
}

}  // namespace

CChunkDocument::CChunkDocument(NSBigFilePackage::SharedMedia media, EChunkDocumentKind kind)
    : fMedia(std::move(media)) {
  Walk(kind);
}

void CChunkDocument::Walk(EChunkDocumentKind kind) {
  CIFFReader2 outer(fMedia);
  const auto document = outer.FirstChunk();
  if (!document || document->fKind == EChunkKind::kPlain) {
    throw XFormatViolation("a patch or song must be a group chunk");
  }
  const std::uint64_t end = kBodyOffset + document->fSize;
  if (fMedia->Size() > end + PadLength(outer, *document)) {
    throw XFormatViolation("there are bytes behind the outer chunk, from offset " +
                           std::to_string(end));
  }
  fType = document->fCode;
  std::vector<CLevel> levels;
  Enter(levels, outer, *document);
  while (!levels.empty()) {
    CLevel& level = levels.back();
    const auto chunk =
        level.fStarted ? level.fReader.NextChunk(level.fCurrent) : level.fReader.FirstChunk();
    if (!chunk) {
      levels.pop_back();
      continue;
    }
    level.fStarted = true;
    level.fCurrent = *chunk;
    if (chunk->fKind != EChunkKind::kPlain) {
      Enter(levels, CIFFReader2(level.fReader), *chunk);
    } else if (chunk->fCode == kReferenceID) {
      ReadReference(levels);
    } else if (chunk->fCode == kDescriptionID) {
      ReadDescription(levels, kind);
    }
  }
}

void CChunkDocument::Enter(std::vector<CLevel>& levels, const CIFFReader2& reader,
                           const CChunkInfo& group) const {
  const std::uint64_t position = reader.Start() + group.fPosition;
  if (levels.size() == kGreatestGroupDepth) {
    throw XFormatViolation("the groups are nested too deep at offset " + std::to_string(position));
  }
  levels.push_back({reader.EnterGroup(group), group, position, PadLength(reader, group), kNoPlace,
                    false, CChunkInfo{}});
}

void CChunkDocument::ReadReference(std::vector<CLevel>& levels) {
  std::size_t known = levels.size();
  while (known > 0 && levels[known - 1].fPlace == kNoPlace) --known;
  std::size_t parent = known == 0 ? kNoPlace : levels[known - 1].fPlace;
  for (CLevel& group : std::span(levels).subspan(known)) {
    group.fPlace = fPlaces.size();
    fPlaces.push_back({group.fPosition, group.fGroup.fSize, group.fPad, parent, kNoPlace});
    parent = group.fPlace;
  }
  const CLevel& level = levels.back();
  const CChunkInfo& chunk = level.fCurrent;
  fPlaces.push_back({level.fReader.Start() + chunk.fPosition, chunk.fSize,
                     PadLength(level.fReader, chunk), parent, fReferences.size()});
  CSF10ReferenceChunk body;
  ReadBody(body, level.fReader, chunk);
  fReferences.push_back(std::move(body));
}

void CChunkDocument::ReadDescription(const std::vector<CLevel>& levels, EChunkDocumentKind kind) {
  const CLevel& level = levels.back();
  if (kind == EChunkDocumentKind::kPatch) {
    if (levels.size() > 1 || !fDeviceNames.empty()) return;
    CSF10DevicePatchDescriptionChunk body;
    ReadBody(body, level.fReader, level.fCurrent);
    fDeviceNames.push_back(body.Description().fName);
  } else if (std::any_of(levels.begin(), levels.end(), [](const CLevel& outer) {
               return outer.fGroup.fCode == kDeviceGroupType;
             })) {
    CSF10DeviceDescriptionChunk body;
    ReadBody(body, level.fReader, level.fCurrent);
    fDeviceNames.push_back(body.Description().fName);
  }
}

std::vector<std::uint8_t> CChunkDocument::BodyOf(std::size_t reference,
                                                 const CSampleReference& content) const {
  NSBigFilePackage::CMemoryMedia body;
  CMediaCursor output(body);
  CSF10ReferenceChunk(fReferences[reference].Kind(), content).Write(output);
  return body.TakeBytes();
}

/// Children stand behind their groups in fPlaces, so that going backwards a group's new size is
/// complete when it is met. At one position the edit of the inner chunk comes first.
std::vector<CChunkDocument::CEdit> CChunkDocument::Edits(
    std::span<const CSampleReference> replacements) const {
  std::vector<CEdit> edits;
  std::vector<std::int64_t> growth(fPlaces.size(), 0);
  for (std::size_t i = fPlaces.size(); i-- > 0;) {
    const CPlace& place = fPlaces[i];
    std::vector<std::uint8_t> body;
    const bool isReference = place.fReference != kNoPlace;
    if (isReference) {
      body = BodyOf(place.fReference, replacements[place.fReference]);
      growth[i] = static_cast<std::int64_t>(body.size()) - place.fSize;
    }
    const std::int64_t size = std::int64_t{place.fSize} + growth[i];
    if (size > std::numeric_limits<std::uint32_t>::max()) {
      throw XFormatViolation("the chunk at offset " + std::to_string(place.fPosition) +
                             " no longer fits its 32-bit size");
    }
    const bool wasOdd = (place.fSize & 1) != 0;
    const std::uint32_t pad = (size & 1) == 0 ? 0 : wasOdd ? place.fPad : 1;
    if (place.fParent != kNoPlace) {
      growth[place.fParent] += growth[i] + std::int64_t{pad} - std::int64_t{place.fPad};
    }
    const std::uint64_t end = place.fPosition + kBodyOffset + place.fSize;
    edits.push_back({place.fPosition + kSizeOffset, sizeof(std::uint32_t),
                     SizeBytes(static_cast<std::uint32_t>(size))});
    if (isReference) {
      edits.push_back({place.fPosition + kBodyOffset, place.fSize, std::move(body)});
    }
    if (isReference || pad != place.fPad) {
      edits.push_back({end, place.fPad, std::vector<std::uint8_t>(pad, 0)});
    }
  }
  std::stable_sort(edits.begin(), edits.end(),
                   [](const CEdit& a, const CEdit& b) { return a.fPosition < b.fPosition; });
  return edits;
}

void CChunkDocument::Write(CMediaCursor& output,
                           std::span<const CSampleReference> replacements) const {
  if (replacements.size() != fReferences.size()) {
    throw NSMordel::XIllegalCallSequence("each reference of a document needs its replacement");
  }
  std::uint64_t position = 0;
  for (const CEdit& edit : Edits(replacements)) {
    Copy(*fMedia, position, edit.fPosition, output);
    output.Write(edit.fInserted);
    position = edit.fPosition + edit.fRemoved;
  }
  Copy(*fMedia, position, fMedia->Size(), output);
}

}  // namespace NSTambraPacking
