#include <gtest/gtest.h>

#include "app/FolderAdvice.h"
#include "references/ReferenceLookup.h"

namespace NSTambraPacking {
namespace {

constexpr std::uint64_t kGigabyte = 1'000'000'000;

std::vector<CAdvice> AdviceOnSize(std::uint64_t bankBytes, std::uint64_t sampleBytes) {
  CPackJobState state;
  state.fInformation.fName = u"Big";
  for (const std::int32_t type : {8, 11}) {  // what a sample's file takes does not count
    CJobEntry entry;
    entry.fEntry = MakePackageEntry(u"x", type, 0, nullptr);
    entry.fSize = bankBytes;
    state.fEntries.push_back(entry);
  }
  const CAdviceRules rules;
  CAdviceList list(rules);
  AdviseOnSize(state, sampleBytes, list);
  return list.TakeSorted();
}

TEST(FolderAdvice, APackageNearItsLimitIsTold) {
  EXPECT_TRUE(AdviceOnSize(3 * kGigabyte, kGigabyte / 2).empty());
  const std::vector<CAdvice> advice = AdviceOnSize(3 * kGigabyte, kGigabyte);
  ASSERT_EQ(advice.size(), 1U);
  EXPECT_EQ(advice[0].Detail(CTextResources()), u"about 4000 MB of at most 4294 MB");
}

TEST(FolderAdvice, OnlyWhatIsNotWhereItSaysIsFoundBySearch) {
  CEntryTree tree;
  tree.AddFile(u"Samples/a.wav", false);
  const CReferenceLookup lookup(tree);
  CSampleReference reference;
  reference.fAbsolutePath = CAbsolutePath(u"Disk", {u"Old", u"Samples", u"a.wav"});
  EXPECT_FALSE(lookup.Find(reference, u"p.dp01")->fBySearch);
  reference.fRelativePath = CRelativePath(0, {u"Samples", u"a.wav"});
  EXPECT_FALSE(lookup.Find(reference, u"p.dp01")->fBySearch);
  EXPECT_TRUE(lookup.Find(reference, u"Patches/p.dp01")->fBySearch);
}

}  // namespace
}  // namespace NSTambraPacking
