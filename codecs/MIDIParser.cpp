#include "codecs/MIDIParser.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FourCharCode.h"

#include "codecs/EmbeddedName.h"

namespace NSTambraPacking {

using NSBigFilePackage::IMedia;
using NSMordel::XFormatViolation;
using NSTolbrook::FourCharCode;
using NSTolbrook::MakeFourCharCode;

namespace {

constexpr std::uint64_t kChunkHeaderLength = 8;  // ID, u32 big-endian size
constexpr std::uint32_t kHeaderLength = 6;       // format, tracks, division: u16 big-endian each
constexpr double kDefaultTempo = 500000;         // microseconds of a quarter note

constexpr std::uint8_t kSysex = 0xF0;
constexpr std::uint8_t kSysexContinued = 0xF7;
constexpr std::uint8_t kMeta = 0xFF;
constexpr std::uint8_t kMetaTrackName = 0x03;
constexpr std::uint8_t kMetaEndOfTrack = 0x2F;
constexpr std::uint8_t kMetaTempo = 0x51;

[[noreturn]] void ThrowFault(const std::string& what, std::uint64_t offset) {
  const std::string place = std::to_string(offset);
  throw XFormatViolation("MIDI file: " + what + " at offset " + place, {{"offset", place}});
}

/// The bytes of one range of the media in order, fetched a buffer at a time.
class CByteSource {
 public:
  CByteSource(const IMedia& media, std::uint64_t start, std::uint64_t end)
      : fMedia(media), fBufferStart(start), fEnd(end) {}

  std::uint64_t Position() const { return fBufferStart + fNext; }
  std::uint64_t Remaining() const { return fEnd - Position(); }

  std::uint8_t Next() {
    if (fNext == fLength) Fetch();
    return fBuffer[fNext++];
  }

  void Skip(std::uint64_t count) {
    if (count > Remaining()) ThrowFault("an event runs past the end of its track", Position());
    if (count <= fLength - fNext) {
      fNext += static_cast<std::size_t>(count);
      return;
    }
    fBufferStart = Position() + count;
    fNext = fLength = 0;
  }

 private:
  void Fetch() {
    if (Remaining() == 0) ThrowFault("a track ends inside an event or without its end", fEnd);
    fBufferStart += fLength;
    fNext = 0;
    fLength =
        static_cast<std::size_t>(std::min<std::uint64_t>(fBuffer.size(), fEnd - fBufferStart));
    NSBigFilePackage::ReadExactly(fMedia, fBufferStart, std::span(fBuffer).first(fLength));
  }

  const IMedia& fMedia;
  std::uint64_t fBufferStart;  // offset of fBuffer[0] in the media
  std::uint64_t fEnd;
  std::size_t fNext = 0;    // into fBuffer
  std::size_t fLength = 0;  // bytes of fBuffer that are valid
  std::array<std::uint8_t, 8192> fBuffer;
};

struct CChunk {
  FourCharCode fID;
  std::uint64_t fData;  // offset of the first data byte
  std::uint64_t fEnd;
};

CChunk ReadChunkHeader(const IMedia& media, std::uint64_t offset) {
  const std::uint64_t size = media.Size();
  if (size < kChunkHeaderLength || offset > size - kChunkHeaderLength) {
    ThrowFault("a chunk is missing", offset);
  }
  std::array<std::uint8_t, kChunkHeaderLength> bytes;
  NSBigFilePackage::ReadExactly(media, offset, bytes);
  const auto id = NSTolbrook::LoadBigEndian<std::uint32_t>(bytes);
  const auto length = NSTolbrook::LoadBigEndian<std::uint32_t>(std::span(bytes).subspan(4));
  if (!NSTolbrook::IsValidFourCharCode(id)) ThrowFault("no chunk ID", offset);
  const std::uint64_t data = offset + kChunkHeaderLength;
  if (length > size - data) ThrowFault("a chunk runs past the end of the file", offset);
  return {id, data, data + length};
}

/// The fewest data bytes of a meta event; longer ones are for future use.
std::uint32_t LeastMetaLength(std::uint8_t type) {
  switch (type) {
    case 0x20:  // channel prefix
    case 0x21:  // port
      return 1;
    case 0x59:  // key signature
      return 2;
    case kMetaTempo:
      return 3;
    case 0x58:  // time signature
      return 4;
    case 0x54:  // SMPTE offset
      return 5;
    default:
      return 0;
  }
}

/// Time as a track's own tempo changes make it.
class CTempoClock {
 public:
  void SetTempo(std::uint64_t tick, double microsecondsPerQuarter) {
    fElapsed = ElapsedAt(tick);
    fTick = tick;
    fTempo = microsecondsPerQuarter;
  }
  /// Microseconds times ticks of a quarter; `tick` is not before the last change.
  double ElapsedAt(std::uint64_t tick) const {
    return fElapsed + static_cast<double>(tick - fTick) * fTempo;
  }

