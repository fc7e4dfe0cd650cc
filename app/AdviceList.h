#pragma once

#include "app/AdviceRules.h"

namespace NSTambraPacking {

/// Gathers advice as far as the rules want it.
class CAdviceList {
 public:
  /// Must outlive the list.
  explicit CAdviceList(const CAdviceRules& rules) : fRules(rules) {}

  void Add(EAdvice advice, const std::u16string& file, std::vector<CAdviceValue> values = {});

  /// By severity, the worst first, then by kind; of one kind in the order of adding.
  std::vector<CAdvice> TakeSorted();

 private:
  const CAdviceRules& fRules;
  std::vector<CAdvice> fAdvice;
};

}  // namespace NSTambraPacking
