#pragma once

#include <QString>
#include <QWidget>

/// What all windows do alike.
namespace NSTambraGui {

/// Gives a window the place and size that the last one of its kind had, at first `size`, or less on
/// a small screen.
void RestorePlace(QWidget& window, const QString& kind, QSize size);
void SavePlace(const QWidget& window, const QString& kind);

/// Tells that something long has come to its end, with the means of the desktop, to a user who is
/// looking at other programs.
void TellEnd(QWidget& window, const QString& message);

}  // namespace NSTambraGui
