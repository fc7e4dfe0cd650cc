#include "gui/WindowMenus.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <algorithm>
#include <string_view>
#include <utility>

#include "gui/AboutDialog.h"
#include "gui/AlertDialog.h"
#include "gui/QtText.h"
#include "gui/WindowTexts.h"

namespace NSTambraGui {

namespace {

/// A command, its keys, and the slot of that name which widgets have.
struct CEditCommand {
  int fNumber;
  QKeySequence::StandardKey fKeys;
  const char* fSlot;
};

constexpr CEditCommand kEditCommands[] = {
    {kCommandUndo, QKeySequence::Undo, "undo"},
    {kCommandRedo, QKeySequence::Redo, "redo"},
    {kCommandCut, QKeySequence::Cut, "cut"},
    {kCommandCopy, QKeySequence::Copy, "copy"},
    {kCommandPaste, QKeySequence::Paste, "paste"},
    {kCommandSelectAll, QKeySequence::SelectAll, "selectAll"},
};

bool TakesText(const QWidget* target) {
  return target != nullptr && target->inputMethodQuery(Qt::ImEnabled).toBool();
}

/// The chosen rows, as a spreadsheet takes them.
void CopyRows(const QAbstractItemView& view) {
  QModelIndexList rows = view.selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end());
  QStringList lines;
  for (const QModelIndex& row : std::as_const(rows)) {
    QStringList cells;
    for (int column = 0; column < view.model()->columnCount(row.parent()); ++column) {
      cells += row.siblingAtColumn(column).data().toString();
    }
    lines += cells.join('\t');
  }
  if (!lines.isEmpty()) QApplication::clipboard()->setText(lines.join('\n'));
}

}  // namespace

CWindowMenus::CWindowMenus(const NSTambraPacking::CTextResources& texts, QMainWindow& window,
                           const std::vector<int>& menus, const QString& taken,
                           OpenAddress openAddress)
    : QObject(&window), fTexts(texts), fWindow(window), fOpenAddress(std::move(openAddress)) {
  QStringList titles;
  for (const int number : menus) titles += ToQt(texts.Menus().Menu(number).fTitle);
  titles = WithMnemonics(titles, taken);
  fLetters = MnemonicsOf(titles);
  for (const int number : menus) {
    QMenu* const menu =
        BuildMenu(texts.Menus().Menu(number), titles.takeFirst(), window, fCommands);
    window.menuBar()->addMenu(menu);
    if (number == kMenuEdit) AddEditCommands(menu);
  }
  Do(kCommandExit, [] { QApplication::closeAllWindows(); });
  Do(kCommandAbout, [this] { About(); });
  for (const auto& [command, address] :
       {std::pair(kCommandHomePage, NSTambraPacking::kHomePageAddress),
        std::pair(kCommandSupportPage, NSTambraPacking::kSupportPageAddress)}) {
    Do(command, [this, url = QUrl(ToQt(texts.Text(address)))] { Open(url); });
  }
}

void CWindowMenus::Do(int number, std::function<void()> work) {
  connect(Command(number), &QAction::triggered, this, std::move(work));
}

void CWindowMenus::Open(const QUrl& address) {
  if (fOpenAddress(address)) return;
  ShowAlertDialog(fTexts, kAlertNotOpened, {FromQt(address.toDisplayString())}, &fWindow);
}

void CWindowMenus::AddEditCommands(QMenu* menu) {
  for (const CEditCommand& command : kEditCommands) {
    Command(command.fNumber)->setShortcuts(command.fKeys);
    Do(command.fNumber, [this, slot = command.fSlot] { Edit(slot); });
  }
  // Greyed only while they are seen: a key may come when something else has the focus by then.
  const auto enable = [this](bool all) {
    const bool isText = all || TakesText(fWindow.focusWidget());
    for (const int command : {kCommandUndo, kCommandRedo, kCommandCut, kCommandPaste}) {
      Command(command)->setEnabled(isText);
    }
  };
  connect(menu, &QMenu::aboutToShow, this, [enable] { enable(false); });
  connect(menu, &QMenu::aboutToHide, this, [enable] { enable(true); });
}

void CWindowMenus::Edit(const char* slot) {
  QWidget* target = fWindow.focusWidget();
  const bool isCopy = std::string_view(slot) == "copy";
  if (auto* const box = qobject_cast<QComboBox*>(target)) target = box->lineEdit();
  if (target == nullptr) return;
  const auto* const view = qobject_cast<QAbstractItemView*>(target);
  const auto* const label = qobject_cast<QLabel*>(target);
  if (view != nullptr && isCopy) {
    CopyRows(*view);
  } else if (label != nullptr && isCopy) {
    QApplication::clipboard()->setText(label->selectedText());
  } else if (target->metaObject()->indexOfMethod(QByteArray(slot) + "()") >= 0) {
    QMetaObject::invokeMethod(target, slot);
  }
}

void CWindowMenus::About() {
  QMenu* const contacts = BuildMenu(fTexts.Menus().Menu(kMenuContacts),
                                    ToQt(fTexts.Text(kTextContacts)), fWindow, fCommands);
  CAboutDialog(fTexts, contacts, &fWindow).exec();
}

}  // namespace NSTambraGui
