#include "filetypes/dwop/AudioLayout.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "Parts/TolbrookPackage/Core/FourCharCode.h"

#include "package/BufferedReader.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::EByteOrder;
using NSTolbrook::FourCharCode;
using NSTolbrook::LoadInteger;
using NSTolbrook::MakeFourCharCode;

constexpr std::uint64_t kOuterHeadLength = 12;
constexpr std::uint64_t kChunkHeadLength = 8;
constexpr std::uint32_t kSoundDataLead = 8;
/// No field that matters lies further into a format chunk.
constexpr std::size_t kFormatLength = 40;
constexpr std::size_t kLeastWAVEFormat = 16;
constexpr std::size_t kSubFormatOffset = 24;
constexpr std::size_t kLeastAIFFFormat = 18;
constexpr std::size_t kCompressionOffset = 18;

using CContent = std::span<const std::uint8_t>;

struct CChunk {
  FourCharCode fType = 0;
  std::uint64_t fHead = 0;  // of the chunk's type
  std::uint32_t fSize = 0;

  std::uint64_t Content() const { return fHead + kChunkHeadLength; }
};

/// Fills form and channels from the content of a format chunk; false when they are of no use here.
bool ReadWAVEFormat(CContent content, CAudioLayout& layout) {
  constexpr std::uint16_t kPCM = 1, kFloat = 3, kALaw = 6, kMuLaw = 7, kExtensible = 0xFFFE;
  if (content.size() < kLeastWAVEFormat) return false;
  const auto field = [content](std::size_t offset) {
    return NSTolbrook::LoadLittleEndian<std::uint16_t>(content.subspan(offset));
  };
  std::uint16_t tag = field(0);
  if (tag == kExtensible && content.size() >= kFormatLength) tag = field(kSubFormatOffset);
  layout.fChannels = field(2);
  layout.fForm.fBytes = layout.fChannels == 0 ? 0 : field(12) / layout.fChannels;
  layout.fForm.fOrder = EByteOrder::kLittleEndian;
  switch (tag) {
    case kPCM:
      layout.fForm.fCoding =
          layout.fForm.fBytes == 1 ? ESampleCoding::kUnsigned : ESampleCoding::kSigned;
      return true;
    case kFloat:
      layout.fForm.fCoding = ESampleCoding::kFloat;
      return true;
    case kALaw:
      layout.fForm.fCoding = ESampleCoding::kALaw;
      return true;
    case kMuLaw:
      layout.fForm.fCoding = ESampleCoding::kMuLaw;
      return true;
    default:
      return false;
  }
}

/// The letters of compression types appear in either case.
FourCharCode LowerCase(FourCharCode code) {
  for (int shift = 0; shift < 32; shift += 8) {
    const FourCharCode character = (code >> shift) & 0xFF;
    if (character >= 'A' && character <= 'Z') code += FourCharCode{'a' - 'A'} << shift;
  }
  return code;
}

bool ReadCompression(FourCharCode type, CSampleForm& form) {
  switch (LowerCase(type)) {
    case MakeFourCharCode("none"):
    case MakeFourCharCode("twos"):
      return true;
    case MakeFourCharCode("sowt"):
      form.fOrder = EByteOrder::kLittleEndian;
      return true;
    case MakeFourCharCode("raw "):
      form.fCoding = ESampleCoding::kUnsigned;
      return true;
    case MakeFourCharCode("fl32"):
      form = {ESampleCoding::kFloat, 4, EByteOrder::kBigEndian};
      return true;
    case MakeFourCharCode("fl64"):
      form = {ESampleCoding::kFloat, 8, EByteOrder::kBigEndian};
      return true;
    case MakeFourCharCode("ulaw"):
      form = {ESampleCoding::kMuLaw, 1, EByteOrder::kBigEndian};
      return true;
    case MakeFourCharCode("alaw"):
      form = {ESampleCoding::kALaw, 1, EByteOrder::kBigEndian};
      return true;
    default:
      return false;
  }
}

bool ReadAIFFFormat(CContent content, bool compressed, CAudioLayout& layout) {
  if (content.size() < kLeastAIFFFormat) return false;
  const auto field = [content](std::size_t offset) {
    return NSTolbrook::LoadBigEndian<std::uint16_t>(content.subspan(offset));
  };
  layout.fChannels = field(0);
  layout.fForm = {ESampleCoding::kSigned, (field(6) + 7u) / 8, EByteOrder::kBigEndian};
  if (!compressed) return true;
  if (content.size() < kCompressionOffset + 4) return false;
  return ReadCompression(
      NSTolbrook::LoadBigEndian<FourCharCode>(content.subspan(kCompressionOffset)), layout.fForm);
}

