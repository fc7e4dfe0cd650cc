#include "app/demo/DemoLibrary.h"

#include <iterator>
#include <system_error>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/demo/DemoDocuments.h"
#include "app/demo/DemoLoops.h"
#include "app/demo/DemoMIDI.h"
#include "app/demo/DemoPicture.h"
#include "app/demo/DemoSoundFont.h"
#include "app/demo/DemoSounds.h"
#include "app/demo/DemoTexts.h"

namespace NSTambraPacking {

using NSTolbrook::NativePath;

namespace {

DemoFiles MakeLibrary() {
  DemoFiles library;
  for (const auto make : {MakeDemoTexts, MakeDemoPictures, MakeDemoSounds, MakeDemoLoops,
                          MakeDemoMIDIFiles, MakeDemoPatches, MakeDemoSongs, MakeDemoRawFiles}) {
    DemoFiles files = make();
    std::move(files.begin(), files.end(), std::back_inserter(library));
  }
  library.push_back(MakeDemoSoundFont());
  return library;
}

void CheckUnused(const NativePath& folder) {
  const NSTolbrook::CFileStatus status = NSTolbrook::FileStatus(folder, true);
  if (status.fKind == NSTolbrook::EFileKind::kMissing) return;
  if (status.IsFolder() && NSTolbrook::ListFolder(folder).empty()) return;
  throw NSMordel::XAlreadyExists(status.IsFolder()
                                     ? "the folder for the demo library is not empty"
                                     : "the folder for the demo library is not a folder",
                                 {{NSMordel::kTargetObjectType, "directory"},
                                  {NSMordel::kTargetObjectId, NSTolbrook::DisplayText(folder)}});
}

/// Makes files and folders, and takes them all away again unless they are kept.
class CNewFiles {
 public:
  CNewFiles() = default;
  CNewFiles(const CNewFiles&) = delete;
  CNewFiles& operator=(const CNewFiles&) = delete;
  ~CNewFiles() {
    for (auto path = fMade.rbegin(); path != fMade.rend(); ++path) {
      std::error_code ignored;  // the failure that led here is the one to report
      std::filesystem::remove(*path, ignored);
    }
  }

  void MakeFolder(const NativePath& folder) {
    std::vector<NativePath> missing;
    for (NativePath path = folder; !NSTolbrook::FileStatus(path, true).IsFolder();
         path = path.parent_path()) {
      missing.push_back(path);
      if (path == path.parent_path()) break;
    }
    for (auto path = missing.rbegin(); path != missing.rend(); ++path) {
      const auto kind = NSTolbrook::FileStatus(*path, false).fKind;
      NSTolbrook::MakeFolders(*path);
      if (kind == NSTolbrook::EFileKind::kMissing) fMade.push_back(*path);
    }
  }

  void WriteFile(const NativePath& path, const std::vector<std::uint8_t>& bytes) {
    NSTolbrook::CFile file = NSTolbrook::CFile::Create(path, NSTolbrook::CFile::ECreate::kNew);
    fMade.push_back(path);
    file.Write(0, bytes);
    file.Close();
  }

  void Keep() { fMade.clear(); }

 private:
  std::vector<NativePath> fMade;
};

}  // namespace

std::size_t WriteDemoLibrary(const NativePath& folder, const std::function<void()>& checkStop) {
  const NativePath root = std::filesystem::absolute(folder);
  CheckUnused(root);
  const DemoFiles library = MakeLibrary();
  CNewFiles made;
  made.MakeFolder(root);
  for (const CDemoFile& file : library) {
    checkStop();
    const NativePath path = root / NSTolbrook::NativeFromText(file.fPath);
    made.MakeFolder(path.parent_path());
    made.WriteFile(path, file.fBytes);
  }
  made.Keep();
  return library.size();
}

}  // namespace NSTambraPacking
