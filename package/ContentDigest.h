#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "Parts/TolbrookPackage/Core/Media.h"

struct XXH3_state_s;

namespace NSBigFilePackage {

/// 128 bits that stand for bytes of any length (XXH3, Y. Collet, under a secret of its own).
using CDigest = std::array<std::uint8_t, 16>;

/// What makes digests differ from one cache to the next. The function is quick rather than
/// cryptographic: it is the secret that keeps anybody from making contents with the same digest. By
/// chance any two of a million million contents share one with a probability of 10^-15.
class CDigestSecret {
 public:
  using CSeed = std::array<std::uint8_t, 32>;

  explicit CDigestSecret(const CSeed& seed);
  /// One that nobody can guess.
  static CSeed NewSeed();

  const CSeed& Seed() const { return fSeed; }
  std::span<const std::uint8_t> Bytes() const { return fBytes; }

 private:
  CSeed fSeed;
  std::array<std::uint8_t, 192> fBytes;
};

/// Makes the digest of bytes that come in pieces.
class CDigester {
 public:
  /// `secret` must outlive the digester.
  explicit CDigester(const CDigestSecret& secret);

  void Add(std::span<const std::uint8_t> bytes);
  /// Of all that was added.
  CDigest Finish() const;

 private:
  struct CFree {
    void operator()(XXH3_state_s* state) const;
  };
  std::unique_ptr<XXH3_state_s, CFree> fState;
};

/// Reads all of `media` in pieces and gives each to `take`, which may throw. Memory does not grow
/// with the media.
void ReadThrough(const IMedia& media,
                 const std::function<void(std::span<const std::uint8_t>)>& take);

/// The digest of all bytes of `media`. `checkStop` is called now and then and may throw.
CDigest DigestOf(const IMedia& media, const CDigestSecret& secret,
                 const std::function<void()>& checkStop = {});

}  // namespace NSBigFilePackage
