#pragma once

#include <QAction>
#include <QMenu>
#include <QStringList>
#include <map>

#include "app/MenuScript.h"

namespace NSTambraGui {

/// By command number.
using CCommands = std::map<int, QAction*>;

/// The texts, each with "&" before a letter that no earlier one has and that is not `taken`: the
/// first of a word where there is one. What means itself as "&" is doubled.
QStringList WithMnemonics(const QStringList& texts, QString taken = {});

/// The letters that the texts have "&" before.
QString MnemonicsOf(const QStringList& marked);

/// A menu of the text tables. A command that `commands` holds already is used again, others are
/// made with `owner` and added.
QMenu* BuildMenu(const NSTambraPacking::CMenu& script, const QString& title, QWidget& owner,
                 CCommands& commands);

}  // namespace NSTambraGui
