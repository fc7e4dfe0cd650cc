#include <QClipboard>
#include <QMenuBar>
#include <QMimeData>
#include <QtTest>
#include <fstream>
#include <thread>

#include "app/demo/DemoLibrary.h"
#include "gui/AboutDialog.h"
#include "gui/SplashFile.h"
#include "gui/WindowTexts.h"
#include "gui/package/PackageWindow.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/Library.h"

namespace {

using namespace NSTambraGui;
using namespace NSTambraPacking;
namespace fs = std::filesystem;

using NSTest::kPatience;
using CTestWindow = NSTest::CMainWindowUnderTest;

class CMainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void looksAtTheFolderAndAgainWhenItChanges();
  void tellsAllFaultsAtOnceAndAdvice();
  void packsAndShowsEveryEnding();
  void tellsWhatEndsARun();
  void survivesMissingTexts();
  void stopsInTheMiddle();
  void endsBehindAQuestionThatIsOpen();
  void showsEveryAlertWithItsButtonsInOrder();
  void obeysEveryCommand();
  void editsTextsAndCopiesFindings();
  void survivesWhatHappensToTheFolder();
  void takesWhatIsDropped();
  void savesInformationAndSplash();
  void isAccessibleAndRemembers();
};

void CMainWindowTest::looksAtTheFolderAndAgainWhenItChanges() {
  NSTest::CLibrary library;
  library.WithSample("a/x.wav").WithFile("b.doc", "?").WithInfo("SKIP_UNUSED_SAMPLES", "NO");
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  QVERIFY2(window.State().startsWith("Ready to pack: 2 files"), qPrintable(window.State()));
  QCOMPARE(window.Findings().size(), 1);
  QVERIFY(window.Findings().front().startsWith("Left out|b.doc|"));
  QCOMPARE(window.fWindow.OutputName(), "Kit.tmb");
  QCOMPARE(window.Find<CSplashView>(kTextSplash).PictureSize(), QSize(64, 64));
  library.WithPatch("a/p.dp01", {{.fRelative = "/y.wav"}}).WithFile("c.wav", "RIFF");
  QVERIFY(QTest::qWaitFor([&] { return window.State() == "Not ready (problems: 2)"; }, kPatience));
  QVERIFY(window.Findings()[1].startsWith("Problem|c.wav|") ||
          window.Findings()[0].startsWith("Problem|c.wav|"));
  QCOMPARE(window.Findings().filter("Problem|a/p.dp01|The reference “").size(), 1);
  library.Without("c.wav").Without("a/p.dp01").Without("NAME.TXT");
  fs::create_directory(library.Input() / "new");
  QVERIFY(QTest::qWaitFor([&] { return window.State() == "Not ready (problems: 1)"; }, kPatience));
  QCOMPARE(window.Findings().filter("has no name. – Enter a name").size(), 1);
  QCOMPARE(window.fWindow.OutputName(), "output.tmb");
  // A folder that was empty when it was listed; a name that turns what follows; a bad shortcut.
  library.WithFile("NAME.TXT", "Kit").WithFile("new/\u202Ed.doc", "?");
  QVERIFY(QTest::qWaitFor([&] { return window.State().startsWith("Ready"); }, kPatience));
  QCOMPARE(window.Findings().filter(QStringLiteral(u"|new/\uFFFDd.doc|")).size(), 1);
  library.WithFile("new/s.lnk", "?");
  QVERIFY(QTest::qWaitFor([&] { return window.State() == "Not ready (problems: 1)"; }, kPatience));
  QVERIFY(window.Findings().front().startsWith("Problem|new/s.lnk|This shortcut"));
}

