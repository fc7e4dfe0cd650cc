#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/SoundFontParser.h"
#include "tests/support/Damage.h"
#include "tests/support/SoundFontBuilder.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMemoryMedia;
using NSMordel::XFormatViolation;
using NSMordel::XUnsupportedFormat;
using NSTest::CSoundFontBuilder;
using Bytes = CSoundFontBuilder::Bytes;
using Change = std::function<void(CSoundFontBuilder&)>;

struct CCase {
  const char* what;
  Change change;
};

CSoundFontBank Parse(const Change& change) {
  CSoundFontBuilder builder;
  change(builder);
  return CSoundFontParser(builder.Media()).Parse();
}

/// Puts a preset whose zones begin at `zone` before the other one.
Change PresetInFront(unsigned zone) {
  return [zone](CSoundFontBuilder& b) {
    b.Data("phdr") =
        CSoundFontBuilder::Join({CSoundFontBuilder::Preset("New", 0, 0, zone), b.Data("phdr")});
  };
}

TEST(SoundFontParser, ListsWhatABankHolds) {
  const CSoundFontBank bank = Parse([](CSoundFontBuilder& b) {
    b.fSampleData.emplace_back("sm24", Bytes(64));
    b.Data("shdr") = CSoundFontBuilder::Join({
        CSoundFontBuilder::Sample("Left\xE9", 0, 60, 1, 59, 1, 4),
        CSoundFontBuilder::Sample("Twenty characters ab", 2, 64, 3, 58, 0, 2),
        CSoundFontBuilder::Sample("ROM", 900, 800, 700, 999, 0, 0x8001),
        CSoundFontBuilder::Sample("EOS", 0, 0, 0, 0, 0, 0),
    });
  });
  EXPECT_EQ(std::tuple(bank.fMajorVersion, bank.fMinorVersion), std::tuple(2, 4));
  EXPECT_EQ(std::tuple(bank.fName, bank.fEngine), std::tuple(u"Tiny", u"Sampler"));
  EXPECT_EQ(bank.fSampleWords, 64u);
  EXPECT_TRUE(bank.fHas24Bits);
  ASSERT_EQ(bank.fPresets.size(), 1u);
  EXPECT_EQ(bank.fPresets[0].fName, u"Piano");
  EXPECT_EQ(std::tuple(bank.fPresets[0].fProgram, bank.fPresets[0].fBank), std::tuple(3, 1));
  EXPECT_THAT(bank.fInstruments, testing::ElementsAre(u"Piano Inst"));
  ASSERT_EQ(bank.fSamples.size(), 3u);
  EXPECT_EQ(bank.fSamples[0].fName, u"Left\u00E9");
  const CSoundFontSample& second = bank.fSamples[1];
  EXPECT_EQ(second.fName, u"Twenty characters ab");
  EXPECT_EQ(std::tuple(second.fStart, second.fEnd, second.fLoopStart, second.fLoopEnd),
            std::tuple(2u, 64u, 3u, 58u));
  EXPECT_EQ(std::tuple(second.fRate, second.fKey, second.fInROM), std::tuple(44100u, 60, false));
  EXPECT_TRUE(bank.fSamples[2].fInROM);
}

TEST(SoundFontParser, CountsLowerBytesOnlyWhereTheyFit) {
  const auto has24Bits = [](std::size_t words, std::size_t lower, unsigned minor) {
    return Parse([=](CSoundFontBuilder& b) {
             b.Data("smpl").resize(2 * words);
             b.fSampleData.emplace_back("sm24", Bytes(lower));
             b.Set16("ifil", 2, minor);
           })
        .fHas24Bits;
  };
  EXPECT_TRUE(has24Bits(64, 64, 4));
  EXPECT_TRUE(has24Bits(65, 66, 4));
  EXPECT_FALSE(has24Bits(64, 62, 4));
  EXPECT_FALSE(has24Bits(64, 64, 1));
}

TEST(SoundFontParser, AcceptsHarmlessOddities) {
  const CCase kCases[] = {
      {"no name, no engine", [](auto& b) { b.fInfo.resize(1); }},
      {"an unknown text", [](auto& b) { b.fInfo.emplace_back("IXYZ", Bytes(3)); }},
      {"another chunk of samples", [](auto& b) { b.fSampleData.emplace_back("junk", Bytes(5)); }},
      {"lists in another order", [](auto& b) { std::swap(b.fLists[1], b.fLists[2]); }},
      {"a chunk behind the tables", [](auto& b) { b.fTables.emplace_back("junk", Bytes(1)); }},
      {"samples in ROM alone", [](auto& b) { b.Set16("shdr", 44, 0x8001).fSampleData.clear(); }},
      {"an empty sample", [](auto& b) { b.Set32("shdr", 24, 0); }},
      {"a loop turned round, outside", [](auto& b) { b.Set32("shdr", 28, 1000); }},
      {"a loop that leaves its sample", [](auto& b) { b.Set32("shdr", 24, 50); }},
      {"a link of a mono sample", [](auto& b) { b.Set16("shdr", 42, 99); }},
      {"a preset without zones", PresetInFront(0)},
      {"sample number of a preset", [](auto& b) { b.Set16("pgen", 0, 53).Set16("pgen", 2, 9); }},
  };
  for (const CCase& test : kCases) EXPECT_NO_THROW(Parse(test.change)) << test.what;
}

