#include "app/demo/DemoSoundFont.h"

#include "app/demo/DemoBytes.h"
#include "app/demo/DemoChunks.h"
#include "app/demo/DemoSynthesis.h"
#include "codecs/SoundFontFormat.h"

namespace NSTambraPacking {

namespace {

using namespace NSSoundFont;
using NSTolbrook::EByteOrder;
using NSTolbrook::EChunkKind;
using Bytes = std::vector<std::uint8_t>;
using CRIFFChunks = TDemoChunks<NSTolbrook::CRIFFWriter2>;

constexpr std::uint32_t kRate = 44'100;
/// Words of silence that the format wants behind each sample.
constexpr std::size_t kSilence = 46;

struct CVoice {
  const char* fName;
  std::uint16_t fProgram;
  std::uint8_t fKey;
  std::uint16_t fHarmonics[4];
};

constexpr CVoice kVoices[] = {{"Orgel", 16, 60, {90, 60, 40, 20}},
                              {"Bass", 33, 36, {120, 50, 30, 10}}};

CDemoBytes Little() { return CDemoBytes(EByteOrder::kLittleEndian); }

/// The tables of the bank, filled voice by voice; each voice is a preset with one zone, which
/// plays an instrument with one zone, which plays a sample.
class CBank {
 public:
  void Add(const CVoice& voice) {
    Table(kPresets).Field(voice.fName, kNameLength).Add(voice.fProgram).Add<std::uint16_t>(0);
    Table(kPresets).Add(fVoices).Zeros(12);
    Table(kInstruments).Field(voice.fName, kNameLength).Add(fVoices);
    AddZone(kPresetZones, kPresetGenerators, kInstrumentGenerator);
    AddZone(kInstrumentZones, kInstrumentGenerators, kSampleGenerator);
    AddSample(voice);
    ++fVoices;
  }

  Bytes Finish() {
    Table(kPresets).Field("EOP", kNameLength).Zeros(4).Add(fVoices).Zeros(12);
    Table(kInstruments).Field("EOI", kNameLength).Add(fVoices);
    Table(kSampleHeaders).Field("EOS", kNameLength).Zeros(26);
    for (const ETable zones : {kPresetZones, kInstrumentZones}) Table(zones).Add(fVoices).Zeros(2);
    CRIFFChunks tables;
    for (std::size_t i = 0; i < kTableCount; ++i) {
      // What is left empty consists of its terminal record alone, which is all zeros.
      const bool isClosed = i == kPresets || i == kInstruments || i == kSampleHeaders ||
                            i == kPresetZones || i == kInstrumentZones;
      if (!isClosed) fTables[i].Zeros(kTableLayouts[i].fRecordLength);
      tables.Chunk(kTableLayouts[i].fID, fTables[i].Bytes());
    }
    CRIFFChunks lists;
    lists.Group(EChunkKind::kList, kInfo, Information());
    lists.Group(EChunkKind::kList, kSampleData,
                CRIFFChunks().Chunk(kSamples, fWords.Bytes()).Take());
    lists.Group(EChunkKind::kList, kTables, tables.Take());
    return CRIFFChunks().Group(EChunkKind::kForm, kForm, lists.Take()).Take();
  }

 private:
  CDemoBytes& Table(ETable table) { return fTables[table]; }

  void AddZone(ETable zones, ETable generators, std::uint16_t generator) {
    Table(zones).Add(fVoices).Add<std::uint16_t>(0);
    Table(generators).Add(generator).Add(fVoices);
  }

  void AddSample(const CVoice& voice) {
    const std::uint32_t step = PhaseStep(voice.fKey, 0, kRate);
    const std::uint32_t loop = SeamlessLength(step, kRate / 20, kRate / 10);
    const std::uint32_t attack = kRate / 50;
    const DemoSamples samples = MakeTone(step, voice.fHarmonics, attack, attack + loop + 64);
    const auto start = static_cast<std::uint32_t>(fWords.Bytes().size() / 2);
    const auto length = static_cast<std::uint32_t>(samples.size());
    for (const std::int32_t sample : samples) fWords.Add(static_cast<std::uint16_t>(sample >> 8));
    fWords.Zeros(kSilence * 2);
    CDemoBytes& header = Table(kSampleHeaders);
    header.Field(voice.fName, kNameLength).Add(start).Add(start + length);
    header.Add(start + attack).Add(start + attack + loop).Add(kRate).Add(voice.fKey).Zeros(3);
    header.Add<std::uint16_t>(1);  // mono
  }

  static Bytes Information() {
    CRIFFChunks information;
    information.Chunk(kVersion, Little().Add(kMajorVersion).Add<std::uint16_t>(1).Bytes());
    information.Chunk(kEngine, Little().Field("Demo", 6).Bytes());
    information.Chunk(kBankName, Little().Field("Kleine Bank", 12).Bytes());
    return information.Take();
  }

  std::vector<CDemoBytes> fTables = std::vector<CDemoBytes>(kTableCount, Little());
  CDemoBytes fWords = Little();
  std::uint16_t fVoices = 0;
};

}  // namespace

CDemoFile MakeDemoSoundFont() {
  CBank bank;
  for (const CVoice& voice : kVoices) bank.Add(voice);
  return {kDemoBankPath, bank.Finish()};
}

}  // namespace NSTambraPacking