void CMainWindowTest::tellsAllFaultsAtOnceAndAdvice() {
  NSTest::CLibrary library;
  library.WithSample("x.wav").WithSample("y.wav").WithFile("c.wav", "RIFF").WithFile("s.lnk", "?");
  library.WithFile("NAME.TXT", "a/b").WithFile("VERSION.TXT", "one").Without("Splash.jpg");
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  QCOMPARE(window.State(), "Not ready (problems: 5)");
  const QStringList expected = {
      "Problem|The whole folder|The name “a/b” of the Tambra cannot be used",
      "Problem|s.lnk|This shortcut leads nowhere",
      "Problem|The whole folder|There is no splash image",
      "Problem|The whole folder|The version “one” of the Tambra cannot be read. – A version",
      "Problem|c.wav|This file cannot be verified.",
      "Advice|y.wav|The same audio twice: the same as “x.wav” – Keep one"};
  const auto shows = [&](const QStringList& rows) {
    const QStringList found = window.Findings();
    return std::ranges::equal(found, rows, [](const QString& finding, const QString& row) {
      return finding.startsWith(row);
    });
  };
  QVERIFY2(shows(expected), qPrintable(window.Findings().join('\n')));
  window.Find<QTreeView>(kTextFindings)
      .setCurrentIndex(window.Find<QTreeView>(kTextFindings).model()->index(4, 0));
  library.WithSplash("Splash.jpg", 65).Without("s.lnk").Without("NAME.TXT");
  library.WithFile("VERSION.TXT", "99").WithFile(".tambra-check", "off duplicate-audio");
  QVERIFY(QTest::qWaitFor([&] { return window.Findings().join("").contains("64x64"); }, kPatience));
  window.WaitForLook();
  QVERIFY2(
      shows({"Problem|Splash.jpg|The splash image (Splash.jpg) must be a JPEG with the size",
             "Problem|The whole folder|The Tambra has no name.",
             "Problem|The whole folder|The version 99 of the Tambra is later than", expected[4]}),
      qPrintable(window.Findings().join('\n')));
  QCOMPARE(window.Find<QTreeView>(kTextFindings).currentIndex().row(), 3);
  library.WithFile(".tambra-check", "perhaps").WithFile("z.doc", "?");
  QVERIFY(QTest::qWaitFor(
      [&] { return window.Findings().filter("Advice|.tambra-check|The rules").size() == 1; },
      kPatience));
}

void CMainWindowTest::packsAndShowsEveryEnding() {
  NSTest::CLibrary library;
  library.WithSample("x.wav").WithFile("b.doc", "?").WithFile("c.doc", "?");
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  const fs::path package = library.Output() / "Kit.tmb";
  // What cannot be packed: the careful answer, for one file and the other.
  QVERIFY(window.Pack({"Escape"}).last().startsWith("Problems were encountered"));
  QCOMPARE(window.fMessages.size(), 3);
  QVERIFY(!fs::exists(package));
  QStringList told = window.Pack({"Continue Anyway!", "OK"});  // once for both files
  QCOMPARE(told.size(), 2);
  QVERIFY2(told[1].contains("packed successfully"), qPrintable(told[1]));
  QVERIFY(fs::exists(package));
  QCOMPARE(window.Pack({"Cancel"}),
           {"The file “Kit.tmb” already exists, do you want to replace it?"});
  library.WithInfo("WARN_ABOUT_UNUSED_SAMPLES", "YES").Without("b.doc").Without("c.doc");
  told = window.Pack({"Replace", "Open Log File"});
  QVERIFY2(told.last().contains("packed sucessfully"), qPrintable(told.last()));
  QCOMPARE(window.fOpened.size(), 1);
  QVERIFY(window.fOpened.front().toLocalFile().contains("Kit packing log"));
  QVERIFY(window.Shows(ToQt(window.fTexts.Text(kTextLastRun, {u"Kit", u"2"}))));
  library.WithPatch("p.dp01", {{.fRelative = "/y.wav"}});
  QVERIFY(window.Pack({"Replace", "Escape"}).last().startsWith("Problems were encountered"));
  library.Without("p.dp01").WithPatch("q.dp01", {{.fTambra = "Other", .fDatabase = "/z.wav"}});
  window.fWindow.Command(kCommandWarnExternal)->setChecked(true);
  told = window.Pack({"Cancel", "OK"});
  QVERIFY2(told.front().contains("refers to the Tambra Other"), qPrintable(told.front()));
  library.Without("Splash.jpg");
  QVERIFY(window.Pack({"OK"}).last().contains("Splash.jpg"));
  QVERIFY(window.fWindow.Command(kCommandCreate)->isEnabled());
  // Told when the work is done, not when the alert is answered; not for what the user refused.
  const QString yes = window.Text(kTextPacked);
  const QString no = window.Text(kTextNotPacked);
  QCOMPARE(window.fEnds, QStringList({no, yes, yes, no, no, no}));
}

