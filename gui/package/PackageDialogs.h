#pragma once

#include <QString>
#include <QWidget>
#include <functional>

#include "app/AlertText.h"
#include "gui/WindowMenus.h"

namespace NSTambraGui {

/// What the window of a package asks the user; a test answers in the user's place.
struct CPackageDialogs {
  /// Both give an empty text when the user thinks better of it.
  std::function<QString(QWidget* parent, const QString& title)> fChooseFolder;
  std::function<QString(QWidget* parent, const QString& title, const QString& filter)> fChooseFile;
  /// Returns the answer, as IAlertPresenter::Show. The first button listed is the careful one.
  std::function<int(QWidget* parent, const NSTambraPacking::CAlertText& alert)> fShowAlert;
  CWindowMenus::OpenAddress fOpenAddress;
  /// Tells a user who is elsewhere that something has come to its end.
  std::function<void(QWidget& window, const QString& message)> fTellEnd;

  static CPackageDialogs OfTheDesktop();
};

}  // namespace NSTambraGui
