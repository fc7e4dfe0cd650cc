#pragma once

namespace NSTambraPacking {

/// The forms of the sample codec's inner loops. All write and read the same bits.
enum class EDWOPForm {
  /// Plain C++, on every processor.
  kPortable,
  /// x86-64 processors with AVX2, BMI1, BMI2 and LZCNT.
  kAVX2,
};

/// True when this build holds the form and this processor can run it.
bool CanRunDWOPForm(EDWOPForm form);

/// The fastest form that can run here.
EDWOPForm FastestDWOPForm();

}  // namespace NSTambraPacking
