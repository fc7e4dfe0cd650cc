#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

struct CSoundFontPreset {
  std::u16string fName;
  std::uint16_t fBank = 0;
  std::uint16_t fProgram = 0;
};

struct CSoundFontSample {
  std::u16string fName;
  std::uint32_t fStart = 0;  ///< words of the bank's sample data, as the next three
  std::uint32_t fEnd = 0;    ///< one past the last
  std::uint32_t fLoopStart = 0;
  std::uint32_t fLoopEnd = 0;  ///< one past the last; no loop, and any numbers, unless start < end
  std::uint32_t fRate = 0;     ///< frames a second
  std::uint8_t fKey = 0;       ///< 60 is middle C; 255 unpitched
  bool fInROM = false;         ///< in the sampler's memory: the positions are not of this file
};

/// What a bank holds, for display; all lists in the order of the file.
struct CSoundFontBank {
  std::uint16_t fMajorVersion = 0;
  std::uint16_t fMinorVersion = 0;
  std::u16string fName;    ///< empty when the bank has none
  std::u16string fEngine;  ///< the sampler that the bank was made for; may be empty
  std::uint64_t fSampleWords = 0;
  bool fHas24Bits = false;  ///< with lower bytes that fit the words
  std::vector<CSoundFontPreset> fPresets;
  std::vector<std::u16string> fInstruments;
  std::vector<CSoundFontSample> fSamples;
};

/// Checks the structure of a SoundFont 2 bank and lists what it holds. What would lead a sampler
/// astray is refused: a missing or short table, tables out of order, indices that fall or leave
/// their table, terminal records that do not close the tables, samples outside the sample data.
///
/// Accepted, since the standard tells readers to go on or banks in wide use have it: a missing
/// bank name or engine, unknown chunks beside the known ones, lower bytes of the wrong size (they
/// do not count), samples without the 46 zero words behind them, empty samples, loops that reach
/// outside their sample (not outside the sample data), loops that are empty or turned round (they
/// cannot be played), and stereo links of samples that are not stereo.
class CSoundFontParser {
 public:
  explicit CSoundFontParser(NSBigFilePackage::SharedMedia media);

  /// Reads everything but the sample data. The lists take memory in proportion to the tables that
  /// are really there. Throws XFormatViolation with the chunk and the record or offset, and
  /// XUnsupportedFormat for another major version than 2 and for compressed samples.
  CSoundFontBank Parse() const;

 private:
  NSBigFilePackage::SharedMedia fMedia;
};

}  // namespace NSTambraPacking
