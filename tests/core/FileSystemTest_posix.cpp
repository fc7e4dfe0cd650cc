#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "Parts/TolbrookPackage/Core/Clock.h"
#include "Parts/TolbrookPackage/Core/DynamicLibrary.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/FileItem.h"
#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "tests/support/TemporaryFolder.h"

namespace {

using namespace NSMordel;
using namespace NSTolbrook;
using NSTest::CTemporaryFolder;
using Bytes = std::vector<std::uint8_t>;

TEST(FileSystem, TellsKindsWithAndWithoutFollowing) {
  const CTemporaryFolder folder;
  const NativePath& root = folder.Path();
  folder.Write("file", "12345");
  folder.MakeFolder("folder");
  std::filesystem::create_symlink("file", root / "link");
  std::filesystem::create_symlink("nowhere", root / "dangling");
  std::filesystem::create_symlink("circle", root / "circle");
  ASSERT_EQ(::mkfifo((root / "pipe").c_str(), 0600), 0);
  using enum EFileKind;
  const struct {
    NativePath fName;
    EFileKind fItself, fFollowed;
  } cases[] = {{"file", kFile, kFile},
               {"folder", kFolder, kFolder},
               {"link", kLink, kFile},
               {"dangling", kLink, kMissing},
               {"circle", kLink, kMissing},
               {"pipe", kOther, kOther},
               {"none", kMissing, kMissing},
               {"file/inside", kMissing, kMissing},
               {std::string(300, 'n'), kMissing, kMissing}};
  std::map<NativePath, EFileKind> listed;
  for (const CFolderItem& item : ListFolder(root)) listed[item.fName] = item.fKind;
  EXPECT_EQ(listed.size(), 6U);
  for (const auto& [name, itself, followed] : cases) {
    EXPECT_EQ(FileStatus(root / name, false).fKind, itself) << name;
    EXPECT_EQ(FileStatus(root / name, true).fKind, followed) << name;
    if (itself != kMissing) {
      EXPECT_EQ(listed.at(name), itself) << name;
    }
  }
  const CFileStatus status = FileStatus(root / "link", true);
  EXPECT_EQ(status.fSize, 5U);
  EXPECT_EQ(status.fIdentity, FileStatus(root / "file", false).fIdentity);
  EXPECT_NE(status.fIdentity, FileStatus(root / "folder", false).fIdentity);
  EXPECT_EQ(CanonicalPath(root / "folder" / ".." / "link"), root / "file");
  EXPECT_THROW(CanonicalPath(root / "dangling"), XNotFound);
  EXPECT_THROW(CanonicalPath(root / "circle"), XOpen);
  EXPECT_THROW(ListFolder(root / "none"), XNotFound);
  EXPECT_THROW(ListFolder(root / "file"), XOpen);
}

TEST(FileSystem, OpensRegularFilesOnlyAndNeverWaits) {
  const CTemporaryFolder folder;
  const NativePath pipe = folder.Path() / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const NativePath& path : {pipe, NativePath("/dev/null"), folder.Path()}) {
    EXPECT_THROW(CFile::OpenForReading(path), XOpen) << path;
    EXPECT_THROW(CFile::OpenForUpdate(path), XOpen) << path;
    EXPECT_THROW(CFile::Create(path, CFile::ECreate::kReplace), XOpen) << path;
    EXPECT_THROW(CFile::Create(path, CFile::ECreate::kNew), XAlreadyExists) << path;
  }
}

template <class Kind, class Action>
void ExpectFailure(const Action& action, const std::string& type, const std::string& id) {
  try {
    action();
    ADD_FAILURE() << "no failure for " << id;
  } catch (const Kind& e) {
    EXPECT_EQ(*e.FindContext(kTargetObjectType), type);
    EXPECT_EQ(*e.FindContext(kTargetObjectId), id);
    EXPECT_NE(e.FindContext(kErrorCode), nullptr);
  }
}

