#include "app/FolderScan.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/PackageInformation.h"
#include "app/ShortcutTarget.h"
#include "package/PackageIndex.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::CFileItem;
using NSTolbrook::EFileKind;
using NSTolbrook::NativePath;

/// Links to folders that one scan follows. Folders that link to each other could otherwise be
/// walked in more ways than any machine can count.
constexpr std::size_t kMostFolderLinks = 1'000;

/// The folders from the root down to the current one, to tell a link that leads back up.
struct CWayDown {
  NSTolbrook::CFileIdentity fIdentity;
  std::shared_ptr<const CWayDown> fParent;
};

struct CPendingFolder {
  NativePath fNative;
  std::u16string fPath;  ///< empty for the root
  bool fSkipped = false;
  std::shared_ptr<const CWayDown> fWayDown;
};

struct CItem {
  NativePath fNative;
  std::u16string fName;
  std::u16string fFolded;
  EFileKind fKind = EFileKind::kMissing;  ///< behind links
  bool fIsLink = false;
  std::string fFault;
};

bool IsClutter(std::u16string_view folded, EFileKind kind) {
  if (folded.starts_with(u'.') || folded == u"thumbs.db" || folded == u"desktop.ini" ||
      folded == u"icon\r") {
    return true;
  }
  return folded == u"__macosx" && kind == EFileKind::kFolder;
}

class CFolderScan {
 public:
  CFolderScan(const NativePath& root, const CScanRules& rules)
      : fRoot(NSTolbrook::CanonicalPath(root)), fRules(rules) {}

  CScannedFolder Run() {
    const auto status = NSTolbrook::FileStatus(fRoot, true);
    fPending.push_back(
        {fRoot, {}, false, std::make_shared<CWayDown>(CWayDown{status.fIdentity, nullptr})});
    while (!fPending.empty()) {
      const CPendingFolder folder = std::move(fPending.back());
      fPending.pop_back();
      ScanOne(folder);
    }
    return std::move(fResult);
  }

 private:
  void ScanOne(const CPendingFolder& folder) {
    if (!folder.fPath.empty()) fResult.fFolders.push_back(folder.fPath);
    std::vector<CItem> items;
    try {
      items = Items(folder);
    } catch (const NSMordel::CExceptionBodyMixin& e) {
      if (folder.fPath.empty()) throw;
      AddFile(folder, {folder.fNative, {}, {}, EFileKind::kFolder, false, e.Message()},
              folder.fPath, folder.fSkipped);
      return;
    }
    for (const CItem& item : items) {
      if (item.fKind != EFileKind::kFolder || !item.fFault.empty()) TakeFile(folder, item);
    }
    for (auto item = items.rbegin(); item != items.rend(); ++item) {
      if (item->fKind == EFileKind::kFolder && item->fFault.empty()) TakeFolder(folder, *item);
    }
  }

  /// The items of a folder that count, in order.
  std::vector<CItem> Items(const CPendingFolder& folder) {
    std::vector<CItem> items;
    for (const NSTolbrook::CFolderItem& found : NSTolbrook::ListFolder(folder.fNative)) {
      CItem item;
      item.fNative = folder.fNative / found.fName;
      const auto name = NSTolbrook::TextFromNative(found.fName);
      item.fName = name ? *name : NSTolbrook::TextFromUtf8(NSTolbrook::DisplayText(found.fName));
      item.fFolded = NSTolbrook::FoldCase(item.fName);
      item.fKind = found.fKind;
      if (IsClutter(item.fFolded, found.fKind)) continue;
      if (!name) item.fFault = "the name is not valid Unicode";
      if (found.fKind == EFileKind::kLink && !FollowLink(folder, item)) continue;
      if (IsClutter(item.fFolded, item.fKind)) continue;
      Judge(item);
      items.push_back(std::move(item));
    }
    std::sort(items.begin(), items.end(), [](const CItem& left, const CItem& right) {
      return std::tie(left.fFolded, left.fName, left.fNative) <
             std::tie(right.fFolded, right.fName, right.fNative);
    });
    return items;
  }

  /// Finds what is behind a link; false for a folder on the link's own way down.
  bool FollowLink(const CPendingFolder& folder, CItem& item) {
    item.fIsLink = true;
    const NSTolbrook::CFileStatus status = NSTolbrook::FileStatus(item.fNative, true);
    item.fKind = status.fKind;
    if (status.fKind == EFileKind::kMissing) {
      item.fFault = "the link leads nowhere";
      return true;
    }
    if (!IsInside(NSTolbrook::CanonicalPath(item.fNative))) {
      item.fFault = "the link leads outside the input folder";
      return true;
    }
    if (status.fKind != EFileKind::kFolder) return true;
    for (const CWayDown* way = folder.fWayDown.get(); way != nullptr; way = way->fParent.get()) {
      if (way->fIdentity == status.fIdentity) return false;
    }
    if (++fFolderLinks > kMostFolderLinks) {
      item.fFault = "the folder holds more links to folders than can be followed";
    }
    return true;
  }

