#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "package/StreamCache.h"

namespace NSBigFilePackage {

/// What a stream cache knows of its streams. As bytes, all integers big-endian:
///
///   u32 mark, u32 version, 32 bytes seed, u64 saves, u32 record count;
///   the records by ascending key: 16 bytes key, u32 identifier, u64 length, 16 bytes digest,
///   u64 last use, u8 note;
///   16 bytes digest of all before it, under the seed's secret
struct CCacheCatalogue {
  CDigestSecret::CSeed fSeed{};
  std::uint64_t fSaves = 0;
  std::map<CDigest, CStreamCache::CRecord> fRecords;
};

std::vector<std::uint8_t> SerialiseCacheCatalogue(const CCacheCatalogue& catalogue);

/// Throws XRead, and XFormatViolation when the bytes are not those of a catalogue of this version,
/// whole and unchanged.
CCacheCatalogue ReadCacheCatalogue(const IMedia& media);

}  // namespace NSBigFilePackage
