#include "gui/Application.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QMessageBox>
#include <algorithm>
#include <optional>

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
    try {
      if (const auto choice = ChooseAlert(failure, ESituation::kGeneral, {})) {
        ShowAlertDialog(*fTexts, choice->fNumber, choice->fArguments, activeWindow());
      }
    } catch (const std::exception& e) {  // a text table that has no words for it
      QMessageBox::critical(activeWindow(), {}, ToQt(std::string_view(e.what())));
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

/// What the desktop names when it starts the program: paths, or addresses of files.
QStringList NamedPaths() {
  QCommandLineParser parser;
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument("PATH", "A folder to pack, or Tambras to look at.", "[PATH...]");
  parser.process(*QCoreApplication::instance());
  QStringList paths;
  for (const QString& argument : parser.positionalArguments()) {
    const QUrl address(argument);
    paths += address.isLocalFile() ? address.toLocalFile() : argument;
  }
  return paths;
}

int RunWindows(CWindowApplication& application) {
  const CTextResources texts(CTextResources::Folders({}));
  application.fTexts = &texts;
  SetNames(texts);
  const QStringList paths = NamedPaths();
  const auto isFolder = [](const QString& path) { return QFileInfo(path).isDir(); };
  std::optional<CMainWindow> window;
  if (paths.isEmpty() || std::ranges::any_of(paths, isFolder)) window.emplace(texts).show();
  for (const QString& path : paths) {
    if (isFolder(path)) {
      window->Open(path);
    } else {
      OpenPackageWindow(texts, path);
    }
  }
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
