#pragma once

#include "app/PackJobState.h"

namespace NSTambraPacking {

/// What became of the files of a run, in figures.
struct CPackSummary {
  struct CType {
    std::int32_t fTypeCode = 0;
    std::uint64_t fFiles = 0;
    std::uint64_t fBytesIn = 0;
    std::uint64_t fBytesOut = 0;
  };
  struct CLeftOut {
    ELeftOut fReason = ELeftOut::kNo;
    std::vector<std::u16string> fFiles;
  };

  /// Of the packed files, by type code.
  std::vector<CType> fTypes;
  /// All types together; the code is 0.
  CType fTotal;
  /// By reason, in the order of ELeftOut.
  std::vector<CLeftOut> fLeftOut;
};

CPackSummary SummarizePacking(const CPackJobState& state);

}  // namespace NSTambraPacking
