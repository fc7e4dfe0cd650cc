#include "codecs/SoundFontParser.h"

#include <optional>
#include <span>
#include <utility>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/EmbeddedName.h"
#include "codecs/SoundFontTable.h"
#include "references/IFFReader.h"

namespace NSTambraPacking {

using namespace NSSoundFont;
using NSMordel::XFormatViolation;
using NSMordel::XUnsupportedFormat;
using NSTolbrook::CChunkInfo;
using NSTolbrook::CRIFFReader2;
using NSTolbrook::EChunkKind;
using NSTolbrook::FourCharCode;

namespace {

using Record = std::span<const std::uint8_t>;
using Tables = std::vector<CSoundFontTable>;  // kTableCount, indexed by ETable

std::uint16_t U16(Record record, std::size_t offset) {
  return NSTolbrook::LoadLittleEndian<std::uint16_t>(record.subspan(offset));
}

std::uint32_t U32(Record record, std::size_t offset) {
  return NSTolbrook::LoadLittleEndian<std::uint32_t>(record.subspan(offset));
}

std::u16string Name(Record bytes) {
  return TextFromEmbeddedName({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

[[noreturn]] void ThrowFault(const std::string& what) {
  throw XFormatViolation("SoundFont bank: " + what);
}

/// The contents of the only list of this type in the bank.
CRIFFReader2 EnterList(CRIFFReader2& bank, FourCharCode type) {
  std::optional<CChunkInfo> found;
  for (auto chunk = bank.FirstChunk(); chunk; chunk = bank.NextChunk(*chunk)) {
    if (chunk->fKind != EChunkKind::kList || chunk->fCode != type) continue;
    if (found) ThrowFault("a second list \"" + NSTolbrook::FourCharCodeText(type) + "\"");
    found = chunk;
  }
  if (!found) ThrowFault("no list \"" + NSTolbrook::FourCharCodeText(type) + "\"");
  return bank.EnterGroup(*found);
}

CRIFFReader2 OpenBank(const NSBigFilePackage::SharedMedia& media) {
  CRIFFReader2 file(media);
  const std::optional<CChunkInfo> form = file.FirstChunk();
  if (!form || form->fKind != EChunkKind::kForm || form->fCode != kForm) {
    ThrowFault("the file is no RIFF form \"sfbk\"");
  }
  return file.EnterGroup(*form);
}

/// The first list stands before the sample data, so that a bank of another version is known by it
/// even where the chunks behind it follow other rules.
CRIFFReader2 EnterInfo(CRIFFReader2& bank) {
  const std::optional<CChunkInfo> info = bank.FindGroup(EChunkKind::kList, kInfo);
  if (!info) ThrowFault("no list \"INFO\"");
  return bank.EnterGroup(*info);
}

void ReadVersion(const NSBigFilePackage::IMedia& data, CSoundFontBank& bank) {
  if (data.Size() != kVersionLength) ThrowFault("the version chunk is not of 4 bytes");
  std::array<std::uint8_t, kVersionLength> bytes;
  NSBigFilePackage::ReadExactly(data, 0, bytes);
  bank.fMajorVersion = U16(bytes, 0);
  bank.fMinorVersion = U16(bytes, 2);
  if (bank.fMajorVersion != kMajorVersion) {
    throw XUnsupportedFormat("a SoundFont bank of version " + std::to_string(bank.fMajorVersion) +
                             " is not supported");
  }
}

std::u16string ReadText(const NSBigFilePackage::IMedia& data) {
  std::array<std::uint8_t, kLongestText> bytes;
  return Name(std::span(bytes).first(data.Read(0, bytes)));
}

void ReadInfo(CRIFFReader2 list, CSoundFontBank& bank) {
  bool hasVersion = false;
  for (auto chunk = list.FirstChunk(); chunk; chunk = list.NextChunk(*chunk)) {
    if (chunk->fKind != EChunkKind::kPlain) continue;
    if (chunk->fCode == kVersion) {
      ReadVersion(*list.OpenData(*chunk), bank);
      hasVersion = true;
    } else if (chunk->fCode == kBankName) {
      bank.fName = ReadText(*list.OpenData(*chunk));
    } else if (chunk->fCode == kEngine) {
      bank.fEngine = ReadText(*list.OpenData(*chunk));
    }
  }
  if (!hasVersion) ThrowFault("no version chunk");
}

/// A bank without samples of its own needs no sample data: all of its samples may be in ROM.
void ReadSampleData(CRIFFReader2 list, CSoundFontBank& bank) {
  std::uint64_t lowerBytes = 0;
  for (auto chunk = list.FirstChunk(); chunk; chunk = list.NextChunk(*chunk)) {
    if (chunk->fKind != EChunkKind::kPlain) continue;
    if (chunk->fCode == kSamples) {
      if (bank.fSampleWords != 0) ThrowFault("a second chunk of sample data");
      bank.fSampleWords = chunk->fSize / 2;
    } else if (chunk->fCode == kLowerBytes) {
      lowerBytes = chunk->fSize;
    }
  }
  bank.fHas24Bits = bank.fMinorVersion >= kLowerBytesMinorVersion && lowerBytes != 0 &&
                    lowerBytes == NSTolbrook::EvenOffset(bank.fSampleWords);
}

Tables OpenTables(CRIFFReader2 list) {
  Tables tables;
  std::optional<CChunkInfo> chunk = list.FirstChunk();
  for (const CTableLayout& layout : kTableLayouts) {
    if (!chunk || chunk->fKind != EChunkKind::kPlain || chunk->fCode != layout.fID) {
      ThrowFault("no table \"" + NSTolbrook::FourCharCodeText(layout.fID) + "\" in its place");
    }
    tables.emplace_back(list.OpenData(*chunk), layout);
    chunk = list.NextChunk(*chunk);
  }
  return tables;
}

/// The index at `offset` of each record of `owners` must not fall, and that of the terminal record
/// must be the number of items in `owned`.
void CheckOwnership(const CSoundFontTable& owners, std::size_t offset,
                    const CSoundFontTable& owned) {
  std::uint32_t least = 0;
  owners.ForEachRecord([&](std::uint32_t i, Record record) {
    const std::uint32_t index = U16(record, offset);
    if (index < least) owners.ThrowFault("an index falls", i);
    if (index > owned.ItemCount()) owners.ThrowFault("an index leaves its table", i);
    if (i == owners.ItemCount() && index != owned.ItemCount()) {
      owners.ThrowFault("the terminal record does not close its table", i);
    }
    least = index;
  });
}

void CheckGenerators(const CSoundFontTable& generators, std::uint16_t kind,
                     const CSoundFontTable& targets) {
  generators.ForEachRecord([&](std::uint32_t i, Record record) {
    if (i == generators.ItemCount() || U16(record, kGeneratorKind) != kind) return;
    if (U16(record, kGeneratorAmount) >= targets.ItemCount()) {
      generators.ThrowFault("a generator names nothing that is there", i);
    }
  });
}

void CheckTables(const Tables& tables) {
  CheckOwnership(tables[kPresets], kPresetZone, tables[kPresetZones]);
  CheckOwnership(tables[kPresetZones], kZoneGenerator, tables[kPresetGenerators]);
  CheckOwnership(tables[kPresetZones], kZoneModulator, tables[kPresetModulators]);
  CheckOwnership(tables[kInstruments], kInstrumentZone, tables[kInstrumentZones]);
  CheckOwnership(tables[kInstrumentZones], kZoneGenerator, tables[kInstrumentGenerators]);
  CheckOwnership(tables[kInstrumentZones], kZoneModulator, tables[kInstrumentModulators]);
  CheckGenerators(tables[kPresetGenerators], kInstrumentGenerator, tables[kInstruments]);
  CheckGenerators(tables[kInstrumentGenerators], kSampleGenerator, tables[kSampleHeaders]);
}

void CheckSample(const CSoundFontTable& headers, std::uint32_t index, Record record,
                 const CSoundFontSample& sample, std::uint64_t words) {
  const std::uint16_t type = U16(record, kSampleType);
  if (!sample.fInROM) {
    if ((type & kVorbisSample) != 0) {
      throw XUnsupportedFormat("a SoundFont bank with compressed samples is not supported");
    }
    if (sample.fStart > sample.fEnd) headers.ThrowFault("a sample ends before its start", index);
    if (sample.fEnd > words) headers.ThrowFault("a sample leaves the sample data", index);
    if (sample.fLoopStart < sample.fLoopEnd && sample.fLoopEnd > words) {
      headers.ThrowFault("a loop leaves the sample data", index);
    }
  }
  const bool linked = (type & (kRightSample | kLeftSample | kLinkedSample)) != 0;
  if (linked && U16(record, kSampleLink) >= headers.ItemCount()) {
    headers.ThrowFault("a sample is linked to one that is not there", index);
  }
}

void ListSamples(const CSoundFontTable& headers, CSoundFontBank& bank) {
  headers.ForEachRecord([&](std::uint32_t i, Record record) {
    if (i == headers.ItemCount()) return;
    CSoundFontSample sample;
    sample.fName = Name(record.first(kNameLength));
    sample.fStart = U32(record, kSampleStart);
    sample.fEnd = U32(record, kSampleEnd);
    sample.fLoopStart = U32(record, kSampleLoopStart);
    sample.fLoopEnd = U32(record, kSampleLoopEnd);
    sample.fRate = U32(record, kSampleRate);
    sample.fKey = record[kSampleKey];
    sample.fInROM = (U16(record, kSampleType) & kROMSample) != 0;
    CheckSample(headers, i, record, sample, bank.fSampleWords);
    bank.fSamples.push_back(std::move(sample));
  });
}

void ListNames(const Tables& tables, CSoundFontBank& bank) {
  const CSoundFontTable& presets = tables[kPresets];
  presets.ForEachRecord([&](std::uint32_t i, Record record) {
    if (i == presets.ItemCount()) return;
    bank.fPresets.push_back(
        {Name(record.first(kNameLength)), U16(record, kPresetBank), U16(record, kPresetProgram)});
  });
  const CSoundFontTable& instruments = tables[kInstruments];
  instruments.ForEachRecord([&](std::uint32_t i, Record record) {
    if (i == instruments.ItemCount()) return;
    bank.fInstruments.push_back(Name(record.first(kNameLength)));
  });
}

}  // namespace

CSoundFontParser::CSoundFontParser(NSBigFilePackage::SharedMedia media)
    : fMedia(std::move(media)) {}

CSoundFontBank CSoundFontParser::Parse() const {
  CSoundFontBank bank;
  CRIFFReader2 lists = OpenBank(fMedia);
  ReadInfo(EnterInfo(lists), bank);
  ReadSampleData(EnterList(lists, kSampleData), bank);
  const Tables tables = OpenTables(EnterList(lists, kTables));
  CheckTables(tables);
  ListSamples(tables[kSampleHeaders], bank);
  ListNames(tables, bank);
  return bank;
}

}  // namespace NSTambraPacking
