#include "package/TemporaryFile.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSBigFilePackage {

using NSTolbrook::CFile;
using NSTolbrook::NativePath;

namespace {

constexpr std::u16string_view kPrefix = u".tambra-";
constexpr std::u16string_view kSuffix = u".tmp";

NativePath NextName() {
  static std::atomic<std::uint64_t> counter = 0;
  return ".tambra-" + std::to_string(NSTolbrook::ProcessNumber()) + "-" +
         std::to_string(++counter) + ".tmp";
}

bool IsNumber(std::u16string_view text) {
  return !text.empty() &&
         std::ranges::all_of(text, [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

/// Locks the file and makes sure that its name still stands for it: between its opening and the
/// lock another process may have removed it.
bool Hold(CFile& file) {
  return file.TryLock() && NSTolbrook::FileStatus(file.Path(), false).fIdentity == file.Identity();
}

void RemoveIfLeftOver(const NativePath& path) {
  try {
    CFile file = CFile::OpenForUpdate(path);
    if (!Hold(file)) return;
    NSTolbrook::RemoveFile(path);
  } catch (const NSMordel::XNotFound&) {
    return;  // somebody else was quicker
  } catch (const NSMordel::XPermission&) {
    return;  // another user's
  } catch (const NSMordel::XLocked&) {
    return;  // in use
  }
}

/// The run's outcome does not depend on it, and the next run tries again.
template <typename Action>
void Try(Action action) noexcept {
  try {
    action();
  } catch (const std::exception&) {
    return;
  }
}

/// A new file that is held; nothing when it was taken for a leftover before it was locked.
std::shared_ptr<CStdioMedia> CreateHeld(const NativePath& path) {
  CFile file = CFile::Create(path, CFile::ECreate::kNew);
  try {
    if (!Hold(file)) return nullptr;
    return std::make_shared<CStdioMedia>(std::move(file), CStdioMedia::EAccess::kReadWrite);
  } catch (...) {
    file = CFile();  // not every system removes an open file
    Try([&path] { NSTolbrook::RemoveFile(path); });
    throw;
  }
}

}  // namespace

CTemporaryFile::CTemporaryFile(const NativePath& folder) {
  while (!fMedia) {
    fPath = folder / NextName();
    try {
      fMedia = CreateHeld(fPath);
    } catch (const NSMordel::XAlreadyExists&) {
      continue;  // left by an earlier process of the same number
    }
  }
}

CTemporaryFile::~CTemporaryFile() {
  if (fCommitted) return;
  // Each by itself: a file that does not close well can still be removed.
  Try([this] { fMedia->Close(); });
  Try([this] { NSTolbrook::RemoveFile(fPath); });
}

void CTemporaryFile::CommitAs(const NativePath& path) {
  fMedia->Flush();
  // The lock lasts until the file has its own name: without it another run might take the whole
  // file for a leftover.
  NSTolbrook::RenameReplacing(fPath, path);
  fCommitted = true;
  const NativePath folder = path.parent_path();
  NSTolbrook::FlushFolder(folder.empty() ? NativePath(".") : folder);
  fMedia->Close();
}

bool CTemporaryFile::IsName(std::u16string_view name) {
  if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) return false;
  if (name.size() < kPrefix.size() + kSuffix.size()) return false;
  const auto numbers = name.substr(kPrefix.size(), name.size() - kPrefix.size() - kSuffix.size());
  const std::size_t dash = numbers.find(u'-');
  return dash != numbers.npos && IsNumber(numbers.substr(0, dash)) &&
         IsNumber(numbers.substr(dash + 1));
}

void CTemporaryFile::RemoveLeftovers(const NativePath& folder) {
  for (const NSTolbrook::CFolderItem& item : NSTolbrook::ListFolder(folder)) {
    const auto name = NSTolbrook::TextFromNative(item.fName);
    if (item.fKind == NSTolbrook::EFileKind::kFile && name && IsName(*name)) {
      RemoveIfLeftOver(folder / item.fName);
    }
  }
}

}  // namespace NSBigFilePackage
