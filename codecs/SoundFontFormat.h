#pragma once

#include <array>
#include <cstdint>

#include "Parts/TolbrookPackage/Core/FourCharCode.h"

/// The layout of a SoundFont 2 bank (the published standard, 2.01 and 2.04), a RIFF
/// file; all numbers are little-endian, offsets in bytes from a record's start.
///
///   RIFF "sfbk"
///     LIST "INFO"  "ifil" (u16 major, u16 minor), "INAM", "isng" and other texts
///     LIST "sdta"  "smpl": all samples, 16-bit words; "sm24": a lower byte for each word
///     LIST "pdta"  nine tables of records, the last record of each a terminal one
///
/// A header record owns the records of the next table from its own index to the next header's.
namespace NSTambraPacking::NSSoundFont {

using NSTolbrook::MakeFourCharCode;

inline constexpr NSTolbrook::FourCharCode kForm = MakeFourCharCode("sfbk");
inline constexpr NSTolbrook::FourCharCode kInfo = MakeFourCharCode("INFO");
inline constexpr NSTolbrook::FourCharCode kSampleData = MakeFourCharCode("sdta");
inline constexpr NSTolbrook::FourCharCode kTables = MakeFourCharCode("pdta");

inline constexpr NSTolbrook::FourCharCode kVersion = MakeFourCharCode("ifil");
inline constexpr NSTolbrook::FourCharCode kBankName = MakeFourCharCode("INAM");
inline constexpr NSTolbrook::FourCharCode kEngine = MakeFourCharCode("isng");
inline constexpr NSTolbrook::FourCharCode kSamples = MakeFourCharCode("smpl");
inline constexpr NSTolbrook::FourCharCode kLowerBytes = MakeFourCharCode("sm24");

inline constexpr std::uint32_t kVersionLength = 4;
inline constexpr std::uint16_t kMajorVersion = 2;
inline constexpr std::uint16_t kLowerBytesMinorVersion = 4;  ///< the first with "sm24"
inline constexpr std::uint32_t kLongestText = 256;           ///< of the name and the engine

/// A table of "pdta": its chunk, the length of a record in bytes and the fewest records, of which
/// the last is the terminal one.
struct CTableLayout {
  NSTolbrook::FourCharCode fID;
  std::uint32_t fRecordLength;
  std::uint32_t fLeastRecords;
};

enum ETable {
  kPresets,
  kPresetZones,
  kPresetModulators,
  kPresetGenerators,
  kInstruments,
  kInstrumentZones,
  kInstrumentModulators,
  kInstrumentGenerators,
  kSampleHeaders,
  kTableCount
};

/// In the order of the file.
inline constexpr std::array<CTableLayout, kTableCount> kTableLayouts = {{
    {MakeFourCharCode("phdr"), 38, 2},
    {MakeFourCharCode("pbag"), 4, 1},
    {MakeFourCharCode("pmod"), 10, 1},
    {MakeFourCharCode("pgen"), 4, 1},
    {MakeFourCharCode("inst"), 22, 2},
    {MakeFourCharCode("ibag"), 4, 1},
    {MakeFourCharCode("imod"), 10, 1},
    {MakeFourCharCode("igen"), 4, 1},
    {MakeFourCharCode("shdr"), 46, 1},
}};

inline constexpr std::size_t kNameLength = 20;  ///< at the start of "phdr", "inst", "shdr"

inline constexpr std::size_t kPresetProgram = 20;   ///< u16
inline constexpr std::size_t kPresetBank = 22;      ///< u16
inline constexpr std::size_t kPresetZone = 24;      ///< u16, into "pbag"
inline constexpr std::size_t kInstrumentZone = 20;  ///< u16, into "ibag"
inline constexpr std::size_t kZoneGenerator = 0;    ///< u16, into "pgen" or "igen"
inline constexpr std::size_t kZoneModulator = 2;    ///< u16, into "pmod" or "imod"
inline constexpr std::size_t kGeneratorKind = 0;    ///< u16
inline constexpr std::size_t kGeneratorAmount = 2;  ///< u16
inline constexpr std::size_t kSampleStart = 20;     ///< u32, words of "smpl", as the next three
inline constexpr std::size_t kSampleEnd = 24;       ///< one past the last
inline constexpr std::size_t kSampleLoopStart = 28;
inline constexpr std::size_t kSampleLoopEnd = 32;     ///< one past the last
inline constexpr std::size_t kSampleRate = 36;        ///< u32
inline constexpr std::size_t kSampleKey = 40;         ///< u8
inline constexpr std::size_t kSampleCorrection = 41;  ///< i8, cents
inline constexpr std::size_t kSampleLink = 42;        ///< u16, into "shdr"
inline constexpr std::size_t kSampleType = 44;        ///< u16

inline constexpr std::uint16_t kInstrumentGenerator = 41;  ///< of a preset: index into "inst"
inline constexpr std::uint16_t kSampleGenerator = 53;      ///< of an instrument: into "shdr"

/// Bits of a sample's type.
inline constexpr std::uint16_t kRightSample = 2;
inline constexpr std::uint16_t kLeftSample = 4;
inline constexpr std::uint16_t kLinkedSample = 8;
inline constexpr std::uint16_t kVorbisSample = 0x10;  ///< not of the standard
inline constexpr std::uint16_t kROMSample = 0x8000;   ///< in the sampler's memory, not the file

}  // namespace NSTambraPacking::NSSoundFont
