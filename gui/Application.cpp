#include "gui/Application.h"

#include <QApplication>
#include <QIcon>

#include "app/TextResources.h"
#include "gui/MainWindow.h"
#include "gui/QtText.h"
#include "gui/package/PackageWindow.h"

namespace NSTambraGui {

int RunTambraPacker(int argc, char** argv) {
  const QApplication application(argc, argv);
  const NSTambraPacking::CTextResources texts(NSTambraPacking::CTextResources::Folders({}));
  // The settings stand under these names.
  QCoreApplication::setOrganizationName("Tambra");
  QCoreApplication::setApplicationName(ToQt(texts.Text(NSTambraPacking::kProgramName)));
  QCoreApplication::setApplicationVersion(TAMBRA_VERSION);
  QGuiApplication::setDesktopFileName("tambra-packer");
  QGuiApplication::setWindowIcon(QIcon::fromTheme("tambra-packer", QIcon(":/tambra-packer.png")));
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

}  // namespace NSTambraGui
