#include "codecs/IntegerDecoder.h"

#include <algorithm>
#include <utility>

namespace NSTambraPacking {

using NSTolbrook::EByteOrder;

namespace {

constexpr std::size_t kBufferSize = 65536;  // bytes
constexpr std::int32_t kLargest24 = 0x7FFFFF;

/// The `Bytes` bytes at `source` as a two's-complement integer, left-justified in 32 bits.
template <std::size_t Bytes, EByteOrder Order>
std::int32_t LoadLeftJustified(const std::uint8_t* source) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < Bytes; ++i) {
    const std::size_t index = Order == EByteOrder::kBigEndian ? i : Bytes - 1 - i;
    value |= std::uint32_t{source[index]} << (24 - 8 * i);
  }
  return static_cast<std::int32_t>(value);
}

template <std::size_t Bytes, EByteOrder Order>
void ConvertSigned(const std::uint8_t* source, std::span<std::int32_t> samples) {
  for (std::int32_t& sample : samples) {
    const std::int32_t value = LoadLeftJustified<Bytes, Order>(source);
    source += Bytes;
    if constexpr (Bytes == 4) {
      // (x + 128) >> 8 without leaving 32 bits; only the largest values round up out of 24.
      sample = std::min((value >> 8) + ((value >> 7) & 1), kLargest24);
    } else {
      sample = value >> (Bytes == 3 ? 8 : 16);
    }
  }
}

template <EByteOrder Order>
void ConvertSigned(std::size_t sampleBytes, const std::uint8_t* source,
                   std::span<std::int32_t> samples) {
  switch (sampleBytes) {
    case 1:
      return ConvertSigned<1, Order>(source, samples);
    case 2:
      return ConvertSigned<2, Order>(source, samples);
    case 3:
      return ConvertSigned<3, Order>(source, samples);
    default:
      return ConvertSigned<4, Order>(source, samples);
  }
}

}  // namespace

CIntegerDecoder::CIntegerDecoder(NSBigFilePackage::SharedMedia media, const CAudioFormat& format)
    : fMedia(std::move(media)),
      fFormat(format),
      fPosition(format.fSamplesStart),
      fBuffer(kBufferSize - kBufferSize % format.fSampleBytes) {}

void CIntegerDecoder::Read(std::span<std::int32_t> samples) {
  while (!samples.empty()) {
    const std::size_t count = std::min(samples.size(), fBuffer.size() / fFormat.fSampleBytes);
    const std::span<std::uint8_t> bytes = std::span(fBuffer).first(count * fFormat.fSampleBytes);
    NSBigFilePackage::ReadExactly(*fMedia, fPosition, bytes);
    Convert(bytes, samples.first(count));
    fPosition += bytes.size();
    samples = samples.subspan(count);
  }
}

void CIntegerDecoder::Convert(std::span<const std::uint8_t> bytes,
                              std::span<std::int32_t> samples) const {
  if (fFormat.fCoding == ESampleCoding::kUnsigned) {
    std::transform(bytes.begin(), bytes.end(), samples.begin(),
                   [](std::uint8_t byte) { return (std::int32_t{byte} - 128) * 256; });
  } else if (fFormat.fByteOrder == EByteOrder::kBigEndian) {
    ConvertSigned<EByteOrder::kBigEndian>(fFormat.fSampleBytes, bytes.data(), samples);
  } else {
    ConvertSigned<EByteOrder::kLittleEndian>(fFormat.fSampleBytes, bytes.data(), samples);
  }
}

}  // namespace NSTambraPacking