 private:
  double fElapsed = 0;
  std::uint64_t fTick = 0;
  double fTempo = kDefaultTempo;
};

/// Reads the events of one track and counts them into the summary.
class CTrackParser {
 public:
  CTrackParser(const IMedia& media, const CChunk& chunk, CMIDISummary& summary)
      : fBytes(media, chunk.fData, chunk.fEnd), fSummary(summary) {}

  void Parse() {
    while (!fEnded) {
      fTick += ReadNumber();
      ReadEvent();
    }
  }

  std::uint64_t Ticks() const { return fTick; }
  const CTempoClock& Clock() const { return fClock; }

 private:
  /// Seven bits a byte, the highest first; the top bit says that another byte follows.
  std::uint32_t ReadNumber() {
    const std::uint64_t start = fBytes.Position();
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
      const std::uint8_t byte = fBytes.Next();
      value = (value << 7) | (byte & 0x7Fu);
      if (byte < 0x80) return value;
    }
    ThrowFault("a number has more than 4 bytes", start);
  }

  std::uint8_t ReadDataByte() {
    const std::uint64_t start = fBytes.Position();
    const std::uint8_t byte = fBytes.Next();
    if (byte >= 0x80) ThrowFault("a status byte stands in the place of a data byte", start);
    return byte;
  }

  void ReadEvent() {
    const std::uint64_t start = fBytes.Position();
    const std::uint8_t byte = fBytes.Next();
    if (byte < 0x80) {
      if (fRunningStatus == 0) ThrowFault("a data byte without a status", start);
      FinishChannelEvent();
    } else if (byte < 0xF0) {
      fRunningStatus = byte;
      ReadDataByte();
      FinishChannelEvent();
    } else {
      fRunningStatus = 0;
      if (byte == kMeta) {
        ReadMetaEvent(start);
      } else if (byte == kSysex || byte == kSysexContinued) {
        ++fSummary.fSysexEvents;
        fBytes.Skip(ReadNumber());
      } else {
        ThrowFault("a status that files may not hold", start);
      }
    }
  }

  /// Behind the first data byte.
  void FinishChannelEvent() {
    ++fSummary.fChannelEvents;
    const int kind = fRunningStatus & 0xF0;
    if (kind == 0xC0 || kind == 0xD0) return;  // program, channel pressure: one data byte
    const std::uint8_t second = ReadDataByte();
    if (kind == 0x90 && second != 0) ++fSummary.fNotes;
  }

  void ReadMetaEvent(std::uint64_t start) {
    ++fSummary.fMetaEvents;
    const std::uint8_t type = ReadDataByte();
    const std::uint32_t length = ReadNumber();
    const bool halfSequenceNumber = type == 0 && length == 1;
    if (length < LeastMetaLength(type) || halfSequenceNumber) {
      ThrowFault("a meta event is too short for its kind", start);
    }
    if (length > fBytes.Remaining()) ThrowFault("an event runs past the end of its track", start);
    std::uint32_t taken = 0;
    if (type == kMetaTempo) {
      double tempo = 0;
      for (; taken < 3; ++taken) tempo = tempo * 256 + fBytes.Next();
      fClock.SetTempo(fTick, tempo);
    } else if (type == kMetaTrackName && !fNamed) {
      taken = ReadName(length);
    } else if (type == kMetaEndOfTrack) {
      fEnded = true;
    }
    fBytes.Skip(length - taken);
  }

  std::uint32_t ReadName(std::uint32_t length) {
    fNamed = true;
    if (fSummary.fTrackNames.size() == CMIDISummary::kMostTrackNames) return 0;
    const std::uint32_t kept = std::min(length, CMIDISummary::kLongestTrackName);
    std::string name;
    for (std::uint32_t i = 0; i < kept; ++i) name.push_back(static_cast<char>(fBytes.Next()));
    if (!name.empty()) fSummary.fTrackNames.push_back(TextFromEmbeddedName(name));
    return kept;
  }

