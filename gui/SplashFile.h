#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

namespace NSTambraGui {

/// A picture that may become a splash.
struct CSplashPicture {
  QImage fImage;     ///< without pixels when there is none or it cannot be read
  QByteArray fFile;  ///< the file as it stands where that is a splash already, else empty
  QSize fSize;       ///< in the file; fImage may be smaller

  bool HasSplashSize() const;
};

/// The path of the folder's splash picture, whatever the case of its name; "Splash.jpg" when there
/// is none.
QString SplashPath(const QString& folder);

/// One that is far larger than a splash is read at a smaller size. May take its time.
CSplashPicture ReadPicture(const QString& path);

/// Writes the picture as the folder's splash picture, scaled where it has another size; in place of
/// the old one only when it is whole. Returns it. Throws XWrite.
CSplashPicture SaveSplash(const QString& folder, const CSplashPicture& picture);

}  // namespace NSTambraGui
