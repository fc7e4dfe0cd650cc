#include "package/StdioMedia.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSBigFilePackage {

using NSTolbrook::CFile;
using NSTolbrook::NativePath;

namespace {

constexpr std::uint64_t kFlushInterval = 8 << 20;

}  // namespace

CStdioMedia::CStdioMedia(CFile file, EAccess access) : fFile(std::move(file)), fAccess(access) {}

std::shared_ptr<CStdioMedia> CStdioMedia::OpenForReading(const NativePath& path) {
  return std::make_shared<CStdioMedia>(CFile::OpenForReading(path), EAccess::kReadOnly);
}

std::shared_ptr<CStdioMedia> CStdioMedia::OpenForUpdate(const NativePath& path) {
  return std::make_shared<CStdioMedia>(CFile::OpenForUpdate(path), EAccess::kReadWrite);
}

std::shared_ptr<CStdioMedia> CStdioMedia::CreateNew(const NativePath& path) {
  return std::make_shared<CStdioMedia>(CFile::Create(path, CFile::ECreate::kNew),
                                       EAccess::kReadWrite);
}

std::shared_ptr<CStdioMedia> CStdioMedia::CreateReplacing(const NativePath& path) {
  return std::make_shared<CStdioMedia>(CFile::Create(path, CFile::ECreate::kReplace),
                                       EAccess::kReadWrite);
}

std::uint64_t CStdioMedia::Size() const { return fFile.Size(); }

std::size_t CStdioMedia::Read(std::uint64_t position, std::span<std::uint8_t> destination) const {
  return fFile.Read(position, destination);
}

void CStdioMedia::Write(std::uint64_t position, std::span<const std::uint8_t> source) {
  CheckWritable();
  fFile.Write(position, source);
  if (fFlush != EFlush::kAsWritten) return;
  fWaitingBytes += source.size();
  if (fWaitingBytes < kFlushInterval) return;
  fFile.BeginFlush();
  fWaitingBytes = 0;
}

void CStdioMedia::SetSize(std::uint64_t size) {
  CheckWritable();
  fFile.SetSize(size);
}

void CStdioMedia::Flush() {
  if (fAccess == EAccess::kReadWrite && fFlush != EFlush::kNever) fFile.Flush();
}

void CStdioMedia::Close() { fFile.Close(); }

void CStdioMedia::CheckWritable() const {
  if (fAccess == EAccess::kReadWrite) return;
  throw NSMordel::XReadOnly("a file that was opened for reading cannot be written",
                            {{NSMordel::kTargetObjectType, "file"},
                             {NSMordel::kTargetObjectId, NSTolbrook::DisplayText(fFile.Path())}});
}

}  // namespace NSBigFilePackage
