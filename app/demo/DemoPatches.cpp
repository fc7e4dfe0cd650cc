#include <string>

#include "app/demo/DemoBytes.h"
#include "app/demo/DemoDocuments.h"
#include "app/demo/DemoReference.h"
#include "app/demo/DemoSynthesis.h"
#include "filetypes/ProhibitedDevices.h"
#include "package/MemoryMedia.h"
#include "references/IFFFile.h"
#include "references/XMLWriter.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::CIFFFileWriter;
using NSTolbrook::CXMLElement;
using NSTolbrook::EChunkKind;
using NSTolbrook::FourCharCode;
using NSTolbrook::MakeFourCharCode;
using Bytes = std::vector<std::uint8_t>;

constexpr FourCharCode kPatchForm = MakeFourCharCode("PTCH");
constexpr FourCharCode kSecondForm = MakeFourCharCode("RBIP");
constexpr unsigned kAllForms = kDemoRelative | kDemoDatabase | kDemoAbsolute | kDemoPackage;

struct CPatchRow {
  const char16_t* fPath;
  FourCharCode fForm;
  /// Null: the patch does not say what device it is for.
  const char16_t* fDevice;
  std::vector<CDemoTarget> fTargets;
};

const std::vector<CPatchRow>& Patches() {
  // clang-format off
  static const std::vector<CPatchRow> rows = {
      {u"Patches/Orgel.dp01", kPatchForm, u"Key Sampler",
       {{u"Samples/Töne/Orgel C2.wav", kDemoRelative}, {u"Samples/Töne/Orgel C3.wav", kDemoDatabase},
        {u"Samples/Töne/Orgel C4.wav", kDemoAbsolute}}},
      {u"Patches/Filterfahrt.dp02", kPatchForm, u"Wave Synth", {}},
      {u"Patches/Fläche.dp03", kPatchForm, u"Pad Sampler",
       {{u"Samples/Töne/Fläche F3.wav", kAllForms}, {u"samples/TÖNE/fläche f4.AIF", kDemoRelative}}},
      {u"Patches/Bank/Bank-Orgel.dp04", kPatchForm, kSoundFontDevice.data(),
       {{u"Bänke/Kleine Bank.sf2/Orgel", kDemoRelative | kDemoDatabase}}},
      {u"Patches/Hall.dp05", kPatchForm, u"Room Reverb", {}},
      {u"Patches/Echo.dp06", kPatchForm, u"Tape Echo", {}},
      {u"Patches/Bass.dp07", kPatchForm, u"Bass Sampler",
       {{u"Samples/Töne/Bass A1.aif", kDemoDatabase | kDemoPackage}, {u"Samples/Töne/Bass E2.aiff", kDemoMoved | kDemoDatabase},
        {u"Samples/Töne/Bass A2.AIF", kDemoMoved | kDemoAbsolute}}},
      {u"Patches/Schlagzeug/Set 1.dp08", kPatchForm, u"Drum Box",
       {{u"Samples/Schlagzeug/Kick 01.wav", kDemoRelative}, {u"Samples/Schlagzeug/Snare 01.wav", kAllForms},
        {u"Samples/Schlagzeug/Hi-Hat zu.wav", kDemoDatabase}, {u"Samples/Schlagzeug/Hi-Hat offen.aiff", kDemoAbsolute},
        {u"Samples/Schlagzeug/Klatschen.wave", kDemoRelative | kDemoAbsolute}}},
      {u"Patches/Schlagzeug/Set 2.dp09", kPatchForm, u"Drum Kit",
       {{u"Samples/Schlagzeug/Kick 02.aif", kDemoRelative}, {u"Samples/Schlagzeug/Snare 02 (laut).WAV", kDemoRelative},
        {u"Samples/Schlagzeug/Tom hoch.aiff", kDemoDatabase}, {u"Samples/Schlagzeug/Tom tief.aif", kDemoDatabase}}},
      {u"Patches/Kompressor.dp10", kPatchForm, nullptr, {}},
      {u"Patches/Loops/Beat.dp11", kPatchForm, kSlicedLoopDevice.data(), {{u"Loops/Beat 120.lqx", kDemoRelative}}},
      {u"Patches/Loops/Beat (zweite Form).dp11", kSecondForm, nullptr,
       {{u"Loops/Beat 96 – gerade.lq2", kDemoRelative | kDemoPackage}, {u"Loops/Alter Beat.qzl", kDemoDatabase}}},
      {u"Patches/太鼓.dp12", kPatchForm, u"World Drums",
       {{u"Samples/日本語/太鼓 大.wav", kDemoRelative}, {u"Samples/日本語/太鼓 小.aif", kDemoDatabase | kDemoAbsolute}}},
      {u"Patches/铃.dp13", kPatchForm, u"Bell Tower",
       {{u"Samples/中文/铃 C5.wav", kDemoAbsolute}, {u"Samples/中文/铃 G5.aiff", kDemoRelative}}},
      {u"Patches/Verzerrer.dp14", kPatchForm, u"Distortion", {}},
      {u"Patches/Rassel.dp15", kPatchForm, u"Shaker", {{u"Samples/Schlagzeug/Alte Rassel.wav", kDemoRelative}}},
      {u"Patches/Gemischt.dp16", kPatchForm, u"Combined Rack",
       {{u"Loops/ループ 140.lqx2", kDemoDatabase}, {u"Bänke/Kleine Bank.sf2", kDemoRelative}, {u"Samples/Töne/Orgel C3.wav", kAllForms}}},
  };
  // clang-format on
  return rows;
}

