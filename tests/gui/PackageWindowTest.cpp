#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QSettings>
#include <QtTest>
#include <algorithm>
#include <fstream>
#include <span>

#include "app/FileTypeNames.h"
#include "app/PackageTextNumbers.h"
#include "app/demo/DemoLibrary.h"
#include "gui/QtText.h"
#include "gui/package/PackageWindow.h"
#include "tests/support/PackRun.h"

namespace {

using namespace NSTambraGui;
using namespace NSTambraPacking;
namespace fs = std::filesystem;

constexpr int kPatience = 20000;  // milliseconds; only what hangs takes so long

/// A window whose questions are answered by the test.
class CTestWindow {
 public:
  CTestWindow()
      : fWindow(fTexts, {[this](QWidget*, const QString&) { return fFolder; },
                         [this](QWidget*, const QString&, const QString&) { return fOther; },
                         [this](QWidget*, const CAlertText& alert) {
                           fAlerts.append(ToQt(alert.fMessage));
                           return fAnswer;
                         }}) {}

  void Open(const fs::path& path) {
    fWindow.Open(PathToQt(path));
    fWindow.show();
    Wait();
  }
  void Wait() {
    QVERIFY(QTest::qWaitFor([this] { return !fWindow.IsBusy(); }, kPatience));
  }
  template <class Widget>
  Widget& Find(CStringNumber accessibleName) {
    for (Widget* const widget : fWindow.findChildren<Widget*>()) {
      if (widget->accessibleName() == Text(accessibleName)) return *widget;
    }
    throw std::runtime_error("no such widget");
  }
  void Press(CStringNumber label) {
    for (QPushButton* const button : fWindow.findChildren<QPushButton*>()) {
      if (button->text() == Text(label)) return QTest::mouseClick(button, Qt::LeftButton);
    }
    throw std::runtime_error("no such button");
  }
  QTreeView& Tree() { return Find<QTreeView>(kEntriesOfPackage); }
  CDetailsPane& Details() { return *fWindow.findChild<CDetailsPane*>(); }
  CResultPane& Results() { return *fWindow.findChild<CResultPane*>(); }
  QString Text(CStringNumber number) const { return ToQt(fTexts.Text(number)); }

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

  CTextResources fTexts;
  QString fFolder;
  QString fOther;
  int fAnswer = kButtonBefore;
  QStringList fAlerts;
  CPackageWindow fWindow;
};

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
  void tellsWhatIsWrongWithDamagedPackages();
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
  QCoreApplication::setOrganizationName("Test");
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, PathToQt(fFolder.Path()));
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
  QStringList sorted = window.Rows();
  QVERIFY(sorted != all);
  std::sort(sorted.begin(), sorted.end());
  QStringList expected = all;
  std::sort(expected.begin(), expected.end());
  QCOMPARE(sorted, expected);
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
  const auto sample = std::ranges::find(contents.Entries(), kSampleEntryType,
                                        [](const auto& entry) { return entry->TypeCode(); });
  std::string head(64, '\0');
  (*sample)->Data()->Read(0, std::span(reinterpret_cast<std::uint8_t*>(head.data()), head.size()));
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
  QCOMPARE(window.Current(), ToQt((*sample)->Name()));

  CTestWindow other;
  other.Open(fFolder.Path() / "damaged.tmb");
  other.Press(kVerifyCommand);
  other.Wait();
  QCOMPARE(other.Results().findChild<QTreeView*>()->model()->rowCount(), 1);
  other.Choose(ToQt((*sample)->Name()));
  QVERIFY(other.WaitFor(QString(u'⚠')));
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
  // Whatever byte of header and index is wrong, the window says so or shows what there is.
  for (std::size_t at = 0; at < contents.Header().fDataStart; at += 211) {
    std::string bytes = fBytes;
    bytes[at] ^= static_cast<char>(0xFF);
    CTestWindow window;
    window.Open(Write("flipped.tmb", bytes));
    QVERIFY(!window.Shown().isEmpty());
  }
}

void CPackageWindowTest::isAccessibleAndKeepsItsGeometry() {
  CTestWindow window;
  window.Open(fPackage);
  for (QWidget* const widget : window.fWindow.findChildren<QWidget*>()) {
    const bool isHandled = widget->focusPolicy() != Qt::NoFocus && widget->isVisible();
    const QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(widget);
    if (!isHandled || face == nullptr) continue;
    const bool isNamed = !face->text(QAccessible::Name).isEmpty() || widget->inherits("QLabel") ||
                         widget->objectName().startsWith("qt_");
    QVERIFY2(isNamed, widget->metaObject()->className());
  }
  window.fWindow.resize(777, 555);
  window.fWindow.close();
  CTestWindow next;
  QCOMPARE(next.fWindow.size(), QSize(777, 555));
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  CPackageWindowTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "PackageWindowTest.moc"
