#pragma once

/// Where every text that the program shows stands in the text tables. The wording itself is in
/// resources/ only.
namespace NSTambraPacking {

/// An entry of a string table.
struct CStringNumber {
  int fTable;
  int fEntry;
  friend bool operator==(const CStringNumber&, const CStringNumber&) = default;
};

/// An entry of an alert table.
struct CAlertNumber {
  int fTable;
  int fEntry;
  friend bool operator==(const CAlertNumber&, const CAlertNumber&) = default;
};

inline constexpr int kMenuTable = 128;
inline constexpr int kGenericAlertTable = 1997;
/// Entry = the file type's row in the file type table, from 1.
inline constexpr int kFileTypeNameTable = 2000;

// Web addresses
inline constexpr CStringNumber kHomePageAddress{128, 34};
inline constexpr CStringNumber kSupportPageAddress{128, 35};

// Progress: the entry of stage 0, those of the later stages follow it
inline constexpr CStringNumber kFirstStageLine{128, 40};
inline constexpr CStringNumber kFirstItemLine{128, 50};
inline constexpr CStringNumber kTimeEstimating{128, 60};
inline constexpr CStringNumber kTimeHours{128, 61};
inline constexpr CStringNumber kTimeMinutes{128, 62};
inline constexpr CStringNumber kTimeAboutOneMinute{128, 63};
inline constexpr CStringNumber kTimeLessThanOneMinute{128, 64};

// Packing log
inline constexpr CStringNumber kLogName{128, 71};
inline constexpr CStringNumber kNumberedLogName{128, 72};
inline constexpr CStringNumber kLogFailed{128, 73};
inline constexpr CStringNumber kLogUnresolved{128, 74};
inline constexpr CStringNumber kLogBroken{128, 75};
inline constexpr CStringNumber kLogExternal{128, 76};
inline constexpr CStringNumber kLogProhibited{128, 77};
inline constexpr CStringNumber kLogProhibitedLine{128, 78};
inline constexpr CStringNumber kLogSkipped{128, 79};
inline constexpr CStringNumber kLogUnreferenced{128, 80};
inline constexpr CStringNumber kLogComplete{128, 81};
inline constexpr CStringNumber kLogAborted{128, 82};
inline constexpr CStringNumber kListSeparator{128, 84};

// The program and remarks on accepted files
inline constexpr CStringNumber kProgramName{128, 300};
inline constexpr CStringNumber kProgramVersion{128, 301};
inline constexpr CStringNumber kRemarkSamplesConverted{128, 310};
inline constexpr CStringNumber kRemarkSourceNotRestorable{128, 311};
inline constexpr CStringNumber kRemarkLoopStructureOnly{128, 312};

// Command line
inline constexpr CStringNumber kLogFile{128, 320};
inline constexpr CStringNumber kTambraFile{128, 321};
inline constexpr CStringNumber kCheckPassed{128, 322};
inline constexpr CStringNumber kStopped{128, 323};
inline constexpr CStringNumber kSampleType{128, 324};
inline constexpr CStringNumber kTambraSound{128, 325};
inline constexpr CStringNumber kTambraDamaged{128, 326};
inline constexpr CStringNumber kDemoWritten{128, 327};
inline constexpr CStringNumber kUnknownType{128, 328};
inline constexpr CStringNumber kFailureDetail{128, 329};
inline constexpr CStringNumber kInfoName{128, 330};
inline constexpr CStringNumber kInfoVersion{128, 331};
inline constexpr CStringNumber kInfoAddress{128, 332};
inline constexpr CStringNumber kInfoCopyright{128, 333};
inline constexpr CStringNumber kInfoComment{128, 334};
inline constexpr CStringNumber kInfoFiles{128, 335};
inline constexpr CStringNumber kInfoSize{128, 336};
inline constexpr CStringNumber kListTotal{128, 337};

// The cache of packed samples
inline constexpr CStringNumber kCacheNotUsed{128, 440};
inline constexpr CStringNumber kCacheBegunAnew{128, 441};
inline constexpr CStringNumber kCacheDamaged{128, 442};
inline constexpr CStringNumber kCacheFile{128, 443};
inline constexpr CStringNumber kCacheSamples{128, 444};
inline constexpr CStringNumber kCacheSize{128, 445};
inline constexpr CStringNumber kCacheLimit{128, 446};
inline constexpr CStringNumber kCacheCleared{128, 447};
inline constexpr CStringNumber kCacheNone{128, 448};
inline constexpr CStringNumber kCacheUnsound{128, 449};

// Why a reference may lead nowhere
inline constexpr CStringNumber kHintOtherName{128, 340};
inline constexpr CStringNumber kHintOtherFolder{128, 341};
inline constexpr CStringNumber kHintOtherCase{128, 342};
inline constexpr CStringNumber kHintOutside{128, 343};
inline constexpr CStringNumber kHintSkipItem{128, 344};
inline constexpr CStringNumber kHintUnsupported{128, 345};
inline constexpr CStringNumber kHintProhibitedDevice{128, 346};
inline constexpr CStringNumber kHintLeftOut{128, 347};

// Reading packages on the command line
inline constexpr CStringNumber kExtracting{128, 360};
inline constexpr CStringNumber kExtractedDifferent{128, 361};
inline constexpr CStringNumber kExtractedDamaged{128, 362};
inline constexpr CStringNumber kReplaceHint{128, 363};
inline constexpr CStringNumber kExtractionDamaged{128, 364};
inline constexpr CStringNumber kStructureSound{128, 365};
inline constexpr CStringNumber kNoDifferences{128, 366};
inline constexpr CStringNumber kDifferenceCount{128, 367};
inline constexpr CStringNumber kExtractedRelocated{128, 368};
/// Of the first kind of difference, those of the others follow it.
inline constexpr CStringNumber kFirstDifference{128, 370};
inline constexpr CStringNumber kSampleFrames{128, 390};
inline constexpr CStringNumber kSampleChannels{128, 391};
inline constexpr CStringNumber kSampleBits{128, 392};
inline constexpr CStringNumber kSampleRate{128, 393};
inline constexpr CStringNumber kSampleRootKey{128, 394};
inline constexpr CStringNumber kSampleFineTune{128, 395};
inline constexpr CStringNumber kSampleLoop{128, 396};
inline constexpr CStringNumber kSampleBitStream{128, 397};
inline constexpr CStringNumber kSampleRest{128, 398};
inline constexpr CStringNumber kBytesAt{128, 399};
inline constexpr CStringNumber kThereIsNone{128, 400};
inline constexpr CStringNumber kLoopForward{128, 401};
inline constexpr CStringNumber kLoopAlternating{128, 402};
inline constexpr CStringNumber kLoopOther{128, 403};

// A look at a folder
inline constexpr CStringNumber kLookInformationFile{128, 600};
inline constexpr CStringNumber kLookUnknownType{128, 601};
inline constexpr CStringNumber kLookFailed{128, 602};
inline constexpr CStringNumber kLookUnresolved{128, 603};
inline constexpr CStringNumber kLookExternal{128, 604};
inline constexpr CStringNumber kLookProhibited{128, 605};
inline constexpr CStringNumber kLookUnreferenced{128, 606};
inline constexpr CStringNumber kLookBadShortcut{128, 607};
inline constexpr CStringNumber kLookBadRules{128, 608};
inline constexpr CStringNumber kLookAdvice{128, 609};
/// Of the first reason to leave a file out, those of the others follow it.
inline constexpr CStringNumber kFirstLookLeftOut{128, 610};
inline constexpr CStringNumber kLookLoopStructure{128, 670};
/// What is wrong with the folder as a whole, with what helps.
inline constexpr CStringNumber kLookNoName{128, 680};
inline constexpr CStringNumber kLookNoNameHint{128, 681};
inline constexpr CStringNumber kLookBadName{128, 682};
inline constexpr CStringNumber kLookBadNameHint{128, 683};
inline constexpr CStringNumber kLookNoSplash{128, 684};
inline constexpr CStringNumber kLookBadSplash{128, 685};
inline constexpr CStringNumber kLookSplashHint{128, 686};
inline constexpr CStringNumber kLookBadVersion{128, 687};
inline constexpr CStringNumber kLookVersionHint{128, 688};
inline constexpr CStringNumber kLookVersionTooNew{128, 689};

// Advice of a check
inline constexpr CStringNumber kAdviceStageLine{128, 700};
inline constexpr CStringNumber kAdviceItemLine{128, 701};
inline constexpr CStringNumber kAdviceHeading{128, 702};
inline constexpr CStringNumber kAdviceCounts{128, 703};
// Summary of a run; the headings of the columns and the reasons follow each other
inline constexpr CStringNumber kFirstSummaryColumn{128, 705};
inline constexpr CStringNumber kSummaryTotal{128, 710};
inline constexpr CStringNumber kSummaryPercent{128, 711};
inline constexpr CStringNumber kSummaryLeftOut{128, 712};
inline constexpr CStringNumber kSummaryRun{128, 713};
inline constexpr CStringNumber kFirstLeftOutReason{128, 790};
/// Of the first kind of advice, the five texts of each stand one behind the other.
inline constexpr CStringNumber kFirstAdviceText{128, 720};

// Standard menus
inline constexpr CStringNumber kFileMenu{1000, 1};
inline constexpr CStringNumber kEditMenu{1000, 2};
inline constexpr CStringNumber kHelpMenu{1000, 3};
inline constexpr CStringNumber kQuitItem{1000, 10};
inline constexpr CStringNumber kUndoItem{1000, 11};
inline constexpr CStringNumber kRedoItem{1000, 12};
inline constexpr CStringNumber kCutItem{1000, 13};
inline constexpr CStringNumber kCopyItem{1000, 14};
inline constexpr CStringNumber kPasteItem{1000, 15};
inline constexpr CStringNumber kSelectAllItem{1000, 16};
inline constexpr CStringNumber kCloseItem{1000, 17};

// Versions: the entry of a final version without a build number; the stages 1 to 4 follow it
inline constexpr CStringNumber kVersionFormat{1997, 0};

// Alerts of the pack job
inline constexpr CAlertNumber kAlertNoName{128, 4};
inline constexpr CAlertNumber kAlertPacked{128, 5};
inline constexpr CAlertNumber kAlertPackedWithNotes{128, 6};
inline constexpr CAlertNumber kAlertProblems{128, 7};
inline constexpr CAlertNumber kAlertBadFormatCancelled{128, 8};
inline constexpr CAlertNumber kAlertNotPacked{128, 9};
inline constexpr CAlertNumber kAlertContinueWithout{128, 10};
inline constexpr CAlertNumber kAlertNotVerified{128, 11};
inline constexpr CAlertNumber kAlertNoSplash{128, 12};
inline constexpr CAlertNumber kAlertBadSplash{128, 13};
inline constexpr CAlertNumber kAlertBadFormat{128, 15};
inline constexpr CAlertNumber kAlertBadReference{128, 16};
inline constexpr CAlertNumber kAlertRefersToTambra{128, 18};
inline constexpr CAlertNumber kAlertStop{128, 19};
inline constexpr CAlertNumber kAlertReplace{128, 20};
inline constexpr CAlertNumber kAlertUnsupported{128, 21};
inline constexpr CAlertNumber kAlertRefersToTambras{128, 23};
inline constexpr CAlertNumber kAlertUnresolved{128, 24};
inline constexpr CAlertNumber kAlertFileProblem{128, 25};
inline constexpr CAlertNumber kAlertBadShortcut{128, 26};
inline constexpr CAlertNumber kAlertUnknownException{128, 200};
inline constexpr CAlertNumber kAlertInternalError{128, 201};
inline constexpr CAlertNumber kAlertUnknownError{128, 300};
inline constexpr CAlertNumber kAlertBadVersion{128, 301};
inline constexpr CAlertNumber kAlertVersionTooNew{128, 302};
inline constexpr CAlertNumber kAlertBadName{128, 303};
inline constexpr CAlertNumber kAlertOutputInsideInput{128, 304};
inline constexpr CAlertNumber kAlertTooLarge{128, 305};

// Generic alerts
inline constexpr CAlertNumber kGenericOutOfMemory{1997, 0};
inline constexpr CAlertNumber kGenericDiskFull{1997, 3};
inline constexpr CAlertNumber kGenericNotFound{1997, 4};
inline constexpr CAlertNumber kGenericBadFormat{1997, 6};
inline constexpr CAlertNumber kGenericUnsupported{1997, 7};
inline constexpr CAlertNumber kGenericRead{1997, 8};
inline constexpr CAlertNumber kGenericWrite{1997, 9};
inline constexpr CAlertNumber kGenericMedia{1997, 10};
inline constexpr CAlertNumber kGenericUnrecoverable{1997, 12};
inline constexpr CAlertNumber kGenericLocked{1997, 13};
inline constexpr CAlertNumber kGenericResolve{1997, 14};
inline constexpr CAlertNumber kGenericFolder{1997, 15};
inline constexpr CAlertNumber kGenericNotReady{1997, 16};
inline constexpr CAlertNumber kGenericAccess{1997, 17};
inline constexpr CAlertNumber kGenericNetwork{1997, 18};
inline constexpr CAlertNumber kGenericItemNotFound{1997, 19};
inline constexpr CAlertNumber kGenericObjectNotFound{1997, 20};
inline constexpr CAlertNumber kGenericFileSystem{1997, 21};
inline constexpr CAlertNumber kGenericHelp{1997, 22};
inline constexpr CAlertNumber kGenericBadSample{1997, 23};

}  // namespace NSTambraPacking
