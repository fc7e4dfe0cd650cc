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
  using OpenAddress = std::function<void(const QUrl& address)>;

  /// Menus of the text tables by their numbers, from the left. The mnemonics of the titles keep
  /// clear of the letters in `taken`. The texts and the window must outlive the menus.
  CWindowMenus(const NSTambraPacking::CTextResources& texts, QMainWindow& window,
               const std::vector<int>& menus, const QString& taken, OpenAddress openAddress);

  QAction* Command(int number) const { return fCommands.at(number); }
  void Do(int number, std::function<void()> work);

 private:
  void AddEditCommands(QMenu* menu);
  /// Has the widget with the focus do it.
  void Edit(const char* slot);
  void About();

  const NSTambraPacking::CTextResources& fTexts;
  QMainWindow& fWindow;
  CCommands fCommands;
};

}  // namespace NSTambraGui
