#include <gtest/gtest.h>
#include <windows.h>

#include "Parts/TolbrookPackage/Core/DynamicLibrary.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FileSystem.h"
#include "Parts/TolbrookPackage/Core/OutputFolder.h"
#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

#include "tests/support/TemporaryFolder.h"

namespace {

using namespace NSMordel;
using namespace NSTolbrook;
using NSTest::CTemporaryFolder;
using Bytes = std::vector<std::uint8_t>;

TEST(FileSystemOfWindows, TakesEveryNameAsItStands) {
  const CTemporaryFolder folder;
  const NativePath deep =
      folder.Path() / std::wstring(120, L'ä') / std::wstring(120, L'é') / L"日本 🎵";
  const std::vector<NativePath> names = {L"a", L"a.", L"a ", L"nul.txt", L"Ω"};
  for (const NativePath& place : {folder.Path() / L"kurz ß", deep}) {
    MakeFolders(place);
    for (const NativePath& name : names) {
      CFile file = CFile::Create(place / name, CFile::ECreate::kNew);
      file.Write(0, Bytes(name.native().size()));
    }
    const std::vector<CFolderItem> items = ListFolder(place);
    EXPECT_EQ(items.size(), names.size());
    for (const CFolderItem& item : items) {
      const NativePath path = place / item.fName;
      EXPECT_EQ(FileStatus(path, false).fSize, item.fName.native().size());
      EXPECT_TRUE(RemoveFile(path));
      EXPECT_FALSE(RemoveFile(path));
    }
  }
  EXPECT_EQ(CanonicalPath(folder.Path() / L"KURZ ß" / L"."), folder.Path() / L"kurz ß");
  // The standard library cannot remove what lies so deep.
  for (NativePath path = deep; path != folder.Path(); path = path.parent_path()) {
    EXPECT_NE(::RemoveDirectoryW(NSFileDetails::ExtendedPath(path).c_str()), 0);
  }
}

TEST(FileSystemOfWindows, MakesPathsAbsolute) {
  const std::wstring here = std::filesystem::current_path().native();
  const std::wstring drive = here.substr(0, 2);
  const struct {
    std::wstring fPath, fExtended;
  } cases[] = {{L"C:\\a\\..\\b/.\\c. ", L"\\\\?\\C:\\b\\c. "},
               {L"C:\\a\\", L"\\\\?\\C:\\a"},
               {L"C:\\", L"\\\\?\\C:\\"},
               {L"\\\\server\\share\\x", L"\\\\?\\UNC\\server\\share\\x"},
               {L"//server/share\\a\\../../..\\x. ", L"\\\\?\\UNC\\server\\share\\x. "},
               {L"\\\\server\\share\\", L"\\\\?\\UNC\\server\\share"},
               {L"C:\\..\\x\\..", L"\\\\?\\C:\\"},
               {L"\\\\?\\C:", L"\\\\?\\C:\\"},
               {L"\\\\?\\C:\\x.", L"\\\\?\\C:\\x."},
               {L"\\x", L"\\\\?\\" + drive + L"\\x"},
               {L"x.", L"\\\\?\\" + here + L"\\x."},
               {drive + L"x", L"\\\\?\\" + here + L"\\x"},
               {L"..\\", L"\\\\?\\" + NativePath(here).parent_path().native()},
               {L"nul", L"\\\\.\\nul"}};
  for (const auto& [path, extended] : cases) {
    EXPECT_EQ(NSFileDetails::ExtendedPath(path), extended);
  }
  EXPECT_NO_THROW(ListFolder(NativePath(here).root_path()));
  EXPECT_EQ(NSFileDetails::PlainPath(L"\\\\?\\UNC\\server\\share"), L"\\\\server\\share");
  EXPECT_THROW(CFile::OpenForReading(L"NUL"), XOpen);
  EXPECT_THROW(CFile::OpenForReading(L"."), XOpen);
}

TEST(FileSystemOfWindows, ReplacesWhatOthersRead) {
  const CTemporaryFolder folder;
  const NativePath old = folder.Write("old", "old");
  const NativePath fresh = folder.Write("new", "new");
  const CFile reader = CFile::OpenForReading(old);
  const CFile writer = CFile::OpenForUpdate(fresh);
  Bytes bytes(3);
  try {
    RenameReplacing(fresh, old);
    EXPECT_EQ(folder.ReadText("old"), "new");
  } catch (const XPermission& e) {  // a system that cannot
    EXPECT_EQ(*e.FindContext(kSecondaryObjectId), DisplayText(old));
    EXPECT_EQ(folder.ReadText("old"), "old");
  }
  EXPECT_EQ(reader.Read(0, bytes), 3U);
  EXPECT_EQ(bytes, (Bytes{'o', 'l', 'd'}));
}

TEST(FileSystemOfWindows, KeepsWhatItMustNotReplace) {
  const CTemporaryFolder folder;
  const NativePath old = folder.Write("old", "old");
  const NativePath fresh = folder.Write("new", "new");
  RenameReplacing(fresh, old);
  const HANDLE held =
      ::CreateFileW(old.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_THROW(RemoveFile(old), XLocked);
  EXPECT_THROW(RenameReplacing(folder.Write("new", "again"), old), CExceptionBodyMixin);
  ::CloseHandle(held);
  EXPECT_EQ(folder.ReadText("old"), "new");
  EXPECT_EQ(folder.ReadText("new"), "again");
  folder.MakeFolder("folder");
  EXPECT_THROW(RenameReplacing(fresh, folder.Path() / "folder"), CExceptionBodyMixin);
  EXPECT_THROW(RemoveFile(folder.Path() / "folder"), CExceptionBodyMixin);
  EXPECT_TRUE(FileStatus(folder.Path() / "folder", false).IsFolder());
}

TEST(FileSystemOfWindows, LocksUntilClosed) {
  const CTemporaryFolder folder;
  CFile first = CFile::Create(folder.Path() / "lock", CFile::ECreate::kNew);
  CFile second = CFile::OpenForUpdate(folder.Path() / "lock");
  EXPECT_TRUE(first.TryLock());
  EXPECT_FALSE(second.TryLock());
  second.Write(0, Bytes{1});
  first.Close();
  EXPECT_TRUE(second.TryLock());
}

TEST(OutputFolderOfWindows, MakesFilesBelowAndNowhereElse) {
  using enum IOutputFile::EExisting;
  const CTemporaryFolder folder;
  const COutputFolder output(folder.Path());
  const auto commit = [&output](const std::vector<std::u16string>& path,
                                IOutputFile::EExisting existing, std::uint8_t byte) {
    const auto file = output.NewFile();
    file->Write(0, Bytes{byte});
    file->CommitAs(path, existing);
  };
  commit({u"ä", u"b", u"c"}, kRefuse, '1');
  EXPECT_THROW(commit({u"ä", u"b", u"c"}, kRefuse, '2'), XAlreadyExists);
  commit({u"ä", u"b", u"c"}, kReplace, '3');
  EXPECT_THROW(commit({u"ä", u"b"}, kReplace, '4'), XAlreadyExists);
  EXPECT_THROW(commit({u"ä", u"b", u"c", u"d"}, kReplace, '5'), XPermission);
  EXPECT_EQ(folder.ReadText(NativePath(L"ä") / "b" / "c"), "3");
  EXPECT_EQ(output.KindOf({u"ä", u"none", u"c"}), EFileKind::kMissing);
  const auto begun = output.NewFile();  // held, so that no other run takes it for a leftover
  for (const CFolderItem& item : ListFolder(folder.Path())) {
    if (item.fKind == EFileKind::kFile) {
      EXPECT_FALSE(CFile::OpenForUpdate(folder.Path() / item.fName).TryLock());
    }
  }
  EXPECT_EQ(ListFolder(folder.Path()).size(), 2U) << "a temporary file was left";
}

TEST(DynamicLibraryOfWindows, IsNamedByTheEnvironmentInAnyCharacters) {
  ::_wputenv_s(L"TAMBRA_TEST_PATH", L"日本\\🎵.dll");
  EXPECT_EQ(PathInEnvironment("TAMBRA_TEST_PATH"), NativePath(L"日本\\🎵.dll"));
  ::_wputenv_s(L"TAMBRA_TEST_PATH", L"");
  EXPECT_EQ(PathInEnvironment("TAMBRA_TEST_PATH"), std::nullopt);
}

}  // namespace