  CByteSource fBytes;
  CMIDISummary& fSummary;
  CTempoClock fClock;
  std::uint64_t fTick = 0;
  std::uint8_t fRunningStatus = 0;  // 0 when there is none
  bool fEnded = false;
  bool fNamed = false;
};

}  // namespace

void CMIDIParser::ParseDivision(std::uint16_t division, std::uint64_t offset) {
  if (division == 0) ThrowFault("a division of 0", offset);
  if (division < 0x8000) {
    fSummary.fTicksPerQuarter = division;
    return;
  }
  const int frames = 0x100 - (division >> 8);  // stored as a negative byte
  const int ticks = division & 0xFF;
  if (frames != 24 && frames != 25 && frames != 29 && frames != 30) {
    ThrowFault("a division with an unknown frame rate", offset);
  }
  if (ticks == 0) ThrowFault("a division of 0 ticks in a frame", offset);
  fSummary.fFramesPerSecond = static_cast<std::uint8_t>(frames);
  fSummary.fTicksPerFrame = static_cast<std::uint8_t>(ticks);
}

std::uint64_t CMIDIParser::ParseHeader() {
  std::array<std::uint8_t, 4> id{};
  const bool hasID = fMedia.Read(0, id) == id.size();
  const FourCharCode code = NSTolbrook::LoadBigEndian<std::uint32_t>(id);
  if (hasID && code == MakeFourCharCode("RIFF")) {
    throw NSMordel::XUnsupportedFormat("a MIDI file wrapped in a RIFF form is not supported");
  }
  if (!hasID || code != MakeFourCharCode("MThd")) ThrowFault("no header chunk", 0);
  const CChunk chunk = ReadChunkHeader(fMedia, 0);
  if (chunk.fEnd - chunk.fData < kHeaderLength) ThrowFault("the header chunk is too short", 4);
  std::array<std::uint8_t, kHeaderLength> bytes;
  NSBigFilePackage::ReadExactly(fMedia, chunk.fData, bytes);
  const std::span header(bytes);
  fSummary.fFormat = NSTolbrook::LoadBigEndian<std::uint16_t>(header);
  fSummary.fTracks = NSTolbrook::LoadBigEndian<std::uint16_t>(header.subspan(2));
  if (fSummary.fFormat > 2) ThrowFault("an unknown format number", chunk.fData);
  if (fSummary.fTracks == 0) ThrowFault("no tracks", chunk.fData + 2);
  if (fSummary.fFormat == 0 && fSummary.fTracks != 1) {
    ThrowFault("more than one track in a file of format 0", chunk.fData + 2);
  }
  ParseDivision(NSTolbrook::LoadBigEndian<std::uint16_t>(header.subspan(4)), chunk.fData + 4);
  return chunk.fEnd;
}

CMIDISummary CMIDIParser::Parse() {
  fSummary = {};
  std::uint64_t offset = ParseHeader();
  CTempoClock firstClock;
  double elapsed = 0;  // microseconds times ticks of a quarter
  for (std::uint32_t parsed = 0; parsed < fSummary.fTracks;) {
    const CChunk chunk = ReadChunkHeader(fMedia, offset);
    if (chunk.fID == MakeFourCharCode("MThd")) ThrowFault("a second header chunk", offset);
    offset = chunk.fEnd;
    if (chunk.fID != MakeFourCharCode("MTrk")) {
      ++fSummary.fForeignChunks;
      continue;
    }
    CTrackParser track(fMedia, chunk, fSummary);
    track.Parse();
    if (parsed++ == 0) firstClock = track.Clock();
    fSummary.fLengthInTicks = std::max(fSummary.fLengthInTicks, track.Ticks());
    elapsed = std::max(elapsed, track.Clock().ElapsedAt(track.Ticks()));
  }
  const auto ticks = static_cast<double>(fSummary.fLengthInTicks);
  if (fSummary.fTicksPerQuarter == 0) {
    const int frames = fSummary.fFramesPerSecond;
    const double rate = frames == 29 ? 30000.0 / 1001.0 : frames;
    fSummary.fSeconds = ticks / (rate * fSummary.fTicksPerFrame);
  } else {
    if (fSummary.fFormat != 2) elapsed = firstClock.ElapsedAt(fSummary.fLengthInTicks);
    fSummary.fSeconds = elapsed / fSummary.fTicksPerQuarter / 1e6;
  }
  return fSummary;
}

}  // namespace NSTambraPacking
