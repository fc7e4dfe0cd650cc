#pragma once

#include <QAccessible>
#include <QPushButton>
#include <QSettings>
#include <QtTest>
#include <ctime>

#include "app/TextResources.h"
#include "gui/QtText.h"
#include "tests/support/TemporaryFolder.h"

namespace NSTest {

constexpr int kPatience = 90000;  // milliseconds; only what hangs takes so long

/// A window, and what a user or a program for blind users finds in it.
class CWindowUnderTest {
 public:
  /// With the text tables of these folders in place of the program's own.
  explicit CWindowUnderTest(const std::vector<std::filesystem::path>& texts = {}) : fTexts(texts) {}
  QString Text(NSTambraPacking::CStringNumber number) const {
    return NSTambraGui::ToQt(fTexts.Text(number));
  }
  template <class Widget>
  Widget& Find(NSTambraPacking::CStringNumber accessibleName) {
    for (Widget* const widget : Window().findChildren<Widget*>()) {
      if (widget->accessibleName() == Text(accessibleName)) return *widget;
    }
    throw std::runtime_error("no such widget");
  }
  void Press(NSTambraPacking::CStringNumber label) {
    for (QPushButton* const button : Window().findChildren<QPushButton*>()) {
      if (button->text().remove('&') == Text(label).remove('&'))
        return QTest::mouseClick(button, Qt::LeftButton);
    }
    throw std::runtime_error("no such button");
  }
  /// The class of a widget that takes keys and has no name, if there is one.
  QString FindNameless() { return FindNameless(Window()); }
  static QString FindNameless(const QWidget& window) {
    for (QWidget* const widget : window.findChildren<QWidget*>()) {
      if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible()) continue;
      const QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(widget);
      const bool isPart = widget->inherits("QHeaderView") || widget->inherits("QSplitter") ||
                          widget->inherits("QMenuBar") || widget->inherits("QLabel") ||
                          widget->objectName().startsWith("qt_");
      if (face == nullptr || isPart) continue;
      const QString name = face->text(QAccessible::Name);
      if (!name.isEmpty() && !name.contains('&')) continue;
      return widget->metaObject()->className();
    }
    return {};
  }
  void Drop(QWidget& target, const std::filesystem::path& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(NSTambraGui::PathToQt(path))});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &drop);
  }

  NSTambraPacking::CTextResources fTexts;

 protected:
  virtual ~CWindowUnderTest() = default;
  virtual QWidget& Window() = 0;
};

/// Measures for how long the window's thread does not get round to events, in milliseconds of
/// processor time, so that other programs do not count.
class CStallWatch {
 public:
  CStallWatch() {
    QObject::connect(&fTimer, &QTimer::timeout, &fTimer, [this] {
      const std::clock_t now = std::clock();
      fLongest = std::max(fLongest, now - std::exchange(fBefore, now));
    });
    fTimer.start(0);
  }
  /// Since the last call.
  double TakeLongest() {
    QTest::qWait(50);
    return 1000.0 * static_cast<double>(std::exchange(fLongest, 0)) / CLOCKS_PER_SEC;
  }

 private:
  QTimer fTimer;
  std::clock_t fBefore = std::clock();
  std::clock_t fLongest = 0;
};

/// Runs the tests on no screen, with settings and a cache of their own.
template <class Test>
int RunWindowTest(int argc, char** argv) {
  const CTemporaryFolder folder;
  const QByteArray path = NSTambraGui::PathToQt(folder.Path()).toUtf8();
  qputenv("QT_QPA_PLATFORM", "offscreen");
  for (const char* const name : {"XDG_CACHE_HOME", "LOCALAPPDATA"}) qputenv(name, path);
  QApplication application(argc, argv);
  QCoreApplication::setOrganizationName("Test");
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, path);
  Test test;
  return QTest::qExec(&test, argc, argv);
}

}  // namespace NSTest
