#include "filetypes/dwop/SourceRebuilder.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/dwop/AudioLayout.h"
#include "filetypes/dwop/DWOPDecompressor.h"
#include "filetypes/dwop/DWOPExtraInfo.h"
#include "filetypes/dwop/PlainWAVE.h"
#include "filetypes/dwop/SampleStorer.h"
#include "package/PartialMedia.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::IMedia;
using NSBigFilePackage::SharedMedia;

/// Of the outer chunk's size, in WAVE and AIFF files alike.
constexpr std::uint64_t kOuterSizeField = 4;
constexpr std::uint64_t kGreatestSize = std::numeric_limits<std::uint32_t>::max();

/// True when the samples of a stream fit in where they were taken out.
bool Describes(const CAudioLayout& layout, const CDWOPHeader& header) {
  return layout.fLength == 0 && layout.fChannels == header.fChannels &&
         layout.fForm.StreamWidth() == header.fWidth;
}

/// One stream on its way back into a file.
class CSourceRebuilder {
 public:
  CSourceRebuilder(SharedMedia stream, IMedia& output, const std::function<void()>& checkStop)
      : fStream(std::move(stream)), fOutput(output), fCheckStop(checkStop) {
    CMediaCursor input(*fStream);
    fHeader = ReadDWOPHeader(input);
    fBitStream = input.Position();
  }

  CRebuildReport Rebuild() {
    const std::optional<CExtraInfoBlock> block = FindExtraInfoAtEnd(*fStream);
    if (block && block->fStart >= fBitStream) {
      const CRebuildReport report = RebuildByExtraInfo(*block);
      if (fBitStreamEnd == block->fStart) return report;
      // The samples may end in bytes that look like a block.
      fOutput.SetSize(0);
    }
    RebuildPlain();
    if (ReadExtraInfo(*fStream, fBitStreamEnd)) {
      throw NSMordel::XInvariantCorrupt("an extra info block was found and then not found");
    }
    return {};
  }

 private:
  CRebuildReport RebuildByExtraInfo(const CExtraInfoBlock& block) {
    const auto frame = std::make_shared<NSBigFilePackage::CPartialMedia>(fStream, block.fDataStart,
                                                                         block.fDataLength);
    const std::optional<CAudioLayout> layout = FindAudioLayout(frame);
    if (!layout || !Describes(*layout, fHeader)) {
      RebuildPlain();
      return {false, "its extra information is not that of a WAVE or AIFF file with its samples"};
    }
    RebuildAround(*frame, *layout);
    if (!layout->fForm.IsKeptExactly()) {
      return {false, "its samples were converted when it was packed"};
    }
    if (layout->fOffset != 0) return {false, "its samples did not begin their chunk"};
    return {};
  }

  void RebuildAround(const IMedia& frame, const CAudioLayout& layout) {
    const std::uint64_t sampleBytes = fHeader.fLength * layout.FrameLength();
    const std::uint64_t chunkSize = layout.fLeadLength + sampleBytes;
    if (chunkSize > kGreatestSize) throw TooLarge();
    CMediaCursor output(fOutput);
    Copy(frame, 0, layout.fSamples, output);
    WriteSamples(layout.fForm, output);
    WritePad(sampleBytes, output);
    Copy(frame, layout.fSamples, frame.Size(), output);

    AddToField(kOuterSizeField, sampleBytes + (sampleBytes & 1), layout.fOrder);
    AddToField(layout.fSizeField, sampleBytes, layout.fOrder);
    if (layout.fOffset != 0) {
      fOutput.Write(layout.fSamples - layout.fLeadLength, std::array<std::uint8_t, 4>{});
    }
  }

  void RebuildPlain() {
    const auto head = PlainWAVEHead(fHeader);
    if (!head) throw TooLarge();
    CMediaCursor output(fOutput);
    output.Write(*head);
    const NSTolbrook::EByteOrder order = NSTolbrook::EByteOrder::kLittleEndian;
    WriteSamples({ESampleCoding::kSigned, fHeader.fWidth / 8u, order}, output);
    WritePad(PlainSampleBytes(fHeader), output);
  }

