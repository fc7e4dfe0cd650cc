#include "gui/PackRun.h"

#include <algorithm>
#include <array>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/PackCache.h"
#include "codecs/LQXLibrary.h"
#include "gui/AlertDialog.h"
#include "gui/QtText.h"
#include "gui/WindowTexts.h"
#include "gui/package/PackageListing.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;

/// The alerts that may come for one file after the other.
constexpr std::array kRepeating = {kAlertContinueWithout, kAlertRefersToTambra, kAlertUnsupported,
                                   kAlertRefersToTambras};

/// The alerts that a run closes with.
constexpr std::array kClosing = {kAlertPacked, kAlertPackedWithNotes, kAlertProblems};

bool IsClosing(CAlertNumber number) {
  return std::find(kClosing.begin(), kClosing.end(), number) != kClosing.end();
}

/// Whether the user answers for one or for several Tambras is the same question.
int QuestionOf(CAlertNumber number) {
  return number == kAlertRefersToTambras ? kAlertRefersToTambra.fEntry : number.fEntry;
}

bool Repeats(CAlertNumber number) {
  return std::find(kRepeating.begin(), kRepeating.end(), number) != kRepeating.end();
}

/// The cache that all programs of this system share; null when the user has no place for it.
std::unique_ptr<CPackCache> MakeCache() {
  constexpr std::uint64_t kLimit = 4'000'000'000;
  try {
    return std::make_unique<CPackCache>(NSTolbrook::UserCacheFolder() / "tambra", kLimit);
  } catch (const NSMordel::XNotFound&) {
    return nullptr;
  }
}

}  // namespace

CPackRun::CPackRun(const CTextResources& texts, CPackSettings settings, bool warnForExternal,
                   QWidget& window)
    : fTexts(texts),
      fSettings(std::move(settings)),
      fWindow(window),
      fProgress(texts, fClock, *this,
                {.fShowTime = true, .fWarnForExternalReferences = warnForExternal}),
      fPacker(texts, *this, fClock) {}

CPackRun::~CPackRun() {
  if (fThread.joinable()) fThread.join();
}

void CPackRun::Start() {
  fThread = std::thread([this] {
    Work();
    emit Ended();
  });
}

void CPackRun::Work() {
  try {
    Pack();
  } catch (const NSMordel::XSilentAbort&) {  // the user knows
  } catch (...) {
    emit Closing(false);
    ShowFailure(std::current_exception());
  }
}

/// A text table may have no words for it, and nobody above would take what that throws.
void CPackRun::ShowFailure(const std::exception_ptr& failure) {
  try {
    fPacker.ShowFailure(failure);
  } catch (...) {
    fFault = std::current_exception();
  }
}

void CPackRun::Pack() {
  const auto library = CLQXLibrary::Find({}, NSTolbrook::ProgramFolder());
  const auto cache = MakeCache();
  fSettings.fJobs = std::max(1U, std::thread::hardware_concurrency());
  fSettings.fSlicedLoopLibrary = library.get();
  fSettings.fCache = cache.get();
  fPacker.Run(fSettings, fInformation, fProgress);
}

std::optional<NSTolbrook::NativePath> CPackRun::LogFile() const {
  const CPackJobState* const state = fPacker.State();
  if (state == nullptr || !state->fLogFile) return std::nullopt;
  return state->fLogFile->Path();
}

CPackRun::CLines CPackRun::Lines() const {
  const std::lock_guard lock(fMutex);
  return fLines;
}

void CPackRun::SetStageLine(const std::u16string& line) {
  const std::lock_guard lock(fMutex);
  fLines.fStage = ToQt(line);
}

void CPackRun::SetItemLine(const std::u16string& line) {
  const std::lock_guard lock(fMutex);
  fLines.fItem = ShownText(line);
}

void CPackRun::SetBar(int position) {
  const std::lock_guard lock(fMutex);
  fLines.fBar = position;
}

void CPackRun::SetTimeLine(const std::u16string& line) {
  const std::lock_guard lock(fMutex);
  fLines.fTime = ToQt(line);
}

void CPackRun::SetInformation(const CPackageInformation& information) {
  emit InformationRead(information);
}

int CPackRun::Show(CAlertNumber number, const CAlertText& alert) {
  if (const auto known = fAnswers.find(QuestionOf(number));
      known != fAnswers.end() && Repeats(number)) {
    return known->second;
  }
  if (IsClosing(number)) emit Closing(number != kAlertProblems);
  int answer = 0;
  QMetaObject::invokeMethod(
      &fWindow, [&] { answer = ShowOnWindow(number, alert); }, Qt::BlockingQueuedConnection);
  if (number == kAlertPackedWithNotes || number == kAlertProblems) {
    fWantsLog = answer == kButtonBefore;
  }
  return answer;
}

int CPackRun::ShowOnWindow(CAlertNumber number, const CAlertText& alert) {
  const QString sameForAll = Repeats(number) ? ToQt(fTexts.Text(kTextSameForAll)) : QString();
  CAlertDialog dialog(alert, CarefulButton(number, alert), sameForAll, &fWindow);
  dialog.exec();
  if (dialog.IsForAll()) fAnswers[QuestionOf(number)] = dialog.Answer();
  return dialog.Answer();
}

}  // namespace NSTambraGui
