#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace NSBench {

/// Samples that coders are run on, in the forms that their interfaces take.
struct CSignal {
  std::string fKind;
  unsigned fChannels = 0;
  /// Bits of a sample: 16 or 24.
  unsigned fWidth = 0;
  /// Interleaved, right-justified and sign-extended.
  std::vector<std::int32_t> fSamples;
  /// The same of 16-bit signals; empty for others.
  std::vector<std::int16_t> fNarrowSamples;

  std::size_t Frames() const { return fSamples.size() / fChannels; }
  /// Bytes of the plain samples.
  std::size_t Bytes() const { return fSamples.size() * (fWidth / 8); }
};

/// Frames a second that every stream declares.
inline constexpr std::uint32_t kRate = 44100;
/// Frames that every encoder is handed at once, and that every decoder is asked for.
inline constexpr std::size_t kPieceFrames = 32768;
inline constexpr std::size_t kDecodedFrames = 4096;

/// A minute of each kind: chords of decaying notes over noise.
std::vector<CSignal> GeneratedSignals();

/// The samples of the WAVE and AIFF files below a folder, by kind, at most `limit` bytes of a kind:
/// the same share of the beginning of every file that is longer than the share. Always the same for
/// the same files. Kinds without samples are left out.
std::vector<CSignal> SignalsOfFolder(const std::filesystem::path& folder, std::size_t limit);

}  // namespace NSBench
