#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// What a Standard MIDI File holds, for display.
struct CMIDISummary {
  static constexpr std::size_t kMostTrackNames = 64;
  static constexpr std::uint32_t kLongestTrackName = 128;  ///< bytes; the rest is cut off

  std::uint16_t fFormat = 0;  ///< 0 one track, 1 tracks played together, 2 independent tracks
  std::uint16_t fTracks = 0;
  std::uint32_t fForeignChunks = 0;  ///< chunks of other kinds between the tracks

  /// Ticks of a quarter note; 0 when the ticks divide SMPTE frames instead.
  std::uint16_t fTicksPerQuarter = 0;
  std::uint8_t fFramesPerSecond = 0;  ///< 24, 25, 29 (30 drop frame) or 30; 0 without SMPTE
  std::uint8_t fTicksPerFrame = 0;

  std::uint64_t fChannelEvents = 0;
  std::uint64_t fNotes = 0;  ///< of the channel events: notes switched on
  std::uint64_t fSysexEvents = 0;
  std::uint64_t fMetaEvents = 0;  ///< with the end of each track

  std::uint64_t fLengthInTicks = 0;  ///< of the longest track
  /// The longest track's duration by the tempo changes of the first track (format 2: each track's
  /// own), 120 quarters a minute before the first one.
  double fSeconds = 0;

  /// The first name (meta event 3) of each track that has one, at most kMostTrackNames.
  std::vector<std::u16string> fTrackNames;
};

/// Checks a Standard MIDI File ("Standard MIDI Files 1.0") from its header to its last track.
///
/// Beyond that text it accepts: events of a recognised kind that are longer than known (as the
/// text itself asks for), bytes behind the end of a track inside its chunk, and bytes behind the
/// last declared track; none of them changes what is heard. It refuses data bytes without a
/// running status (also right behind sysex and meta events, which cancel it), the statuses F1 to
/// F6 and F8 to FE, numbers of more than 4 bytes, data bytes above 7F, a track without an end, and
/// fewer tracks than declared.
class CMIDIParser {
 public:
  /// `media` must outlive the parser.
  explicit CMIDIParser(const NSBigFilePackage::IMedia& media) : fMedia(media) {}

  /// Reads the file once, in order, in a buffer of fixed size. Throws XFormatViolation with the
  /// offset of the fault in bytes (in the message and as "offset"), XUnsupportedFormat for a MIDI
  /// file wrapped in a RIFF form.
  CMIDISummary Parse();

 private:
  /// Returns the offset behind the header chunk.
  std::uint64_t ParseHeader();
  void ParseDivision(std::uint16_t division, std::uint64_t offset);

  const NSBigFilePackage::IMedia& fMedia;
  CMIDISummary fSummary;
};

}  // namespace NSTambraPacking
