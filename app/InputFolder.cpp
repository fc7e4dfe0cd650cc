#include "app/InputFolder.h"

#include <algorithm>
#include <tuple>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/ExceptionAlerts.h"
#include "app/SpecialNames.h"
#include "package/StdioMedia.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::EFileKind;
using NSTolbrook::NativePath;

/// Without "." and ".."; a path that has none stays as it is, since not all that a network path
/// begins with would survive.
NativePath NormalPath(const NativePath& path) {
  const auto isStep = [](const NativePath& name) { return name == "." || name == ".."; };
  return std::any_of(path.begin(), path.end(), isStep) ? path.lexically_normal() : path;
}

/// The canonical form of a path whose last components may not exist yet.
NativePath FutureCanonicalPath(const NativePath& path) {
  NativePath existing = NormalPath(path);
  NativePath missing;
  while (existing.has_relative_path() &&
         NSTolbrook::FileStatus(existing, true).fKind == EFileKind::kMissing) {
    missing = existing.filename() / missing;
    existing = existing.parent_path();
  }
  const NativePath found = NSTolbrook::CanonicalPath(existing.empty() ? "." : existing);
  return missing.empty() ? found : NormalPath(found / missing);
}

bool IsInside(const NativePath& outer, const NativePath& inner) {
  return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

std::string ReadFile(const NativePath& path) {
  try {
    return ReadInformationBytes(*NSBigFilePackage::CStdioMedia::OpenForReading(path));
  } catch (NSMordel::CExceptionBodyMixin& e) {
    e.AddContext(NSMordel::kTargetObjectType, "file");
    e.AddContext(NSMordel::kTargetObjectId, NSTolbrook::DisplayText(path));
    throw;
  }
}

}  // namespace

std::vector<CInformationFile> ReadInformationFiles(const NativePath& inputFolder) {
  const NSMordel::CContext context = {
      {NSMordel::kTargetObjectType, "directory"},
      {NSMordel::kTargetObjectId, NSTolbrook::DisplayText(inputFolder)}};
  const EFileKind kind = NSTolbrook::FileStatus(inputFolder, true).fKind;
  if (kind == EFileKind::kMissing) {
    throw NSMordel::XNotFound("the input folder does not exist", context);
  }
  if (kind != EFileKind::kFolder) throw NSMordel::XOpen("the input folder is no folder", context);
  const NativePath root = NSTolbrook::CanonicalPath(inputFolder);
  std::vector<CInformationFile> files;
  for (const NSTolbrook::CFolderItem& item : NSTolbrook::ListFolder(inputFolder)) {
    const auto name = NSTolbrook::TextFromNative(item.fName);
    if (!name || !IsInformationFile(*name)) continue;
    const NativePath path = inputFolder / item.fName;
    // The scan notes what is wrong with a link that leads elsewhere; here it is just not read.
    if (NSTolbrook::FileStatus(path, true).fKind != EFileKind::kFile ||
        !IsInside(root, NSTolbrook::CanonicalPath(path))) {
      continue;
    }
    files.push_back({*name, ReadFile(path)});
  }
  std::sort(files.begin(), files.end(), [](const auto& left, const auto& right) {
    return std::make_tuple(NSTolbrook::FoldCase(left.fName), left.fName) <
           std::make_tuple(NSTolbrook::FoldCase(right.fName), right.fName);
  });
  return files;
}

void CheckOutputFolder(const NativePath& inputFolder, const NativePath& outputFolder) {
  if (!IsInside(NSTolbrook::CanonicalPath(inputFolder), FutureCanonicalPath(outputFolder))) return;
  throw NSMordel::XCreate("the output folder may not lie inside the input folder",
                          {{kOutputFolderKey, NSTolbrook::DisplayText(outputFolder)}});
}

}  // namespace NSTambraPacking
