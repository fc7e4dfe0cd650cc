#include "references/IFFFile.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTolbrook {

using NSBigFilePackage::SharedMedia;
using NSMordel::XIllegalCallSequence;

namespace {

template <class Level>
void CheckInnermost(const std::vector<Level>& levels, CIFFFileLevel level) {
  if (levels.size() > 1 && levels.back().fLevel.fNumber == level.fNumber) return;
  throw XIllegalCallSequence("a chunk level is closed that is not the innermost");
}

}  // namespace

CIFFFileReader::CIFFFileReader(SharedMedia media) {
  fLevels.push_back({{}, CIFFReader2(std::move(media)), std::nullopt});
}

std::optional<CChunkInfo> CIFFFileReader::FirstChunk() {
  CLevel& level = fLevels.back();
  return level.fCurrent = level.fReader.FirstChunk();
}

std::optional<CChunkInfo> CIFFFileReader::NextChunk() {
  CLevel& level = fLevels.back();
  return level.fCurrent = level.fReader.NextChunk(Current());
}

std::optional<CChunkInfo> CIFFFileReader::FindGroup(EChunkKind kind, FourCharCode type) {
  CLevel& level = fLevels.back();
  return level.fCurrent = level.fReader.FindGroup(kind, type);
}

CIFFFileLevel CIFFFileReader::OpenLevel() {
  CIFFReader2 contents = fLevels.back().fReader.EnterGroup(Current());
  const CIFFFileLevel level{++fLastNumber};
  fLevels.push_back({level, std::move(contents), std::nullopt});
  return level;
}

void CIFFFileReader::CloseLevel(CIFFFileLevel level) {
  CheckInnermost(fLevels, level);
  fLevels.pop_back();
}

SharedMedia CIFFFileReader::OpenData() const { return fLevels.back().fReader.OpenData(Current()); }

const CChunkInfo& CIFFFileReader::Current() const {
  const std::optional<CChunkInfo>& current = fLevels.back().fCurrent;
  if (!current) throw XIllegalCallSequence("the chunk level has no current chunk");
  return *current;
}

CIFFFileWriter::CIFFFileWriter(SharedMedia media, std::uint64_t position)
    : fMedia(std::move(media)) {
  fLevels.push_back({{}, position, CIFFWriter2(fMedia, position)});
}

CIFFFileLevel CIFFFileWriter::OpenLevel(EChunkKind kind, FourCharCode type) {
  CIFFWriter2& outer = fLevels.back().fWriter;
  outer.OpenGroup(kind, type);
  const std::uint64_t start = outer.Position();
  const CIFFFileLevel level{++fLastNumber};
  fLevels.push_back({level, start, CIFFWriter2(fMedia, start)});
  return level;
}

void CIFFFileWriter::CloseLevel(CIFFFileLevel level) {
  CheckInnermost(fLevels, level);
  const CLevel& innermost = fLevels.back();
  if (innermost.fWriter.IsOpen()) {
    throw XIllegalCallSequence("a chunk level is closed while a chunk in it is open");
  }
  const std::uint64_t length = innermost.fWriter.Position() - innermost.fDataStart;
  fLevels.pop_back();
  fLevels.back().fWriter.CloseChunk(length);
}

SharedMedia CIFFFileWriter::OpenChunk(FourCharCode id) {
  return fLevels.back().fWriter.OpenChunk(id);
}

void CIFFFileWriter::CloseChunk(std::uint64_t dataLength) {
  fLevels.back().fWriter.CloseChunk(dataLength);
}

void CIFFFileWriter::WriteChunk(FourCharCode id, std::span<const std::uint8_t> data) {
  const SharedMedia window = OpenChunk(id);
  if (!data.empty()) window->Write(0, data);
  CloseChunk(data.size());
}

}  // namespace NSTolbrook
