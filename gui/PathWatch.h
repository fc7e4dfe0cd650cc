#pragma once

#include <QFileSystemWatcher>
#include <QThread>
#include <memory>

namespace NSTambraGui {

/// Tells of changes to files and folders. The system is asked on a thread of its own: for each path
/// it asks the drive, which may take its time.
class CPathWatch : public QObject {
  Q_OBJECT

 public:
  CPathWatch();
  ~CPathWatch() override;

  /// Watches these, too. Waits until it does, so it is not for the window's thread.
  void Watch(const QStringList& paths);
  /// Soon watches none but `kept` any more.
  void Unwatch(const QStringList& kept);

 signals:
  void Changed(const QString& path);

 private:
  QStringList Watched() const { return fWatcher->directories() + fWatcher->files(); }

  QThread fThread;
  QObject fPlace;  ///< on that thread
  std::unique_ptr<QFileSystemWatcher> fWatcher;
};

}  // namespace NSTambraGui