TEST(SoundFontParser, RefusesWhatWouldLeadASamplerAstray) {
  std::vector<CCase> cases = {
      {"no version", [](auto& b) { b.fInfo.erase(b.fInfo.begin()); }},
      {"a short version", [](auto& b) { b.Data("ifil").resize(2); }},
      {"no info", [](auto& b) { b.fLists.erase(b.fLists.begin()); }},
      {"no sample data list", [](auto& b) { b.fLists.erase(b.fLists.begin() + 1); }},
      {"no tables", [](auto& b) { b.fLists.pop_back(); }},
      {"tables twice", [](auto& b) { b.fLists.push_back("pdta"); }},
      {"samples twice", [](auto& b) { b.fSampleData.push_back(b.fSampleData[0]); }},
      {"tables out of order", [](auto& b) { std::swap(b.fTables[1], b.fTables[2]); }},
      {"no preset", [](auto& b) { b.Data("phdr").resize(38); }},
      {"no instrument", [](auto& b) { b.Data("inst").resize(22); }},
      {"a preset's zone outside", [](auto& b) { b.Set16("phdr", 24, 2); }},
      {"presets that do not close the zones", [](auto& b) { b.Set16("phdr", 38 + 24, 0); }},
      {"zones that fall", PresetInFront(1)},
      {"a preset zone's generators outside", [](auto& b) { b.Set16("pbag", 4, 2); }},
      {"a preset zone's modulators outside", [](auto& b) { b.Set16("pbag", 6, 1); }},
      {"preset generators nobody owns", [](auto& b) { b.Data("pgen").resize(12); }},
      {"preset modulators nobody owns", [](auto& b) { b.Data("pmod").resize(20); }},
      {"an instrument's zone outside", [](auto& b) { b.Set16("inst", 20, 2); }},
      {"instruments that do not close the zones", [](auto& b) { b.Set16("inst", 42, 0); }},
      {"an instrument zone's generators outside", [](auto& b) { b.Set16("ibag", 4, 2); }},
      {"an instrument zone's modulators outside", [](auto& b) { b.Set16("ibag", 6, 1); }},
      {"the terminal instrument named", [](auto& b) { b.Set16("pgen", 2, 1); }},
      {"the terminal sample named", [](auto& b) { b.Set16("igen", 2, 1); }},
      {"a sample that ends too late", [](auto& b) { b.Set32("shdr", 24, 65); }},
      {"a sample of huge end", [](auto& b) { b.Set32("shdr", 24, 0xFFFFFFFF); }},
      {"a sample turned round", [](auto& b) { b.Set32("shdr", 20, 65); }},
      {"a loop that ends too late", [](auto& b) { b.Set32("shdr", 32, 65); }},
      {"a link of a left sample", [](auto& b) { b.Set16("shdr", 42, 1).Set16("shdr", 44, 4); }},
  };
  for (const char* id : {"phdr", "pbag", "pmod", "pgen", "inst", "ibag", "imod", "igen", "shdr"}) {
    cases.push_back({id, [id](auto& b) { b.Data(id).pop_back(); }});  // ends inside a record
    cases.push_back({id, [id](auto& b) { b.Data(id).clear(); }});
    cases.push_back({id, [id](auto& b) {
                       std::erase_if(b.fTables, [id](auto& chunk) { return chunk.first == id; });
                     }});
  }
  for (const CCase& test : cases) EXPECT_THROW(Parse(test.change), XFormatViolation) << test.what;
  const Bytes wave = CSoundFontBuilder::Join(
      {CSoundFontBuilder::Text("RIFF\4", 8), CSoundFontBuilder::Text("WAVE", 4)});
  const CSoundFontParser parser(std::make_shared<CMemoryMedia>(wave));
  EXPECT_THROW(parser.Parse(), XFormatViolation);
}

TEST(SoundFontParser, TellsWhatItDoesNotSupport) {
  const CCase kCases[] = {
      {"version 1", [](auto& b) { b.Set16("ifil", 0, 1); }},
      // Behind its texts there are other rules.
      {"version 3", [](auto& b) { b.Set16("ifil", 0, 3).fLists.resize(1); }},
      {"compressed samples", [](auto& b) { b.Set16("shdr", 44, 0x11); }},
  };
  for (const CCase& test : kCases)
    EXPECT_THROW(Parse(test.change), XUnsupportedFormat) << test.what;
}

TEST(SoundFontParser, ReadsTablesLongerThanItsBuffer) {
  const std::size_t kCount = 1000;
  const CSoundFontBank bank = Parse([](CSoundFontBuilder& b) {
    Bytes samples;
    for (unsigned i = 0; i < kCount; ++i) {
      const Bytes sample = CSoundFontBuilder::Sample(std::to_string(i), 0, 64, 0, 64, 0, 1);
      samples.insert(samples.end(), sample.begin(), sample.end());
    }
    b.Data("shdr") = CSoundFontBuilder::Join({samples, Bytes(46)});
    b.Set16("igen", 2, kCount - 1);
  });
  ASSERT_EQ(bank.fSamples.size(), kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    const std::string number = std::to_string(i);
    EXPECT_EQ(bank.fSamples[i].fName, std::u16string(number.begin(), number.end()));
  }
}

TEST(SoundFontParser, EveryCutIsRefusedAndEveryTurnedBitSurvived) {
  const auto parse = [](const Bytes& bytes) {
    CSoundFontParser(std::make_shared<CMemoryMedia>(bytes)).Parse();
  };
  const Bytes whole = CSoundFontBuilder().Build();
  NSTest::ForEachCut(whole, [&](const Bytes& cut) { EXPECT_THROW(parse(cut), XFormatViolation); });
  NSTest::ForEachTurnedBit(whole, [&](const Bytes& damaged) {
    try {
      parse(damaged);
    } catch (const NSMordel::CExceptionBodyMixin&) {
    }
  });
}

}  // namespace
}  // namespace NSTambraPacking
