#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "references/ReferenceChunk.h"
#include "references/ReferenceHints.h"
#include "references/StandardReferenceRelocator.h"
#include "references/StandardReferenceResolver.h"

namespace {

using namespace NSTambraPacking;

/// A content library in /home/me/Lib, of which "Extra/left.wav" is not packed.
class Relocation : public testing::Test {
 protected:
  Relocation() {
    for (const char16_t* path : {u"Songs/Sub/s.ostrum", u"top.dp01", u"Drums/kick.wav",
                                 u"Drums/Old/kick.wav", u"Extra/left.wav", u"snare.wav"}) {
      fTree.AddFile(path, false);
    }
    fTree.AddFile(u"Banks/B.sf2", true);
    fTree.AddShortcut(u"Songs/Beats.lnk", u"Drums");
    fTree.AddShortcut(u"Songs/Away.lnk", std::nullopt);
  }

  /// A reference with a relative form alone.
  static CSampleReference Relative(int stepUp, std::u16string_view path) {
    CSampleReference reference;
    reference.fRelativePath = CRelativePath(stepUp, SplitEntryPath(path));
    return reference;
  }
  static CSampleReference Database(std::u16string_view path) {
    CSampleReference reference;
    reference.fDatabasePath = CDatabasePath(EDatabasePathKind::kPlain, {}, SplitEntryPath(path));
    return reference;
  }
  static CSampleReference Absolute(std::u16string_view path) {
    CSampleReference reference;
    reference.fAbsolutePath = CAbsolutePath(u"V", SplitEntryPath(path));
    return reference;
  }

  CSampleReference Relocated(const CSampleReference& reference,
                             std::uint32_t kind = kSampleReferenceKind) const {
    return fRelocator.Relocate(kind, reference, fDocument);
  }

