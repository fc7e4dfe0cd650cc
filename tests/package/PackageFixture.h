#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "package/MemoryMedia.h"
#include "package/PackageComposer.h"
#include "package/PackageEntry.h"
#include "package/SpecialFiles.h"
#include "package/SplashCheck.h"
#include "package/TambraPackingProgress.h"

namespace NSTambraPacking {

/// The package layer only hands the job on.
class CTambraPacker {};

}  // namespace NSTambraPacking

namespace NSTest {

using Bytes = std::vector<std::uint8_t>;
using SharedEntry = std::shared_ptr<NSTambraPacking::CPackageEntry>;
using Entries = std::vector<SharedEntry>;

inline std::shared_ptr<NSBigFilePackage::CMemoryMedia> MediaOf(std::string_view text) {
  return std::make_shared<NSBigFilePackage::CMemoryMedia>(Bytes(text.begin(), text.end()));
}

inline std::string TextOf(const NSBigFilePackage::IMedia& media) {
  std::string text(media.Size(), '\0');
  NSBigFilePackage::ReadExactly(media, 0,
                                {reinterpret_cast<std::uint8_t*>(text.data()), text.size()});
  return text;
}

inline SharedEntry MakeEntry(std::u16string path, std::int32_t type, std::uint8_t flag,
                             std::string_view data) {
  return NSTambraPacking::MakePackageEntry(std::move(path), type, flag, MediaOf(data));
}

/// Writes down every report, and asks to stop when it is asked for the `fStopAt`-th time (from 0).
class CRecordingProgress : public NSTambraPacking::ITambraPackingProgress {
 public:
  using CTambraPacker = NSTambraPacking::CTambraPacker;

  void BeginPhase(const CTambraPacker&, int phase, std::uint64_t count) override {
    fReports.push_back("begin " + std::to_string(phase) + " of " + std::to_string(count));
  }
  void Item(const CTambraPacker&, int, std::uint64_t index, const NSTambraPacking::CPackageEntry&,
            const std::u16string& name) override {
    fReports.push_back(std::to_string(index) + " " + NSTolbrook::Utf8FromText(name));
  }
  void EndPhase(CTambraPacker&, int phase) override {
    fReports.push_back("end " + std::to_string(phase));
  }
  bool StopRequested() const override { return fQuestions++ == fStopAt; }
  void ClearStopRequest() override { fReports.push_back("cleared"); }

  std::size_t fStopAt = std::numeric_limits<std::size_t>::max();
  mutable std::size_t fQuestions = 0;
  std::vector<std::string> fReports;
};

/// "NAME.TXT" and "COMMENTS.TXT" tell the name and the comment, "Splash.jpg" is the splash.
class CScriptedSpecialFiles : public NSTambraPacking::ISpecialFiles {
 public:
  NSTambraPacking::ESpecialFile KindOf(const std::u16string& path) const override {
    if (path == u"Splash.jpg") return NSTambraPacking::ESpecialFile::kSplash;
    return path == u"NAME.TXT" || path == u"COMMENTS.TXT"
               ? NSTambraPacking::ESpecialFile::kInformation
               : NSTambraPacking::ESpecialFile::kNone;
  }
  void TakeInformation(const std::u16string& path,
                       const NSBigFilePackage::SharedMedia& data) override {
    (path == u"NAME.TXT" ? fName : fComment) = NSTolbrook::TextFromUtf8(TextOf(*data));
  }
  void FillHeader(NSTambraPacking::CPackageHeader& header) const override {
    header.fTambraName = fName;
    header.fComment = fComment;
    header.fCopyright = u"\u00A9 me";
  }

 private:
  std::u16string fName;
  std::u16string fComment;
};

/// A picture whose bytes are its width and height; any other length cannot be decoded.
class CTwoBytePictureReader : public NSTambraPacking::IPictureReader {
 public:
  NSTambraPacking::CPictureSize ReadPictureSize(
      const NSBigFilePackage::SharedMedia& picture) const override {
    const std::string bytes = TextOf(*picture);
    if (bytes.size() != 2) throw NSMordel::XFormatViolation("no picture");
    return {static_cast<std::uint8_t>(bytes[0]), static_cast<std::uint8_t>(bytes[1])};
  }
};

/// Composes with the doubles above.
struct CComposing {
  NSTambraPacking::CPackageHeader Compose(const Entries& entries,
                                          NSBigFilePackage::IMedia& output) {
    NSTambraPacking::CPackageComposer composer(fSpecialFiles, fPictureReader, &fJob, &fProgress);
    return composer.Compose(entries, output);
  }

  CScriptedSpecialFiles fSpecialFiles;
  CTwoBytePictureReader fPictureReader;
  NSTambraPacking::CTambraPacker fJob;
  CRecordingProgress fProgress;
};

/// The entry list of the smallest interesting package: two information files, and three that
/// stay: one taken as it is, the splash and a song whose references are resolved.
inline Entries ExampleEntries() {
  return {MakeEntry(u"NAME.TXT", 0, 1, "Kit"), MakeEntry(u"COMMENTS.TXT", 0, 1, "\u65E5"),
          MakeEntry(u"Beat.mid", 10, 1, "MThd!"), MakeEntry(u"Splash.jpg", 9, 1, "@@"),
          MakeEntry(u"Songs/One.ops", 13, 0, "FORM")};
}

}  // namespace NSTest
