#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "app/PackageContents.h"
#include "app/TextResources.h"
#include "gui/package/BackgroundTask.h"
#include "gui/package/ResultPane.h"

/// What the user has done with a package. Each function works on the calling thread, which is not
/// the window's, until it is done or the link says to stop, and returns what was found in a few
/// words.
namespace NSTambraGui {

/// How a job tells of itself; called on the job's thread, not too often.
struct CJobView {
  /// `thousandths` of the work are done; -1 when that is not known.
  std::function<void(int thousandths, const QString& item)> fProgress;
  std::function<void(const std::vector<CResultLine>& lines)> fLines;
};

struct CJobContext {
  const NSTambraPacking::CTextResources& fTexts;
  const NSTambraPacking::CPackageContents& fPackage;
  const CTaskLink& fLink;
  const CJobView& fView;
};

/// Throws as CheckPackage.
QString VerifyPackage(const CJobContext& context);

/// How the package in the file `other` differs from this one. Throws as ComparePackages.
QString ComparePackageWith(const CJobContext& context, const NSTolbrook::NativePath& other);

/// Throws as CPackageExtractor.
QString ExtractEntries(const CJobContext& context, NSTambraPacking::CPackageEntries entries,
                       const NSTolbrook::NativePath& folder,
                       NSTambraPacking::CPackageExtractor::EExisting existing);

}  // namespace NSTambraGui
