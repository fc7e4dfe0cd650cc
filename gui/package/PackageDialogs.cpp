#include "gui/package/PackageDialogs.h"

#include <QDesktopServices>
#include <QFileDialog>

#include "gui/AlertDialog.h"
#include "gui/WindowState.h"

namespace NSTambraGui {

CPackageDialogs CPackageDialogs::OfTheDesktop() {
  return {[](QWidget* parent, const QString& title) {
            return QFileDialog::getExistingDirectory(parent, title);
          },
          [](QWidget* parent, const QString& title, const QString& filter) {
            return QFileDialog::getOpenFileName(parent, title, {}, filter);
          },
          [](QWidget* parent, const NSTambraPacking::CAlertText& alert) {
            CAlertDialog dialog(alert, 0, {}, parent);
            dialog.exec();
            return dialog.Answer();
          },
          [](const QUrl& address) { return QDesktopServices::openUrl(address); }, TellEnd};
}

}  // namespace NSTambraGui
