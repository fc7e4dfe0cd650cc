#include "package/CacheCatalogue.h"

#include <algorithm>
#include <span>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FourCharCode.h"

namespace NSBigFilePackage {

namespace {

constexpr NSTolbrook::FourCharCode kMark = NSTolbrook::MakeFourCharCode("TCat");
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kDigestSize = sizeof(CDigest);
constexpr std::size_t kHeadSize = 4 + 4 + sizeof(CDigestSecret::CSeed) + 8 + 4;
constexpr std::size_t kRecordSize = kDigestSize + 4 + 8 + kDigestSize + 8 + 1;

template <std::unsigned_integral T>
void Append(std::vector<std::uint8_t>& bytes, T value) {
  bytes.resize(bytes.size() + sizeof(T));
  NSTolbrook::StoreBigEndian(std::span(bytes).last(sizeof(T)), value);
}

template <std::size_t size>
void Append(std::vector<std::uint8_t>& bytes, const std::array<std::uint8_t, size>& value) {
  bytes.insert(bytes.end(), value.begin(), value.end());
}

/// Takes fields from the front; that there are enough is known before.
class CFields {
 public:
  explicit CFields(std::span<const std::uint8_t> bytes) : fBytes(bytes) {}

  template <std::unsigned_integral T>
  T Take() {
    return NSTolbrook::LoadBigEndian<T>(TakeBytes(sizeof(T)));
  }
  template <class Array>
  Array TakeArray() {
    Array array;
    std::ranges::copy(TakeBytes(array.size()), array.begin());
    return array;
  }

 private:
  std::span<const std::uint8_t> TakeBytes(std::size_t count) {
    const auto taken = fBytes.first(count);
    fBytes = fBytes.subspan(count);
    return taken;
  }
  std::span<const std::uint8_t> fBytes;
};

CDigest DigestOfBytes(std::span<const std::uint8_t> bytes, const CDigestSecret::CSeed& seed) {
  const CDigestSecret secret(seed);
  CDigester digester(secret);
  digester.Add(bytes);
  return digester.Finish();
}

void Require(bool isRight, const char* fault) {
  if (!isRight) throw NSMordel::XFormatViolation(fault);
}

}  // namespace

std::vector<std::uint8_t> SerialiseCacheCatalogue(const CCacheCatalogue& catalogue) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(kHeadSize + catalogue.fRecords.size() * kRecordSize + kDigestSize);
  Append(bytes, std::uint32_t{kMark});
  Append(bytes, kVersion);
  Append(bytes, catalogue.fSeed);
  Append(bytes, catalogue.fSaves);
  Append(bytes, static_cast<std::uint32_t>(catalogue.fRecords.size()));
  for (const auto& [key, record] : catalogue.fRecords) {
    Append(bytes, key);
    Append(bytes, record.fIdentifier);
    Append(bytes, record.fLength);
    Append(bytes, record.fDigest);
    Append(bytes, record.fLastUse);
    Append(bytes, record.fNote);
  }
  Append(bytes, DigestOfBytes(bytes, catalogue.fSeed));
  return bytes;
}

CCacheCatalogue ReadCacheCatalogue(const IMedia& media) {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(media.Size()));
  ReadExactly(media, 0, bytes);
  Require(bytes.size() >= kHeadSize + kDigestSize, "the cache's catalogue is too short");
  CFields fields(bytes);
  Require(fields.Take<std::uint32_t>() == kMark, "the cache's catalogue has no mark");
  Require(fields.Take<std::uint32_t>() == kVersion, "the cache is of another version");
  CCacheCatalogue catalogue;
  catalogue.fSeed = fields.TakeArray<CDigestSecret::CSeed>();
  catalogue.fSaves = fields.Take<std::uint64_t>();
  const std::uint64_t count = fields.Take<std::uint32_t>();
  Require(bytes.size() == kHeadSize + count * kRecordSize + kDigestSize,
          "the cache's catalogue has another length than its records");
  const auto content = std::span<const std::uint8_t>(bytes).first(bytes.size() - kDigestSize);
  Require(std::ranges::equal(std::span(bytes).last(kDigestSize),
                             DigestOfBytes(content, catalogue.fSeed)),
          "the cache's catalogue is damaged");
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto key = fields.TakeArray<CDigest>();
    CStreamCache::CRecord record;
    record.fIdentifier = fields.Take<std::uint32_t>();
    record.fLength = fields.Take<std::uint64_t>();
    record.fDigest = fields.TakeArray<CDigest>();
    record.fLastUse = fields.Take<std::uint64_t>();
    record.fNote = fields.Take<std::uint8_t>();
    catalogue.fRecords.emplace_hint(catalogue.fRecords.end(), key, record);
  }
  return catalogue;
}

}  // namespace NSBigFilePackage