TEST(FileSystem, FailuresCarryTheirKindAndPath) {
  const CTemporaryFolder folder;
  const NativePath none = folder.Path() / "none";
  ExpectFailure<XNotFound>([&] { CFile::OpenForReading(none); }, "file", none);
  ExpectFailure<XNotFound>([&] { ListFolder(none); }, "directory", none);
  ExpectFailure<XNotFound>([&] { RenameReplacing(none, folder.Path() / "b"); }, "file", none);
  ExpectFailure<XPermission>([] { RemoveFile("/proc/version"); }, "file", "/proc/version");
  const NativePath program = CanonicalPath("/proc/self/exe");
  ExpectFailure<XLocked>([&] { CFile::OpenForUpdate(program); }, "file", program);
  EXPECT_EQ(ProgramFolder(), program.parent_path());
  CFile file = CFile::Create(none, CFile::ECreate::kNew);
  ExpectFailure<XOutOfSpace>([&] { file.Write(~std::uint64_t{0}, Bytes{1}); }, "disk", none);
  ExpectFailure<XOutOfSpace>([&] { file.SetSize(~std::uint64_t{0}); }, "disk", none);
  try {
    CFile::OpenForReading(folder.Path() / "x");
  } catch (const XNotFound& e) {
    EXPECT_STREQ(e.what(), "cannot open the file: No such file or directory");
    EXPECT_EQ(*e.FindContext(kErrorCode), std::to_string(ENOENT));
  }

  rlimit old{};
  ::getrlimit(RLIMIT_FSIZE, &old);
  const rlimit small{1000, old.rlim_max};
  const auto handler = ::signal(SIGXFSZ, SIG_IGN);
  ::setrlimit(RLIMIT_FSIZE, &small);
  // The first call takes a part; the rest of it fails.
  ExpectFailure<XOutOfSpace>([&] { file.Write(990, Bytes(20)); }, "disk", none);
  ::setrlimit(RLIMIT_FSIZE, &old);
  ::signal(SIGXFSZ, handler);
}

TEST(File, ReadsAndWritesAtPositions) {
  const CTemporaryFolder folder;
  const NativePath path = folder.Path() / "data";
  CFile file = CFile::Create(path, CFile::ECreate::kNew);
  file.Write(3, Bytes{1, 2, 3});
  file.Flush();
  EXPECT_EQ(file.Size(), 6U);
  EXPECT_EQ(folder.Read("data"), (Bytes{0, 0, 0, 1, 2, 3}));
  Bytes bytes(4);
  EXPECT_EQ(file.Read(4, bytes), 2U);
  EXPECT_EQ(bytes, (Bytes{2, 3, 0, 0}));
  EXPECT_EQ(file.Read(6, bytes), 0U);
  EXPECT_EQ(file.Read(~std::uint64_t{0}, bytes), 0U);
  file.SetSize(4);
  EXPECT_EQ(file.Identity(), FileStatus(path, false).fIdentity);
  CFile moved = std::move(file);
  EXPECT_FALSE(file.IsOpen());
  moved.Close();
  EXPECT_FALSE(moved.IsOpen());

  const CFile reader = CFile::OpenForReading(path);
  EXPECT_EQ(reader.Size(), 4U);
  CFile update = CFile::OpenForUpdate(path);
  EXPECT_THROW(CFile::Create(path, CFile::ECreate::kNew), XAlreadyExists);
  EXPECT_TRUE(update.TryLock());
  EXPECT_FALSE(CFile::OpenForUpdate(path).TryLock());
  update = CFile();
  EXPECT_TRUE(CFile::OpenForUpdate(path).TryLock());
  EXPECT_EQ(CFile::Create(path, CFile::ECreate::kReplace).Size(), 0U);
  std::filesystem::create_symlink("elsewhere", folder.Path() / "link");
  EXPECT_THROW(CFile::Create(folder.Path() / "link", CFile::ECreate::kNew), XAlreadyExists);
}

