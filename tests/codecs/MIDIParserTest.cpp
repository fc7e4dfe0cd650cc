#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/MIDIParser.h"
#include "package/MemoryMedia.h"
#include "tests/support/Damage.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryView;
using NSMordel::XFormatViolation;
using Bytes = std::vector<std::uint8_t>;

Bytes Joined(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Bytes Chunk(const char* id, const Bytes& data) {
  const auto size = static_cast<std::uint32_t>(data.size());
  const auto byte = [size](int shift) { return static_cast<std::uint8_t>(size >> shift); };
  return Joined({Bytes(id, id + 4), {byte(24), byte(16), byte(8), byte(0)}, data});
}

Bytes Header(std::uint8_t format, std::uint8_t tracks, std::uint8_t high = 0,
             std::uint8_t low = 96) {
  return Chunk("MThd", {0, format, 0, tracks, high, low});
}

const Bytes kEnd = {0x00, 0xFF, 0x2F, 0x00};

Bytes Track(const Bytes& events) { return Chunk("MTrk", Joined({events, kEnd})); }
/// A file of one track; its first event stands at offset 22.
Bytes File(const Bytes& events) { return Joined({Header(0, 1), Track(events)}); }

CMIDISummary Parse(const Bytes& bytes) { return CMIDIParser(CMemoryView(bytes)).Parse(); }

/// Where the parser finds the fault; "" when it finds none.
std::string FaultOffset(const Bytes& bytes) {
  try {
    Parse(bytes);
  } catch (const XFormatViolation& fault) {
    const std::string* offset = fault.FindContext("offset");
    return offset == nullptr ? "no offset" : *offset;
  } catch (const NSMordel::XUnsupportedFormat&) {
    return "not supported";
  }
  return "";
}

TEST(MIDIParser, CountsTheEventsOfAllTracksAndTimesThemByTheFirst) {
  const Bytes tempoTrack = Joined({{0, 0xFF, 0x03, 2, 'H', 0xE9},          // Windows-1252
                                   {0, 0xFF, 0x58, 4, 4, 2, 24, 8},        // 4/4
                                   {96, 0xFF, 0x51, 3, 0x0F, 0x42, 0x40},  // 1 s a quarter
                                   {0, 0xF0, 2, 0x7E, 0xF7}});
  const Bytes noteTrack = Joined({{0, 0xFF, 0x03, 3, 'c', 0xC3, 0xA9},
                                  {0, 0xC0, 5},
                                  {0, 0x90, 60, 100},
                                  {0x83, 0x00, 60, 0},            // 384 ticks, running status
                                  {0, 0xFF, 0x51, 3, 0, 0, 1}});  // not the first track: no tempo
  const CMIDISummary summary =
      Parse(Joined({Header(1, 2), Chunk("XFIH", {1, 2, 3}), Track(tempoTrack), Track(noteTrack)}));
  EXPECT_EQ(std::tuple(summary.fFormat, summary.fTracks, summary.fForeignChunks),
            std::tuple(1, 2, 1u));
  EXPECT_EQ(summary.fTicksPerQuarter, 96);
  EXPECT_EQ(std::tuple(summary.fChannelEvents, summary.fNotes, summary.fSysexEvents),
            std::tuple(3u, 1u, 1u));
  EXPECT_EQ(summary.fMetaEvents, 7u);
  EXPECT_EQ(summary.fLengthInTicks, 384u);
  EXPECT_DOUBLE_EQ(summary.fSeconds, 0.5 + 3.0);
  EXPECT_THAT(summary.fTrackNames, testing::ElementsAre(u"H\u00E9", u"c\u00E9"));
}

TEST(MIDIParser, KnowsTheDivisions) {
  const struct {
    std::uint8_t high, low;
    std::uint8_t format;
    double seconds;  // of 200 ticks
  } kCases[] = {{0, 100, 0, 1.0},
                {0, 100, 2, 1.0},
                {0xE8, 4, 0, 200.0 / 96},
                {0xE7, 40, 0, 0.2},
                {0xE3, 80, 0, 200.0 / (80 * 30000.0 / 1001)},
                {0xE2, 80, 0, 200.0 / 2400}};
  for (const auto& test : kCases) {
    const Bytes track = Track({0x81, 0x48, 0x90, 60, 1});
    const Bytes bytes = Joined({Header(test.format, 1, test.high, test.low), track});
    EXPECT_DOUBLE_EQ(Parse(bytes).fSeconds, test.seconds) << int{test.high};
  }
}

TEST(MIDIParser, AcceptsWhatChangesNothingThatIsHeard) {
  const Bytes longHeader = Chunk("MThd", {0, 0, 0, 1, 0, 96, 1, 2, 3});
  const Bytes kCases[] = {
      File({}),
      Joined({longHeader, Track({})}),
      Joined({File({}), {'j', 'u', 'n', 'k'}}),                          // behind the last track
      Joined({Header(0, 1), Chunk("MTrk", Joined({kEnd, {0xFF, 1}}))}),  // behind a track's end
      File({0, 0xFF, 0x59, 4, 0, 0, 9, 9}),                              // longer than known
      File({0, 0xFF, 0x00, 0, 0, 0xFF, 0x00, 2, 0, 1}),
      File({0, 0xFF, 0x7F, 2, 0xFF, 0xFF}),  // data bytes of meta and sysex events are free
      File({0, 0xF7, 3, 0xF3, 0x01, 0x90}),
      File({0xFF, 0xFF, 0xFF, 0x7F, 0xB0, 7, 1}),
  };
  for (const Bytes& bytes : kCases)
    EXPECT_EQ(FaultOffset(bytes), "") << testing::PrintToString(bytes);
}

TEST(MIDIParser, RefusesFaultsWithTheirOffset) {
  const struct {
    Bytes bytes;
    const char* offset;
  } kCases[] = {
      {{}, "0"},
      {Joined({Chunk("MTrk", kEnd), Header(0, 1)}), "0"},
      {Chunk("MThd", {0, 0, 0, 1, 0}), "4"},
      {Joined({Header(3, 1), Track({})}), "8"},
      {Joined({Header(1, 0), Track({})}), "10"},
      {Joined({Header(0, 2), Track({}), Track({})}), "10"},
      {Joined({Header(0, 1, 0, 0), Track({})}), "12"},
      {Joined({Header(0, 1, 0xE7, 0), Track({})}), "12"},
      {Joined({Header(0, 1, 0xE6, 40), Track({})}), "12"},
      {Joined({Header(1, 2), Track({})}), "26"},  // a track is missing
      {Joined({Header(1, 2), Track({}), Header(1, 2), Track({})}), "26"},
      {Joined({Header(1, 2), Track({}), {0}, Track({})}), "26"},  // no chunk ID
      {Joined({Header(0, 1), {'M', 'T', 'r', 'k', 0, 0, 0, 5}, kEnd}), "14"},
      {Joined({Header(0, 1), Chunk("MTrk", {0, 0xC0, 1})}), "25"},   // no end of track
      {Joined({Header(0, 1), Chunk("MTrk", {0, 0x90, 60})}), "25"},  // ends inside an event
      {File({0, 60, 100}), "23"},                                    // no status yet
      {File({0, 0xC0, 1, 0, 0xFF, 0x01, 0, 0, 1}), "30"},            // cancelled by meta
      {File({0, 0xC0, 1, 0, 0xF7, 0, 0, 1}), "29"},                  // and by sysex
      {File({0, 0x90, 60, 0x80}), "25"},
      {File({0, 0x90, 0xFF, 1}), "24"},
      {File({0, 0xFF, 0x81, 0}), "24"},
      {File({0, 0xF1, 0}), "23"},
      {File({0, 0xF6}), "23"},
      {File({0, 0xF8}), "23"},
      {File({0, 0xFE}), "23"},
      {File({0x80, 0x80, 0x80, 0x80, 0, 0xC0, 1}), "22"},
      {File({0, 0xFF, 0x01, 0x80, 0x80, 0x80, 0x80, 0}), "25"},
      {File({0, 0xF0, 0x20, 1}), "25"},  // runs past the track
      {File({0, 0xFF, 0x01, 0x20, 1}), "23"},
      {File({0, 0xFF, 0x00, 1, 1}), "23"},
      {File({0, 0xFF, 0x20, 0}), "23"},
      {File({0, 0xFF, 0x21, 0}), "23"},
      {File({0, 0xFF, 0x51, 2, 1, 1}), "23"},
      {File({0, 0xFF, 0x54, 4, 1, 1, 1, 1}), "23"},
      {File({0, 0xFF, 0x58, 3, 1, 1, 1}), "23"},
      {File({0, 0xFF, 0x59, 1, 1}), "23"},
      {Joined({{'R', 'I', 'F', 'F', 4, 0, 0, 0, 'R', 'M', 'I', 'D'}, File({})}), "not supported"},
  };
  for (const auto& test : kCases) {
    EXPECT_EQ(FaultOffset(test.bytes), test.offset) << testing::PrintToString(test.bytes);
  }
}

TEST(MIDIParser, LimitsTheNamesItKeeps) {
  Bytes bytes = Header(1, 100);
  Bytes name = {0, 0xFF, 0x03, 0x81, 0x48};
  name.resize(name.size() + 200, 'x');
  for (int i = 0; i < 100; ++i) bytes = Joined({bytes, Track(Joined({name, name}))});
  const CMIDISummary summary = Parse(bytes);
  EXPECT_EQ(summary.fTrackNames.size(), 64u);
  EXPECT_EQ(summary.fTrackNames[0], std::u16string(128, u'x'));
  EXPECT_EQ(summary.fMetaEvents, 300u);
}

TEST(MIDIParser, ReadsEventsAcrossItsBuffer) {
  // Sysex events of lengths around the buffer's, each followed by a note that must be seen.
  for (const int length : {8170, 8180, 8190, 8192, 16000, 16383}) {
    Bytes events = {0, 0xF0, static_cast<std::uint8_t>(0x80 | (length >> 7)),
                    static_cast<std::uint8_t>(length & 0x7F)};
    events.resize(events.size() + static_cast<std::size_t>(length), 0x55);
    EXPECT_EQ(Parse(File(Joined({events, {5, 0x90, 1, 2}}))).fNotes, 1u) << length;
  }
}

TEST(MIDIParser, EveryCutIsRefusedAndEveryTurnedBitSurvived) {
  const Bytes whole = Joined({Header(1, 2), Track({0, 0xFF, 0x51, 3, 7, 8, 9}),
                              Track({0, 0xFF, 3, 1, 'n', 9, 0x90, 1, 2, 3, 4, 5, 0, 0xF0, 1, 2})});
  NSTest::ForEachCut(whole, [](const Bytes& cut) { EXPECT_NE(FaultOffset(cut), ""); });
  NSTest::ForEachTurnedBit(whole, FaultOffset);
}

}  // namespace
}  // namespace NSTambraPacking
