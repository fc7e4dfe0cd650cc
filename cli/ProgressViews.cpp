#include "cli/ProgressViews.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/PackageInformation.h"
#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CPackageInformation;

std::u16string OneLine(std::u16string text) {
  std::replace_if(
      text.begin(), text.end(), [](char16_t unit) { return unit == u'\n' || unit == u'\r'; }, u' ');
  return text;
}

/// Four lines, redrawn in place: stage, item, bar, time.
class CTerminalView : public ICliProgressView {
 public:
  ~CTerminalView() override { Clear(); }

  void SetStageLine(const std::u16string& line) override {
    if (line.empty()) return;  // between two phases the last one stays
    fStage = line;
    Draw();
  }
  void SetItemLine(const std::u16string& line) override {
    fItem = OneLine(line);
    DrawSometimes();
  }
  void SetBar(int position) override {
    fPosition = position;
    DrawSometimes();
  }
  void SetTimeLine(const std::u16string& line) override {
    fTime = line;
    DrawSometimes();
  }
  void SetInformation(const CPackageInformation&) override {}

  void Clear() override {
    if (!fShown) return;
    Write("\x1B[3A\r\x1B[J");
    fShown = false;
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kInterval{50};

  void DrawSometimes() {
    if (Clock::now() - fDrawn >= kInterval) Draw();
  }

  /// All in one write, so that nothing flickers. The cursor rests at the end of the last line.
  void Draw() {
    const auto width = static_cast<std::size_t>(std::max(TerminalWidth() - 1, 1));
    std::string picture = fShown ? "\x1B[3A\r" : "";
    picture += Line(fStage, width) + "\n" + Line(fItem, width) + "\n" + Bar(width) + "\x1B[K\n" +
               Line(fTime, width);
    Write(picture);
    fShown = true;
    fDrawn = Clock::now();
  }

  static std::string Line(const std::u16string& text, std::size_t width) {
    const std::u16string shown = NSTolbrook::TextFromUtf8(Printable(text));
    return NSTolbrook::Utf8FromText(FitWidth(shown, width)) + "\x1B[K";
  }

  std::string Bar(std::size_t width) const {
    const std::string percent = " " + std::to_string(fPosition / 10) + " %";
    if (width < percent.size() + 4) return percent.substr(0, width);
    const std::size_t room = std::min<std::size_t>(width - percent.size() - 2, 60);
    const std::size_t filled = room * static_cast<std::size_t>(fPosition) / 1000;
    return "[" + std::string(filled, '#') + std::string(room - filled, '.') + "]" + percent;
  }

  static void Write(const std::string& text) { WriteText(EStandardStream::kError, text); }

  std::u16string fStage;
  std::u16string fItem;
  std::u16string fTime;
  int fPosition = 0;
  bool fShown = false;
  Clock::time_point fDrawn;
};

/// A line for each stage, once.
class CPlainView : public ICliProgressView {
 public:
  explicit CPlainView(const CConsole& console) : fConsole(console) {}

  void SetStageLine(const std::u16string& line) override {
    if (line.empty() || line == fStage) return;
    fStage = line;
    fConsole.Note(Printable(line));
  }
  void SetItemLine(const std::u16string&) override {}
  void SetBar(int) override {}
  void SetTimeLine(const std::u16string&) override {}
  void SetInformation(const CPackageInformation&) override {}
  void Clear() override {}

 private:
  const CConsole& fConsole;
  std::u16string fStage;
};

/// An event for each stage, each thousandth of the bar, each new time and the package's texts.
class CJsonView : public ICliProgressView {
 public:
  explicit CJsonView(const CConsole& console) : fConsole(console) {}

  void SetStageLine(const std::u16string& line) override {
    if (line.empty()) return;
    fConsole.PrintJson({{"event", "stage"}, {"text", NSTolbrook::Utf8FromText(line)}});
  }
  void SetItemLine(const std::u16string& line) override { fItem = OneLine(line); }
  void SetBar(int position) override {
    if (position == fPosition) return;
    fPosition = position;
    fConsole.PrintJson({{"event", "progress"},
                        {"thousandths", position},
                        {"item", NSTolbrook::Utf8FromText(fItem)}});
  }
  void SetTimeLine(const std::u16string& line) override {
    if (line == fTime) return;
    fTime = line;
    fConsole.PrintJson({{"event", "time"}, {"text", NSTolbrook::Utf8FromText(line)}});
  }
  void SetInformation(const CPackageInformation& information) override {
    fConsole.PrintJson({{"event", "information"},
                        {"name", NSTolbrook::Utf8FromText(information.fName)},
                        {"copyright", NSTolbrook::Utf8FromText(information.fCopyright)},
                        {"url", NSTolbrook::Utf8FromText(information.fURL)},
                        {"comments", NSTolbrook::Utf8FromText(information.fComments)}});
  }
  void Clear() override {}

 private:
  const CConsole& fConsole;
  std::u16string fItem;
  std::u16string fTime;
  int fPosition = -1;
};

class CSilentView : public ICliProgressView {
 public:
  void SetStageLine(const std::u16string&) override {}
  void SetItemLine(const std::u16string&) override {}
  void SetBar(int) override {}
  void SetTimeLine(const std::u16string&) override {}
  void SetInformation(const CPackageInformation&) override {}
  void Clear() override {}
};

}  // namespace

std::unique_ptr<ICliProgressView> MakeProgressView(const CConsole& console) {
  if (console.Json()) return std::make_unique<CJsonView>(console);
  if (console.Quiet()) return std::make_unique<CSilentView>();
  if (console.Redraws()) return std::make_unique<CTerminalView>();
  return std::make_unique<CPlainView>(console);
}

}  // namespace NSTambraCli
