#include "app/PackSummary.h"

#include <map>

namespace NSTambraPacking {

CPackSummary SummarizePacking(const CPackJobState& state) {
  std::map<std::int32_t, CPackSummary::CType> types;
  std::map<ELeftOut, std::vector<std::u16string>> leftOut;
  CPackSummary summary;
  for (const CJobEntry& entry : state.fEntries) {
    if (entry.fLeftOut != ELeftOut::kNo) leftOut[entry.fLeftOut].push_back(entry.fFile.fPath);
    if (!entry.TakesPart()) continue;
    CPackSummary::CType& type = types[entry.fEntry->TypeCode()];
    type.fTypeCode = entry.fEntry->TypeCode();
    for (CPackSummary::CType* const sum : {&type, &summary.fTotal}) {
      ++sum->fFiles;
      sum->fBytesIn += entry.fSize;
      sum->fBytesOut += entry.fPackedSize;
    }
  }
  for (const auto& [code, type] : types) summary.fTypes.push_back(type);
  for (auto& [reason, files] : leftOut) summary.fLeftOut.push_back({reason, std::move(files)});
  return summary;
}

}  // namespace NSTambraPacking