void CMainWindowTest::tellsWhatEndsARun() {
  NSTest::CLibrary library;
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  window.fWindow.Command(kCommandWarnExternal)->setChecked(true);
  // Files that refer to one Tambra and to two are one question.
  const NSTest::CReferenceText first{.fTambra = "First", .fDatabase = "/z.wav"};
  const NSTest::CReferenceText second{.fTambra = "Second", .fDatabase = "/z.wav"};
  library.WithPatch("p.dp01", {first}).WithPatch("q.dp01", {first, second});
  QStringList told = window.Pack({"Continue Anyway!", "OK"});
  QVERIFY(told.size() == 2 && told[0].contains("p.dp01” refers to the Tambra First"));
  library.Without("p.dp01");
  told = window.Pack({"Replace", "Cancel", "Open Log File"});
  QVERIFY2(told.size() == 3 && told[1].contains("refers to the Tambras First"),
           qPrintable(told.join('\n')));
  library.Without("q.dp01");
  const auto ends = [&](const char* message) {
    told = window.Pack({"OK"});
    return told.size() == 1 && told[0].contains(message);
  };
  library.WithFile("s.lnk", "?");
  QVERIFY(ends("s.lnk” cannot be resolved"));
  library.Without("s.lnk").WithSplash("Splash.jpg", 65);
  QVERIFY(ends("must be a JPEG with the size 64x64 pixels"));
  library.WithSplash("Splash.jpg", 64).Without("NAME.TXT");
  QVERIFY(ends("Please specify a name"));
  library.WithFile("NAME.TXT", "Kit");
  // Somebody takes the package away before it is read back, which may need some tries.
  bool isMissed = false;
  for (int tries = 0; tries < 50 && !isMissed; ++tries) {
    std::jthread thief([&](const std::stop_token& stop) {
      std::error_code gone;
      while (!stop.stop_requested() && !fs::remove(library.Output() / "Kit.tmb", gone)) continue;
    });
    isMissed = ends("There was a problem with the file “Kit.tmb”");
  }
  QVERIFY(isMissed);
}

void CMainWindowTest::survivesMissingTexts() {
  NSTest::CLibrary library;
  library.WithFile("../texts/SALR/128.txt", "4\t{[STOP]?[OK]}\r\n").Without("Splash.jpg");
  CTestWindow window({library.Folder().Path() / "texts"});
  window.Choose(library.Input(), library.Output());
  QCOMPARE(window.Pack({"OK"}).size(), 1);
}

void CMainWindowTest::stopsInTheMiddle() {
  const NSTest::CTemporaryFolder folder;
  WriteDemoLibrary(folder.Path() / "in");
  // Enough of them that the run does not end before it is stopped.
  const fs::path file = fs::directory_iterator(folder.Path() / "in/MIDI")->path();
  fs::create_directory(folder.Path() / "in/More");
  for (int i = 0; i < 3000; ++i) {
    fs::create_hard_link(file, folder.Path() / "in/More" / (std::to_string(i) + ".mid"));
  }
  CTestWindow window;
  window.Choose(folder.Path() / "in", folder.Path() / "out");
  int refreshed = 0;
  QTimer stopper;
  QObject::connect(&stopper, &QTimer::timeout, &window.fWindow, [&] {
    auto* const dialog = window.fWindow.findChild<CProgressDialog*>();
    if (dialog == nullptr || dialog->findChild<QProgressBar*>()->value() < 10) return;
    if (QApplication::activeModalWidget() != dialog || refreshed++ > 0) return;
    QCOMPARE(window.FindNameless(*dialog), QString());
    QTimer::singleShot(0, dialog, [dialog] { QTest::keyClick(dialog, Qt::Key_Escape); });
  });
  stopper.start(1);
  const QStringList told = window.Pack({"Cancel Packing"});
  QCOMPARE(told, {ToQt(window.fTexts.Alert(kAlertStop).fMessage)});
  QVERIFY(fs::is_empty(folder.Path() / "out"));
}

void CMainWindowTest::endsBehindAQuestionThatIsOpen() {
  NSTest::CLibrary library;
  library.WithSample("a.wav");
  fs::create_directories(library.Output());
  std::ofstream(library.Output() / "Kit.tmb") << "?";
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  window.fUnanswered = ToQt(window.fTexts.Alert(kAlertStop).fMessage);
  QTimer::singleShot(0, &window.fWindow,
                     [&] { window.fWindow.findChild<CProgressDialog*>()->reject(); });
  const QStringList told = window.Pack({"Cancel"});
  QVERIFY2(told.size() == 1 && told.front().contains("already exists"),
           qPrintable(told.join("; ")));
}

