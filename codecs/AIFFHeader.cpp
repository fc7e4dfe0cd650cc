#include "codecs/AIFFHeader.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/AudioChunks.h"
#include "package/BufferedReader.h"
#include "references/IFFReader.h"

namespace NSTambraPacking {

using NSBigFilePackage::SharedMedia;
using NSMordel::XFormatViolation;
using NSMordel::XUnsupportedFormat;
using NSTolbrook::CChunkInfo;
using NSTolbrook::EByteOrder;
using NSTolbrook::FourCharCode;
using NSTolbrook::LoadBigEndian;
using NSTolbrook::MakeFourCharCode;
using CBytes = std::span<const std::uint8_t>;

namespace {

constexpr std::uint32_t kCommonLength = 18;
constexpr std::uint32_t kCommonLengthCompressed = 22;
/// Offset of the first frame, and a block size that says nothing, before the samples.
constexpr std::uint32_t kSoundLeading = 8;
constexpr std::uint32_t kInstrumentLength = 20;

struct CCoding {
  FourCharCode fType;
  ESampleCoding fCoding;
  EByteOrder fByteOrder;
  /// 0: by the declared bits.
  std::uint32_t fSampleBytes;
};

constexpr EByteOrder kBig = EByteOrder::kBigEndian;
constexpr CCoding kCodings[] = {
    {MakeFourCharCode("none"), ESampleCoding::kSigned, kBig, 0},
    {MakeFourCharCode("twos"), ESampleCoding::kSigned, kBig, 0},
    {MakeFourCharCode("sowt"), ESampleCoding::kSigned, EByteOrder::kLittleEndian, 0},
    {MakeFourCharCode("raw "), ESampleCoding::kUnsigned, kBig, 0},
    {MakeFourCharCode("fl32"), ESampleCoding::kFloat, kBig, 4},
    {MakeFourCharCode("fl64"), ESampleCoding::kFloat, kBig, 8},
    {MakeFourCharCode("ulaw"), ESampleCoding::kMuLaw, kBig, 1},
    {MakeFourCharCode("alaw"), ESampleCoding::kALaw, kBig, 1},
};

FourCharCode Lowercase(FourCharCode code) {
  for (int shift = 0; shift < 32; shift += 8) {
    const FourCharCode character = (code >> shift) & 0xFF;
    if (character >= 'A' && character <= 'Z') code |= FourCharCode{0x20} << shift;
  }
  return code;
}

const CCoding& FindCoding(FourCharCode type) {
  for (const CCoding& coding : kCodings) {
    if (coding.fType == Lowercase(type)) return coding;
  }
  throw XUnsupportedFormat("AIFF-C coding \"" + NSTolbrook::FourCharCodeText(type) +
                           "\" is not supported");
}

CAudioFormat ReadFormat(const CAudioChunks& chunks, bool isCompressedForm) {
  const CChunkInfo& chunk = chunks.Get(MakeFourCharCode("COMM"));
  const std::vector<std::uint8_t> bytes =
      chunks.Read(chunk, isCompressedForm ? kCommonLengthCompressed : kCommonLength);
  const CBytes fields(bytes);
  CAudioFormat format;
  format.fContainer = EAudioContainer::kAIFF;
  format.fChannels = LoadBigEndian<std::uint16_t>(fields);
  format.fFrames = LoadBigEndian<std::uint32_t>(fields.subspan(2));
  format.fBits = LoadBigEndian<std::uint16_t>(fields.subspan(6));
  format.fRate = RateOfExtended(fields.subspan(8, 10));

  const CCoding& coding =
      FindCoding(isCompressedForm ? LoadBigEndian<FourCharCode>(fields.subspan(18))
                                  : MakeFourCharCode("NONE"));
  format.fCoding = coding.fCoding;
  format.fByteOrder = coding.fByteOrder;
  format.fSampleBytes = coding.fSampleBytes;
  if (coding.fSampleBytes != 0) return format;  // what these declare as bits differs by writer

  if (format.fBits == 0 || format.fBits > 32) {
    throw XFormatViolation("the AIFF file declares samples of " + std::to_string(format.fBits) +
                           " bits");
  }
  format.fSampleBytes = (format.fBits + 7) / 8;
  if (format.fCoding == ESampleCoding::kUnsigned && format.fSampleBytes != 1) {
    throw XUnsupportedFormat("AIFF-C coding \"raw \" is supported with 8 bits only");
  }
  return format;
}

/// Looks the two markers of a loop up in the contents of "MARK": a u16 count, then for each a u16
/// identifier, a u32 position and a name (length byte, characters, padded to even length). The
/// first marker with an identifier counts. Throws XFormatViolation when it ends too early.
class CMarkerSearch {
 public:
  CMarkerSearch(std::uint16_t begin, std::uint16_t end) : fIdentifiers{begin, end} {}

