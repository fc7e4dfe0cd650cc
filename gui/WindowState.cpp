#include "gui/WindowState.h"

#include <QApplication>
#include <QScreen>
#include <QSettings>
#include <QSystemTrayIcon>
#include <QTimer>

namespace NSTambraGui {

namespace {

QString KeyOf(const QString& kind) { return kind + "/geometry"; }

}  // namespace

void RestorePlace(QWidget& window, const QString& kind, QSize size) {
  // The frame takes some room, too.
  window.resize(size.boundedTo(window.screen()->availableSize() * 0.9));
  window.restoreGeometry(QSettings().value(KeyOf(kind)).toByteArray());
}

void SavePlace(const QWidget& window, const QString& kind) {
  QSettings().setValue(KeyOf(kind), window.saveGeometry());
}

void TellEnd(QWidget& window, const QString& message) {
  if (QApplication::activeWindow() != nullptr) return;
  QApplication::alert(&window);
  if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
  auto* const tray = new QSystemTrayIcon(window.windowIcon(), &window);
  tray->show();
  tray->showMessage(window.windowTitle(), message, window.windowIcon());
  QTimer::singleShot(10'000, tray, &QObject::deleteLater);
}

}  // namespace NSTambraGui