TEST(FileSystem, MakesRenamesAndRemoves) {
  const CTemporaryFolder folder;
  const NativePath& root = folder.Path();
  MakeFolders(root / "a" / "b" / "c" / "");
  MakeFolders(root / "a" / "b");
  EXPECT_TRUE(FileStatus(root / "a" / "b" / "c", false).IsFolder());
  folder.Write("a/new", "new");
  folder.Write("a/old", "old");
  EXPECT_THROW(MakeFolders(root / "a" / "old"), XCreate);
  EXPECT_THROW(MakeFolders(root / "a" / "old" / "x"), XCreate);
  RenameReplacing(root / "a" / "new", root / "a" / "old");
  FlushFolder(root / "a");
  EXPECT_EQ(folder.ReadText("a/old"), "new");
  EXPECT_TRUE(RemoveFile(root / "a" / "old"));
  EXPECT_FALSE(RemoveFile(root / "a" / "old"));
  EXPECT_THROW(RemoveFile(root / "a" / "b"), XDelete);
  EXPECT_THROW(FlushFolder(root / "none"), XNotFound);
}

TEST(FileItem, NamesAndTypes) {
  EXPECT_EQ(TextFromNative(NativePath("caf\xC3\xA9")), u"café");
  EXPECT_EQ(TextFromNative(NativePath("caf\xE9")), std::nullopt);
  EXPECT_EQ(DisplayText(NativePath("caf\xE9")), "caf\xEF\xBF\xBD");
  EXPECT_EQ(NativeFromText(u"café"), NativePath("caf\xC3\xA9"));
  EXPECT_THROW(NativeFromText(u"a\xD834"), XFormatViolation);
  EXPECT_THROW(NativeFromText(std::u16string(u"a\0b", 3)), XFormatViolation);

  const CFileItem item = CFileItem("/some").Child(u"Kick É.WAV");
  EXPECT_EQ(item.Path(), NativePath("/some/Kick \xC3\x89.WAV"));
  EXPECT_EQ(item.Name(), u"Kick É.WAV");
  const struct {
    const char* fName;
    const char16_t* fExtensions;
    bool fFits;
  } cases[] = {{"a.wav", u".wav;.wave", true}, {"a.WAVE", u".wav;.wave", true},
               {"a.wa", u".wav;.wave", false}, {".wav", u".wav", true},
               {"awav", u".wav", false},       {"a.wav.txt", u".wav", false},
               {"a.wav", u"", false},          {"a.wav", u";;", false},
               {"a", u";.a;", false},          {"x.a", u";.a;", true}};
  for (const auto& [name, extensions, fits] : cases) {
    EXPECT_EQ(CFileItem(name).IsOfType(extensions), fits) << name;
  }
}

TEST(SystemClock, RisesAndTellsAPlausibleDate) {
  const CSystemClock clock;
  const std::uint64_t before = clock.Milliseconds();
  const CLocalTime now = clock.Now();
  EXPECT_GE(clock.Milliseconds(), before);
  EXPECT_GE(now.fYear, 2024);
  EXPECT_TRUE(now.fMonth >= 1 && now.fMonth <= 12 && now.fDay >= 1 && now.fDay <= 31);
}

TEST(DynamicLibrary, FindsSymbolsAndNamesWhatIsMissing) {
  std::ifstream maps("/proc/self/maps");  // any library the program has loaded will do
  std::string line, path;
  while (path.empty() && std::getline(maps, line)) {
    if (line.find("/libc.so") != std::string::npos) path = line.substr(line.find('/'));
  }
  ASSERT_FALSE(path.empty());
  const CDynamicLibrary library = CDynamicLibrary(path);
  EXPECT_NE(library.Symbol("strlen"), nullptr);
  EXPECT_THROW(library.Symbol("no_such_function"), XNotFound);
  const CTemporaryFolder folder;
  for (const NativePath& wrong : {folder.Path() / "none", folder.Write("text", "not a library"),
                                  NativePath("libc.so.6")}) {  // a name alone is not searched for
    EXPECT_THROW(CDynamicLibrary{wrong}, XOpen) << wrong;
  }
}

}  // namespace
