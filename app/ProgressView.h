#pragma once

#include <string>

namespace NSTambraPacking {

struct CPackageInformation;

/// Shows what CTambraPackProgress makes of a run's reports. A line may hold "\n" and may be empty.
/// All calls come from the thread that runs the job.
class IProgressView {
 public:
  virtual ~IProgressView() = default;
  virtual void SetStageLine(const std::u16string& line) = 0;
  virtual void SetItemLine(const std::u16string& line) = 0;
  /// In thousandths, 0 to 1000.
  virtual void SetBar(int position) = 0;
  virtual void SetTimeLine(const std::u16string& line) = 0;
  /// Name, copyright, URL and comments are there; the rest may still be missing.
  virtual void SetInformation(const CPackageInformation& information) = 0;
};

}  // namespace NSTambraPacking
