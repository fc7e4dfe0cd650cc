#include <cmath>

#include "codecs/MIDIParser.h"
#include "fuzz/FuzzInput.h"

/// A file has no more of anything than its bytes can hold.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  return NSFuzz::Try([&] {
    const auto song = NSTambraPacking::CMIDIParser(*media).Parse();
    NSFuzz::Require(song.fNotes <= song.fChannelEvents && song.fTracks <= song.fMetaEvents);
    NSFuzz::Require(2 * (song.fChannelEvents + song.fSysexEvents + song.fMetaEvents) <= size);
    NSFuzz::Require(song.fTrackNames.size() <= song.fTracks);
    NSFuzz::Require(std::isfinite(song.fSeconds) && song.fSeconds >= 0);
    NSFuzz::Require(song.fLengthInTicks <= std::uint64_t{size} << 28);
  });
}
