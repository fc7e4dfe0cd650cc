#include "app/demo/DemoMIDI.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "app/demo/DemoBytes.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::EByteOrder;
using NSTolbrook::MakeFourCharCode;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kTicksPerQuarter = 480;
constexpr std::uint32_t kSixteenth = kTicksPerQuarter / 4;

struct CNote {
  std::uint32_t fSixteenth;  ///< when it begins
  std::uint32_t fLength;     ///< in sixteenths
  std::uint8_t fChannel;
  std::uint8_t fKey;
  std::uint8_t fVelocity;
};

/// The events of one track, in order.
class CTrack {
 public:
  void Meta(std::uint8_t kind, std::string_view data) {
    Delta(fNow);
    fBytes.Bytes(Bytes{0xFF, kind});
    Number(static_cast<std::uint32_t>(data.size()));
    fBytes.Text(data);
  }

  void Notes(std::span<const CNote> notes) {
    struct CEvent {
      std::uint32_t fTick;
      Bytes fMessage;
    };
    std::vector<CEvent> events;
    for (const CNote& note : notes) {
      const std::uint32_t start = note.fSixteenth * kSixteenth;
      const auto on = static_cast<std::uint8_t>(0x90 | note.fChannel);
      const auto off = static_cast<std::uint8_t>(0x80 | note.fChannel);
      events.push_back({start, {on, note.fKey, note.fVelocity}});
      events.push_back({start + note.fLength * kSixteenth - 1, {off, note.fKey, 64}});
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const CEvent& a, const CEvent& b) { return a.fTick < b.fTick; });
    for (const CEvent& event : events) {
      Delta(event.fTick);
      fBytes.Bytes(event.fMessage);
    }
  }

  const Bytes& Finish() {
    Meta(0x2F, "");
    return fBytes.Bytes();
  }

 private:
  void Delta(std::uint32_t tick) {
    Number(tick - fNow);
    fNow = tick;
  }

  /// Seven bits a byte, the highest first; all but the last have the top bit set.
  void Number(std::uint32_t value) {
    for (int shift = 21; shift > 0; shift -= 7) {
      if (value >> shift != 0) fBytes.Add(static_cast<std::uint8_t>(0x80 | (value >> shift)));
    }
    fBytes.Add(static_cast<std::uint8_t>(value & 0x7F));
  }

  CDemoBytes fBytes{EByteOrder::kBigEndian};
  std::uint32_t fNow = 0;
};

// Tempo (500,000 microseconds a quarter note) and four quarters a bar.
constexpr std::uint8_t kTempo = 0x51;
constexpr std::string_view kTempoData("\x07\xA1\x20", 3);
constexpr std::uint8_t kMeter = 0x58;
constexpr std::string_view kMeterData("\x04\x02\x18\x08", 4);
constexpr std::uint8_t kTrackName = 0x03;

Bytes Finish(std::uint16_t format, std::vector<CTrack> tracks) {
  CDemoBytes header(EByteOrder::kBigEndian);
  header.Add(format).Add(static_cast<std::uint16_t>(tracks.size())).Add(kTicksPerQuarter);
  // A chunk of a MIDI file has no pad byte, so that these are not the chunks of an IFF file.
  CDemoBytes file(EByteOrder::kBigEndian);
  const auto add = [&file](NSTolbrook::FourCharCode id, const Bytes& data) {
    file.Code(id).Add(static_cast<std::uint32_t>(data.size())).Bytes(data);
  };
  add(MakeFourCharCode("MThd"), header.Bytes());
  for (CTrack& track : tracks) add(MakeFourCharCode("MTrk"), track.Finish());
  return file.Take();
}

Bytes Groove() {
  constexpr std::uint8_t kDrums = 9;
  constexpr std::uint8_t kKick = 36, kSnare = 38, kHat = 42, kOpenHat = 46;
  std::vector<CNote> notes;
  for (std::uint32_t bar = 0; bar < 4; ++bar) {
    for (std::uint32_t step = 0; step < 16; step += 2) {
      const std::uint32_t at = bar * 16 + step;
      notes.push_back({at, 1, kDrums, step == 14 ? kOpenHat : kHat,
                       static_cast<std::uint8_t>(step % 4 == 0 ? 100 : 70)});
      if (step == 0 || step == 10) notes.push_back({at, 1, kDrums, kKick, 110});
      if (step == 4 || step == 12) notes.push_back({at, 1, kDrums, kSnare, 105});
    }
  }
  CTrack track;
  track.Meta(kTrackName, "Groove");
  track.Meta(kTempo, kTempoData);
  track.Meta(kMeter, kMeterData);
  track.Notes(notes);
  return Finish(0, {std::move(track)});
}

Bytes Accompaniment() {
  constexpr std::uint8_t kRoots[] = {45, 41, 48, 43};
  std::vector<CNote> bass;
  std::vector<CNote> chords;
  std::uint32_t bar = 0;
  for (const std::uint8_t root : kRoots) {
    for (std::uint32_t step = 0; step < 16; step += 4) {
      bass.push_back({bar * 16 + step, 3, 0, static_cast<std::uint8_t>(root - 12), 96});
    }
    const std::uint8_t third = root == 45 ? 3 : 4;
    for (const int interval : {0, +third, 7}) {
      chords.push_back({bar * 16, 15, 1, static_cast<std::uint8_t>(root + 12 + interval), 80});
    }
    ++bar;
  }
  std::vector<CTrack> tracks(3);
  tracks[0].Meta(kTrackName, "Begleitung");
  tracks[0].Meta(kTempo, kTempoData);
  tracks[0].Meta(kMeter, kMeterData);
  tracks[1].Meta(kTrackName, "Bass");
  tracks[1].Notes(bass);
  tracks[2].Meta(kTrackName, "Akkorde");
  tracks[2].Notes(chords);
  return Finish(1, std::move(tracks));
}

}  // namespace

DemoFiles MakeDemoMIDIFiles() {
  return {{u"MIDI/Groove.mid", Groove()}, {u"MIDI/Begleitung.midi", Accompaniment()}};
}

}  // namespace NSTambraPacking
