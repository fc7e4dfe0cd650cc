#include "filetypes/dwop/DWOPDecompressor.h"

#include <algorithm>
#include <cstring>

#include "filetypes/dwop/DWOPDecodeKernels.h"
#include "filetypes/dwop/DWOPFormat.h"

namespace NSTambraPacking {

namespace {

constexpr std::size_t kPieceBytes = kDWOPReadWords * sizeof(std::uint32_t);
/// With fewer bytes at hand more are read, if there are any. No frame is longer: it has two values
/// of at most 145 bits (15 escapes of 7, since each quadruples a modulus below 2^30, then 7 bits
/// with the one bit and 33 of remainder).
constexpr std::size_t kFewBytes = kDWOPKernelBytes;

}  // namespace

COptimizedDWOPDecompressor::COptimizedDWOPDecompressor(const CDWOPHeader& header, EDWOPForm form)
    : fForm(form), fState{} {
  fState.fChannelCount = header.fChannels;
  fState.fWidth = header.fWidth;
  for (CDWOPDecodeChannel& channel : fState.fChannels) {
    std::ranges::fill(channel.fSums, kDWOPInitialSum);
  }
}

void COptimizedDWOPDecompressor::Decode(std::span<std::int32_t> interleaved) {
  std::int32_t* output = interleaved.data();
  for (std::size_t left = interleaved.size() / fState.fChannelCount; left > 0;) {
    while (fState.fByteCount - fState.fBit / 8 < kFewBytes && !fAtEnd) TakeWords();
    std::size_t done = DecodeBulk(output, left);
    if (done == 0) {
      DecodeDWOPFrame(fState, output);
      done = 1;
    }
    output += done * fState.fChannelCount;
    left -= done;
  }
}

std::size_t COptimizedDWOPDecompressor::DecodeBulk(std::int32_t* output, std::size_t frames) {
  if (fFramesApart > 0) {
    --fFramesApart;
    return 0;
  }
  const std::size_t done =
#ifdef TAMBRA_AVX2
      fForm == EDWOPForm::kAVX2 ? DecodeDWOPFramesAVX2(fState, output, frames) :
#endif
                                DecodeDWOPFrames(fState, output, frames);
  if (done == 0) fFramesApart = kDWOPFramesApart - 1;
  return done;
}

std::uint64_t COptimizedDWOPDecompressor::WordsConsumed() const {
  return (fPassedBytes * 8 + fState.fBit + 31) / 32;
}

void COptimizedDWOPDecompressor::TakeWords() {
  if (!fBuffer) {
    fBuffer = std::make_unique_for_overwrite<std::uint8_t[]>(kFewBytes + kPieceBytes);
  }
  const std::size_t used = fState.fBit / 8;
  const std::size_t kept = fState.fByteCount - used;
  if (kept > 0) std::memmove(fBuffer.get(), fBuffer.get() + used, kept);
  fPassedBytes += used;
  fState.fBit %= 8;
  fState.fBytes = fBuffer.get();
  fState.fByteCount = kept;
  const std::size_t count = ReadWords({fBuffer.get() + kept, kPieceBytes});
  fState.fByteCount += count;
  fAtEnd = count == 0;
}

COptimizedDWOPDecompressorFromMedia::COptimizedDWOPDecompressorFromMedia(
    const CDWOPHeader& header, const NSBigFilePackage::IMedia& media, std::uint64_t position,
    EDWOPForm form)
    : COptimizedDWOPDecompressor(header, form), fSource(media, position) {}

std::size_t COptimizedDWOPDecompressorFromMedia::ReadWords(std::span<std::uint8_t> destination) {
  return fSource.ReadWords(destination);
}

}  // namespace NSTambraPacking
