#include <FLAC/stream_decoder.h>
#include <FLAC/stream_encoder.h>
#include <algorithm>
#include <memory>
#include <stdexcept>

#include "bench/Coder.h"

namespace NSBench {

namespace {

void Demand(bool done) {
  if (!done) throw std::runtime_error("libFLAC refused to work");
}

/// What the encoder writes to. It goes back to the stream's beginning to enter the checksum.
struct CTarget {
  Bytes& fBytes;
  std::size_t fPosition = 0;
};

FLAC__StreamEncoderWriteStatus Write(const FLAC__StreamEncoder*, const FLAC__byte* bytes,
                                     std::size_t count, std::uint32_t, std::uint32_t, void* data) {
  CTarget& target = *static_cast<CTarget*>(data);
  const std::size_t over =
      std::min(count, target.fBytes.size() - std::min(target.fBytes.size(), target.fPosition));
  std::copy_n(bytes, over, target.fBytes.begin() + static_cast<std::ptrdiff_t>(target.fPosition));
  target.fBytes.insert(target.fBytes.end(), bytes + over, bytes + count);
  target.fPosition += count;
  return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
}

FLAC__StreamEncoderSeekStatus Seek(const FLAC__StreamEncoder*, FLAC__uint64 position, void* data) {
  static_cast<CTarget*>(data)->fPosition = position;
  return FLAC__STREAM_ENCODER_SEEK_STATUS_OK;
}

FLAC__StreamEncoderTellStatus Tell(const FLAC__StreamEncoder*, FLAC__uint64* position, void* data) {
  *position = static_cast<CTarget*>(data)->fPosition;
  return FLAC__STREAM_ENCODER_TELL_STATUS_OK;
}

void Encode(const CSignal& signal, Bytes& output, unsigned level) {
  const std::unique_ptr<FLAC__StreamEncoder, decltype(&FLAC__stream_encoder_delete)> owner(
      FLAC__stream_encoder_new(), FLAC__stream_encoder_delete);
  FLAC__StreamEncoder* const encoder = owner.get();
  Demand(FLAC__stream_encoder_set_compression_level(encoder, level));
  Demand(FLAC__stream_encoder_set_channels(encoder, signal.fChannels));
  Demand(FLAC__stream_encoder_set_bits_per_sample(encoder, signal.fWidth));
  Demand(FLAC__stream_encoder_set_sample_rate(encoder, kRate));
  Demand(FLAC__stream_encoder_set_total_samples_estimate(encoder, signal.Frames()));
  CTarget target{output};
  Demand(FLAC__stream_encoder_init_stream(encoder, Write, Seek, Tell, nullptr, &target) ==
         FLAC__STREAM_ENCODER_INIT_STATUS_OK);
  for (std::size_t done = 0; done < signal.Frames();) {
    const std::size_t frames = std::min(kPieceFrames, signal.Frames() - done);
    Demand(FLAC__stream_encoder_process_interleaved(
        encoder, signal.fSamples.data() + done * signal.fChannels,
        static_cast<std::uint32_t>(frames)));
    done += frames;
  }
  Demand(FLAC__stream_encoder_finish(encoder));
}

struct CSource {
  std::span<const std::uint8_t> fRest;
  CSignalCheck* fCheck;
  bool fFailed = false;
};

FLAC__StreamDecoderReadStatus Read(const FLAC__StreamDecoder*, FLAC__byte* bytes,
                                   std::size_t* count, void* data) {
  CSource& source = *static_cast<CSource*>(data);
  *count = std::min(*count, source.fRest.size());
  std::copy_n(source.fRest.begin(), *count, bytes);
  source.fRest = source.fRest.subspan(*count);
  return *count == 0 ? FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM
                     : FLAC__STREAM_DECODER_READ_STATUS_CONTINUE;
}

FLAC__StreamDecoderWriteStatus Take(const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                    const FLAC__int32* const* channels, void* data) {
  CSignalCheck* const check = static_cast<CSource*>(data)->fCheck;
  if (check != nullptr) check->TakePlanar(channels, frame->header.blocksize);
  return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
}

void Fail(const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* data) {
  static_cast<CSource*>(data)->fFailed = true;
}

/// Comparing checksums fails for a stream without one, so that it is not measured unnoticed.
void Decode(std::span<const std::uint8_t> stream, CSignalCheck* check, bool compareChecksum) {
  const std::unique_ptr<FLAC__StreamDecoder, decltype(&FLAC__stream_decoder_delete)> owner(
      FLAC__stream_decoder_new(), FLAC__stream_decoder_delete);
  FLAC__StreamDecoder* const decoder = owner.get();
  Demand(FLAC__stream_decoder_set_md5_checking(decoder, compareChecksum));
  CSource source{stream, check};
  Demand(FLAC__stream_decoder_init_stream(decoder, Read, nullptr, nullptr, nullptr, nullptr, Take,
                                          nullptr, Fail,
                                          &source) == FLAC__STREAM_DECODER_INIT_STATUS_OK);
  Demand(FLAC__stream_decoder_process_until_end_of_stream(decoder));
  Demand(FLAC__stream_decoder_get_md5_checking(decoder) == compareChecksum);
  Demand(FLAC__stream_decoder_finish(decoder) && !source.fFailed);
}

CDecoder MakeDecoder(const std::string& coder, bool compareChecksum) {
  return {coder + (compareChecksum ? ", MD5" : ", no MD5"),
          [compareChecksum](std::span<const std::uint8_t> stream, const CSignal&,
                            CSignalCheck* check) { Decode(stream, check, compareChecksum); }};
}

}  // namespace

std::vector<CCoder> FlacCoders() {
  std::vector<CCoder> coders;
  for (const unsigned level : {0U, 5U}) {
    const std::string name = "libFLAC -" + std::to_string(level);
    coders.push_back(
        {name,
         [level](const CSignal& signal, Bytes& output) { Encode(signal, output, level); },
         {MakeDecoder(name, true), MakeDecoder(name, false)}});
  }
  return coders;
}

}  // namespace NSBench