  CEntryTree fTree;
  CReferenceLookup fLookup{fTree, {u"home", u"me", u"Lib"}};
  IncludedPaths fIncluded{u"Drums/kick.wav", u"Drums/Old/kick.wav", u"snare.wav", u"Banks/B.sf2"};
  CStandardReferenceResolver fResolver{fLookup, u"Mine", fIncluded};
  CStandardReferenceRelocator fRelocator{fLookup, u"Mine", u"http://mine"};
  std::u16string fDocument = u"Songs/Sub/s.ostrum";
};

TEST_F(Relocation, EveryWayToAFileGivesItsPlaceInThePackage) {
  struct CCase {
    CSampleReference fReference;
    const char16_t* fDatabase;
    const char16_t* fRelative;
  };
  const CCase kCases[] = {
      {Relative(2, u"Drums/kick.wav"), u"Mine:Drums/kick.wav", u"../../Drums/kick.wav"},
      {Relative(2, u"DRUMS/old/KICK.WAV"), u"Mine:Drums/Old/kick.wav", u"../../Drums/Old/kick.wav"},
      {Relative(1, u"Beats/Old/kick.wav"), u"Mine:Drums/Old/kick.wav", u"../../Drums/Old/kick.wav"},
      {Relative(3, u"Lib/snare.wav"), u"Mine:snare.wav", u"../../snare.wav"},
      {Relative(4, u"me/lib/snare.wav"), u"Mine:snare.wav", u"../../snare.wav"},
      {Relative(2, u"Banks/b.sf2/Preset/1.wav"), u"Mine:Banks/B.sf2/Preset/1.wav",
       u"../../Banks/B.sf2/Preset/1.wav"},
      {Database(u"drums/kick.wav"), u"Mine:Drums/kick.wav", u"../../Drums/kick.wav"},
      {Absolute(u"Drums/kick.wav"), u"Mine:Drums/kick.wav", u"../../Drums/kick.wav"},
      {Absolute(u"Users/x/Drums/kick.wav"), u"Mine:Drums/kick.wav", u"../../Drums/kick.wav"},
      {Absolute(u"x/snare.wav"), u"Mine:snare.wav", u"../../snare.wav"},
      {Relative(2, u"Extra/left.wav"), u"Mine:Extra/left.wav", u"../../Extra/left.wav"}};
  for (const CCase& each : kCases) {
    const CSampleReference relocated = Relocated(each.fReference);
    EXPECT_EQ(relocated.fDatabasePath.Print(), each.fDatabase);
    EXPECT_EQ(relocated.fDatabasePath.Kind(), EDatabasePathKind::kPackage);
    EXPECT_EQ(relocated.fRelativePath.Print(), each.fRelative);
    EXPECT_FALSE(relocated.fAbsolutePath.IsValid());
    EXPECT_EQ(relocated.fTambraName + u" " + relocated.fTambraURL, u"Mine http://mine");
  }
}

TEST_F(Relocation, TheRelativeFormGoesFromTheDocumentsOwnFolder) {
  const std::pair<const char16_t*, const char16_t*> kWays[] = {
      {u"top.dp01", u"Drums/Old/kick.wav"},
      {u"Drums/d.dp01", u"Old/kick.wav"},
      {u"Drums/Old/d.dp01", u"kick.wav"},
      {u"Drums/Old/Deep/d.dp01", u"../kick.wav"},
      {u"Songs/d.dp01", u"../Drums/Old/kick.wav"},
      {u"drums/Old/d.dp01", u"../../Drums/Old/kick.wav"}};
  for (const auto& [document, way] : kWays) {
    fDocument = document;
    EXPECT_EQ(Relocated(Database(u"Drums/Old/kick.wav")).fRelativePath.Print(), way);
  }
}

TEST_F(Relocation, TheFirstFormThatIsFoundCounts) {
  CSampleReference reference = Relative(2, u"Drums/gone.wav");
  reference.fDatabasePath = CDatabasePath(EDatabasePathKind::kPackage, u"Other", {u"snare.wav"});
  reference.fAbsolutePath = CAbsolutePath(u"V", {u"Drums", u"kick.wav"});
  EXPECT_EQ(fResolver.Resolve(reference, fDocument).fPath, u"snare.wav");
  reference.fRelativePath = CRelativePath(2, {u"Drums", u"Old", u"kick.wav"});
  EXPECT_EQ(fResolver.Resolve(reference, fDocument).fPath, u"Drums/Old/kick.wav");
}

TEST_F(Relocation, WhatLeadsToNoFileIsExternalOrInternal) {
  const CSampleReference kNowhere[] = {{},
                                       Relative(0, u"kick.wav"),
                                       Relative(2, u"Drums"),
                                       Relative(2, u""),
                                       Relative(2, u"Drums/kick.wav/x"),
                                       Relative(2, u"../Lib/snare.wav"),
                                       Relative(3, u"snare.wav"),
                                       Relative(3, u"Lib"),
                                       Relative(4, u"you/Lib/snare.wav"),
                                       Relative(6, u"x/home/me/Lib/snare.wav"),
                                       Relative(2147483647, u"snare.wav"),
                                       Relative(1, u"Away/kick.wav"),
                                       Database(u"kick.wav"),
                                       Absolute(u"Drums/nothing.wav")};
  for (CSampleReference reference : kNowhere) {
    for (const char16_t* name : {u"", u"Other"}) {
      reference.fTambraName = name;
      EXPECT_EQ(fResolver.Resolve(reference, fDocument).fClass, EReferenceClass::kExternal)
          << reference.fRelativePath.StepUp();
      EXPECT_THROW(Relocated(reference), NSMordel::XResolve);
    }
    reference.fTambraName = u"Mine";
    EXPECT_EQ(fResolver.Resolve(reference, fDocument).fClass, EReferenceClass::kInternal);
    CSampleReference kept = reference;
    kept.fRelativePath = {};
    kept.fAbsolutePath = {};
    EXPECT_EQ(Relocated(reference), kept);
  }
}

TEST_F(Relocation, FilesThatAreFoundAreIncludedOrNot) {
  using enum EReferenceClass;
  const std::pair<const char16_t*, EReferenceClass> kFiles[] = {
      {u"snare.wav", kFoundIncluded},
      {u"Banks/B.sf2/inner", kFoundIncluded},
      {u"Extra/left.wav", kFoundNotIncluded}};
  for (const auto& [path, expected] : kFiles) {
    EXPECT_EQ(fResolver.Resolve(Database(path), fDocument).fClass, expected);
  }
}

TEST_F(Relocation, OnlyTwoKindsCanBeRelocated) {
  EXPECT_NO_THROW(Relocated(Database(u"snare.wav"), kLQXReferenceKind));
  for (const std::uint32_t kind : {0U, 11U, 14U, 0xFFFFFFFFU}) {
    EXPECT_THROW(Relocated(Database(u"snare.wav"), kind), NSMordel::XUnsupportedFormat);
  }
}

TEST_F(Relocation, AFailureNamesTheReferenceAndItsDocument) {
  try {
    CSampleReference reference = Relative(1, u"a/b.wav");
    reference.fTrueName = u"b.wav";
    Relocated(reference);
    ADD_FAILURE();
  } catch (const NSMordel::XResolve& failure) {
    EXPECT_EQ(*failure.FindContext("target_object_type"), "reference");
    EXPECT_EQ(*failure.FindContext("target_object_id"), "b.wav => ../a/b.wav");
    EXPECT_EQ(*failure.FindContext("secondary_object_id"), "Songs/Sub/s.ostrum");
  }
}

TEST_F(Relocation, HintsSayWhatMayHaveBeenMeant) {
  using enum EReferenceHintKind;
  const std::vector<std::u16string> leftOut = {u"Extra", u"__MACOSX", u"drums/.hidden.wav"};
  const CReferenceHints hints(fLookup, leftOut);
  const std::pair<CSampleReference, std::vector<CReferenceHint>> kCases[] = {
      {Database(u"Extra/left.wav"), {{kLeftOut, u"Extra"}}},
      {Database(u"__macosx/x.wav"), {{kLeftOut, u"__MACOSX"}}},
      {Relative(2, u"Drums/.hidden.wav"), {{kLeftOut, u"drums/.hidden.wav"}}},
      {Relative(3, u"Else/x.wav"), {{kOutsideTree, u""}}},
      {Relative(1, u"Away/x.wav"), {{kOutsideTree, u""}}},
      {Database(u"SNARE.WAV/x"), {}},
      {Relative(0, u"KICK.wav"),
       {{kOtherFolder, u"Drums/kick.wav"}, {kOtherFolder, u"Drums/Old/kick.wav"}}},
      {Database(u"Drums/kick.aif"), {{kOtherExtension, u"Drums/kick.wav"}}},
      {Database(u"snaer.wav"), {{kSimilarName, u"snare.wav"}}},
      {Database(u"sXnarXe.wav"), {}},
      {Database(u"Drums/pad.wav"), {}},
      {Database(u"snare.wav"), {}}};
  for (const auto& [reference, expected] : kCases) {
    EXPECT_EQ(hints.Find(reference, fDocument), expected)
        << testing::PrintToString(reference.Print());
  }
}

}  // namespace