/// Settings of the device, which mean nothing to the packer; an odd number of bytes.
Bytes Settings(std::size_t number) {
  Bytes bytes;
  for (std::size_t i = 0; i < 9 + 2 * (number % 5); ++i) {
    bytes.push_back(static_cast<std::uint8_t>(number * 37 + i * 11));
  }
  return bytes;
}

Bytes Patch(const CPatchRow& row, std::size_t number) {
  const auto media = std::make_shared<NSBigFilePackage::CMemoryMedia>();
  CIFFFileWriter writer(media);
  const auto patch = writer.OpenLevel(EChunkKind::kForm, row.fForm);
  if (row.fDevice != nullptr) {
    const auto kind = static_cast<std::uint8_t>(number);
    writer.WriteChunk(MakeFourCharCode("DESC"), DeviceBody(kind, row.fDevice, u"demo.device"));
  }
  writer.WriteChunk(MakeFourCharCode("PARM"), Settings(number));
  // The first reference stands by itself, the others in a group for each key zone.
  bool isFirst = true;
  for (const CDemoTarget& target : row.fTargets) {
    const Bytes body = ReferenceBody(MakeDemoReference(target, row.fPath));
    if (!isFirst) {
      const auto zones = writer.OpenLevel(EChunkKind::kList, MakeFourCharCode("ZONS"));
      const auto zone = writer.OpenLevel(EChunkKind::kForm, MakeFourCharCode("ZONE"));
      writer.WriteChunk(MakeFourCharCode("KEYS"), Bytes{0, 127, 60});
      writer.WriteChunk(MakeFourCharCode("REFE"), body);
      writer.CloseLevel(zone);
      writer.CloseLevel(zones);
    } else {
      writer.WriteChunk(MakeFourCharCode("REFE"), body);
    }
    isFirst = false;
  }
  writer.WriteChunk(MakeFourCharCode("ZZZZ"), Bytes{'e', 'n', 'd'});
  writer.CloseLevel(patch);
  return media->TakeBytes();
}

Bytes BytesOf(const CXMLElement& root) {
  const std::string text = WriteXML(root);
  return {text.begin(), text.end()};
}

CDemoFile PluginPatch() {
  const char16_t* path = u"Patches/Glockenspiel.vlpatch";
  CXMLElement root(u"Patch");
  root.AddAttribute(u"deviceID", u"example.tambra.glockenspiel");
  root.AddAttribute(u"name", u"Glockenspiel & Schellen");
  root.AddChild(std::make_shared<CXMLElement>(u"State", u"<Anschlag> = hart"));
  const auto samples = std::make_shared<CXMLElement>(u"Samples");
  for (const CDemoTarget& target : {CDemoTarget{u"Samples/中文/铃 C5.wav", kDemoRelative},
                                    CDemoTarget{u"Samples/中文/铃 G5.aiff", kAllForms}}) {
    CSampleReference reference = MakeDemoReference(target, path);
    reference.fDeviceInternalID = u"example.tambra.glockenspiel";
    reference.fDeviceUIName = u"Glockenspiel";
    reference.fDeviceVersion = u"1.0";
    samples->AddChild(reference.Write(ESampleType::kSample));
  }
  root.AddChild(samples);
  return {path, BytesOf(root)};
}

CDemoFile GroovePatch() {
  CXMLElement root(u"Groove");
  root.AddAttribute(u"name", u"Schlurfend");
  for (unsigned step = 0; step < 8; ++step) {
    const auto event = std::make_shared<CXMLElement>(u"Event");
    // Every other eighth note comes late and softer.
    const std::string position = std::to_string(step * 240 + (step % 2) * 80);
    event->AddAttribute(u"pos", std::u16string(position.begin(), position.end()));
    event->AddAttribute(u"vel", step % 2 == 0 ? u"100" : u"76");
    root.AddChild(event);
  }
  return {u"Grooves/Schlurfend.grov", BytesOf(root)};
}

}  // namespace

DemoFiles MakeDemoPatches() {
  DemoFiles files;
  for (const CPatchRow& row : Patches()) files.push_back({row.fPath, Patch(row, files.size())});
  files.push_back(PluginPatch());
  files.push_back(GroovePatch());
  return files;
}

DemoFiles MakeDemoRawFiles() {
  constexpr std::size_t kLength = 10'000;
  Bytes curve;
  for (std::uint32_t i = 0; i < kLength; ++i) {
    curve.push_back(static_cast<std::uint8_t>(FixedSine(i * i * 7919) >> 23));
  }
  return {{u"Rohdaten/Kurve.pad", curve}, {u"Rohdaten/Leer.pad", {}}};
}

}  // namespace NSTambraPacking
