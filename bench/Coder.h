#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "bench/Signal.h"
#include "bench/SignalCheck.h"

namespace NSBench {

using Bytes = std::vector<std::uint8_t>;

/// A way to decode, to be measured. Samples come in pieces in memory that is used again; they are
/// handed to the check when there is one. Throws for a stream that it cannot decode.
struct CDecoder {
  std::string fName;
  std::function<void(std::span<const std::uint8_t> stream, const CSignal& signal,
                     CSignalCheck* check)>
      fDecode;
};

/// A way to encode, to be measured, and the ways to decode what it makes.
struct CCoder {
  std::string fName;
  /// Appends the stream to `output`, which is empty but may have room.
  std::function<void(const CSignal& signal, Bytes& output)> fEncode;
  std::vector<CDecoder> fDecoders;
};

std::vector<CCoder> DWOPCoders();
/// Levels 0 and 5, decoded with and without comparing the checksum (MD5) of all samples.
std::vector<CCoder> FlacCoders();
/// The fast mode.
std::vector<CCoder> WavPackCoders();

}  // namespace NSBench
