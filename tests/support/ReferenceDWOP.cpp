#include "tests/support/ReferenceDWOP.h"

#include <map>

namespace NSTest {

namespace {

constexpr std::uint64_t kTwoTo32 = 4294967296ull;
constexpr std::size_t kHeaderLength = 26;

using CBits = std::vector<bool>;

/// The channel's memory: the last frame's error and the running sum of each order. Numbers are
/// kept in 64 bits and brought back below 2^32 after each step.
struct CChannel {
  std::map<int, std::uint64_t> e = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}};
  std::map<int, std::uint64_t> a = {{0, 2560}, {1, 2560}, {2, 2560}, {3, 2560}, {4, 2560}};
};

std::uint64_t Wrap(std::uint64_t value) { return value % kTwoTo32; }
std::uint64_t Minus(std::uint64_t left, std::uint64_t right) {
  return Wrap(left + kTwoTo32 - right);
}

std::uint64_t Zigzag(std::uint64_t e) {
  if (e < kTwoTo32 / 2) return 2 * e;
  return kTwoTo32 - 1 - Wrap(2 * e);
}

std::uint64_t UndoZigzag(std::uint64_t z) {
  if (z % 2 == 0) return z / 2;
  return kTwoTo32 - 1 - z / 2;
}

int ChooseOrder(const CChannel& channel) {
  int best = 0;
  if (channel.a.at(1) < channel.a.at(0)) best = 1;
  for (int k = 2; k <= 4; ++k) {
    if (channel.a.at(k) < channel.a.at(best)) best = k;
  }
  return best;
}

std::uint64_t ComputeModulus(const CChannel& channel, int k) {
  const std::uint64_t m = Wrap(Wrap(channel.a.at(k) + 12) * 3) / 128;
  return m == 0 ? 1 : m;
}

void TakeIn(CChannel& channel, std::uint64_t x) {
  std::uint64_t d = Minus(x, channel.e[0]);
  channel.e[0] = x;
  for (int k = 1; k <= 4; ++k) {
    const std::uint64_t t = channel.e[k];
    channel.e[k] = d;
    d = Minus(d, t);
  }
}

void UpdateSums(CChannel& channel) {
  for (int i = 0; i <= 4; ++i) {
    channel.a[i] = Wrap(Minus(channel.a[i], channel.a[i] / 32) + Zigzag(channel.e[i]));
  }
}

/// The number of binary digits.
unsigned Digits(std::uint64_t m) {
  unsigned digits = 0;
  for (; m > 0; m /= 2) ++digits;
  return digits;
}

void PutNumber(CBits& bits, std::uint64_t value, unsigned count) {
  for (unsigned i = count; i > 0; --i) bits.push_back((value >> (i - 1)) % 2 == 1);
}

void PutResidual(CBits& bits, std::uint64_t z, std::uint64_t m) {
  while (z / m >= 7) {
    PutNumber(bits, 0, 7);
    z -= 7 * m;
    m *= 4;
  }
  PutNumber(bits, 0, static_cast<unsigned>(z / m));
  z %= m;
  bits.push_back(true);
  const unsigned b = Digits(m);
  const std::uint64_t u = (1ull << b) - m;
  if (z < u) {
    PutNumber(bits, z, b - 1);
  } else {
    PutNumber(bits, z + u, b);
  }
}

void PutValue(CBits& bits, CChannel& channel, std::uint64_t x) {
  const int k = ChooseOrder(channel);
  const std::uint64_t m = ComputeModulus(channel, k);
  TakeIn(channel, x);
  PutResidual(bits, Zigzag(channel.e[k]), m);
  UpdateSums(channel);
}

/// Thrown by the reading side; the one thing that goes wrong is "no such stream".
struct CFault {};

struct CBitReader {
  const CBits& fBits;
  std::size_t fPosition = 0;

  bool Bit() {
    if (fPosition >= fBits.size()) throw CFault();
    return fBits[fPosition++];
  }
  std::uint64_t Number(unsigned count) {
    std::uint64_t value = 0;
    for (unsigned i = 0; i < count; ++i) value = value * 2 + (Bit() ? 1 : 0);
    return value;
  }
};

std::uint64_t GetResidual(CBitReader& reader, std::uint64_t m) {
  std::uint64_t value = 0;
  int zeros = 0;
  while (!reader.Bit()) {
    ++zeros;
    if (zeros < 7) continue;
    if (m >= kTwoTo32 / 4) throw CFault();
    value += 7 * m;
    m *= 4;
    zeros = 0;
  }
  value += static_cast<std::uint64_t>(zeros) * m;
  const unsigned b = Digits(m);
  const std::uint64_t u = (1ull << b) - m;
  std::uint64_t remainder = reader.Number(b - 1);
  if (remainder >= u) remainder = remainder * 2 + reader.Number(1) - u;
  return Wrap(value + remainder);
}