bool IsUsable(const CAudioLayout& layout) {
  if (layout.fChannels != 1 && layout.fChannels != 2) return false;
  switch (layout.fForm.fCoding) {
    case ESampleCoding::kSigned:
    case ESampleCoding::kUnsigned:
      return layout.fForm.fBytes >= 1 && layout.fForm.fBytes <= 4;
    case ESampleCoding::kFloat:
      return layout.fForm.fBytes == 4 || layout.fForm.fBytes == 8;
    default:
      return layout.fForm.fBytes == 1;
  }
}

/// One walk over a file's chunks.
class CLayoutFinder {
 public:
  explicit CLayoutFinder(const NSBigFilePackage::SharedMedia& file) : fFile(file) {}

  std::optional<CAudioLayout> Find() {
    if (!ReadOuterHead()) return std::nullopt;
    std::optional<CChunk> format, samples;
    for (CChunk chunk{0, kOuterHeadLength, 0}; ReadChunkHead(chunk); GoOn(chunk)) {
      if (chunk.fType == fFormatType && !format) format = chunk;
      if (chunk.fType == fSampleType && !samples) samples = chunk;
      if (format && samples) break;
    }
    if (!format || !samples || !ReadFormat(*format) || !ReadSamples(*samples)) return std::nullopt;
    if (!IsUsable(fLayout)) return std::nullopt;
    return fLayout;
  }

 private:
  bool ReadOuterHead() {
    const std::vector<std::uint8_t> head = Read(0, kOuterHeadLength);
    if (head.size() < kOuterHeadLength) return false;
    const auto outer = NSTolbrook::LoadBigEndian<FourCharCode>(head);
    const auto form = NSTolbrook::LoadBigEndian<FourCharCode>(CContent(head).subspan(8));
    if (outer == MakeFourCharCode("RIFF") && form == MakeFourCharCode("WAVE")) {
      fLayout.fOrder = EByteOrder::kLittleEndian;
      fFormatType = MakeFourCharCode("fmt ");
      fSampleType = MakeFourCharCode("data");
      return true;
    }
    fCompressed = form == MakeFourCharCode("AIFC");
    if (outer != MakeFourCharCode("FORM")) return false;
    if (form != MakeFourCharCode("AIFF") && !fCompressed) return false;
    fLayout.fOrder = EByteOrder::kBigEndian;
    fLayout.fLeadLength = kSoundDataLead;
    fFormatType = MakeFourCharCode("COMM");
    fSampleType = MakeFourCharCode("SSND");
    return true;
  }

  /// Fills in type and size; false at the end, which rubbish instead of a type is too.
  bool ReadChunkHead(CChunk& chunk) const {
    const std::vector<std::uint8_t> head = Read(chunk.fHead, kChunkHeadLength);
    if (head.size() < kChunkHeadLength) return false;
    chunk.fType = NSTolbrook::LoadBigEndian<FourCharCode>(head);
    chunk.fSize = LoadInteger<std::uint32_t>(CContent(head).subspan(4), fLayout.fOrder);
    return NSTolbrook::IsValidFourCharCode(chunk.fType);
  }

  static void GoOn(CChunk& chunk) {
    chunk.fHead = chunk.Content() + chunk.fSize + (chunk.fSize & 1);
  }

  bool ReadFormat(const CChunk& chunk) {
    const std::vector<std::uint8_t> content =
        Read(chunk.Content(), std::min<std::uint64_t>(chunk.fSize, kFormatLength));
    if (fLayout.fOrder == EByteOrder::kLittleEndian) return ReadWAVEFormat(content, fLayout);
    return ReadAIFFFormat(content, fCompressed, fLayout);
  }

  bool ReadSamples(const CChunk& chunk) {
    if (chunk.fSize < fLayout.fLeadLength) return false;
    const std::vector<std::uint8_t> lead = Read(chunk.Content(), fLayout.fLeadLength);
    if (lead.size() < fLayout.fLeadLength) return false;
    if (!lead.empty()) fLayout.fOffset = NSTolbrook::LoadBigEndian<std::uint32_t>(lead);
    fLayout.fSizeField = chunk.fHead + 4;
    fLayout.fSamples = chunk.Content() + fLayout.fLeadLength;
    fLayout.fLength = chunk.fSize - fLayout.fLeadLength;
    return true;
  }

  /// Fewer bytes than `count` where the file ends.
  std::vector<std::uint8_t> Read(std::uint64_t position, std::uint64_t count) const {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count));
    bytes.resize(fFile.Read(position, bytes));
    return bytes;
  }

  NSBigFilePackage::CBufferedReader fFile;
  CAudioLayout fLayout;
  bool fCompressed = false;
  FourCharCode fFormatType = 0;
  FourCharCode fSampleType = 0;
};

}  // namespace

std::optional<CAudioLayout> FindAudioLayout(const NSBigFilePackage::SharedMedia& file) {
  return CLayoutFinder(file).Find();
}

}  // namespace NSTambraPacking
