#pragma once

#ifdef TAMBRA_MULTIMEDIA

#include <QAudioFormat>
#include <QIODevice>
#include <vector>

#include "filetypes/dwop/DWOPDecompressor.h"

namespace NSTambraGui {

/// A packed sample as a device reads it: decoded as it is asked for, damage ends it early.
class CSampleSource : public QIODevice {
 public:
  /// Throws as ReadDWOPHeader.
  explicit CSampleSource(NSBigFilePackage::SharedMedia stream);

  QAudioFormat Format() const;

  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override;

 protected:
  qint64 readData(char* data, qint64 most) override;
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  NSBigFilePackage::SharedMedia fStream;
  NSTambraPacking::CDWOPHeader fHeader;
  std::unique_ptr<NSTambraPacking::COptimizedDWOPDecompressorFromMedia> fDecompressor;
  std::uint32_t fFramesLeft = 0;
  std::vector<std::int32_t> fPiece;
};

}  // namespace NSTambraGui

#endif
