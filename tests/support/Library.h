#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codecs/JpegWriter.h"
#include "tests/support/AudioBuilder.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/SoundFontBuilder.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTest {

/// What a reference of a built document holds; the forms that are empty are left out.
struct CReferenceText {
  std::string fRelative = {};  ///< "/" before each component
  int fStepUp = 0;
  std::string fTambra = {};
  std::uint32_t fKind = 12;
  std::string fDatabase = {};  ///< as fRelative, in the package fTambra
  std::string fAbsolute = {};  ///< as fRelative, on the volume "Disk"

  std::string XML() const {
    std::string xml = "<SampleReference trueName=\"ref\" type=\"sample\">";
    if (!fTambra.empty()) xml += "<Tambra name=\"" + fTambra + "\" url=\"u\"/>";
    if (!fDatabase.empty()) {
      xml += "<DatabasePath><TambraName>" + fTambra + "</TambraName><Path>" + fDatabase +
             "</Path></DatabasePath>";
    }
    if (!fAbsolute.empty()) {
      xml += "<AbsolutePath><Volume name=\"Disk\" type=\"hd\"/><Path partOfTambra=\"no\">" +
             fAbsolute + "</Path></AbsolutePath>";
    }
    if (!fRelative.empty()) {
      xml += "<RelativePath><Path>" + fRelative + "</Path><StepUp>" + std::to_string(fStepUp) +
             "</StepUp></RelativePath>";
    }
    return xml + "</SampleReference>";
  }
};

using CReferenceTexts = std::vector<CReferenceText>;

/// A small valid input folder (a name and a splash, nothing else) to which tests add what they are
/// about. Paths lead from its top.
class CLibrary {
 public:
  CLibrary() {
    WithFile("NAME.TXT", "Kit");
    WithSplash("Splash.jpg", 64);
  }

  std::filesystem::path Input() const { return fFolder.Path() / "in"; }
  std::filesystem::path Output() const { return fFolder.Path() / "out"; }
  const CTemporaryFolder& Folder() const { return fFolder; }

  CLibrary& WithFile(const std::string& path, std::string_view bytes) {
    fFolder.Write("in/" + path, bytes);
    return *this;
  }
  CLibrary& WithFile(const std::string& path, const Bytes& bytes) {
    return WithFile(path, std::string_view(reinterpret_cast<const char*>(bytes.data()),  //
                                           bytes.size()));
  }
  CLibrary& WithSplash(const std::string& path, std::uint32_t edge) {
    return WithFile(path, NSTambraPacking::WriteJpeg(
                              {{edge, edge}, Bytes(std::size_t{edge} * edge * 3, 90)}, 90));
  }
  /// Adds a pair to "INFO.TXT".
  CLibrary& WithInfo(const std::string& key, const std::string& value) {
    fInfo += key + "=\"" + value + "\"\r\n";
    return WithFile("INFO.TXT", fInfo);
  }
  CLibrary& WithSample(const std::string& path, int channels = 1) {
    return WithFile(path, CAudioBuilder::WAVE()
                              .Format(1, channels, 16)
                              .Data(std::string(12 * static_cast<std::size_t>(channels), '\7'))
                              .Bytes());
  }
  CLibrary& WithBank(const std::string& path) {
    return WithFile(path, CSoundFontBuilder().Build());
  }
  CLibrary& WithPatch(const std::string& path, const CReferenceTexts& references,
                      std::string_view device = "Device") {
    return WithFile(
        path, Group("FORM", "PTCH", {Chunk("DESC", DescriptionBody(device)), Chunks(references)}));
  }
  CLibrary& WithSong(const std::string& path, const CReferenceTexts& references,
                     std::string_view device = "Device") {
    const Bytes devices = Group("LIST", "DEVL", {Chunk("DESC", DescriptionBody(device))});
    return WithFile(path, Group("FORM", "SONG", {devices, Chunks(references)}));
  }
  CLibrary& Without(const std::string& path) {
    std::filesystem::remove_all(Input() / path);
    return *this;
  }

 private:
  static Bytes Chunks(const CReferenceTexts& references) {
    Bytes chunks;
    for (const CReferenceText& reference : references) {
      Append(chunks, Chunk("REFE", ReferenceBody(reference.fKind, reference.XML())));
    }
    return chunks;
  }

  CTemporaryFolder fFolder;
  std::string fInfo;
};

}  // namespace NSTest