  static void Judge(CItem& item) {
    if (!item.fFault.empty()) return;
    if (item.fName.find(u'\\') != std::u16string::npos) {
      item.fFault = "the name holds a backslash";
    } else if (NSTolbrook::HasControlCharacter(item.fName)) {
      item.fFault = "the name holds a control character";
    } else if (item.fKind != EFileKind::kFile && item.fKind != EFileKind::kFolder) {
      item.fFault = "it is neither a regular file nor a folder";
    }
  }

  bool IsInside(const NativePath& canonical) const {
    return std::mismatch(fRoot.begin(), fRoot.end(), canonical.begin(), canonical.end()).first ==
           fRoot.end();
  }

  std::u16string PathOf(const CPendingFolder& folder, const CItem& item) const {
    return folder.fPath.empty() ? item.fName : folder.fPath + u'/' + item.fName;
  }

  void TakeFile(const CPendingFolder& folder, const CItem& item) {
    const std::u16string path = PathOf(folder, item);
    const bool skipped = folder.fSkipped || fRules.fIsSkipItem(path);
    if (item.fFault.empty() && item.fFolded.ends_with(u".lnk")) {
      if (!skipped) TakeShortcut(item, path);
      return;
    }
    AddFile(folder, item, path, skipped);
  }

  void AddFile(const CPendingFolder& folder, const CItem& item, const std::u16string& path,
               bool skipped) {
    CScannedFile file;
    file.fItem = CFileItem(item.fNative);
    file.fPath = path;
    file.fFault = item.fFault;
    file.fSkipped = skipped;
    file.fIsInformation =
        folder.fPath.empty() && item.fFault.empty() && IsInformationFile(item.fName);
    if (file.fFault.empty() && !FitsEntryName(path)) {
      file.fFault = "the path is longer than " + std::to_string(kGreatestEntryName) + " bytes";
    }
    if (!file.fIsInformation && !skipped && file.fFault.empty() &&
        !fTakenPaths.insert(NSTolbrook::ComparisonKey(path)).second) {
      file.fFault = "the path differs from an earlier one only in case or normalisation";
    }
    fResult.fFiles.push_back(std::move(file));
    if (fRules.fReport) fRules.fReport(fResult.fFiles.size());
  }

  void TakeShortcut(const CItem& item, const std::u16string& path) {
    NativePath target;
    try {
      target = NSTolbrook::CanonicalPath(ShortcutTarget(item.fNative));
    } catch (const NSMordel::XResolve&) {
      if (!fRules.fBadShortcut) throw;
      return fRules.fBadShortcut(path);
    }
    CScannedShortcut shortcut{path, std::nullopt};
    if (IsInside(target)) shortcut.fTarget = InnerPath(target);
    fResult.fShortcuts.push_back(std::move(shortcut));
  }

  /// The path from the root, joined with "/"; nothing when a component is no text.
  std::optional<std::u16string> InnerPath(const NativePath& target) const {
    std::u16string inner;
    auto component = target.begin();
    std::advance(component, std::distance(fRoot.begin(), fRoot.end()));
    for (; component != target.end(); ++component) {
      const auto name = NSTolbrook::TextFromNative(*component);
      if (!name) return std::nullopt;
      if (!inner.empty()) inner += u'/';
      inner += *name;
    }
    return inner;
  }

  void TakeFolder(const CPendingFolder& folder, const CItem& item) {
    const std::u16string path = PathOf(folder, item);
    const NSTolbrook::CFileStatus status = NSTolbrook::FileStatus(item.fNative, true);
    fPending.push_back({item.fNative, path, folder.fSkipped || fRules.fIsSkipItem(path),
                        std::make_shared<CWayDown>(CWayDown{status.fIdentity, folder.fWayDown})});
  }

  NativePath fRoot;
  const CScanRules& fRules;
  std::vector<CPendingFolder> fPending;
  CScannedFolder fResult;
  std::unordered_set<std::u16string> fTakenPaths;
  std::size_t fFolderLinks = 0;
};

}  // namespace

CScannedFolder ScanFolder(const NativePath& root, const CScanRules& rules) {
  return CFolderScan(root, rules).Run();
}

}  // namespace NSTambraPacking
