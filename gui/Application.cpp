#include "gui/Application.h"

#include <QApplication>

#include "app/TextResources.h"
#include "gui/MainWindow.h"

namespace NSTambraGui {

int RunTambraPacker(int argc, char** argv) {
  const QApplication application(argc, argv);
  const NSTambraPacking::CTextResources texts(NSTambraPacking::CTextResources::Folders({}));
  CMainWindow window(texts);
  window.show();
  return QApplication::exec();
}

}  // namespace NSTambraGui
