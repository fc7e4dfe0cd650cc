#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/PackedEntryVerifier.h"
#include "tests/support/DocumentBuilder.h"

namespace NSTambraPacking {
namespace {

using CEntries = std::vector<std::shared_ptr<CPackageEntry>>;
using NSTest::AsBytes;
using NSTest::AsMedia;

std::shared_ptr<CPackageEntry> Entry(std::u16string path, std::int32_t type,
                                     NSTest::Bytes data = {}) {
  return MakePackageEntry(std::move(path), type, 0, AsMedia(std::move(data)));
}

NSTest::Bytes Patch(std::initializer_list<const char*> relativePaths) {
  NSTest::Bytes references;
  for (const char* path : relativePaths) {
    NSTest::Append(references, NSTest::ReferenceChunk(NSTest::ReferenceXML("r", path, 1)));
  }
  return NSTest::Group("FORM", "PTCH", {references});
}

TEST(PackedEntryVerifier, TellsWhichReferencesLeadToNoEntry) {
  const CEntries entries = {
      Entry(u"S/a.wav", 11), Entry(u"S/b.sf2", 16),
      Entry(u"P/p.dp01", 2,
            Patch({"/S/A.WAV", "/S/b.sf2/x", "/S/a.wav/x", "/S", "/../S/a.wav", "/no.wav"}))};
  CPackedEntryVerifier verifier(u"Kit", nullptr, {});
  verifier.TakeEntries(entries);
  EXPECT_EQ(verifier.Verify(*entries[2], true),
            (std::vector<std::u16string>{u"r => ../S/a.wav/x", u"r => ../S", u"r => ../../S/a.wav",
                                         u"r => ../no.wav"}));
  EXPECT_TRUE(verifier.Verify(*entries[2], false).empty());
  EXPECT_THROW(verifier.Verify(*entries[0], true), NSMordel::CExceptionBodyMixin) << "no stream";
  EXPECT_THROW(verifier.Verify(*Entry(u"x", 8), false), NSMordel::XUnsupportedFormat);
}

TEST(PackedEntryVerifier, RefusesEntriesThatShareAName) {
  for (const char16_t* second : {u"S/a.wav", u"S", u"S/a.wav/b", u""}) {
    CPackedEntryVerifier verifier(u"Kit", nullptr, {});
    EXPECT_THROW(verifier.TakeEntries({Entry(u"S/a.wav", 11), Entry(second, 11)}),
                 NSMordel::XFormatViolation);
  }
}

TEST(PackedEntryVerifier, StopsWhenAskedOrCancelled) {
  const auto patch = Entry(u"P/p.dp01", 2, Patch({"/S/a.wav"}));
  CPackedEntryVerifier stopped(u"Kit", nullptr, [] { return true; });
  EXPECT_THROW(stopped.Verify(*patch, true), NSMordel::XSilentAbort);
  CPackedEntryVerifier cancelled(u"Kit", nullptr, [] { return false; });
  EXPECT_EQ(cancelled.Verify(*patch, true).size(), 1U);
  cancelled.Cancel();
  EXPECT_THROW(cancelled.Verify(*patch, true), NSMordel::XSilentAbort);
}

}  // namespace
}  // namespace NSTambraPacking