void CMainWindowTest::showsEveryAlertWithItsButtonsInOrder() {
  const CTextResources texts;
  for (int table : {128, kGenericAlertTable}) {
    for (int entry = 0; entry < 320; ++entry) {
      CAlertText alert;
      try {
        alert = texts.Alert({table, entry}, {u"[a]", u"b"});
      } catch (const NSMordel::XNotFound&) {
        continue;
      }
      const std::size_t careful = CarefulButton({table, entry}, alert);
      for (std::size_t pressed = 0; pressed < alert.fButtons.size(); ++pressed) {
        CAlertDialog dialog(alert, careful, "All", nullptr);
        const auto buttons = dialog.findChildren<QPushButton*>();
        QCOMPARE(buttons.size(), qsizetype(alert.fButtons.size()));
        const auto index = static_cast<qsizetype>(pressed);
        QCOMPARE(buttons[index]->text().remove('&'), ToQt(alert.fButtons[pressed]));
        QVERIFY(buttons[index]->text().contains('&'));
        buttons[index]->click();
        QCOMPARE(dialog.Answer(), alert.Answer(pressed));
      }
      CAlertDialog dialog(alert, careful, {}, nullptr);
      dialog.reject();
      QCOMPARE(dialog.Answer(), alert.Answer(careful));
      QVERIFY(dialog.accessibleDescription() == ToQt(alert.fMessage));
    }
  }
  const CAlertText longest = texts.Alert(kAlertRefersToTambras, {u"b", std::u16string(9000, u'W')});
  const QSize size = CAlertDialog(longest, 0, "All", nullptr).sizeHint();
  QVERIFY(size.width() < 800 && size.height() < 600);
}

void CMainWindowTest::obeysEveryCommand() {
  CTestWindow window;
  std::set<int> left;
  for (const int menu : {kMenuFile, kMenuTambra, kMenuEdit, kMenuHelp, kMenuContacts}) {
    for (const CMenuItem& item : window.fTexts.Menus().Menu(menu).fItems) {
      if (!item.IsSeparator()) left.insert(item.fId);
    }
  }
  QStringList mnemonics;
  for (const QAction* const menu : window.fWindow.menuBar()->actions()) {
    const QString text = menu->text();
    mnemonics += text.mid(text.indexOf('&') + 1, 1).toLower();
  }
  QCOMPARE(mnemonics.removeDuplicates(), 0);
  const NSTest::CLibrary library;
  window.Choose(library.Input(), library.Output());                     // 101 and 102
  QVERIFY(window.Pack({"OK"}).last().contains("packed successfully"));  // 103
  QAction* const warn = window.fWindow.Command(kCommandWarnExternal);
  const bool before = warn->isChecked();
  warn->trigger();
  QVERIFY(warn->isChecked() != before);
  window.fFile = PathToQt(library.Output() / "Kit.tmb");
  window.fWindow.Command(kCommandOpen)->trigger();
  const auto opened = QApplication::topLevelWidgets();
  const auto package = std::find_if(opened.begin(), opened.end(), [](QWidget* widget) {
    return qobject_cast<CPackageWindow*>(widget) != nullptr;
  });
  QVERIFY(package != opened.end());
  (*package)->close();
  window.fWindow.Command(kCommandHomePage)->trigger();
  window.fWindow.Command(kCommandSupportPage)->trigger();
  QCOMPARE(window.fOpened, QList<QUrl>({QUrl(window.Text(kHomePageAddress)),
                                        QUrl(window.Text(kSupportPageAddress))}));
  window.fCanOpen = false;
  window.fWindow.Command(kCommandHomePage)->trigger();
  QVERIFY(window.fMessages.last().contains("cannot be opened"));
  QTimer::singleShot(50, &window.fWindow, [&] {
    auto* const about = qobject_cast<CAboutDialog*>(QApplication::activeModalWidget());
    QVERIFY(about != nullptr);
    QCOMPARE(about->findChild<QMenu*>()->actions().size(), 2);
    QCOMPARE(window.FindNameless(*about), QString());
    about->reject();
  });
  window.fWindow.Command(kCommandAbout)->trigger();
  QVERIFY(!window.fWindow.Command(kCommandSaveInformation)->isEnabled());
  const auto* const input = window.fWindow.findChild<CFolderChooser*>();
  window.fFolder = PathToQt(library.Folder().Path());
  window.fWindow.Command(kCommandInputFolder)->trigger();
  QTRY_COMPARE(input->Recent().size(), 2);
  window.fWindow.Command(kCommandClearRecent)->trigger();
  QCOMPARE(input->Recent(), QStringList(window.fFolder));
  window.fWindow.Command(kCommandExit)->trigger();
  QVERIFY(!window.fWindow.isVisible());
  for (const int tried : {101, 102, 103, 104, 105, 106, 107, 108, 400, 800, 804}) left.erase(tried);
  QCOMPARE(left, (std::set{110, 111, 112, 113, 114, 115}));  // of Edit
}

