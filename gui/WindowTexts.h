#pragma once

#include "app/TextNumbers.h"

/// Where the texts of the main window stand in the text tables.
namespace NSTambraGui {

using NSTambraPacking::CAlertNumber;
using NSTambraPacking::CStringNumber;

inline constexpr CStringNumber kTextInputFolder{128, 620};
inline constexpr CStringNumber kTextOutputFolder{128, 621};
inline constexpr CStringNumber kTextChoose{128, 622};
inline constexpr CStringNumber kTextChooseInput{128, 623};
inline constexpr CStringNumber kTextChooseOutput{128, 624};
inline constexpr CStringNumber kTextDropFolder{128, 625};
inline constexpr CStringNumber kTextInformation{128, 626};
inline constexpr CStringNumber kTextComments{128, 627};
inline constexpr CStringNumber kTextSplash{128, 628};
inline constexpr CStringNumber kTextNoSplash{128, 629};
inline constexpr CStringNumber kTextSplashSize{128, 630};
inline constexpr CStringNumber kTextSave{128, 631};
inline constexpr CStringNumber kTextRevert{128, 632};
inline constexpr CStringNumber kTextOptions{128, 633};
inline constexpr CStringNumber kTextNoOptions{128, 634};
inline constexpr CStringNumber kTextContents{128, 635};
inline constexpr CStringNumber kTextType{128, 636};
inline constexpr CStringNumber kTextFiles{128, 637};
inline constexpr CStringNumber kTextSize{128, 638};
inline constexpr CStringNumber kTextFindings{128, 639};
inline constexpr CStringNumber kTextFile{128, 640};
inline constexpr CStringNumber kTextFinding{128, 641};
inline constexpr CStringNumber kTextLooking{128, 642};
inline constexpr CStringNumber kTextChecking{128, 643};
inline constexpr CStringNumber kTextReady{128, 644};
inline constexpr CStringNumber kTextNotReady{128, 645};
inline constexpr CStringNumber kTextNoInput{128, 646};
inline constexpr CStringNumber kTextNoOutput{128, 647};
inline constexpr CStringNumber kTextOutputName{128, 648};
/// Of the first kind of finding, those of the others follow it.
inline constexpr CStringNumber kTextFirstKind{128, 691};
inline constexpr CStringNumber kTextWholeFolder{128, 654};
inline constexpr CStringNumber kTextSameForAll{128, 655};
inline constexpr CStringNumber kTextStop{128, 656};
inline constexpr CStringNumber kTextPacking{128, 657};
inline constexpr CStringNumber kTextProgress{128, 658};
inline constexpr CStringNumber kTextContacts{128, 659};
inline constexpr CStringNumber kTextAbout{128, 660};
inline constexpr CStringNumber kTextPacked{128, 661};
inline constexpr CStringNumber kTextNotPacked{128, 662};
inline constexpr CStringNumber kTextPictures{128, 663};
inline constexpr CStringNumber kTextOpenTambra{128, 664};
inline constexpr CStringNumber kTextTambras{128, 665};
inline constexpr CStringNumber kTextLastRun{128, 666};

inline constexpr CAlertNumber kAlertSaveInformation{128, 306};
inline constexpr CAlertNumber kAlertScaleSplash{128, 307};
inline constexpr CAlertNumber kAlertNoPicture{128, 308};
inline constexpr CAlertNumber kAlertReplaceSplash{128, 309};
inline constexpr CAlertNumber kAlertNotOpened{128, 310};

/// The commands of the menus.
inline constexpr int kCommandInputFolder = 101;
inline constexpr int kCommandOutputFolder = 102;
inline constexpr int kCommandCreate = 103;
inline constexpr int kCommandWarnExternal = 104;
inline constexpr int kCommandOpen = 105;
inline constexpr int kCommandSaveInformation = 106;
inline constexpr int kCommandExit = 107;
inline constexpr int kCommandClearRecent = 108;
inline constexpr int kCommandUndo = 110;
inline constexpr int kCommandRedo = 111;
inline constexpr int kCommandCut = 112;
inline constexpr int kCommandCopy = 113;
inline constexpr int kCommandPaste = 114;
inline constexpr int kCommandSelectAll = 115;
inline constexpr int kCommandClose = 120;
inline constexpr int kCommandExtract = 121;
inline constexpr int kCommandVerify = 122;
inline constexpr int kCommandCompare = 123;
inline constexpr int kCommandFind = 124;
inline constexpr int kCommandAbout = 400;
inline constexpr int kCommandHomePage = 800;
inline constexpr int kCommandSupportPage = 804;

/// The menus.
inline constexpr int kMenuFile = 1;
inline constexpr int kMenuTambra = 2;
inline constexpr int kMenuEdit = 3;
inline constexpr int kMenuHelp = 5;
inline constexpr int kMenuContacts = 6;
inline constexpr int kMenuPackageFile = 7;
inline constexpr int kMenuPackageTambra = 8;

}  // namespace NSTambraGui
