#include "gui/MainWindow.h"

#include "gui/QtText.h"

namespace NSTambraGui {

CMainWindow::CMainWindow(const NSTambraPacking::CTextResources& texts) : fTexts(texts) {
  setWindowTitle(ToQt(fTexts.Text(NSTambraPacking::kProgramName)));
}

}  // namespace NSTambraGui
