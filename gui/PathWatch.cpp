#include "gui/PathWatch.h"

#include <QSet>

namespace NSTambraGui {

CPathWatch::CPathWatch() {
  fPlace.moveToThread(&fThread);
  fThread.start();
  const auto begin = [this] {
    fWatcher = std::make_unique<QFileSystemWatcher>();
    connect(fWatcher.get(), &QFileSystemWatcher::directoryChanged, this, &CPathWatch::Changed);
    connect(fWatcher.get(), &QFileSystemWatcher::fileChanged, this, &CPathWatch::Changed);
  };
  QMetaObject::invokeMethod(&fPlace, begin, Qt::BlockingQueuedConnection);
}

CPathWatch::~CPathWatch() {
  QMetaObject::invokeMethod(
      &fPlace, [this] { fWatcher.reset(); }, Qt::QueuedConnection);
  QMetaObject::invokeMethod(
      &fPlace, [this] { fThread.quit(); }, Qt::QueuedConnection);
  fThread.wait();
}

void CPathWatch::Watch(const QStringList& paths, std::function<bool()> isWanted) {
  const auto watch = [this, fresh = paths, isWanted = std::move(isWanted)]() mutable {
    if (!isWanted()) return;
    const QStringList known = Watched();
    const QSet<QString> watched(known.begin(), known.end());
    fresh.removeIf([&watched](const QString& path) { return watched.contains(path); });
    if (fresh.isEmpty()) return;
    if (fWatcher->addPaths(fresh).size() < fresh.size()) emit Begun();
  };
  QMetaObject::invokeMethod(&fPlace, watch, Qt::QueuedConnection);
}

void CPathWatch::Unwatch(const QStringList& kept) {
  const auto unwatch = [this, kept] {
    QStringList watched = Watched();
    watched.removeIf([&kept](const QString& path) { return kept.contains(path); });
    if (!watched.isEmpty()) fWatcher->removePaths(watched);
  };
  QMetaObject::invokeMethod(&fPlace, unwatch, Qt::QueuedConnection);
}

}  // namespace NSTambraGui
