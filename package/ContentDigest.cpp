#include "package/ContentDigest.h"

#include <algorithm>
#include <new>
#include <random>
#include <xxhash.h>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"

namespace NSBigFilePackage {

namespace {

/// Fits the processor's second cache, and is long enough for calls of the system not to count.
constexpr std::size_t kPieceLength = 131'072;

CDigest Stored(const XXH128_hash_t& hash) {
  CDigest digest;
  NSTolbrook::StoreBigEndian(std::span<std::uint8_t>(digest), std::uint64_t{hash.high64});
  NSTolbrook::StoreBigEndian(std::span<std::uint8_t>(digest).subspan(8), std::uint64_t{hash.low64});
  return digest;
}

}  // namespace

CDigestSecret::CDigestSecret(const CSeed& seed) : fSeed(seed) {
  static_assert(sizeof(fBytes) >= XXH3_SECRET_SIZE_MIN);
  for (std::size_t at = 0; at < fBytes.size(); at += sizeof(CDigest)) {
    const CDigest part = Stored(XXH3_128bits_withSeed(seed.data(), seed.size(), at));
    std::ranges::copy(part, fBytes.begin() + static_cast<std::ptrdiff_t>(at));
  }
}

CDigestSecret::CSeed CDigestSecret::NewSeed() {
  std::random_device device;
  CSeed seed;
  std::ranges::generate(seed, [&device] { return static_cast<std::uint8_t>(device()); });
  return seed;
}

CDigester::CDigester(const CDigestSecret& secret) : fState(XXH3_createState()) {
  if (fState == nullptr) throw std::bad_alloc();
  XXH3_128bits_reset_withSecret(fState.get(), secret.Bytes().data(), secret.Bytes().size());
}

void CDigester::Add(std::span<const std::uint8_t> bytes) {
  XXH3_128bits_update(fState.get(), bytes.data(), bytes.size());
}

CDigest CDigester::Finish() const { return Stored(XXH3_128bits_digest(fState.get())); }

void CDigester::CFree::operator()(XXH3_state_s* state) const { XXH3_freeState(state); }

void ReadThrough(const IMedia& media,
                 const std::function<void(std::span<const std::uint8_t>)>& take) {
  const std::uint64_t size = media.Size();
  const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(kPieceLength, size));
  const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(length);
  for (std::uint64_t position = 0; position < size;) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(length, size - position));
    const std::span<std::uint8_t> piece(buffer.get(), wanted);
    ReadExactly(media, position, piece);
    take(piece);
    position += wanted;
  }
}

CDigest DigestOf(const IMedia& media, const CDigestSecret& secret,
                 const std::function<void()>& checkStop) {
  CDigester digester(secret);
  ReadThrough(media, [&](std::span<const std::uint8_t> piece) {
    if (checkStop) checkStop();
    digester.Add(piece);
  });
  return digester.Finish();
}

}  // namespace NSBigFilePackage
