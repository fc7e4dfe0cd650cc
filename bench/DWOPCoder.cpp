#include <algorithm>
#include <utility>

#include "bench/Coder.h"
#include "filetypes/dwop/DWOPDecompressor.h"
#include "filetypes/dwop/DWOPEncoder.h"
#include "filetypes/dwop/DWOPForm.h"
#include "filetypes/dwop/DWOPHeader.h"
#include "package/MemoryMedia.h"

namespace NSBench {

namespace {

using namespace NSTambraPacking;

template <class Sample>
void EncodePieces(CDWOPEncoder& encoder, std::span<const Sample> rest, std::size_t piece) {
  while (!rest.empty()) {
    const std::size_t count = std::min(piece, rest.size());
    encoder.Encode(rest.first(count));
    rest = rest.subspan(count);
  }
}

void Encode(const CSignal& signal, Bytes& output, EDWOPForm form) {
  NSBigFilePackage::CMemoryMedia media(std::move(output));
  NSBigFilePackage::CMediaCursor cursor(media);
  CDWOPHeader header;
  header.fLength = static_cast<std::uint32_t>(signal.Frames());
  header.fChannels = static_cast<std::uint8_t>(signal.fChannels);
  header.fWidth = static_cast<std::uint8_t>(signal.fWidth);
  header.fRate = kRate;
  WriteDWOPHeader(cursor, header);
  CDWOPEncoder encoder(cursor, signal.fChannels, form);
  const std::size_t piece = kPieceFrames * signal.fChannels;
  if (signal.fWidth == 16) {
    EncodePieces(encoder, std::span(signal.fNarrowSamples), piece);
  } else {
    EncodePieces(encoder, std::span(signal.fSamples), piece);
  }
  encoder.Finish();
  output = media.TakeBytes();
}

void Decode(std::span<const std::uint8_t> stream, CSignalCheck* check, EDWOPForm form) {
  const NSBigFilePackage::CMemoryView media(stream);
  NSBigFilePackage::CMemoryView headerMedia(stream);
  NSBigFilePackage::CMediaCursor cursor(headerMedia);
  const CDWOPHeader header = ReadDWOPHeader(cursor);
  COptimizedDWOPDecompressorFromMedia decoder(header, media, cursor.Position(), form);
  std::vector<std::int32_t> piece(kDecodedFrames * header.fChannels);
  for (std::size_t left = std::size_t{header.fLength} * header.fChannels; left > 0;) {
    const auto samples = std::span(piece).first(std::min(piece.size(), left));
    decoder.Decode(samples);
    if (check != nullptr) check->TakeInterleaved(samples);
    left -= samples.size();
  }
}

}  // namespace

std::vector<CCoder> DWOPCoders() {
  std::vector<CCoder> coders;
  for (const auto& [form, name] : {std::pair(EDWOPForm::kAVX2, "DWOP, AVX2"),
                                   std::pair(EDWOPForm::kPortable, "DWOP, portable")}) {
    if (!CanRunDWOPForm(form)) continue;
    coders.push_back(
        {name,
         [form](const CSignal& signal, Bytes& output) { Encode(signal, output, form); },
         {{name, [form](std::span<const std::uint8_t> stream, const CSignal&, CSignalCheck* check) {
             Decode(stream, check, form);
           }}}});
  }
  return coders;
}

}  // namespace NSBench
