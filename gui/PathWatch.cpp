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
  const auto watch = [this, paths, isWanted = std::move(isWanted)] {
    if (isWanted()) Add(paths);
  };
  QMetaObject::invokeMethod(&fPlace, watch, Qt::QueuedConnection);
}

void CPathWatch::WatchOnly(const QStringList& paths, std::function<bool()> isWanted) {
  const auto watch = [this, paths, isWanted = std::move(isWanted)] {
    if (!isWanted()) return;
    Forget();
    Add(paths);
  };
  QMetaObject::invokeMethod(&fPlace, watch, Qt::QueuedConnection);
}

void CPathWatch::Unwatch() {
  QMetaObject::invokeMethod(
      &fPlace, [this] { Forget(); }, Qt::QueuedConnection);
}

void CPathWatch::Forget() {
  if (const QStringList watched = Watched(); !watched.isEmpty()) fWatcher->removePaths(watched);
}

void CPathWatch::Add(QStringList paths) {
  const QStringList known = Watched();
  const QSet<QString> watched(known.begin(), known.end());
  paths.removeIf([&watched](const QString& path) { return watched.contains(path); });
  if (paths.isEmpty()) return;
  if (fWatcher->addPaths(paths).size() < paths.size()) emit Begun();
}

}  // namespace NSTambraGui
