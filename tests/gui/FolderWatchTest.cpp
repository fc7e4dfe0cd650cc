#include <QSignalSpy>
#include <QtTest>
#include <utility>

#include "gui/FolderWatch.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/Library.h"

namespace {

using namespace NSTambraGui;
using namespace NSTambraPacking;
namespace fs = std::filesystem;

using NSTest::kPatience;
using CTestWindow = NSTest::CMainWindowUnderTest;

class CFolderWatchTest : public QObject {
  Q_OBJECT

 private slots:
  void endsALookWhoseReasonHasGone();
  void noticesAFolderThatGoesAndComesBack();
};

void CFolderWatchTest::endsALookWhoseReasonHasGone() {
  NSTest::CLibrary library;
  const CTextResources texts;
  CFolderWatch watch(texts, nullptr);
  const auto waits = [&] { return QTest::qWaitFor([&] { return !watch.IsLooking(); }, kPatience); };
  watch.SetFolder(PathToQt(library.Input()));
  QVERIFY(waits());
  QSignalSpy checked(&watch, &CFolderWatch::Checked);
  bool wasThere = false;
  QObject::connect(&watch, &CFolderWatch::Listed, &watch, [&](const SharedLook& look) {
    if (std::exchange(wasThere, true)) return;
    QCOMPARE(look->fCount, std::size_t{3});
    watch.SetPaused(true);
    library.Without("z.doc");
    watch.SetPaused(false);
  });
  library.WithFile("z.doc", "?");
  watch.LookAgain();
  QVERIFY(waits());
  QVERIFY(wasThere && !checked.isEmpty());
}

void CFolderWatchTest::noticesAFolderThatGoesAndComesBack() {
  NSTest::CLibrary library;
  CTestWindow window;
  window.Choose(library.Input(), library.Output());
  const auto becomes = [&](const QString& state) {
    return QTest::qWaitFor([&] { return window.State().startsWith(state); }, 20000);
  };
  const fs::path away = library.Folder().Path() / "away";
  for (int turn = 0; turn < 2; ++turn) {
    fs::rename(library.Input(), away);
    QVERIFY2(becomes("Not ready"), qPrintable(window.State()));
    fs::rename(away, library.Input());
    QVERIFY2(becomes("Ready"), qPrintable(window.State()));
  }
  // Another one comes to stand in its place.
  fs::rename(library.Input(), away);
  fs::copy(away, library.Input());
  QVERIFY2(becomes("Ready"), qPrintable(window.State()));
  // A text without which nothing can be listed.
  library.WithFile("NAME.TXT", std::string(3 << 20, 'x'));
  window.Choose(library.Input(), library.Output());
  QVERIFY(becomes("Not ready"));
  library.WithFile("NAME.TXT", "Kit");
  QVERIFY2(becomes("Ready"), qPrintable(window.State()));
  library.WithFile("c.wav", "RIFF");
  QVERIFY(becomes("Not ready"));
}

}  // namespace

int main(int argc, char** argv) { return NSTest::RunWindowTest<CFolderWatchTest>(argc, argv); }

#include "FolderWatchTest.moc"
