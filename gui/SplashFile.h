#pragma once

#include <QImage>
#include <QString>

namespace NSTambraGui {

/// The path of the folder's splash picture, whatever the case of its name; "Splash.jpg" when there
/// is none.
QString SplashPath(const QString& folder);

/// A picture without pixels when there is none or it cannot be read. One that is far larger than a
/// splash is read at a smaller size.
QImage ReadPicture(const QString& path);

/// Writes the picture, scaled to the size of a splash, as the folder's splash picture; in place of
/// the old one only when it is whole. Throws XWrite.
void SaveSplash(const QString& folder, const QImage& picture);

}  // namespace NSTambraGui
