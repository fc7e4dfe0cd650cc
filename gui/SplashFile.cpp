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

constexpr int kQuality = 95;
constexpr int kLargestEdge = 2048;

}  // namespace

QString SplashPath(const QString& folder) {
  for (const QString& name : QDir(folder).entryList(QDir::Files, QDir::Name)) {
    if (NSTambraPacking::IsSplash(FromQt(name))) return folder + "/" + name;
  }
  return folder + "/Splash.jpg";
}

QImage ReadPicture(const QString& path) {
  QImageReader reader(path);
  reader.setDecideFormatFromContent(true);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (qMax(size.width(), size.height()) > kLargestEdge) {
    reader.setScaledSize(size.scaled(kLargestEdge, kLargestEdge, Qt::KeepAspectRatio));
  }
  return reader.read();
}

void SaveSplash(const QString& folder, const QImage& picture) {
  constexpr int kEdge = static_cast<int>(NSTambraPacking::kSplashEdge);
  // All of the picture is seen, and what is transparent in it, or beside it, is white.
  QImage splash(kEdge, kEdge, QImage::Format_RGB32);
  splash.fill(Qt::white);
  const QImage scaled = picture.scaled(kEdge, kEdge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  QPainter(&splash).drawImage((kEdge - scaled.width()) / 2, (kEdge - scaled.height()) / 2, scaled);
  const QString path = SplashPath(folder);
  QSaveFile file(path);
  const bool isOpen = file.open(QIODevice::WriteOnly);
  QImageWriter writer(&file, "jpeg");
  writer.setQuality(kQuality);
  if (!isOpen || !writer.write(splash) || !file.commit()) {
    throw NSMordel::XWrite(
        "the splash picture cannot be written: " + file.errorString().toStdString(),
        {{NSMordel::kTargetObjectType, "file"}, {NSMordel::kTargetObjectId, path.toStdString()}});
  }
}

}  // namespace NSTambraGui
