#include "gui/SplashFile.h"

#include <QDir>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/SpecialNames.h"
#include "gui/QtText.h"
#include "package/SplashCheck.h"

namespace NSTambraGui {

namespace {

constexpr int kEdge = static_cast<int>(NSTambraPacking::kSplashEdge);
constexpr int kQuality = 95;
constexpr int kLargestEdge = 2048;
constexpr qint64 kLargestFile = 1'000'000;  // of a splash that is taken as it stands

/// All of the picture is seen, and what is transparent in it, or beside it, is white.
QImage ScaledToSplash(const QImage& picture) {
  QImage splash(kEdge, kEdge, QImage::Format_RGB32);
  splash.fill(Qt::white);
  const QImage scaled = picture.scaled(kEdge, kEdge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  QPainter(&splash).drawImage((kEdge - scaled.width()) / 2, (kEdge - scaled.height()) / 2, scaled);
  return splash;
}

bool Write(QIODevice& file, const CSplashPicture& splash) {
  if (!splash.fFile.isEmpty()) return file.write(splash.fFile) == splash.fFile.size();
  QImageWriter writer(&file, "jpeg");
  writer.setQuality(kQuality);
  return writer.write(splash.fImage);
}

}  // namespace

bool CSplashPicture::HasSplashSize() const { return fImage.size() == QSize(kEdge, kEdge); }

QString SplashPath(const QString& folder) {
  for (const QString& name : QDir(folder).entryList(QDir::Files, QDir::Name)) {
    if (NSTambraPacking::IsSplash(FromQt(name))) return folder + "/" + name;
  }
  return folder + "/Splash.jpg";
}

CSplashPicture ReadPicture(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  QImageReader reader(&file);
  reader.setDecideFormatFromContent(true);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (qMax(size.width(), size.height()) > kLargestEdge) {
    reader.setScaledSize(size.scaled(kLargestEdge, kLargestEdge, Qt::KeepAspectRatio));
  }
  const bool isJpeg =
      reader.format() == "jpeg" && reader.transformation() == QImageIOHandler::TransformationNone;
  const bool isTurned = reader.transformation() & QImageIOHandler::TransformationRotate90;
  CSplashPicture picture{reader.read(), {}, isTurned ? size.transposed() : size};
  if (!size.isValid()) picture.fSize = picture.fImage.size();
  if (isJpeg && picture.HasSplashSize() && file.size() <= kLargestFile && file.seek(0)) {
    picture.fFile = file.readAll();
  }
  return picture;
}

CSplashPicture SaveSplash(const QString& folder, const CSplashPicture& picture) {
  const QString path = SplashPath(folder);
  CSplashPicture splash = picture;
  if (splash.fFile.isEmpty()) splash.fImage = ScaledToSplash(picture.fImage);
  splash.fSize = splash.fImage.size();
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || !Write(file, splash) || !file.commit()) {
    throw NSMordel::XWrite(
        "the splash picture cannot be written: " + file.errorString().toStdString(),
        {{NSMordel::kTargetObjectType, "file"}, {NSMordel::kTargetObjectId, path.toStdString()}});
  }
  return splash;
}

}  // namespace NSTambraGui