  void Run(const CAudioChunks& chunks, const CChunkInfo& chunk) {
    // Buffered, for markers are read one by one.
    const NSBigFilePackage::CBufferedReader media(chunks.Media());
    const std::uint64_t start = chunk.fPosition + NSTolbrook::kPlainHeaderLength;
    const std::uint64_t end = start + chunk.fSize;
    const auto read = [&](std::uint64_t position, std::span<std::uint8_t> field) {
      if (position > end || field.size() > end - position) {
        NSTolbrook::ThrowChunkFault("a chunk is too short", chunk.fCode, chunk.fPosition);
      }
      NSBigFilePackage::ReadExactly(media, position, field);
    };
    std::array<std::uint8_t, 2> count{};
    read(start, count);
    std::uint64_t position = start + count.size();
    for (unsigned i = LoadBigEndian<std::uint16_t>(count); i > 0 && !(Begin() && End()); --i) {
      std::array<std::uint8_t, 7> marker{};
      read(position, marker);
      Visit(LoadBigEndian<std::uint16_t>(marker),
            LoadBigEndian<std::uint32_t>(std::span(marker).subspan(2)));
      position += 6 + NSTolbrook::EvenOffset(1 + std::uint64_t{marker[6]});
    }
  }

  const std::optional<std::uint32_t>& Begin() const { return fPositions[0]; }
  const std::optional<std::uint32_t>& End() const { return fPositions[1]; }

 private:
  void Visit(std::uint16_t identifier, std::uint32_t position) {
    for (std::size_t i = 0; i < fPositions.size(); ++i) {
      if (fIdentifiers[i] == identifier && !fPositions[i]) fPositions[i] = position;
    }
  }

  std::array<std::uint16_t, 2> fIdentifiers;
  std::array<std::optional<std::uint32_t>, 2> fPositions;
};

CInstrument ReadInstrument(const CAudioChunks& chunks, std::uint64_t frames) {
  CInstrument instrument;
  instrument.fLoopEnd = frames;
  const CChunkInfo* chunk = chunks.Find(MakeFourCharCode("INST"));
  if (chunk == nullptr) return instrument;
  const std::vector<std::uint8_t> bytes = chunks.Read(*chunk, kInstrumentLength);
  instrument.SetRootKey(bytes[0]);
  instrument.fFineTune = bytes[1];

  const CBytes sustainLoop = CBytes(bytes).subspan(8);
  const auto playMode = LoadBigEndian<std::uint16_t>(sustainLoop);
  const CChunkInfo* markers = chunks.Find(MakeFourCharCode("MARK"));
  if ((playMode != 1 && playMode != 2) || markers == nullptr) return instrument;
  CMarkerSearch search(LoadBigEndian<std::uint16_t>(sustainLoop.subspan(2)),
                       LoadBigEndian<std::uint16_t>(sustainLoop.subspan(4)));
  search.Run(chunks, *markers);
  if (search.Begin() && search.End()) {
    instrument.SetLoop(static_cast<std::uint8_t>(playMode), *search.Begin(), *search.End(), frames);
  }
  return instrument;
}

/// Where the samples begin inside the contents of "SSND"; throws when they are too few.
void PlaceSamples(const CAudioChunks& chunks, CAudioHeader& header) {
  const CChunkInfo& chunk = chunks.Get(MakeFourCharCode("SSND"));
  header.fLayout = chunks.Layout(chunk, kSoundLeading);
  const auto offset = LoadBigEndian<std::uint32_t>(chunks.Read(chunk, kSoundLeading));
  const std::uint64_t available = header.fLayout.fContentsLength;
  if (offset > available || header.fFormat.SamplesLength() > available - offset) {
    NSTolbrook::ThrowChunkFault("there are fewer samples than declared", chunk.fCode,
                                chunk.fPosition);
  }
  header.fFormat.fSamplesStart = header.fLayout.fContentsStart + offset;
}

}  // namespace

std::uint32_t RateOfExtended(std::span<const std::uint8_t> bytes) {
  const auto signAndExponent = LoadBigEndian<std::uint16_t>(bytes);
  const auto mantissa = LoadBigEndian<std::uint64_t>(bytes.subspan(2));
  if (mantissa == 0 && (signAndExponent & 0x7FFF) != 0x7FFF) return 0;
  // The value is mantissa x 2^(exponent - 63).
  const int exponent = (signAndExponent & 0x7FFF) - 16383;
  if ((signAndExponent & 0x8000) == 0 && exponent < -1) return 0;
  if ((signAndExponent & 0x8000) == 0 && exponent <= 31) {
    const std::uint64_t rate = ((mantissa >> (62 - exponent)) + 1) >> 1;
    if (rate <= UINT32_MAX) return static_cast<std::uint32_t>(rate);
  }
  throw XFormatViolation("the AIFF file's sample rate is out of range");
}

CAudioHeader ReadAIFFHeader(const SharedMedia& media) {
  NSTolbrook::CIFFReader2 reader(media);
  const auto outer = reader.FirstChunk();
  const bool isForm = outer && outer->fKind == NSTolbrook::EChunkKind::kForm;
  const bool isCompressedForm = isForm && outer->fCode == MakeFourCharCode("AIFC");
  if (!isCompressedForm && !(isForm && outer->fCode == MakeFourCharCode("AIFF"))) {
    throw XFormatViolation("not an AIFF file");
  }
  const auto contents = reader.EnterGroup(*outer);
  const CAudioChunks chunks(media, kBig, contents.Start(), contents.Start() + contents.Size());
  CAudioHeader header;
  header.fFormat = ReadFormat(chunks, isCompressedForm);
  PlaceSamples(chunks, header);
  header.fInstrument = ReadInstrument(chunks, header.fFormat.fFrames);
  return header;
}

}  // namespace NSTambraPacking
