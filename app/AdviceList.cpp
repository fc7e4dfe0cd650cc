#include "app/AdviceList.h"

#include <algorithm>

namespace NSTambraPacking {

void CAdviceList::Add(EAdvice advice, const std::u16string& file,
                      std::vector<CAdviceValue> values) {
  const ESeverity severity = fRules.SeverityOf(advice, file);
  if (severity == ESeverity::kOff) return;
  fAdvice.push_back({advice, severity, file, std::move(values)});
}

std::vector<CAdvice> CAdviceList::TakeSorted() {
  std::ranges::stable_sort(fAdvice, [](const CAdvice& left, const CAdvice& right) {
    if (left.fSeverity != right.fSeverity) return left.fSeverity > right.fSeverity;
    return left.fAdvice < right.fAdvice;
  });
  return std::move(fAdvice);
}

}  // namespace NSTambraPacking
