#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/TambraPacker.h"
#include "package/PackageReader.h"
#include "package/StdioMedia.h"
#include "tests/support/Library.h"
#include "tests/support/ManualClock.h"
#include "tests/support/ScriptedAlerts.h"

namespace NSTest {

/// Writes down every report of a run; can ask to stop, or let the test act, at any of them.
class CWatchedProgress : public NSTambraPacking::CTambraPackProgress {
 public:
  using CTambraPackProgress::CTambraPackProgress;

  void BeginPhase(const NSTambraPacking::CTambraPacker& job, int phase,
                  std::uint64_t count) override {
    Note("begin " + std::to_string(phase) + " of " + std::to_string(count));
    CTambraPackProgress::BeginPhase(job, phase, count);
    if (fOnPhase) fOnPhase(phase);
  }
  void Item(const NSTambraPacking::CTambraPacker& job, int phase, std::uint64_t index,
            const NSTambraPacking::CPackageEntry& entry, const std::u16string& name) override {
    Note(std::to_string(index) + " " + NSTolbrook::Utf8FromText(name));
    CTambraPackProgress::Item(job, phase, index, entry, name);
  }
  void EndPhase(NSTambraPacking::CTambraPacker& job, int phase) override {
    Note("end " + std::to_string(phase));
    CTambraPackProgress::EndPhase(job, phase);
  }
  bool StopRequested() const override {
    if (fOnStopCheck) fOnStopCheck();
    return CTambraPackProgress::StopRequested();
  }

  /// The report at which the user wants to stop, from 0.
  std::size_t fStopAt = std::numeric_limits<std::size_t>::max();
  std::function<void(int phase)> fOnPhase;
  std::function<void()> fOnStopCheck;
  std::vector<std::string> fReports;

 private:
  void Note(std::string report) {
    if (fReports.size() == fStopAt) RequestStop();
    fReports.push_back(std::move(report));
  }
};

/// One run of the pack job on a library, or on any folder, and what came of it.
class CPackRun {
 public:
  CPackRun(std::filesystem::path input, std::filesystem::path output,
           CScriptedAlerts::CAnswers answers = {}, bool warnForExternal = true)
      : fAlerts(std::move(answers)),
        fProgress(fTexts, fClock, fView, {true, warnForExternal}),
        fPacker(fTexts, fAlerts, fClock) {
    fSettings.fInputFolder = NSTolbrook::CFileItem(std::move(input));
    fSettings.fOutputFolder = NSTolbrook::CFileItem(std::move(output));
  }
  explicit CPackRun(const CLibrary& library, CScriptedAlerts::CAnswers answers = {},
                    bool warnForExternal = true)
      : CPackRun(library.Input(), library.Output(), std::move(answers), warnForExternal) {}

  /// Packs and tells how that ended: "packed", "notes", "problems", "silent" (with the message
  /// behind it), or "failed" after the failure was shown as an alert.
  std::string Pack() {
    return Ending([this] {
      static constexpr const char* kEndings[] = {"packed", "notes", "problems"};
      const auto ending = fPacker.Run(fSettings, fInformation, fProgress);
      return std::string(kEndings[static_cast<int>(ending)]);
    });
  }
  /// The same for Check: "passed", "aborted", "silent" or "failed".
  std::string Check() {
    return Ending([this] {
      fPacker.Check(fSettings, fInformation, fProgress);
      return std::string("passed");
    });
  }

  /// The names of all that lies in the output folder.
  std::set<std::string> OutputFiles() const {
    std::set<std::string> names;
    if (!std::filesystem::exists(Output())) return names;
    for (const auto& item : std::filesystem::directory_iterator(Output())) {
      names.insert(Utf8Of(item.path().filename()));
    }
    return names;
  }

  /// The lines of the log, none when there is no log.
  std::vector<std::string> Log() const {
    std::vector<std::string> lines;
    if (!fPacker.State()->fLogFile) return lines;
    const std::string text = Bytes(fPacker.State()->fLogFile->Path());
    for (std::size_t begin = 0; begin < text.size();) {
      const std::size_t end = text.find("\r\n", begin);
      lines.push_back(text.substr(begin, end - begin));
      begin = end == text.npos ? text.size() : end + 2;
    }
    return lines;
  }

  /// The bytes of the package's entries by their paths.
  std::map<std::string, std::vector<std::uint8_t>> Packed() const {
    std::map<std::string, std::vector<std::uint8_t>> packed;
    const NSTambraPacking::CPackageReader reader(
        NSBigFilePackage::CStdioMedia::OpenForReading(fPacker.State()->fOutputFile.Path()));
    for (const auto& entry : reader.ReadEntries()) {
      auto& bytes = packed[NSTolbrook::Utf8FromText(entry->Path())];
      bytes.resize(entry->Data()->Size());
      NSBigFilePackage::ReadExactly(*entry->Data(), 0, bytes);
    }
    return packed;
  }
  std::string PackageBytes() const { return Bytes(fPacker.State()->fOutputFile.Path()); }

  const std::filesystem::path& Output() const { return fSettings.fOutputFolder.Path(); }

  static std::string Bytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  NSTambraPacking::CTextResources fTexts;
  CManualClock fClock;
  CScriptedAlerts fAlerts;
  NSTambraPacking::CPackSettings fSettings;
  NSTambraPacking::CPackageInformation fInformation;

 private:
  class CNoView : public NSTambraPacking::IProgressView {
    void SetStageLine(const std::u16string&) override {}
    void SetItemLine(const std::u16string&) override {}
    void SetBar(int) override {}
    void SetTimeLine(const std::u16string&) override {}
    void SetInformation(const NSTambraPacking::CPackageInformation&) override {}
  };

  std::string Ending(const std::function<std::string()>& work) {
    try {
      return work();
    } catch (const NSMordel::XSilentAbort& failure) {
      const std::string message = failure.Message();
      return message.empty() ? "silent" : "silent: " + message;
    } catch (const NSMordel::XAbort& failure) {
      return std::string("aborted: ") + failure.Message();
    } catch (...) {
      fPacker.ShowFailure(std::current_exception());
      return "failed";
    }
  }

  CNoView fView;

 public:
  CWatchedProgress fProgress;
  NSTambraPacking::CTambraPacker fPacker;
};

/// Each alert of `shown` ("number message") is the one of `expected` ("number part of message").
inline testing::AssertionResult AlertsAre(const std::vector<std::string>& shown,
                                          const std::vector<std::string>& expected) {
  bool equal = shown.size() == expected.size();
  for (std::size_t i = 0; equal && i < shown.size(); ++i) {
    const std::size_t blank = expected[i].find(' ');
    const std::string part = blank == std::string::npos ? "" : expected[i].substr(blank + 1);
    equal = shown[i].starts_with(expected[i].substr(0, blank) + " ") &&
            shown[i].find(part) != std::string::npos;
  }
  if (equal) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "shown: " << testing::PrintToString(shown)
                                     << "\nexpected: " << testing::PrintToString(expected);
}

}  // namespace NSTest
