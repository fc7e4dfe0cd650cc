#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/TambraPacker.h"
#include "codecs/JpegWriter.h"
#include "fuzz/FuzzInput.h"
#include "package/PackageReader.h"
#include "package/StdioMedia.h"
#include "tests/support/ManualClock.h"
#include "tests/support/TemporaryFolder.h"

using namespace NSTambraPacking;

namespace {

class CYes : public IAlertPresenter {
  int Show(CAlertNumber, const CAlertText&) override { return kLastButton; }
};

class CNoView : public IProgressView {
  void SetStageLine(const std::u16string&) override {}
  void SetItemLine(const std::u16string&) override {}
  void SetBar(int) override {}
  void SetTimeLine(const std::u16string&) override {}
  void SetInformation(const CPackageInformation&) override {}
};

/// Writes the files of the input below `folder`: for each its path up to a line end, the length of
/// its contents (2 bytes) and the contents.
void WriteFiles(NSFuzz::CFuzzInput& input, const NSTest::CTemporaryFolder& folder) {
  for (int file = 0; file < 8 && !input.AtEnd(); ++file) {
    const std::string path(input.Text().substr(0, input.Text().find('\n')));
    input.Take(path.size() + 1);
    const auto contents = input.Take(input.TakeNumber());
    const std::filesystem::path inside("in/" + path);
    const bool isPath = path.find('\0') == path.npos && inside == inside.lexically_normal() &&
                        inside.has_filename() && *inside.begin() == "in";
    if (!isPath) continue;
    try {
      folder.Write(inside, contents);
    } catch (const std::exception&) {
      continue;  // a name that the disk refuses, or a folder of that name
    }
  }
}

}  // namespace

/// Any small folder that is packed gives a package without a failed entry, or none, and nothing
/// else is left but the log.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const CTextResources texts;
  static const auto splash = WriteJpeg({{64, 64}, std::vector<std::uint8_t>(64 * 64 * 3, 90)}, 90);
  const NSTest::CTemporaryFolder folder;
  folder.Write("in/NAME.TXT", "Kit");
  folder.Write("in/Splash.jpg", splash);
  NSFuzz::CFuzzInput input(data, size);
  WriteFiles(input, folder);

  CYes alerts;
  CNoView view;
  const NSTest::CManualClock clock;
  CTambraPackProgress progress(texts, clock, view, {true, true});
  CTambraPacker packer(texts, alerts, clock);
  CPackSettings settings;
  settings.fInputFolder = NSTolbrook::CFileItem(folder.Path() / "in");
  settings.fOutputFolder = NSTolbrook::CFileItem(folder.MakeFolder("out"));
  CPackageInformation information;
  const auto ending = NSFuzz::Read([&] { return packer.Run(settings, information, progress); });

  std::size_t packages = 0;
  for (const auto& file : std::filesystem::directory_iterator(folder.Path() / "out")) {
    packages += file.path().extension() == ".tmb";
    NSFuzz::Require(file.path().extension() == ".tmb" || file.path().extension() == ".txt");
  }
  NSFuzz::Require(packages == (packer.State()->fPackageWritten ? 1 : 0));
  if (!ending) return 0;
  const CPackageReader package(
      NSBigFilePackage::CStdioMedia::OpenForReading(packer.State()->fOutputFile.Path()));
  for (const auto& entry : package.ReadEntries()) {
    const auto& failed = packer.State()->fLists.fFailed;
    NSFuzz::Require(std::ranges::find(failed, entry->Path()) == failed.end());
  }
  return 0;
}
