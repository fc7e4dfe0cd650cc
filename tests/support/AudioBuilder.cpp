#include "tests/support/AudioBuilder.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <vector>

#include "package/MemoryMedia.h"

namespace NSTest {

std::string Little(std::uint64_t value, int count) {
  std::string bytes;
  for (int i = 0; i < count; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
  return bytes;
}

std::string Big(std::uint64_t value, int count) {
  std::string bytes = Little(value, count);
  std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

CAudioBuilder::CAudioBuilder(std::string_view outerID, std::string_view type, bool isBigEndian)
    : fOuterID(outerID), fType(type), fIsBigEndian(isBigEndian) {}

CAudioBuilder& CAudioBuilder::Chunk(std::string_view id, const std::string& data) {
  fContents += std::string(id) + Number(data.size(), 4) + data;
  if (data.size() % 2 != 0) fContents += '\0';
  return *this;
}

CAudioBuilder& CAudioBuilder::Rubbish(const std::string& bytes) {
  fContents += bytes;
  return *this;
}

CAudioBuilder& CAudioBuilder::Format(int tag, int channels, int bits, std::uint32_t rate,
                                     int blockAlign) {
  const int align = blockAlign < 0 ? channels * ((bits + 7) / 8) : blockAlign;
  const auto n = [](int value, int count) {
    return Little(static_cast<std::uint64_t>(value), count);
  };
  return Chunk("fmt ", n(tag, 2) + n(channels, 2) + Little(rate, 4) +
                           Little(rate * static_cast<std::uint64_t>(align), 4) + n(align, 2) +
                           n(bits, 2));
}

CAudioBuilder& CAudioBuilder::Extensible(int tag, int channels, int containerBits, int validBits) {
  CAudioBuilder plain = WAVE();
  plain.Format(0xFFFE, channels, containerBits);
  const std::string kTail("\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 14);
  return Chunk("fmt ", plain.fContents.substr(8) + Little(22, 2) +
                           Little(static_cast<std::uint64_t>(validBits), 2) + Little(3, 4) +
                           Little(static_cast<std::uint64_t>(tag), 2) + kTail);
}

CAudioBuilder& CAudioBuilder::Sampler(std::uint32_t note, std::uint32_t fraction, int kind,
                                      std::uint32_t start, std::uint32_t last) {
  std::string data = std::string(12, '\0') + Little(note, 4) + Little(fraction, 4) +
                     std::string(8, '\0') + Little(kind < 0 ? 0 : 1, 4) + std::string(4, '\0');
  if (kind >= 0) {
    data += std::string(4, '\0') + Little(static_cast<std::uint64_t>(kind), 4) + Little(start, 4) +
            Little(last, 4) + std::string(8, '\0');
  }
  return Chunk("smpl", data);
}

CAudioBuilder& CAudioBuilder::Common(int channels, std::uint32_t frames, int bits,
                                     std::string_view coding, std::uint32_t rate) {
  // An extended number: the exponent of the highest bit, then the mantissa shifted to the top.
  const int width = static_cast<int>(std::bit_width(rate));
  const std::uint64_t exponent = rate == 0 ? 0 : static_cast<std::uint64_t>(16383 + width - 1);
  const std::uint64_t mantissa = rate == 0 ? 0 : std::uint64_t{rate} << (64 - width);
  std::string data = Big(static_cast<std::uint64_t>(channels), 2) + Big(frames, 4) +
                     Big(static_cast<std::uint64_t>(bits), 2) + Big(exponent, 2) + Big(mantissa, 8);
  if (!coding.empty()) data += std::string(coding) + std::string(2, '\0');
  return Chunk("COMM", data);
}

CAudioBuilder& CAudioBuilder::Sound(const std::string& samples, std::uint32_t offset) {
  return Chunk("SSND", Big(offset, 4) + Big(0, 4) + samples);
}

CAudioBuilder& CAudioBuilder::Instrument(int note, int detune, int playMode) {
  return Chunk("INST", Big(static_cast<std::uint64_t>(note), 1) +
                           Big(static_cast<std::uint64_t>(detune), 1) + std::string(6, '\0') +
                           Big(static_cast<std::uint64_t>(playMode), 2) + Big(1, 2) + Big(2, 2) +
                           std::string(6, '\0'));
}

CAudioBuilder& CAudioBuilder::Markers(std::uint32_t start, std::uint32_t end) {
  // Names of even and odd length, so that their padding counts.
  return Chunk("MARK", Big(2, 2) + Big(1, 2) + Big(start, 4) + Big(4, 1) + "beg." + '\0' +
                           Big(2, 2) + Big(end, 4) + Big(3, 1) + "end");
}

std::string CAudioBuilder::Bytes(const std::string& behind, std::int32_t sizeError) const {
  const auto size =
      static_cast<std::uint64_t>(static_cast<std::int64_t>(fContents.size() + 4) + sizeError);
  return fOuterID + Number(size, 4) + fType + fContents + behind;
}

NSBigFilePackage::SharedMedia CAudioBuilder::Media() const { return MediaOfBytes(Bytes()); }

std::string CAudioBuilder::Number(std::uint64_t value, int count) const {
  return fIsBigEndian ? Big(value, count) : Little(value, count);
}

NSBigFilePackage::SharedMedia MediaOfBytes(const std::string& bytes) {
  return std::make_shared<NSBigFilePackage::CMemoryMedia>(
      std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

}  // namespace NSTest
