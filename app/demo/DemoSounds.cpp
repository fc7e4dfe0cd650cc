#include "app/demo/DemoSounds.h"

#include <optional>

#include "app/demo/DemoAudio.h"

namespace NSTambraPacking {

namespace {

/// How a file stores its sound; one of the two containers.
struct CForm {
  std::optional<EWAVEForm> fWAVE;
  std::optional<EAIFFForm> fAIFF;
};

constexpr CForm kPlainWAVE{EWAVEForm::kPlain, {}};
constexpr CForm kInstrumentWAVE{EWAVEForm::kInstrument, {}};
constexpr CForm kSamplerWAVE{EWAVEForm::kSampler, {}};
constexpr CForm kBroadcastWAVE{EWAVEForm::kBroadcast, {}};
constexpr CForm kPlainAIFF{{}, EAIFFForm::kPlain};
constexpr CForm kInstrumentAIFF{{}, EAIFFForm::kInstrument};
constexpr CForm kLittleEndianAIFF{{}, EAIFFForm::kLittleEndian};

struct CDrumRow {
  const char16_t* fPath;
  CForm fForm;
  const char* fTitle;
  std::uint16_t fBits;
  std::uint16_t fChannels;
  std::uint32_t fRate;
  std::uint32_t fMilliseconds;
  CDemoDrum fDrum;
};

// clang-format off
constexpr CDrumRow kDrums[] = {
    {u"Samples/Schlagzeug/Kick 01.wav", kBroadcastWAVE, "Kick 01", 24, 1, 44'100, 350, {190, 46, 220, 30, 0, 1, 110, 1}},
    {u"Samples/Schlagzeug/Kick 02.aif", kPlainAIFF, "Kick 02", 16, 1, 48'000, 300, {150, 52, 235, 8, 0, 1, 90, 2}},
    {u"Samples/Schlagzeug/Snare 01.wav", kPlainWAVE, "", 24, 1, 48'000, 250, {280, 185, 90, 150, 180, 1, 60, 3}},
    {u"Samples/Schlagzeug/Snare 02 (laut).WAV", kInstrumentWAVE, "", 16, 2, 44'100, 250, {320, 200, 110, 140, 200, 1, 70, 4}},
    {u"Samples/Schlagzeug/Hi-Hat zu.wav", kPlainWAVE, "", 16, 2, 44'100, 90, {1, 1, 0, 200, 256, 1, 20, 5}},
    {u"Samples/Schlagzeug/Hi-Hat offen.aiff", kPlainAIFF, "", 24, 2, 48'000, 400, {1, 1, 0, 190, 256, 1, 150, 6}},
    {u"Samples/Schlagzeug/Klatschen.wave", kSamplerWAVE, "", 16, 1, 48'000, 250, {1, 1, 0, 200, 120, 3, 70, 7}},
    {u"Samples/Schlagzeug/Tom hoch.aiff", kInstrumentAIFF, "Tom hoch", 24, 1, 44'100, 300, {260, 170, 220, 12, 0, 1, 100, 8}},
    {u"Samples/Schlagzeug/Tom tief.aif", kLittleEndianAIFF, "Tom tief", 16, 1, 44'100, 350, {160, 95, 225, 12, 0, 1, 130, 9}},
    {u"Samples/Schlagzeug/Alte Rassel.wav", kPlainWAVE, "", 8, 1, 44'100, 123, {1, 1, 0, 180, 220, 2, 30, 10}},
    {u"Samples/日本語/太鼓 大.wav", kBroadcastWAVE, "Taiko (large)", 24, 2, 48'000, 450, {120, 62, 210, 30, 0, 1, 180, 11}},
    {u"Samples/日本語/太鼓 小.aif", kInstrumentAIFF, "Taiko (small)", 16, 2, 48'000, 250, {300, 220, 200, 40, 60, 1, 80, 12}},
};
// clang-format on

enum class ETimbre { kOrgan, kBass, kPad, kBell };

struct CToneRow {
  const char16_t* fPath;
  CForm fForm;
  const char* fTitle;
  std::uint16_t fBits;
  std::uint16_t fChannels;
  std::uint32_t fRate;
  ETimbre fTimbre;
  std::uint8_t fKey;
  std::uint8_t fCents;
  std::uint8_t fLoopMode;
};

// clang-format off
constexpr CToneRow kTones[] = {
    {u"Samples/Töne/Orgel C2.wav", kSamplerWAVE, "", 16, 1, 44'100, ETimbre::kOrgan, 48, 0, 1},
    {u"Samples/Töne/Orgel C3.wav", kSamplerWAVE, "", 16, 1, 44'100, ETimbre::kOrgan, 60, 0, 1},
    {u"Samples/Töne/Orgel C4.wav", kBroadcastWAVE, "Orgel C4", 16, 1, 44'100, ETimbre::kOrgan, 72, 7, 2},
    {u"Samples/Töne/Bass A1.aif", kInstrumentAIFF, "Bass A1", 16, 1, 48'000, ETimbre::kBass, 33, 0, 1},
    {u"Samples/Töne/Bass E2.aiff", kInstrumentAIFF, "Bass E2", 24, 1, 48'000, ETimbre::kBass, 40, 12, 2},
    {u"Samples/Töne/Bass A2.AIF", kLittleEndianAIFF, "Bass A2", 16, 1, 44'100, ETimbre::kBass, 45, 0, 1},
    {u"Samples/Töne/Fläche F3.wav", kSamplerWAVE, "", 24, 2, 48'000, ETimbre::kPad, 65, 50, 1},
    {u"Samples/Töne/Fläche F4.aif", kInstrumentAIFF, "", 24, 2, 44'100, ETimbre::kPad, 77, 0, 1},
    {u"Samples/中文/铃 C5.wav", kSamplerWAVE, "", 24, 1, 44'100, ETimbre::kBell, 84, 3, 0},
    {u"Samples/中文/铃 G5.aiff", kInstrumentAIFF, "", 16, 1, 44'100, ETimbre::kBell, 91, 0, 0},
};
// clang-format on

CDemoFile MakeFile(const char16_t* path, const CForm& form, const char* title,
                   const CDemoSound& sound) {
  if (form.fWAVE) return {path, WriteDemoWAVE(sound, *form.fWAVE, title)};
  return {path, WriteDemoAIFF(sound, *form.fAIFF, title)};
}

CDemoFile MakeDrumFile(const CDrumRow& row) {
  CDemoSound sound;
  sound.fRate = row.fRate;
  sound.fChannels = row.fChannels;
  sound.fBits = row.fBits;
  const std::size_t frames = std::size_t{row.fRate} * row.fMilliseconds / 1000;
  sound.fSamples = MakeDrum(row.fDrum, row.fRate, frames);
  if (row.fChannels == 2) {
    CDemoDrum other = row.fDrum;
    other.fSeed += 1000;  // the sides differ in their noise alone
    sound.fSamples = Interleave(sound.fSamples, MakeDrum(other, row.fRate, frames));
  }
  return MakeFile(row.fPath, row.fForm, row.fTitle, sound);
}

DemoSamples OneSide(const CToneRow& row, std::uint32_t step, std::size_t frames, bool isRight) {
  constexpr std::uint16_t kOrgan[] = {80, 50, 35, 25, 0, 15};
  constexpr std::uint16_t kBass[] = {110, 55, 36, 27, 18, 10};
  constexpr std::uint16_t kPad[] = {90, 30, 24, 12};
  const std::uint32_t offset = isRight ? 0x30000000 : 0;
  switch (row.fTimbre) {
    case ETimbre::kOrgan:
      return MakeTone(step, kOrgan, row.fRate / 100, frames, offset);
    case ETimbre::kBass:
      return MakeTone(step, kBass, row.fRate / 200, frames, offset);
    case ETimbre::kPad:
      return MakeTone(step, kPad, row.fRate / 8, frames, offset);
    case ETimbre::kBell:
      break;
  }
  return MakeBell(step, row.fRate, frames);
}

CDemoFile MakeToneFile(const CToneRow& row) {
  const std::uint32_t step = PhaseStep(row.fKey, row.fCents, row.fRate);
  CDemoSound sound;
  sound.fRate = row.fRate;
  sound.fChannels = row.fChannels;
  sound.fBits = row.fBits;
  sound.fRootKey = row.fKey;
  sound.fFineTune = row.fCents;
  sound.fLoopMode = row.fLoopMode;
  std::size_t frames = row.fRate * 2 / 3;
  if (row.fLoopMode != 0) {
    sound.fLoopStart = row.fRate / 5;
    sound.fLoopEnd =
        sound.fLoopStart + SeamlessLength(step, row.fRate * 3 / 10, row.fRate * 4 / 10);
    frames = sound.fLoopEnd + row.fRate / 50;
  }
  sound.fSamples = OneSide(row, step, frames, false);
  if (row.fChannels == 2) {
    sound.fSamples = Interleave(sound.fSamples, OneSide(row, step, frames, true));
  }
  return MakeFile(row.fPath, row.fForm, row.fTitle, sound);
}

}  // namespace

DemoFiles MakeDemoSounds() {
  DemoFiles files;
  for (const CDrumRow& row : kDrums) files.push_back(MakeDrumFile(row));
  for (const CToneRow& row : kTones) files.push_back(MakeToneFile(row));
  return files;
}

}  // namespace NSTambraPacking
