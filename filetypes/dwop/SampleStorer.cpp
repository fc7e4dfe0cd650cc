#include "filetypes/dwop/SampleStorer.h"

#include <algorithm>
#include <bit>

namespace NSTambraPacking {

namespace {

constexpr double kFullScale24 = 8388608.0;
constexpr std::uint32_t kSignBit = std::uint32_t{1} << 31;

}  // namespace

std::int32_t ValueFromMuLaw(std::uint8_t code) {
  constexpr int kBias = 0x84;
  const int bits = ~code & 0xFF;
  const int magnitude = ((((bits & 0x0F) << 3) + kBias) << ((bits & 0x70) >> 4)) - kBias;
  return (bits & 0x80) != 0 ? -magnitude : magnitude;
}

std::int32_t ValueFromALaw(std::uint8_t code) {
  const int bits = code ^ 0x55;
  const int segment = (bits & 0x70) >> 4;
  int magnitude = ((bits & 0x0F) << 4) + 8;
  if (segment > 0) magnitude = (magnitude + 0x100) << (segment - 1);
  return (bits & 0x80) != 0 ? magnitude : -magnitude;
}

CSampleStorer::CSampleStorer(const CSampleForm& form, unsigned width) : fForm(form), fWidth(width) {
  const bool muLaw = form.fCoding == ESampleCoding::kMuLaw;
  if (!muLaw && form.fCoding != ESampleCoding::kALaw) return;
  // Downwards, so that of the two zeros of mu-law the positive one (255) comes first.
  for (int code = 255; code >= 0; --code) {
    const auto byte = static_cast<std::uint8_t>(code);
    fLawCodes.push_back({muLaw ? ValueFromMuLaw(byte) : ValueFromALaw(byte), byte});
  }
  std::ranges::stable_sort(fLawCodes, {}, &CLawCode::fValue);
}

void CSampleStorer::Store(std::span<const std::int32_t> samples,
                          std::vector<std::uint8_t>& bytes) const {
  bytes.reserve(bytes.size() + samples.size() * fForm.fBytes);
  for (const std::int32_t sample : samples) {
    const std::uint64_t bits = BitsOf(sample);
    for (unsigned i = 0; i < fForm.fBytes; ++i) {
      const bool bigEndian = fForm.fOrder == NSTolbrook::EByteOrder::kBigEndian;
      const unsigned byte = bigEndian ? fForm.fBytes - 1 - i : i;
      bytes.push_back(static_cast<std::uint8_t>(bits >> (8 * byte)));
    }
  }
}

std::uint64_t CSampleStorer::BitsOf(std::int32_t sample) const {
  std::uint32_t justified = static_cast<std::uint32_t>(sample) << (32 - fWidth);
  switch (fForm.fCoding) {
    case ESampleCoding::kUnsigned:
      justified ^= kSignBit;
      [[fallthrough]];
    case ESampleCoding::kSigned:
      return justified >> (32 - 8 * fForm.fBytes);
    case ESampleCoding::kFloat: {
      const double value = sample / kFullScale24;
      if (fForm.fBytes == 8) return std::bit_cast<std::uint64_t>(value);
      return std::bit_cast<std::uint32_t>(static_cast<float>(value));
    }
    default:
      return NearestCode(sample);
  }
}

std::uint8_t CSampleStorer::NearestCode(std::int32_t value) const {
  const auto above = std::ranges::lower_bound(fLawCodes, value, {}, &CLawCode::fValue);
  if (above == fLawCodes.begin()) return above->fCode;
  const auto below = above - 1;
  if (above == fLawCodes.end()) return below->fCode;
  return value - below->fValue < above->fValue - value ? below->fCode : above->fCode;
}

}  // namespace NSTambraPacking