  void WriteSamples(const CSampleForm& form, CMediaCursor& output) {
    COptimizedDWOPDecompressorFromMedia decompressor(fHeader, *fStream, fBitStream);
    const CSampleStorer storer(form, fHeader.fWidth);
    std::vector<std::int32_t> block(kDWOPBlockFrames * fHeader.fChannels);
    std::vector<std::uint8_t> bytes;
    for (std::uint32_t remaining = fHeader.fLength; remaining > 0;) {
      if (fCheckStop) fCheckStop();
      const std::size_t frames = std::min<std::size_t>(remaining, kDWOPBlockFrames);
      const std::span<std::int32_t> part = std::span(block).first(frames * fHeader.fChannels);
      decompressor.Decode(part);
      bytes.clear();
      storer.Store(part, bytes);
      output.Write(bytes);
      remaining -= static_cast<std::uint32_t>(frames);
    }
    fBitStreamEnd = fBitStream + decompressor.WordsConsumed() * sizeof(std::uint32_t);
  }

  static void WritePad(std::uint64_t sampleBytes, CMediaCursor& output) {
    if (sampleBytes % 2 != 0) output.Write(std::array<std::uint8_t, 1>{});
  }

  void Copy(const IMedia& source, std::uint64_t start, std::uint64_t end, CMediaCursor& output) {
    std::array<std::uint8_t, kExtraInfoPiece> buffer;
    while (start < end) {
      if (fCheckStop) fCheckStop();
      const auto count =
          static_cast<std::size_t>(std::min<std::uint64_t>(end - start, buffer.size()));
      const std::span<std::uint8_t> piece = std::span(buffer).first(count);
      NSBigFilePackage::ReadExactly(source, start, piece);
      output.Write(piece);
      start += count;
    }
  }

  /// Modulo 2^32, as the field was lessened.
  void AddToField(std::uint64_t position, std::uint64_t value, NSTolbrook::EByteOrder order) {
    std::array<std::uint8_t, 4> field;
    NSBigFilePackage::ReadExactly(fOutput, position, field);
    const auto previous = NSTolbrook::LoadInteger<std::uint32_t>(field, order);
    NSTolbrook::StoreInteger(field, previous + static_cast<std::uint32_t>(value), order);
    fOutput.Write(position, field);
  }

  static NSMordel::XOutOfSpace TooLarge() {
    return NSMordel::XOutOfSpace("the samples do not fit the 32-bit sizes of an audio file");
  }

  SharedMedia fStream;
  IMedia& fOutput;
  const std::function<void()>& fCheckStop;
  CDWOPHeader fHeader;
  std::uint64_t fBitStream = 0;     // position of the first word
  std::uint64_t fBitStreamEnd = 0;  // known once the samples are decoded
};

}  // namespace

CRebuildReport RebuildSource(const SharedMedia& stream, IMedia& output,
                             const std::function<void()>& checkStop) {
  return CSourceRebuilder(stream, output, checkStop).Rebuild();
}

std::uint64_t RebuiltSize(const SharedMedia& stream) {
  CMediaCursor input(*stream);
  const CDWOPHeader header = ReadDWOPHeader(input);
  const auto withPad = [](std::uint64_t bytes) { return bytes + (bytes & 1); };
  const std::optional<CExtraInfoBlock> block = FindExtraInfoAtEnd(*stream);
  if (block && block->fStart >= input.Position()) {
    const auto frame = std::make_shared<NSBigFilePackage::CPartialMedia>(stream, block->fDataStart,
                                                                         block->fDataLength);
    const std::optional<CAudioLayout> layout = FindAudioLayout(frame);
    if (layout && Describes(*layout, header)) {
      return block->fDataLength + withPad(header.fLength * layout->FrameLength());
    }
  }
  return kPlainWAVEHeadLength + withPad(PlainSampleBytes(header));
}

}  // namespace NSTambraPacking
