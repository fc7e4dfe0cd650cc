#include <QAbstractItemModelTester>
#include <algorithm>
#include <fstream>
#include <span>

#include "app/FileTypeNames.h"
#include "app/PackageTextNumbers.h"
#include "app/WaveformSummary.h"
#include "app/demo/DemoLibrary.h"
#include "gui/WindowTexts.h"
#include "gui/package/PackageWindow.h"
#include "gui/package/SampleSource.h"
#include "tests/gui/WindowUnderTest.h"
#include "tests/support/PackRun.h"

namespace {

using namespace NSTambraGui;
using namespace NSTambraPacking;
namespace fs = std::filesystem;

using NSTest::kPatience;

/// A window whose questions are answered by the test.
class CTestWindow : public NSTest::CWindowUnderTest {
 public:
  CTestWindow()
      : fWindow(fTexts, {[this](QWidget*, const QString&) { return fFolder; },
                         [this](QWidget*, const QString&, const QString&) { return fOther; },
                         [this](QWidget*, const CAlertText& alert) {
                           fAlerts.append(ToQt(alert.fMessage));
                           return fAnswer;
                         },
                         [](const QUrl&) { return true; },
                         [this](QWidget&, const QString& message) { fEnds.append(message); }}) {}

  void Open(const fs::path& path) {
    fWindow.Open(PathToQt(path));
    fWindow.show();
    Wait();
  }
  void Wait() {
    QVERIFY(QTest::qWaitFor([this] { return !fWindow.IsBusy(); }, kPatience));
  }
  QTreeView& Tree() { return Find<QTreeView>(kEntriesOfPackage); }
  CDetailsPane& Details() { return *fWindow.findChild<CDetailsPane*>(); }
  CResultPane& Results() { return *fWindow.findChild<CResultPane*>(); }

  /// All that labels show at present.
  QString Shown() const {
    QStringList texts;
    for (const QLabel* const label : fWindow.findChildren<QLabel*>()) {
      if (label->isVisible()) texts.append(label->text());
    }
    return texts.join('\n');
  }
  bool WaitFor(const QString& text) {
    return QTest::qWaitFor([&] { return Shown().contains(text); }, kPatience);
  }
  /// Names from the top, of rows that are shown, folders' contents behind them.
  QStringList Rows(const QModelIndex& parent = {}) {
    QStringList rows;
    const QAbstractItemModel& model = *Tree().model();
    for (int row = 0; row < model.rowCount(parent); ++row) {
      const QModelIndex index = model.index(row, 0, parent);
      rows.append(index.data().toString());
      rows += Rows(index);
    }
    return rows;
  }
  void Choose(const QString& name) {
    const QModelIndexList found =
        Tree().model()->match(Tree().model()->index(0, 0), Qt::DisplayRole, name, 1,
                              Qt::MatchExactly | Qt::MatchRecursive);
    QCOMPARE(found.size(), 1);
    Tree().setCurrentIndex(found.front());
  }
  QString Current() { return Tree().currentIndex().data().toString(); }

  QString fFolder;
  QString fOther;
  int fAnswer = kButtonBefore;
  QStringList fAlerts;
  QStringList fEnds;
  CPackageWindow fWindow;

 private:
  QWidget& Window() override { return fWindow; }
};

/// The first sample of a package.
const CPackageEntry& SampleOf(const CPackageContents& contents) {
  return **std::ranges::find(contents.Entries(), kSampleEntryType,
                             [](const auto& entry) { return entry->TypeCode(); });
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__OPTIMIZE__)
constexpr bool kIsInstrumented = true;
#else
constexpr bool kIsInstrumented = false;
#endif

/// Once the list has been laid out.
void ClickFirstRow(QTreeView& list) {
  const auto place = [&] { return list.visualRect(list.model()->index(0, 1)).center(); };
  QVERIFY(QTest::qWaitFor([&] { return list.viewport()->rect().contains(place()); }));
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place());
}

class CPackageWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void showsEveryEntryWithItsSizes();
  void filtersAndSorts();
  void tellsOfEachTypeOfEntry();
  void followsReferences();
  void extractsAndAsksBeforeReplacing();
  void verifiesAndCompares();
  void obeysEveryCommand();
  void staysQuickWithManyEntries();
  void playsAndStops();
  void tellsWhatIsWrongWithDamagedPackages();
  void survivesWhatHappensToTheFile();
  void isAccessibleAndKeepsItsGeometry();

 private:
  NSTest::CTemporaryFolder fFolder;
  fs::path fPackage;
  std::string fBytes;

  fs::path Write(const std::string& name, const std::string& bytes) {
    std::ofstream(fFolder.Path() / name, std::ios::binary) << bytes;
    return fFolder.Path() / name;
  }
};

void CPackageWindowTest::initTestCase() {
  WriteDemoLibrary(fFolder.Path() / "demo");
  NSTest::CPackRun run(fFolder.Path() / "demo", fFolder.Path() / "packed");
  QCOMPARE(run.Pack(), "packed");
  fPackage = run.fPacker.State()->fOutputFile.Path();
  fBytes = run.PackageBytes();
}

void CPackageWindowTest::showsEveryEntryWithItsSizes() {
  CTestWindow window;
  window.Open(fPackage);
  const CPackageContents contents(fPackage);
  const QStringList rows = window.Rows();
  for (const auto& entry : contents.Entries()) QVERIFY(rows.contains(ToQt(entry->Name())));
  const QModelIndex first = window.Tree().model()->index(0, 0);
  for (int column = 0; column < CPackageModel::kColumnCount; ++column) {
    QVERIFY(!first.siblingAtColumn(column).data().toString().isEmpty());
  }
  QVERIFY(window.WaitFor(ToQt(contents.Header().fCopyright)));
}