void CMainWindowTest::editsTextsAndCopiesFindings() {
  NSTest::CLibrary library;
  library.WithFile("b.doc", "?");
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  window.fWindow.activateWindow();
  auto& name = window.Find<QLineEdit>(kInfoName);
  name.setFocus();
  const std::pair<int, QString> steps[] = {{kCommandSelectAll, "Kit"}, {kCommandCut, ""},
                                           {kCommandPaste, "Kit"},     {kCommandPaste, "KitKit"},
                                           {kCommandUndo, "Kit"},      {kCommandRedo, "KitKit"}};
  for (const auto& [command, text] : steps) {
    window.fWindow.Command(command)->trigger();
    QCOMPARE(name.text(), text);
  }
  window.Find<QTreeView>(kTextFindings).setFocus();
  window.fWindow.Command(kCommandSelectAll)->trigger();
  window.fWindow.Command(kCommandCopy)->trigger();
  QVERIFY(QApplication::clipboard()->text().startsWith("Left out\tb.doc\t"));
  window.Press(kTextRevert);
}

void CMainWindowTest::takesWhatIsDropped() {
  const NSTest::CLibrary library;
  CTestWindow window;
  window.Drop(window.fWindow, library.Input());
  const auto choosers = window.fWindow.findChildren<CFolderChooser*>();
  window.Drop(*choosers[1], library.Folder().Path());
  QCOMPARE(choosers[0]->Folder(), PathToQt(library.Input()));
  QCOMPARE(choosers[1]->Folder(), PathToQt(library.Folder().Path()));
  window.WaitForLook();
  QVERIFY(window.fWindow.Command(kCommandCreate)->isEnabled());
  // Typed: a folder that is no recent one but for its case, and one that a run will make.
  fs::create_directory(library.Folder().Path() / "IN");
  QCOMPARE(window.Type(0, library.Folder().Path() / "IN").Folder(),
           PathToQt(library.Folder().Path() / "IN"));
  const fs::path made = library.Folder().Path() / "made/out";
  window.Type(0, library.Input());
  QCOMPARE(window.Type(1, made).Folder(), PathToQt(made));
  window.WaitForLook();
  QVERIFY(window.Pack({"OK"}).last().contains("packed successfully"));
  QVERIFY(fs::exists(made / "Kit.tmb"));
  window.Type(1, library.Input() / "inner");
  window.WaitForLook();
  QVERIFY2(window.State().contains("may not be the input folder"), qPrintable(window.State()));
}

void CMainWindowTest::survivesWhatHappensToTheFolder() {
  NSTest::CLibrary library;
  for (int i = 0; i < 200; ++i) library.WithSample("s" + std::to_string(i) + ".wav");
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  fs::remove_all(library.Input());
  QVERIFY(QTest::qWaitFor([&] { return window.State() == "Not ready (problems: 1)"; }, kPatience));
  QVERIFY(!window.Pack({}).isEmpty());
  // Gone while it is looked at, and while it is packed.
  for (const bool packs : {false, true}) {
    NSTest::CLibrary other;
    for (int i = 0; i < 200; ++i) other.WithSample("s" + std::to_string(i) + ".wav");
    CTestWindow second;
    second.fFolder = PathToQt(other.Output());
    second.fWindow.Command(kCommandOutputFolder)->trigger();
    second.fFolder = PathToQt(other.Input());
    second.fWindow.Command(kCommandInputFolder)->trigger();
    if (packs) second.fWindow.Command(kCommandCreate)->trigger();
    fs::remove_all(other.Input());
    QVERIFY(QTest::qWaitFor([&] { return !second.fWindow.IsPacking(); }, kPatience));
    QVERIFY(QTest::qWaitFor([&] { return second.State().startsWith("Not ready"); }, kPatience));
    QVERIFY(!fs::exists(other.Output() / "Kit.tmb"));
  }
}

