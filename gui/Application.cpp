#include "gui/Application.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>

#include "app/ExceptionAlerts.h"
#include "app/TextResources.h"
#include "gui/AlertDialog.h"
#include "gui/MainWindow.h"
#include "gui/QtText.h"
#include "gui/package/PackageWindow.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;

/// Shows what an event's handler throws as an alert, and goes on.
class CWindowApplication : public QApplication {
 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override {
    try {
      return QApplication::notify(receiver, event);
    } catch (...) {
      Show(std::current_exception());
    }
    return true;
  }

  const CTextResources* fTexts = nullptr;

 private:
  void Show(const std::exception_ptr& failure) const {
    if (fTexts == nullptr) std::rethrow_exception(failure);
    if (const auto choice = ChooseAlert(failure, ESituation::kGeneral, {})) {
      ShowAlertDialog(*fTexts, choice->fNumber, choice->fArguments, activeWindow());
    }
  }
};

void SetNames(const CTextResources& texts) {
  // The settings stand under these names.
  QCoreApplication::setOrganizationName("Tambra");
  QCoreApplication::setApplicationName(ToQt(texts.Text(kProgramName)));
  QCoreApplication::setApplicationVersion(TAMBRA_VERSION);
  QGuiApplication::setDesktopFileName("tambra-packer");
  QGuiApplication::setWindowIcon(QIcon::fromTheme("tambra-packer", QIcon(":/tambra-packer.png")));
}

int RunWindows(CWindowApplication& application) {
  const CTextResources texts(CTextResources::Folders({}));
  application.fTexts = &texts;
  SetNames(texts);
  const QStringList arguments = QCoreApplication::arguments().mid(1);
  if (arguments.size() == 1 && QFileInfo(arguments.front()).isFile()) {
    OpenPackageWindow(texts, arguments.front());
    return QApplication::exec();
  }
  CMainWindow window(texts);
  if (!arguments.isEmpty()) window.Open(arguments.front());
  window.show();
  return QApplication::exec();
}

}  // namespace

int RunTambraPacker(int argc, char** argv) {
  CWindowApplication application(argc, argv);
  try {
    return RunWindows(application);
  } catch (const std::exception& e) {  // a text table that someone has edited, perhaps
    QMessageBox::critical(nullptr, {}, ToQt(std::string_view(e.what())));
    return 1;
  }
}

}  // namespace NSTambraGui
