#pragma once

#include <QMainWindow>
#include <QUrl>
#include <functional>

#include "app/TextResources.h"
#include "gui/MenuBuilder.h"

namespace NSTambraGui {

/// The menu bar of a window. What the windows have in common, it does itself: the commands of Edit
/// and Help, and Exit.
class CWindowMenus : public QObject {
 public:
  /// False when nothing opens it.
  using OpenAddress = std::function<bool(const QUrl& address)>;

  /// Menus of the text tables by their numbers, from the left. The mnemonics of the titles keep
  /// clear of the letters in `taken`. The texts and the window must outlive the menus.
  CWindowMenus(const NSTambraPacking::CTextResources& texts, QMainWindow& window,
               const std::vector<int>& menus, const QString& taken, OpenAddress openAddress);

  QAction* Command(int number) const { return fCommands.at(number); }
  void Do(int number, std::function<void()> work);
  /// Opens a page, or a file with the program that is meant for it; says so when there is none.
  void Open(const QUrl& address);
  /// The mnemonics of the titles.
  const QString& Letters() const { return fLetters; }

 private:
  void AddEditCommands(QMenu* menu);
  /// Has the widget with the focus do it.
  void Edit(const char* slot);
  void About();

  const NSTambraPacking::CTextResources& fTexts;
  QMainWindow& fWindow;
  OpenAddress fOpenAddress;
  QString fLetters;
  CCommands fCommands;
};

}  // namespace NSTambraGui
