#include "gui/MenuBuilder.h"

#include "gui/QtText.h"
#include "gui/WindowTexts.h"

namespace NSTambraGui {

namespace {

/// Index of the letter of `text` that becomes its mnemonic, or -1.
qsizetype FindMnemonic(const QString& text, const QString& taken) {
  for (const bool onlyBeginnings : {true, false}) {
    for (qsizetype index = 0; index < text.size(); ++index) {
      const bool begins = index == 0 || text[index - 1].isSpace();
      if (text[index].isLetter() && (begins || !onlyBeginnings) &&
          !taken.contains(text[index], Qt::CaseInsensitive)) {
        return index;
      }
    }
  }
  return -1;
}

QAction::MenuRole RoleOf(int command) {
  if (command == kCommandAbout) return QAction::AboutRole;
  return command == kCommandExit ? QAction::QuitRole : QAction::NoRole;
}

QAction* MakeAction(const NSTambraPacking::CMenuItem& item, const QString& text, QWidget& owner) {
  auto* const action = new QAction(text, &owner);
  action->setMenuRole(RoleOf(item.fId));
  action->setShortcuts(QKeySequence::listFromString(ToQt(item.fKey)));
  action->setEnabled(!item.fDisabled);
  action->setCheckable(item.fCheckable || item.fChecked);
  action->setChecked(item.fChecked);
  return action;
}

}  // namespace

QStringList WithMnemonics(const QStringList& texts, QString taken) {
  QStringList marked;
  for (QString text : texts) {
    const qsizetype mnemonic = FindMnemonic(text, taken);
    if (mnemonic >= 0) taken += text[mnemonic];
    QString before = text.left(qMax<qsizetype>(mnemonic, 0));
    QString after = text.mid(before.size());
    marked += before.replace('&', "&&") + (mnemonic >= 0 ? "&" : "") + after.replace('&', "&&");
  }
  return marked;
}

QString MnemonicsOf(const QStringList& marked) {
  QString letters;
  for (const QString& text : marked) {
    for (qsizetype at = text.indexOf('&'); at >= 0; at = text.indexOf('&', at + 2)) {
      if (at + 1 < text.size() && text[at + 1] != '&') letters += text[at + 1];
    }
  }
  return letters;
}

QMenu* BuildMenu(const NSTambraPacking::CMenu& script, const QString& title, QWidget& owner,
                 CCommands& commands) {
  auto* const menu = new QMenu(title, &owner);
  QStringList texts;
  for (const auto& item : script.fItems) texts += item.IsSeparator() ? QString() : ToQt(item.fText);
  const QStringList marked = WithMnemonics(texts);
  for (std::size_t index = 0; index < script.fItems.size(); ++index) {
    const NSTambraPacking::CMenuItem& item = script.fItems[index];
    if (item.IsSeparator()) {
      menu->addSeparator();
      continue;
    }
    QAction*& action = commands[item.fId];
    if (action == nullptr) {
      action = MakeAction(item, marked[static_cast<qsizetype>(index)], owner);
    }
    menu->addAction(action);
  }
  return menu;
}

}  // namespace NSTambraGui