std::uint64_t GetValue(CBitReader& reader, CChannel& channel) {
  const int k = ChooseOrder(channel);
  std::uint64_t x = UndoZigzag(GetResidual(reader, ComputeModulus(channel, k)));
  for (int lower = k - 1; lower >= 0; --lower) x = Wrap(x + channel.e[lower]);
  TakeIn(channel, x);
  UpdateSums(channel);
  return x;
}

std::int32_t Narrow(std::uint64_t x, unsigned width) {
  const auto range = static_cast<std::int64_t>(1ull << width);
  auto value = static_cast<std::int64_t>(x) % range;
  if (value >= range / 2) value -= range;
  return static_cast<std::int32_t>(value);
}

std::uint64_t FromSigned(std::int32_t sample) {
  return Wrap(static_cast<std::uint64_t>(static_cast<std::int64_t>(sample)));
}

CBits BitsOf(const std::vector<std::uint8_t>& bytes, std::size_t first, std::size_t length) {
  CBits bits;
  for (std::size_t i = first; i < first + length; ++i) PutNumber(bits, bytes[i], 8);
  return bits;
}

}  // namespace

std::vector<std::uint8_t> ReferenceEncode(const CReferenceFormat& format,
                                          const std::vector<std::int32_t>& interleaved) {
  const std::uint64_t length = interleaved.size() / format.fChannels;
  CBits bits;
  for (const std::uint64_t byte : {0xBCu, 1u, 0u, 0u, 0u}) PutNumber(bits, byte, 8);
  PutNumber(bits, length, 32);
  for (const std::uint64_t byte : {60u, 0u, 0u, format.fChannels}) PutNumber(bits, byte, 8);
  PutNumber(bits, 0, 32);
  PutNumber(bits, length, 32);
  PutNumber(bits, format.fRate, 32);
  PutNumber(bits, format.fWidth, 8);

  CBits residuals;
  CChannel first, second;
  for (std::size_t i = 0; i < interleaved.size(); i += format.fChannels) {
    PutValue(residuals, first, FromSigned(interleaved[i]));
    if (format.fChannels == 1) continue;
    PutValue(residuals, second, Minus(FromSigned(interleaved[i + 1]), FromSigned(interleaved[i])));
  }
  while (residuals.size() % 32 != 0) residuals.push_back(false);
  bits.insert(bits.end(), residuals.begin(), residuals.end());

  std::vector<std::uint8_t> stream;
  CBitReader reader{bits};
  while (reader.fPosition < bits.size()) {
    stream.push_back(static_cast<std::uint8_t>(reader.Number(8)));
  }
  return stream;
}

CReferenceResult ReferenceDecode(const std::vector<std::uint8_t>& stream) {
  CReferenceResult result;
  if (stream.size() < kHeaderLength || stream[0] != 0xBC || stream[1] != 1) return result;
  const CBits header = BitsOf(stream, 0, kHeaderLength);
  const auto field = [&header](std::size_t byte, unsigned bytes) {
    CBitReader reader{header, byte * 8};
    return static_cast<std::uint32_t>(reader.Number(bytes * 8));
  };
  result.fLength = field(5, 4);
  result.fFormat = {field(12, 1), field(25, 1), field(21, 4)};
  if (result.fFormat.fChannels != 1 && result.fFormat.fChannels != 2) return result;
  if (result.fFormat.fWidth != 16 && result.fFormat.fWidth != 24) return result;

  const std::size_t words = (stream.size() - kHeaderLength) / 4;
  const CBits bits = BitsOf(stream, kHeaderLength, words * 4);
  CBitReader reader{bits};
  CChannel first, second;
  try {
    for (std::uint32_t frame = 0; frame < result.fLength; ++frame) {
      const std::uint64_t left = GetValue(reader, first);
      const std::uint64_t difference = result.fFormat.fChannels == 2 ? GetValue(reader, second) : 0;
      result.fSamples.push_back(Narrow(left, result.fFormat.fWidth));
      if (result.fFormat.fChannels == 1) continue;
      result.fSamples.push_back(Narrow(Wrap(left + difference), result.fFormat.fWidth));
    }
    result.fWhole = true;
  } catch (const CFault&) {
  }
  result.fWords = (reader.fPosition + 31) / 32;
  return result;
}

}  // namespace NSTest
