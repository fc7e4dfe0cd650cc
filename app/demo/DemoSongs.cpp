#include <string>

#include "app/demo/DemoDocuments.h"
#include "app/demo/DemoReference.h"
#include "package/MemoryMedia.h"
#include "references/IFFFile.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::CIFFFileWriter;
using NSTolbrook::EChunkKind;
using NSTolbrook::MakeFourCharCode;
using Bytes = std::vector<std::uint8_t>;

struct CSongRow {
  std::u16string fPath;
  EChunkKind fOuter;
  std::vector<const char16_t*> fDevices;
  std::vector<CDemoTarget> fTargets;
};

std::vector<CSongRow> Songs() {
  // clang-format off
  return {
      {u"Stücke/Morgen.ostrum", EChunkKind::kList, {u"Mixer", u"Key Sampler", u"Drum Box"},
       {{u"Samples/Töne/Orgel C3.wav", kDemoRelative}, {u"Samples/Schlagzeug/Kick 01.wav", kDemoDatabase | kDemoPackage},
        {u"Loops/Beat 120.lqx", kDemoAbsolute}}},
      {u"Stücke/Mittag.osi", EChunkKind::kForm, {u"Mixer"}, {{u"Samples/日本語/太鼓 大.wav", kDemoRelative}}},
      {u"Stücke/Abend.oslt", EChunkKind::kForm, {u"Mixer", u"Bell Tower"}, {{u"Samples/中文/铃 C5.wav", kDemoRelative | kDemoDatabase}}},
      {u"Stücke/Alt/Erstes Stück.ons", EChunkKind::kForm, {}, {{u"Samples/Töne/Bass A1.aif", kDemoRelative}}},
      {u"Stücke/Alt/Veröffentlicht.ops", EChunkKind::kCatalogue, {u"Mixer"}, {{u"Samples/Töne/Fläche F3.wav", kDemoMoved | kDemoAbsolute}}},
      {u"Stücke/夜.tallik", EChunkKind::kForm, {u"Mixer", u"Tape Echo"},
       {{u"Bänke/Kleine Bank.sf2/Bass", kDemoAbsolute}, {u"Loops/ループ 140.lqx2", kDemoRelative}}},
      {u"Stücke/Skizze.ose", EChunkKind::kForm, {u"Shaker"}, {{u"Samples/Schlagzeug/Alte Rassel.wav", kDemoDatabase}}},
      {u"Stücke/Leeres Blatt.oltd", EChunkKind::kForm, {}, {}},
      {std::u16string(kDemoUnfinishedFolder) + u"/Entwurf.ostrum", EChunkKind::kList, {u"Mixer"},
       {{u"Samples/Töne/Noch nicht aufgenommen.wav", kDemoRelative | kDemoDatabase}}},
  };
  // clang-format on
}

/// A list of groups, one for each device with its description and its state.
void WriteDevices(CIFFFileWriter& writer, const CSongRow& row) {
  const auto devices = writer.OpenLevel(EChunkKind::kList, MakeFourCharCode("DEVS"));
  for (const char16_t* device : row.fDevices) {
    const auto level = writer.OpenLevel(EChunkKind::kForm, MakeFourCharCode("DEVL"));
    writer.WriteChunk(MakeFourCharCode("DESC"), DeviceBody(1, device, u"demo.device"));
    writer.WriteChunk(MakeFourCharCode("STAT"), Bytes{1, 2, 3});
    writer.CloseLevel(level);
  }
  writer.CloseLevel(devices);
}

Bytes Song(const CSongRow& row) {
  const auto media = std::make_shared<NSBigFilePackage::CMemoryMedia>();
  CIFFFileWriter writer(media);
  const auto song = writer.OpenLevel(row.fOuter, MakeFourCharCode("SONG"));
  writer.WriteChunk(MakeFourCharCode("HEAD"), Bytes{1, 0, 0, 120, 4});
  WriteDevices(writer, row);
  const auto rack = writer.OpenLevel(EChunkKind::kCatalogue, MakeFourCharCode("RACK"));
  for (const CDemoTarget& target : row.fTargets) {
    const auto unit = writer.OpenLevel(EChunkKind::kForm, MakeFourCharCode("UNIT"));
    writer.WriteChunk(MakeFourCharCode("PARM"), Bytes{64, 64, 127, 0, 1});
    writer.WriteChunk(MakeFourCharCode("REFE"),
                      ReferenceBody(MakeDemoReference(target, row.fPath)));
    writer.CloseLevel(unit);
  }
  writer.CloseLevel(rack);
  writer.WriteChunk(MakeFourCharCode("SEQ "), Bytes(77, 0x55));
  writer.WriteChunk(MakeFourCharCode("TAIL"), Bytes{'z'});
  writer.CloseLevel(song);
  return media->TakeBytes();
}

}  // namespace

DemoFiles MakeDemoSongs() {
  DemoFiles files;
  for (const CSongRow& row : Songs()) files.push_back({row.fPath, Song(row)});
  return files;
}

}  // namespace NSTambraPacking
