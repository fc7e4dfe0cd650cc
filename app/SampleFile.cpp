#include "app/SampleFile.h"

#include "Parts/TolbrookPackage/Core/FileItem.h"

#include "filetypes/dwop/DWOPFileEncoder.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "package/StdioMedia.h"
#include "package/TemporaryFile.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::SharedMedia;
using NSTolbrook::IOutputFile;

CConvertedSample Convert(ESampleWork work, const SharedMedia& source, IOutputFile& file,
                         const std::function<void()>& checkStop) {
  if (work == ESampleWork::kDecode) {
    const CRebuildReport report = RebuildSource(source, file, checkStop);
    return {file.Size(), report.fByteForByte, report.fReason};
  }
  const CKeptReport report = EncodeAudioFile(source, ContainerOf(*source), file, checkStop);
  return {file.Size(), report.fSourceKept, report.fReason};
}

}  // namespace

EAudioContainer ContainerOf(const NSBigFilePackage::IMedia& file) {
  std::array<std::uint8_t, 4> bytes{};
  const bool isRead = file.Read(0, bytes) == bytes.size();
  const bool isIFF = isRead && bytes == std::array<std::uint8_t, 4>{'F', 'O', 'R', 'M'};
  return isIFF ? EAudioContainer::kAIFF : EAudioContainer::kWAVE;
}

CConvertedSample ConvertSample(ESampleWork work, const NSTolbrook::NativePath& input,
                               const NSTolbrook::NativePath& output,
                               IOutputFile::EExisting existing,
                               const std::function<void()>& checkStop) {
  const SharedMedia source = NSBigFilePackage::CStdioMedia::OpenForReading(input);
  const NSTolbrook::NativePath parent = output.has_parent_path() ? output.parent_path() : ".";
  const NSTolbrook::COutputFolder folder(parent);
  const std::vector<std::u16string> name = {NSTolbrook::CFileItem(output).Name()};
  folder.CheckFree(name, existing);
  NSBigFilePackage::CTemporaryFile::RemoveLeftovers(parent);  // of a conversion that was killed
  const auto file = folder.NewFile();
  CConvertedSample converted = Convert(work, source, *file, checkStop);
  file->Flush();
  file->CommitAs(name, existing);
  return converted;
}

}  // namespace NSTambraPacking
