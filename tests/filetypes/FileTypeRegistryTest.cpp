#include <gtest/gtest.h>
#include <set>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/CopyPacker.h"
#include "filetypes/FileTypeRegistry.h"
#include "filetypes/FileTypeTable.h"
#include "package/MemoryMedia.h"
#include "package/PackageEntry.h"
#include "tests/support/AudioBuilder.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/FaultText.h"
#include "tests/support/SoundFontBuilder.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::SharedMedia;
using NSTest::AsBytes;
using NSTest::AsMedia;
using NSTest::Bytes;
using NSTest::Chunk;
using NSTest::DescriptionBody;
using NSTest::Group;
using NSTolbrook::CFileItem;

const CFileTypeRegistry& Registry() { return CFileTypeRegistry::Instance(); }

/// The type code of the entry that a file of this name becomes; 0 when it has no packer.
std::int32_t CodeOf(const std::string& name) {
  const IFileTypePacker* const packer = Registry().FindPacker(CFileItem(name));
  EXPECT_EQ(packer == nullptr, Registry().FindVerifier(CFileItem(name)) == nullptr) << name;
  return packer == nullptr ? 0 : packer->EntryTypeCode();
}

TEST(FileTypeRegistry, KnowsTheTypesByTheirExtensions) {
  const std::pair<const char*, std::int32_t> types[] = {
      {".pad", 14},  {".aif", 11},  {".aiff", 11},   {".wav", 11},     {".wave", 11}, {".jpeg", 9},
      {".jpg", 9},   {".mid", 10},  {".midi", 10},   {".ostrum", 34},  {".osi", 42},  {".oslt", 40},
      {".ons", 1},   {".ops", 13},  {".tallik", 26}, {".ose", 31},     {".oltd", 33}, {".qzl", 12},
      {".lq2", 6},   {".lqx2", 6},  {".lqx", 7},     {".sf2", 16},     {".grov", 23}, {".dp01", 2},
      {".dp02", 18}, {".dp03", 19}, {".dp04", 3},    {".dp05", 17},    {".dp06", 20}, {".dp07", 5},
      {".dp08", 4},  {".dp09", 15}, {".dp10", 21},   {".dp11", 22},    {".dp12", 29}, {".dp13", 30},
      {".dp14", 36}, {".dp15", 37}, {".dp16", 38},   {".vlpatch", 39}, {".txt", 0},   {".doc", 0},
      {".tmp", 0},   {".html", 0},  {".bin", 0},     {".dat", 0},      {".raw", 0},   {".osb", 0},
      {".lqxs", 0},  {".exe", 0},   {".sf2p", 0},    {".sf2s", 0},     {".dwp", 0},   {".dwop", 0},
      {".tif", 0},   {".tiff", 0},  {".png", 0},     {".bmp", 0},      {"", 0},       {".", 0},
      {".wav.", 0},  {".wav ", 0},  {".WaV", 11},    {".DP11", 22},    {".Wave", 11},
  };
  std::set<std::int32_t> codes;
  for (const auto& [extension, code] : types) {
    EXPECT_EQ(CodeOf(std::string("x.y") + extension), code) << extension;
    if (code == 0) continue;
    codes.insert(code);
    EXPECT_NE(Registry().FindPackedEntryVerifier(code), nullptr) << code;
    const bool isDocument = code < 6 || code == 13 || (code >= 15 && code != 16 && code != 23);
    EXPECT_EQ(Registry().HasReferences(code), isDocument) << code;
    EXPECT_EQ(IsContainerType(code), code == 6 || code == 7 || code == 12 || code == 16) << code;
  }
  EXPECT_EQ(codes.size(), 34U);
  for (const std::int32_t code : {-1, 0, 8, 24, 43}) {
    EXPECT_EQ(Registry().FindPackedEntryVerifier(code), nullptr) << code;
  }
}

TEST(FileTypeDescriptor, KeepsWhatFitsAndEndsAtTheTerminator) {
  const std::string list = "." + std::string(CFileTypeDescriptor::kCapacity, 'x');
  EXPECT_EQ(CFileTypeDescriptor(list, 0).Extensions().size(), CFileTypeDescriptor::kCapacity - 1);
  EXPECT_EQ(CFileTypeDescriptor(std::string_view(".a\0;.b", 6), 0).Extensions(), u".a");
}

TEST(FileTypeRegistry, RefusesFilesThatItCannotVerify) {
  const NSTest::CTemporaryFolder folder;
  CVerifyContext context;
  const CFileItem picture(folder.Write("x.png", std::string_view("x")));
  const std::function<void()> refused[] = {
      [&] { Registry().VerifyFile(picture, context); },
      [&] { Registry().VerifyPackedEntry(8, AsMedia({}), context); }};
  for (const auto& verify : refused) {
    EXPECT_EQ(NSTest::FaultText<NSMordel::XUnsupportedFormat>(verify),
              "No verifier found for format");
  }
  EXPECT_THROW(Registry().VerifyFile(CFileItem(folder.Path() / "gone.mid"), context),
               NSMordel::CExceptionBodyMixin);
}

/// Zeros of which it notes what is read, or of which it takes what is written.
class CWatchedMedia : public NSBigFilePackage::CMemoryMedia {
 public:
  using CMemoryMedia::CMemoryMedia;
  using CRanges = std::vector<std::pair<std::uint64_t, std::size_t>>;

  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    fRead.emplace_back(position, destination.size());
    return CMemoryMedia::Read(position, destination);
  }
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override {
    fWritten.emplace_back(position, source.size());
    CMemoryMedia::Write(position, source);
  }

  mutable CRanges fRead;
  CRanges fWritten;
};