void CMainWindowTest::savesInformationAndSplash() {
  NSTest::CLibrary library;
  library.WithInfo("URL", "old").WithSplash("SPLASH.JPG", 2100).Without("Splash.jpg");
  library.WithFile("COMMENTS.TXT",
                   "a\xA0"
                   "b\r\nc");
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  QCOMPARE(window.Find<CSplashView>(kTextSplash).PictureSize(), QSize(2100, 2100));
  auto& address = window.Find<QLineEdit>(kInfoAddress);
  address.selectAll();
  QTest::keyClicks(&address, "new");
  QVERIFY(window.fWindow.Command(kCommandSaveInformation)->isEnabled());
  window.fAnswers = {"Cancel", "Save"};
  window.fWindow.close();
  QVERIFY(window.fWindow.isVisible());
  window.fWindow.Command(kCommandCreate)->trigger();  // asks first, then packs
  QVERIFY(QTest::qWaitFor([&] { return !window.fWindow.IsPacking(); }, kPatience));
  QCOMPARE(library.Folder().ReadText("in/INFO.TXT"), std::string("URL=\"new\"\r\n"));
  QTest::keyClicks(&address, "er");
  window.Press(kTextRevert);
  QCOMPARE(address.text(), "new");
  QTest::keyClicks(&window.Find<QPlainTextEdit>(kTextComments), "!");
  window.fWindow.Command(kCommandSaveInformation)->trigger();
  QCOMPARE(library.Folder().ReadText("in/COMMENTS.TXT"), std::string("!a\xA0"
                                                                     "b\r\nc"));
  QImage picture(200, 100, QImage::Format_RGB32);
  picture.fill(Qt::red);
  const QString file = PathToQt(library.Folder().Path() / "big.png");
  QVERIFY(picture.save(file));
  library.WithSplash("../small.jpg", 64);
  const std::pair<fs::path, const char*> drops[] = {
      {PathFromQt(file), "The picture is 200x100 pixels. Scale it to 64x64"},
      {library.Input() / "INFO.TXT", "“INFO.TXT” is no picture"},
      {library.Folder().Path() / "small.jpg", "Replace the splash image “SPLASH.JPG”"}};
  window.fAnswers = {"Scale and Save", "OK", "Replace"};
  for (const auto& [path, message] : drops) {
    window.Drop(window.Find<CSplashView>(kTextSplash), path);
    QVERIFY(QTest::qWaitFor([&, told = message] { return window.fMessages.last().contains(told); },
                            kPatience));
    QVERIFY(QTest::qWaitFor([] { return QApplication::activeModalWidget() == nullptr; }));
    QVERIFY(ReadPicture(PathToQt(library.Input() / "SPLASH.JPG")).HasSplashSize());
  }
  QCOMPARE(library.Folder().ReadText("in/SPLASH.JPG"), library.Folder().ReadText("small.jpg"));
  QVERIFY(QTest::qWaitFor([&] { return window.State().startsWith("Ready"); }, kPatience));
}

void CMainWindowTest::isAccessibleAndRemembers() {
  const NSTest::CLibrary library;
  {
    CTestWindow window;
    window.Choose(library.Input(), library.Output());
    window.fWindow.resize(911, 707);
    window.fWindow.close();
  }
  CTestWindow window;
  QCOMPARE(window.fWindow.size(), QSize(911, 707));
  QCOMPARE(window.fWindow.findChild<CFolderChooser*>()->Folder(), PathToQt(library.Input()));
  window.WaitForLook();
  QCOMPARE(window.FindNameless(), QString());
  QStringList order;
  for (QWidget* widget = window.fWindow.nextInFocusChain(); widget != &window.fWindow;
       widget = widget->nextInFocusChain()) {
    if (widget->focusPolicy() & Qt::TabFocus) order += widget->accessibleName();
  }
  const QStringList expected = {window.Text(kTextInputFolder), window.Text(kTextOutputFolder),
                                window.Text(kInfoName), window.Text(kTextFindings)};
  QVERIFY(
      std::ranges::is_sorted(expected, {}, [&](const auto& name) { return order.indexOf(name); }));
  QVERIFY(order.indexOf(expected[0]) >= 0);
}

}  // namespace

int main(int argc, char** argv) { return NSTest::RunWindowTest<CMainWindowTest>(argc, argv); }

#include "MainWindowTest.moc"
