#include "filetypes/dwop/DWOPForm.h"

namespace NSTambraPacking {

namespace {

bool ProcessorHasAVX2() {
#ifdef TAMBRA_AVX2
  // LZCNT came to every line of processors before AVX2 and BMI2 did.
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
         __builtin_cpu_supports("bmi2");
#else
  return false;
#endif
}

}  // namespace

bool CanRunDWOPForm(EDWOPForm form) {
  static const bool hasAVX2 = ProcessorHasAVX2();
  return form == EDWOPForm::kPortable || hasAVX2;
}

EDWOPForm FastestDWOPForm() {
  return CanRunDWOPForm(EDWOPForm::kAVX2) ? EDWOPForm::kAVX2 : EDWOPForm::kPortable;
}

}  // namespace NSTambraPacking
