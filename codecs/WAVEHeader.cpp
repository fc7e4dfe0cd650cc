#include "codecs/WAVEHeader.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/AudioChunks.h"
#include "references/IFFReader.h"

namespace NSTambraPacking {

using NSBigFilePackage::SharedMedia;
using NSMordel::XFormatViolation;
using NSMordel::XUnsupportedFormat;
using NSTolbrook::CChunkInfo;
using NSTolbrook::LoadLittleEndian;
using NSTolbrook::MakeFourCharCode;
using CBytes = std::span<const std::uint8_t>;

namespace {

constexpr std::uint16_t kTagPCM = 1;
constexpr std::uint16_t kTagFloat = 3;
constexpr std::uint16_t kTagALaw = 6;
constexpr std::uint16_t kTagMuLaw = 7;
constexpr std::uint16_t kTagExtensible = 0xFFFE;

constexpr std::uint32_t kFormatLength = 16;
constexpr std::uint32_t kExtensibleLength = 40;
/// Offset of the sub-format in an extensible "fmt ": a u16 tag, then these bytes.
constexpr std::size_t kSubFormat = 24;
constexpr std::array<std::uint8_t, 14> kSubFormatTail{0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                      0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

/// The contents of the outer chunk, as a range of the file.
struct CRange {
  std::uint64_t fStart;
  std::uint64_t fEnd;
};

CRange OuterChunk(const SharedMedia& media) {
  std::array<std::uint8_t, 4> id{};
  media->Read(0, id);
  for (const auto unsupported : {MakeFourCharCode("RIFX"), MakeFourCharCode("RF64")}) {
    if (NSTolbrook::LoadBigEndian<std::uint32_t>(id) == unsupported) {
      throw XUnsupportedFormat("WAVE files of the form " +
                               NSTolbrook::FourCharCodeText(unsupported) + " are not supported");
    }
  }
  NSTolbrook::CRIFFReader2 reader(media);
  const auto outer = reader.FirstChunk();
  if (!outer || outer->fKind != NSTolbrook::EChunkKind::kForm ||
      outer->fCode != MakeFourCharCode("WAVE")) {
    throw XFormatViolation("not a WAVE file");
  }
  const auto contents = reader.EnterGroup(*outer);
  return {contents.Start(), contents.Start() + contents.Size()};
}

[[noreturn]] void ThrowFormatFault(const std::string& what) {
  throw XFormatViolation("the WAVE file's format contradicts itself: " + what);
}

/// The coding's tag, taken from the sub-format where the tag says so.
std::uint16_t CodingTag(const CAudioChunks& chunks, const CChunkInfo& chunk, std::uint16_t tag) {
  if (tag != kTagExtensible) return tag;
  const std::vector<std::uint8_t> bytes = chunks.Read(chunk, kExtensibleLength);
  const CBytes subFormat = CBytes(bytes).subspan(kSubFormat);
  if (!std::ranges::equal(subFormat.subspan(2), kSubFormatTail)) {
    throw XUnsupportedFormat("the WAVE file's extensible coding is not supported");
  }
  return LoadLittleEndian<std::uint16_t>(subFormat);
}

void SetCoding(CAudioFormat& format, std::uint16_t tag) {
  const std::string detail =
      std::to_string(tag) + " with " + std::to_string(format.fBits) + " bits is not supported";
  const auto requireBits = [&](bool isSupported) {
    if (!isSupported) throw XUnsupportedFormat("WAVE coding " + detail);
  };
  switch (tag) {
    case kTagPCM:
      requireBits(format.fSampleBytes <= 4);
      format.fCoding = format.fSampleBytes == 1 ? ESampleCoding::kUnsigned : ESampleCoding::kSigned;
      return;
    case kTagFloat:
      requireBits((format.fBits == 32 || format.fBits == 64) &&
                  format.fBits == format.fSampleBytes * 8);
      format.fCoding = ESampleCoding::kFloat;
      return;
    case kTagALaw:
    case kTagMuLaw:
      requireBits(format.fSampleBytes == 1);
      format.fCoding = tag == kTagALaw ? ESampleCoding::kALaw : ESampleCoding::kMuLaw;
      return;
    default:
      requireBits(false);
  }
}

CAudioFormat ReadFormat(const CAudioChunks& chunks) {
  const CChunkInfo& chunk = chunks.Get(MakeFourCharCode("fmt "));
  const std::vector<std::uint8_t> bytes = chunks.Read(chunk, kFormatLength);
  const CBytes fields(bytes);
  const auto tag = LoadLittleEndian<std::uint16_t>(fields);
  const auto blockAlign = LoadLittleEndian<std::uint16_t>(fields.subspan(12));
  CAudioFormat format;
  format.fChannels = LoadLittleEndian<std::uint16_t>(fields.subspan(2));
  format.fRate = LoadLittleEndian<std::uint32_t>(fields.subspan(4));
  format.fBits = LoadLittleEndian<std::uint16_t>(fields.subspan(14));

  const std::uint16_t codingTag = CodingTag(chunks, chunk, tag);
  if (codingTag != kTagPCM && codingTag != kTagFloat && codingTag != kTagALaw &&
      codingTag != kTagMuLaw) {
    // Compressed codings count bits and blocks in ways of their own.
    throw XUnsupportedFormat("WAVE coding " + std::to_string(codingTag) + " is not supported");
  }
  if (format.fBits == 0 || format.fBits > 64) {
    ThrowFormatFault(std::to_string(format.fBits) + " bits a sample");
  }
  const std::uint32_t leastBytes = (format.fBits + 7) / 8;
  format.fSampleBytes = leastBytes;
  if (tag == kTagExtensible && format.fChannels > 0) {
    format.fSampleBytes = std::max(leastBytes, std::uint32_t{blockAlign} / format.fChannels);
  }
  if (format.fChannels > 0 && format.FrameBytes() != blockAlign) {
    ThrowFormatFault("frames of " + std::to_string(blockAlign) + " bytes for " +
                     std::to_string(format.fChannels) + " channels of " +
                     std::to_string(format.fBits) + " bits");
  }
  SetCoding(format, codingTag);
  return format;
}

/// Offsets of fields in "smpl" and in its loops.
constexpr std::uint32_t kSamplerLength = 36;
constexpr std::uint32_t kSamplerLoopLength = 24;

CInstrument ReadSampler(const CAudioChunks& chunks, const CChunkInfo& chunk, std::uint64_t frames) {
  std::vector<std::uint8_t> bytes = chunks.Read(chunk, kSamplerLength);
  const auto field = [&bytes](std::size_t offset) -> std::uint32_t {
    return LoadLittleEndian<std::uint32_t>(CBytes(bytes).subspan(offset));
  };
  CInstrument instrument;
  instrument.fLoopEnd = frames;
  instrument.SetRootKey(field(12));
  // The fraction counts 2^-32 semitones.
  const std::uint64_t cents = (std::uint64_t{field(16)} * 100 + (1ULL << 31)) >> 32;
  instrument.fFineTune = static_cast<std::uint8_t>(cents);
  if (field(28) == 0) return instrument;

  bytes = chunks.Read(chunk, kSamplerLength + kSamplerLoopLength);
  const std::uint8_t mode = field(kSamplerLength + 4) == 1 ? 2 : 1;
  // The file's end is the last frame that is played.
  instrument.SetLoop(mode, field(kSamplerLength + 8), field(kSamplerLength + 12) + 1ULL, frames);
  return instrument;
}

CInstrument ReadInstrument(const CAudioChunks& chunks, std::uint64_t frames) {
  if (const CChunkInfo* sampler = chunks.Find(MakeFourCharCode("smpl"))) {
    return ReadSampler(chunks, *sampler, frames);
  }
  CInstrument instrument;
  instrument.fLoopEnd = frames;
  if (const CChunkInfo* chunk = chunks.Find(MakeFourCharCode("inst"))) {
    const std::vector<std::uint8_t> bytes = chunks.Read(*chunk, 7);
    instrument.SetRootKey(bytes[0]);
    instrument.fFineTune = bytes[1];
  }
  return instrument;
}

}  // namespace

CAudioHeader ReadWAVEHeader(const SharedMedia& media) {
  const CRange outer = OuterChunk(media);
  const CAudioChunks chunks(media, NSTolbrook::EByteOrder::kLittleEndian, outer.fStart, outer.fEnd);
  CAudioHeader header;
  header.fFormat = ReadFormat(chunks);
  header.fLayout = chunks.Layout(chunks.Get(MakeFourCharCode("data")), 0);
  header.fFormat.fSamplesStart = header.fLayout.fContentsStart;
  const std::uint64_t frameBytes = header.fFormat.FrameBytes();
  header.fFormat.fFrames = frameBytes == 0 ? 0 : header.fLayout.fContentsLength / frameBytes;
  header.fInstrument = ReadInstrument(chunks, header.fFormat.fFrames);
  return header;
}

}  // namespace NSTambraPacking
