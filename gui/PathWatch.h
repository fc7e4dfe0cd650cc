#pragma once

#include <QFileSystemWatcher>
#include <QThread>
#include <functional>
#include <memory>

namespace NSTambraGui {

/// Tells of changes to files and folders. The system is asked on a thread of its own: for each path
/// it asks the drive, which may take its time.
class CPathWatch : public QObject {
  Q_OBJECT

 public:
  CPathWatch();
  ~CPathWatch() override;

  /// Soon watches these, too, if they are still wanted by then.
  void Watch(const QStringList& paths, std::function<bool()> isWanted);
  /// As Watch, but nothing else any more, and each anew: another folder may stand where the system
  /// watches one that was moved away.
  void WatchOnly(const QStringList& paths, std::function<bool()> isWanted);
  /// Soon watches nothing any more.
  void Unwatch();

 signals:
  void Changed(const QString& path);
  /// Paths are watched that were not before: what changed up to now has not been told.
  void Begun();

 private:
  void Forget();
  void Add(QStringList paths);
  QStringList Watched() const { return fWatcher->directories() + fWatcher->files(); }

  QThread fThread;
  QObject fPlace;  ///< on that thread
  std::unique_ptr<QFileSystemWatcher> fWatcher;
};

}  // namespace NSTambraGui
