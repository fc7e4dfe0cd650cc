#pragma once

#include "Parts/TolbrookPackage/Core/FileSystem.h"
#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSBigFilePackage {

/// A file as a media. Failures are those of NSTolbrook::CFile.
class CStdioMedia : public IMedia {
 public:
  enum class EAccess { kReadOnly, kReadWrite };

  /// Takes an open file over. With kReadOnly every write throws XReadOnly, whatever the file
  /// allows.
  CStdioMedia(NSTolbrook::CFile file, EAccess access);

  static std::shared_ptr<CStdioMedia> OpenForReading(const NSTolbrook::NativePath& path);
  static std::shared_ptr<CStdioMedia> OpenForUpdate(const NSTolbrook::NativePath& path);
  /// Throws XAlreadyExists when the name is taken.
  static std::shared_ptr<CStdioMedia> CreateNew(const NSTolbrook::NativePath& path);
  /// Empties a file that is there.
  static std::shared_ptr<CStdioMedia> CreateReplacing(const NSTolbrook::NativePath& path);

  std::uint64_t Size() const override;
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  void SetSize(std::uint64_t size) override;
  void Flush() override;

  enum class EFlush {
    kOnDemand,
    /// The system is told every few megabytes to begin with the flush, so that little is left for
    /// Flush, which cannot be interrupted.
    kAsWritten,
    /// Flush does nothing: for a file that nobody reads after a crash, and which may then never
    /// have to reach the disk at all.
    kNever
  };
  /// What holds from now on; kOnDemand before that.
  void SetFlush(EFlush flush) { fFlush = flush; }

  NSTolbrook::CFile& File() { return fFile; }

  /// Closes the file now, so that a failure is seen (XClose). Nothing else may be called after it;
  /// the destructor's own close is silent.
  void Close();

 private:
  void CheckWritable() const;

  NSTolbrook::CFile fFile;
  EAccess fAccess;
  EFlush fFlush = EFlush::kOnDemand;
  std::uint64_t fWaitingBytes = 0;  ///< written since the last beginning of a flush
};

}  // namespace NSBigFilePackage