void CPackageWindowTest::filtersAndSorts() {
  CTestWindow window;
  const QAbstractItemModelTester tester(window.Tree().model(),
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
  window.Open(fPackage);
  const QStringList all = window.Rows();
  QTest::keyClicks(&window.Find<QLineEdit>(kPackageFilter), "SPLASH");
  QCOMPARE(window.Rows(), QStringList{"Splash.jpg"});
  QTest::keyClick(&window.fWindow, Qt::Key_Escape);
  QCOMPARE(window.Rows(), all);
  QComboBox& types = window.Find<QComboBox>(kFilterByType);
  types.setCurrentIndex(types.findData(kSoundFontEntryType));
  const QStringList banks = window.Rows();
  QVERIFY(!banks.isEmpty() && banks.size() < all.size() && banks.back().endsWith(".sf2"));
  types.setCurrentIndex(0);
  window.Tree().sortByColumn(CPackageModel::kName, Qt::DescendingOrder);
  const QStringList sorted = window.Rows();
  QVERIFY(sorted != all &&
          std::is_permutation(sorted.begin(), sorted.end(), all.begin(), all.end()));
}

void CPackageWindowTest::tellsOfEachTypeOfEntry() {
  CTestWindow window;
  window.Open(fPackage);
  const CPackageContents contents(fPackage);
  std::set<std::int32_t> seen;
  for (const auto& entry : contents.Entries()) {
    if (!seen.insert(entry->TypeCode()).second) continue;
    window.Choose(ToQt(entry->Name()));
    QVERIFY(window.WaitFor(ToQt(EntryTypeName(window.fTexts, entry->TypeCode()))));
    QVERIFY2(!window.Shown().contains(u'⚠'), qPrintable(ToQt(entry->Path())));
    if (entry->TypeCode() != kSampleEntryType) continue;
    const auto* const waveform = window.fWindow.findChild<CWaveformView*>();
    QVERIFY(QTest::qWaitFor([&] { return waveform->isVisible() && waveform->IsComplete(); }));
  }
}

void CPackageWindowTest::followsReferences() {
  CTestWindow window;
  window.Open(fPackage);
  const CPackageContents contents(fPackage);
  int followed = 0;
  for (const auto& entry : contents.Entries()) {
    const auto references = contents.ReferencesOf(*entry, {});
    if (references.empty() || references.front().fTarget.empty()) continue;
    window.Choose(ToQt(entry->Name()));
    auto* const items = window.Details().findChild<QTreeView*>();
    QVERIFY(QTest::qWaitFor([&] { return items->isVisible(); }, kPatience));
    ClickFirstRow(*items);
    QCOMPARE(window.Current(), ToQt(SplitEntryPath(references.front().fTarget).back()));
    ++followed;
  }
  QVERIFY(followed > 3);
}

void CPackageWindowTest::extractsAndAsksBeforeReplacing() {
  CTestWindow window;
  window.Open(fPackage);
  window.fFolder = PathToQt(fFolder.Path() / "out");
  window.Choose("Splash.jpg");
  const auto press = [&window] {
    window.Press(kExtractCommand);
    window.Wait();
  };
  press();
  const fs::path file = fFolder.Path() / "out" / "Splash.jpg";
  const std::string picture = NSTest::CPackRun::Bytes(fFolder.Path() / "demo" / "Splash.jpg");
  QVERIFY(NSTest::CPackRun::Bytes(file) == picture);
  QCOMPARE(window.fAlerts.size(), 0);
  std::ofstream(file) << "mine";
  press();
  QVERIFY(NSTest::CPackRun::Bytes(file) == "mine");
  window.fAnswer = kLastButton;
  press();
  QVERIFY(NSTest::CPackRun::Bytes(file) == picture);
  QCOMPARE(window.fAlerts.size(), 2);
  QVERIFY(!fs::exists(fFolder.Path() / "out" / "Samples"));
  window.fFolder = PathToQt(file);
  press();
  QCOMPARE(window.fAlerts.size(), 3);
  QCOMPARE(window.fEnds.size(), 3);
}

void CPackageWindowTest::verifiesAndCompares() {
  CTestWindow window;
  window.Open(fPackage);
  window.Press(kVerifyCommand);
  window.Wait();
  const CPackageContents contents(fPackage);
  const auto count = QString::number(contents.Entries().size()).toStdU16String();
  QCOMPARE(window.Results().Heading(), ToQt(window.fTexts.Text(kTambraSound, {count})));
  // One sample says that it is of a version to come.
  const CPackageEntry& sample = SampleOf(contents);
  std::string head(64, '\0');
  sample.Data()->Read(0, std::span(reinterpret_cast<std::uint8_t*>(head.data()), head.size()));
  std::string damaged = fBytes;
  damaged[damaged.find(head)] = '\x7F';
  window.fOther = PathToQt(Write("damaged.tmb", damaged));
  window.Press(kCompareCommand);
  window.Wait();
  auto* const list = window.Results().findChild<QTreeView*>();
  QCOMPARE(list->model()->rowCount(), 1);
  QCOMPARE(list->model()->index(0, 0).data().toString(), window.Text(kResultDamaged));
  QVERIFY(window.Results().Heading().contains("damaged.tmb"));
  ClickFirstRow(*list);
  QCOMPARE(window.Current(), ToQt(sample.Name()));
  // A heading of several lines is seen whole.
  auto* const heading = window.Results().findChild<QLabel*>();
  heading->setText(heading->text().repeated(9));
  QVERIFY(QTest::qWaitFor([&] {
    return heading->height() >= heading->heightForWidth(heading->width()) &&
           heading->height() > 2 * heading->fontMetrics().height();
  }));

  CTestWindow other;
  other.Open(fFolder.Path() / "damaged.tmb");
  other.Press(kVerifyCommand);
  other.Wait();
  QCOMPARE(other.Results().findChild<QTreeView*>()->model()->rowCount(), 1);
  other.Choose(ToQt(sample.Name()));
  QVERIFY(other.WaitFor(QString(u'⚠')));
}

void CPackageWindowTest::obeysEveryCommand() {
  CTestWindow window;
  const auto command = [&](int number) {
    for (QAction* const action : window.fWindow.findChildren<QAction*>()) {
      for (const int menu : {kMenuPackageFile, kMenuPackageTambra}) {
        for (const CMenuItem& item : window.fTexts.Menus().Menu(menu).fItems) {
          const QString text = QString(action->text()).remove('&');
          if (item.fId == number && text == ToQt(item.fText)) return action;
        }
      }
    }
    throw std::runtime_error("no such command");
  };
  QVERIFY(!command(kCommandVerify)->isEnabled());
  window.Open(fPackage);
  window.fFolder = PathToQt(fFolder.Path() / "by command");
  window.fOther = PathToQt(fPackage);
  for (const int job : {kCommandExtract, kCommandVerify, kCommandCompare}) {
    command(job)->trigger();
    QVERIFY(!command(kCommandVerify)->isEnabled());
    window.Wait();
    if (job != kCommandExtract) continue;
    QVERIFY(window.Results().Heading().contains("whose references lead into the Tambra"));
  }
  QCOMPARE(window.fEnds.size(), 3);
  command(kCommandFind)->trigger();
  QCOMPARE(window.fWindow.focusWidget(), &window.Find<QLineEdit>(kPackageFilter));
  const auto count = [] {
    return std::ranges::count_if(QApplication::topLevelWidgets(), [](const QWidget* widget) {
      return widget->isVisible() && qobject_cast<const CPackageWindow*>(widget) != nullptr;
    });
  };
  window.fWindow.activateWindow();
  QTest::keyClick(&window.fWindow, Qt::Key_O, Qt::ControlModifier);
  window.Drop(window.fWindow, fPackage);
  QCOMPARE(count(), 3);
  command(kCommandClose)->trigger();
  QCOMPARE(count(), 2);
  command(kCommandExit)->trigger();
  QCOMPARE(count(), 0);
}

void CPackageWindowTest::staysQuickWithManyEntries() {
  const int count = kIsInstrumented ? 2000 : 20000;
  const fs::path input = fFolder.Path() / "many";
  fs::create_directories(input / "Flat");
  for (const char* const name : {"NAME.TXT", "Splash.jpg"}) {
    fs::copy_file(fFolder.Path() / "demo" / name, input / name);
  }
  const fs::path file = fs::directory_iterator(fFolder.Path() / "demo" / "MIDI")->path();
  for (int i = 0; i < count; ++i) {
    const fs::path folder =
        i % 2 == 0 ? input / "Flat" : input / ("Set " + std::to_string(i % 500));
    fs::create_directory(folder);
    fs::create_hard_link(file, folder / (std::to_string(i) + ".mid"));
  }
  NSTest::CPackRun run(input, fFolder.Path() / "many packed");
  QCOMPARE(run.Pack(), "packed");
  CTestWindow window;
  NSTest::CStallWatch watch;
  const auto check = [&](const char* what) {
    const double longest = watch.TakeLongest();
    qInfo("%s: %.0f ms", what, longest);
    QVERIFY2(longest < (kIsInstrumented ? 1000 : 100), what);
  };
  window.Open(run.fPacker.State()->fOutputFile.Path());
  watch.TakeLongest();  // listed on another thread, whose time counts here too
  for (const char* const text : {"7", "77", "", "nothing", ""}) {
    window.Find<QLineEdit>(kPackageFilter).setText(text);
    check(text);
  }
  for (const int column : {CPackageModel::kType, CPackageModel::kSize, CPackageModel::kName}) {
    window.Tree().sortByColumn(column, Qt::DescendingOrder);
    check("sort");
  }
  window.Tree().expandAll();
  window.Tree().selectAll();
  check("select");
  const qsizetype chosen = window.Tree().selectionModel()->selectedRows().size();
  window.Tree().sortByColumn(CPackageModel::kName, Qt::AscendingOrder);
  check("sort what is selected");
  QCOMPARE(window.Tree().selectionModel()->selectedRows().size(), chosen);
}

void CPackageWindowTest::playsAndStops() {
  const CPackageContents contents(fPackage);
  const auto sample = SampleOf(contents).Data();
  const CTextResources texts;
  bool isThere = false;
  std::weak_ptr<int> playing;
  std::function<void()> end;
  CSamplePlayer player(texts, nullptr,
                       {[&] { return isThere; },
                        [&](const auto&, const std::function<void()>& ended) {
                          end = ended;
                          const auto sound = std::make_shared<int>();
                          playing = sound;
                          return sound;
                        }});
  player.SetSample(sample);
  QVERIFY(!player.isVisible());
  isThere = true;
  player.SetSample(sample);
  QVERIFY(player.isVisible());
  auto* const button = player.findChild<QPushButton*>();
  button->click();
  QVERIFY(!playing.expired() && button->text() == ToQt(texts.Text(kStopCommand)));
  button->click();
  QVERIFY(playing.expired() && button->text() == ToQt(texts.Text(kPlayCommand)));
  end();  // late
  button->click();
  QCoreApplication::processEvents();
  QVERIFY(!playing.expired());
  end();
  QCoreApplication::processEvents();
  QVERIFY(playing.expired());
  button->click();
  player.SetSample(nullptr);
  QVERIFY(playing.expired() && !player.isVisible());
#ifdef TAMBRA_MULTIMEDIA
  // What a device hears is what the waveform shows.
  CWaveformSummary summary(sample);
  CSampleExtent shown;
  while (!summary.IsAtEnd()) {
    for (const CSampleExtent& extent : summary.DecodeNext()) {
      shown.fLow = std::min(shown.fLow, extent.fLow);
      shown.fHigh = std::max(shown.fHigh, extent.fHigh);
    }
  }
  CSampleSource source(sample);
  QVERIFY(source.open(QIODevice::ReadOnly));
  const QByteArray heard = source.readAll();
  QCOMPARE(std::size_t(heard.size()),
           std::size_t{4} * summary.Header().fLength * summary.Header().fChannels);
  const std::span values(reinterpret_cast<const std::int32_t*>(heard.constData()),
                         std::size_t(heard.size()) / 4);
  const int shift = 32 - summary.Header().fWidth;
  QCOMPARE(*std::ranges::min_element(values) >> shift, shown.fLow);
  QCOMPARE(*std::ranges::max_element(values) >> shift, shown.fHigh);
#endif
}

void CPackageWindowTest::survivesWhatHappensToTheFile() {
  for (const int fate : {0, 1, 2}) {
    const fs::path path = Write("fated.tmb", fBytes);
    auto window = std::make_unique<CTestWindow>();
    window->Open(path);
    if (fate == 0) fs::resize_file(path, fBytes.size() / 2);
    if (fate == 1) fs::remove(path);
    if (fate == 2) fs::rename(Write("new.tmb", "no package"), path);
    window->Choose("Splash.jpg");
    window->Press(kVerifyCommand);
    window->Wait();
    const int damaged = window->Results().findChild<QTreeView*>()->model()->rowCount();
    QVERIFY(fate == 0 ? damaged > 0 || !window->fAlerts.isEmpty() : damaged == 0);
    window->Press(kVerifyCommand);
    window.reset();  // while it verifies
  }
}

void CPackageWindowTest::tellsWhatIsWrongWithDamagedPackages() {
  const CPackageContents contents(fPackage);
  const std::size_t inIndex = (contents.Header().fIndexStart + contents.Header().fDataStart) / 2;
  for (const std::size_t length :
       {std::size_t{0}, std::size_t{3}, std::size_t{40}, inIndex, fBytes.size() - 1}) {
    CTestWindow window;
    window.Open(Write("cut.tmb", fBytes.substr(0, length)));
    QVERIFY2(window.Shown().contains("no package, or a damaged one"),
             qPrintable(QString::number(length) + window.Shown()));
  }
  CTestWindow missing;
  missing.Open(fFolder.Path() / "missing.tmb");
  QVERIFY(missing.Shown().contains("missing.tmb"));
}

void CPackageWindowTest::isAccessibleAndKeepsItsGeometry() {
  CTestWindow window;
  window.Open(fPackage);
  QCOMPARE(window.FindNameless(), QString());
  window.fWindow.resize(777, 555);
  window.fWindow.close();
  CTestWindow next;
  QCOMPARE(next.fWindow.size(), QSize(777, 555));
}

}  // namespace

int main(int argc, char** argv) { return NSTest::RunWindowTest<CPackageWindowTest>(argc, argv); }

#include "PackageWindowTest.moc"
