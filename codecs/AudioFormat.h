#pragma once

#include <cstdint>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"

namespace NSTambraPacking {

enum class EAudioContainer { kWAVE, kAIFF };

enum class ESampleCoding {
  kSigned,    ///< two's complement, 1 to 4 bytes, left-justified when fBits is no multiple of 8
  kUnsigned,  ///< offset binary, 1 byte
  kFloat,     ///< IEEE 754, 4 or 8 bytes
  kMuLaw,     ///< ITU-T G.711, 1 byte
  kALaw,      ///< ITU-T G.711, 1 byte
};

/// What the samples of an audio file are and where they lie.
struct CAudioFormat {
  EAudioContainer fContainer = EAudioContainer::kWAVE;
  ESampleCoding fCoding = ESampleCoding::kSigned;
  NSTolbrook::EByteOrder fByteOrder = NSTolbrook::EByteOrder::kLittleEndian;
  /// As the file says; any number.
  std::uint16_t fChannels = 0;
  /// Frames a second.
  std::uint32_t fRate = 0;
  /// Bytes that one sample of one channel takes: 1, 2, 3, 4 or 8.
  std::uint32_t fSampleBytes = 0;
  /// Bits of a sample as the file declares them.
  std::uint32_t fBits = 0;
  /// Whole frames.
  std::uint64_t fFrames = 0;
  /// The first frame's first byte, in bytes from the file's start.
  std::uint64_t fSamplesStart = 0;

  std::uint64_t FrameBytes() const { return std::uint64_t{fChannels} * fSampleBytes; }
  /// Bytes of all whole frames.
  std::uint64_t SamplesLength() const { return fFrames * FrameBytes(); }
  /// Bits of the integers that the samples are turned into: 16 for integers of 1 or 2 bytes and
  /// G.711, else 24.
  unsigned CodedWidth() const;
  /// True when the source's sample bytes can be had back from those integers.
  bool KeptBitForBit() const;
};

/// How a sample is tuned and looped.
struct CInstrument {
  /// MIDI note, 0 to 127.
  std::uint8_t fRootKey = 60;
  /// False when the file does not say, and the key is the usual one.
  bool fHasRootKey = false;
  /// Cents, a two's-complement byte.
  std::uint8_t fFineTune = 0;
  /// 0 no loop, 1 forward, 2 the source's second kind (forward and backward).
  std::uint8_t fLoopMode = 0;
  /// Frames [fLoopStart, fLoopEnd); 0 and the number of frames when there is no loop.
  std::uint64_t fLoopStart = 0;
  std::uint64_t fLoopEnd = 0;

  /// Takes a key that is one.
  void SetRootKey(std::uint32_t key) {
    fHasRootKey = key <= 127;
    if (fHasRootKey) fRootKey = static_cast<std::uint8_t>(key);
  }
  /// Sets a loop of mode 1 or 2, its end cut to `frames`; no loop when it would be empty.
  void SetLoop(std::uint8_t mode, std::uint64_t start, std::uint64_t end, std::uint64_t frames);
};

/// Where the sample chunk's contents lie in the file, so that they can be cut out of it and put
/// back. All positions are bytes from the file's start.
struct CSampleChunkLayout {
  std::uint64_t fSourceSize = 0;
  /// Of the outer chunk's size, 4 bytes in the container's byte order.
  std::uint64_t fOuterSizePosition = 4;
  /// Of the sample chunk's size, 4 bytes in the container's byte order.
  std::uint64_t fChunkSizePosition = 0;
  /// What the sample chunk holds: all of "data", "SSND" behind its 8 leading bytes. It holds more
  /// than the whole frames when there is an offset or a rest.
  std::uint64_t fContentsStart = 0;
  std::uint64_t fContentsLength = 0;
  /// 1 when the contents' length is odd and the file goes on behind them, else 0.
  std::uint32_t fPadLength = 0;
  /// The pad byte's value; 0 when there is none.
  std::uint8_t fPadValue = 0;
};

/// All that the chunks of an audio file tell.
struct CAudioHeader {
  CAudioFormat fFormat;
  CInstrument fInstrument;
  CSampleChunkLayout fLayout;
};

}  // namespace NSTambraPacking
