#pragma once

#include "app/TextNumbers.h"

/// The texts of the window that shows a package.
namespace NSTambraPacking {

inline constexpr CStringNumber kPackageTitle{128, 500};
inline constexpr CStringNumber kPackageOpening{128, 501};
inline constexpr CStringNumber kPackageFilter{128, 502};
inline constexpr CStringNumber kPackageAllTypes{128, 503};
inline constexpr CStringNumber kPackageFolder{128, 504};
inline constexpr CStringNumber kColumnType{128, 505};
inline constexpr CStringNumber kColumnPacked{128, 506};
inline constexpr CStringNumber kColumnRatio{128, 507};
inline constexpr CStringNumber kPackageCounts{128, 508};
inline constexpr CStringNumber kPackageShown{128, 509};
inline constexpr CStringNumber kPackageChosen{128, 510};
inline constexpr CStringNumber kExtractCommand{128, 511};
inline constexpr CStringNumber kExtractAllCommand{128, 512};
inline constexpr CStringNumber kVerifyCommand{128, 513};
inline constexpr CStringNumber kCompareCommand{128, 514};
inline constexpr CStringNumber kStopCommand{128, 515};
inline constexpr CStringNumber kCloseResults{128, 516};
inline constexpr CStringNumber kPlayCommand{128, 517};
inline constexpr CStringNumber kExtractHint{128, 518};
inline constexpr CStringNumber kVerifyHint{128, 519};
inline constexpr CStringNumber kCompareHint{128, 520};
inline constexpr CStringNumber kChooseFolder{128, 521};
inline constexpr CStringNumber kChoosePackage{128, 522};
inline constexpr CStringNumber kPackageFiles{128, 523};
inline constexpr CStringNumber kVerifyingPackage{128, 524};
inline constexpr CStringNumber kComparingPackages{128, 525};
inline constexpr CStringNumber kEntriesOfPackage{128, 527};
inline constexpr CStringNumber kDetailsOfEntry{128, 528};
inline constexpr CStringNumber kFilterByType{128, 529};
inline constexpr CStringNumber kResultsList{128, 530};
inline constexpr CStringNumber kProgressOfTask{128, 531};

// Details of an entry
inline constexpr CStringNumber kDetailPath{128, 540};
inline constexpr CStringNumber kDetailPixels{128, 541};
inline constexpr CStringNumber kPixelsValue{128, 542};
inline constexpr CStringNumber kDetailDuration{128, 543};
inline constexpr CStringNumber kDurationSeconds{128, 544};
inline constexpr CStringNumber kDetailFormat{128, 545};
inline constexpr CStringNumber kSampleFormat{128, 546};
inline constexpr CStringNumber kKeyValue{128, 547};
inline constexpr CStringNumber kCentsValue{128, 548};
inline constexpr CStringNumber kMIDIFormat{128, 549};
inline constexpr CStringNumber kMIDITracks{128, 550};
inline constexpr CStringNumber kMIDINotes{128, 551};
inline constexpr CStringNumber kMIDIEvents{128, 552};
inline constexpr CStringNumber kMIDITrackNames{128, 553};
inline constexpr CStringNumber kBankName{128, 554};
inline constexpr CStringNumber kBankEngine{128, 555};
inline constexpr CStringNumber kBankInstruments{128, 556};
inline constexpr CStringNumber kBankSamples{128, 557};
inline constexpr CStringNumber kBankPresets{128, 558};
inline constexpr CStringNumber kBankPresetPlace{128, 559};
inline constexpr CStringNumber kDocumentReferences{128, 560};
inline constexpr CStringNumber kReferenceNowhere{128, 561};
inline constexpr CStringNumber kReferenceElsewhere{128, 562};
inline constexpr CStringNumber kReferenceFollow{128, 563};
inline constexpr CStringNumber kEntryDamaged{128, 564};
inline constexpr CStringNumber kDurationMinutes{128, 565};
inline constexpr CStringNumber kWaveformName{128, 566};
inline constexpr CStringNumber kWaveformDecoding{128, 567};
inline constexpr CStringNumber kPictureName{128, 568};
inline constexpr CStringNumber kNoReferences{128, 569};

// What a verification or a comparison found
inline constexpr CStringNumber kResultBroken{128, 570};
inline constexpr CStringNumber kResultHeader{128, 571};
inline constexpr CStringNumber kResultRemoved{128, 572};
inline constexpr CStringNumber kResultAdded{128, 573};
inline constexpr CStringNumber kResultSound{128, 574};
inline constexpr CStringNumber kResultMetadata{128, 575};
inline constexpr CStringNumber kResultReferences{128, 576};
inline constexpr CStringNumber kResultContent{128, 577};
inline constexpr CStringNumber kResultDamaged{128, 578};
inline constexpr CStringNumber kResultFailed{128, 579};
inline constexpr CStringNumber kResultDifferent{128, 580};
inline constexpr CStringNumber kBeforeAndAfter{128, 581};
inline constexpr CStringNumber kComparedTitle{128, 582};
inline constexpr CStringNumber kColumnWhat{128, 583};
inline constexpr CStringNumber kColumnDetail{128, 584};

inline constexpr CStringNumber kMono{128, 585};
inline constexpr CStringNumber kStereo{128, 586};

inline constexpr CAlertNumber kAlertReplaceFiles{128, 320};

}  // namespace NSTambraPacking
