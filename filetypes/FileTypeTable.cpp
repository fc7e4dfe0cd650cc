#include "filetypes/FileTypeTable.h"

#include "filetypes/AudioProcessors.h"
#include "filetypes/GroovePatchProcessor.h"
#include "filetypes/JPEGProcessor.h"
#include "filetypes/LQXProcessor.h"
#include "filetypes/MIDIProcessor.h"
#include "filetypes/PatchProcessors.h"
#include "filetypes/RawProcessor.h"
#include "filetypes/SongProcessors.h"
#include "filetypes/SoundFontProcessor.h"
#include "filetypes/VorlinkPatchProcessor.h"

namespace NSTambraPacking {

const std::vector<CFileTypeRow>& RegisteredFileTypes() {
  using NSTolbrook::MakeFourCharCode;
  // clang-format off
  static const std::vector<CFileTypeRow> rows = {
      {".pad", MakeFourCharCode("PAd "), RawFileType(14)},
      {".aif;.aiff", MakeFourCharCode("AIFF"), AIFFFileType()},
      {".wav;.wave", MakeFourCharCode("WAVE"), WAVEFileType()},
      {".jpeg;.jpg", MakeFourCharCode("JPEG"), JPEGFileType()},
      {".mid;.midi", MakeFourCharCode("Midi"), MIDIFileType()},
      {".ostrum", MakeFourCharCode("OSon"), SongFileType(34)},
      {".osi", MakeFourCharCode("OIss"), SongFileType(42)},
      {".oslt", MakeFourCharCode("OLss"), SongFileType(40)},
      {".ons", MakeFourCharCode("ONS "), OlderSongFileType()},
      {".ops", MakeFourCharCode("OPS "), PublishedSongFileType()},
      {".tallik", MakeFourCharCode("Tal="), SongFileType(26)},
      {".ose", MakeFourCharCode("OEss"), SongFileType(31)},
      {".oltd", MakeFourCharCode("OLtd"), SongFileType(33)},
      {".qzl", MakeFourCharCode("KLSO"), LQXFileType(12)},
      {".lq2;.lqx2", MakeFourCharCode("LQX2"), LQXFileType(6)},
      {".lqx", MakeFourCharCode("LQX "), LQXFileType(7)},
      {".sf2", MakeFourCharCode("SFnt"), SoundFontFileType()},
      {".grov", MakeFourCharCode("GROV"), GroovePatchFileType()},
      {".dp01", MakeFourCharCode("DP01"), PatchFileType(2)},
      {".dp02", MakeFourCharCode("DP02"), PatchFileType(18)},
      {".dp03", MakeFourCharCode("DP03"), PatchFileType(19)},
      {".dp04", MakeFourCharCode("DP04"), PatchFileType(3)},
      {".dp05", MakeFourCharCode("DP05"), PatchFileType(17)},
      {".dp06", MakeFourCharCode("DP06"), PatchFileType(20)},
      {".dp07", MakeFourCharCode("DP07"), PatchFileType(5)},
      {".dp08", MakeFourCharCode("DP08"), PatchFileType(4)},
      {".dp09", MakeFourCharCode("DP09"), PatchFileType(15)},
      {".dp10", MakeFourCharCode("DP10"), PatchFileType(21)},
      {".dp11", MakeFourCharCode("DP11"), RBIPatchFileType(22)},
      {".dp12", MakeFourCharCode("DP12"), PatchFileType(29)},
      {".dp13", MakeFourCharCode("DP13"), PatchFileType(30)},
      {".dp14", MakeFourCharCode("DP14"), PatchFileType(36)},
      {".dp15", MakeFourCharCode("DP15"), PatchFileType(37)},
      {".dp16", MakeFourCharCode("DP16"), PatchFileType(38)},
      {".vlpatch", MakeFourCharCode("VLPA"), VorlinkPatchFileType(39)},
  };
  // clang-format on
  return rows;
}

const std::vector<CFileTypeRow>& UnregisteredFileTypes() {
  using NSTolbrook::MakeFourCharCode;
  static const std::vector<CFileTypeRow> rows = {
      {".txt;.doc", MakeFourCharCode("TEXT"), {}},
      {".tmp", 0, {}},
      {".html", 0, {}},
      {".bin;.dat;.raw", 0, {}},
      {".osb", 0, {}},
      {".lqxs", MakeFourCharCode("LQXs"), {}},
      {".exe", 0, {}},
      {".sf2p", MakeFourCharCode("SF2p"), {}},
      {".sf2s", MakeFourCharCode("SF2s"), {}},
      {".dwp;.dwop", MakeFourCharCode("DWoP"), {}},
      {".tif;.tiff", MakeFourCharCode("TIFF"), {}},
      {".png", 0, {}},
      {".bmp", 0, {}},
      {".txt", 0, {}},
  };
  return rows;
}

}  // namespace NSTambraPacking