TEST(RawProcessor, ProbesBeginningMiddleAndEnd) {
  const std::pair<std::size_t, CWatchedMedia::CRanges> cases[] = {
      {0, {}},
      {1, {{0, 1}}},
      {4096, {{0, 4096}}},
      {4097, {{0, 4096}, {2048, 2049}, {1, 4096}}},
      {10000, {{0, 4096}, {5000, 4096}, {5904, 4096}}},
  };
  for (const auto& [size, ranges] : cases) {
    const auto media = std::make_shared<CWatchedMedia>(Bytes(size));
    CVerifyContext context;
    Registry().FindVerifier(CFileItem("x.pad"))->Verify(media, context);
    EXPECT_EQ(media->fRead, ranges) << size;
  }
}

TEST(CopyPacker, CopiesInPiecesAndSeesAStopRequest) {
  const NSTest::CTemporaryFolder folder;
  Bytes content(70'000);
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<std::uint8_t>(i * 7);
  const CFileItem source(folder.Write("x.pad", content));
  CWatchedMedia copy;
  CPackContext context;
  CopyToEntry(source, copy, context);
  EXPECT_EQ(copy.Bytes(), content);
  ASSERT_EQ(copy.fWritten.size(), 9U);
  for (std::size_t i = 0; i < copy.fWritten.size(); ++i) {
    EXPECT_EQ(copy.fWritten[i],
              std::pair(std::uint64_t{i} * 8192, std::min<std::size_t>(8192, 70'000 - i * 8192)));
  }
  context.fStopRequested = [] { return true; };
  EXPECT_THROW(CopyToEntry(source, copy, context), NSMordel::XSilentAbort);
  EXPECT_THROW(CopyToEntry(CFileItem(folder.Path() / "gone"), copy, {}),
               NSMordel::CExceptionBodyMixin);
}

struct CDeviceCase {
  const char* fName;
  Bytes fFile;
  std::set<std::u16string> fUsed;
};

TEST(ProhibitedDevices, AreNotedOfEveryKindOfFile) {
  const Bytes named = Chunk("DESC", DescriptionBody("Synth"));
  const Bytes other = Chunk("DESC", DescriptionBody("synth"));
  const Bytes list = Group("LIST", "DEVL", {named, other, Chunk("DESC", DescriptionBody("Drum"))});
  const auto vorlink = [](std::size_t filler) {
    return AsBytes("<!--" + std::string(filler, '-') + "--><Patch deviceID=\"com.x\"></Patch>");
  };
  const CDeviceCase cases[] = {
      {"x.dp01", Group("FORM", "PTCH", {named}), {u"Synth"}},
      {"x.dp01", Group("FORM", "PTCH", {other}), {}},
      {"x.dp01", Group("FORM", "PTCH", {}), {}},
      {"x.dp01", Group("FORM", "PTCH", {list}), {}},
      {"x.dp01", Group("FORM", "RBIP", {other}), {}},
      {"x.ops", Group("FORM", "SONG", {named, list}), {u"Synth", u"Drum"}},
      {"x.ostrum", Group("CAT ", "SONG", {Group("FORM", "TRAK", {list})}), {u"Synth", u"Drum"}},
      {"x.ons", Group("FORM", "SONG", {named}), {}},
      {"x.dp11", Group("FORM", "PTCH", {named}), {u"Synth"}},
      {"x.dp11", Group("FORM", "RBIP", {named}), {u"Sliced Loop Player"}},
      {"x.sf2", NSTest::CSoundFontBuilder().Build(), {u"SoundFont Sampler"}},
      {"x.vlpatch", vorlink(0), {u"com.x"}},
  };
  for (const CDeviceCase& test : cases) {
    CVerifyContext context;
    context.fProhibitedDevices = {
        u"Other", u"Synth", u"Drum", u"com.x", u"Sliced Loop Player", u"SoundFont Sampler"};
    const IFileTypeVerifier& verifier = *Registry().FindVerifier(CFileItem(test.fName));
    verifier.Verify(AsMedia(test.fFile), context);
    EXPECT_EQ(context.fProhibitedDevicesUsed, test.fUsed) << test.fName;
    CVerifyContext nothingProhibited;
    verifier.Verify(AsMedia(test.fFile), nothingProhibited);
    EXPECT_TRUE(nothingProhibited.fProhibitedDevicesUsed.empty());
  }
  CVerifyContext context;
  EXPECT_EQ(
      NSTest::FaultText<NSMordel::XFormatViolation>([&] {
        Registry().FindVerifier(CFileItem("x.vlpatch"))->Verify(AsMedia(vorlink(1000)), context);
      }),
      "missing device identifier in Vorlink patch");
}

/// A damaged structure is a fault of the file, in both forms.
TEST(PatchProcessors, WalkTheChunksOfTheSecondForm) {
  Bytes cut = Group("FORM", "RBIP", {Chunk("DESC", DescriptionBody("x")), Chunk("BODY", Bytes(9))});
  cut[cut.size() - 12] = 0x7F;  // the size of "BODY"
  for (const Bytes& file : {cut, AsBytes("FORM"), AsBytes("RBIP"), Bytes()}) {
    CVerifyContext context;
    EXPECT_THROW(Registry().FindVerifier(CFileItem("x.dp11"))->Verify(AsMedia(file), context),
                 NSMordel::XFormatViolation);
  }
}

}  // namespace
}  // namespace NSTambraPacking
