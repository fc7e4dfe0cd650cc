#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>

#include "gui/AlertDialog.h"
#include "gui/MainWindow.h"
#include "gui/WindowTexts.h"
#include "tests/gui/WindowUnderTest.h"

namespace NSTest {

/// A main window whose dialogs are answered by the test: alerts by the label of a button, in order.
class CMainWindowUnderTest : public CWindowUnderTest {
 public:
  explicit CMainWindowUnderTest(const std::vector<std::filesystem::path>& texts = {})
      : CWindowUnderTest(texts),
        fWindow(fTexts, {[this](QWidget*, const QString&, const QString&) { return fFolder; },
                         [this](QWidget*, const QString&, const QString&) { return fFile; },
                         [this](const QUrl& address) {
                           fOpened.append(address);
                           return fCanOpen;
                         },
                         [this](QWidget&, const QString& message) { fEnds.append(message); }}) {
    QObject::connect(&fTimer, &QTimer::timeout, &fWindow, [this] { AnswerAlert(); });
    fTimer.start(5);
    fWindow.show();
  }

  /// Chooses both folders by their commands and waits for the look.
  void Choose(const std::filesystem::path& input, const std::filesystem::path& output) {
    fFolder = NSTambraGui::PathToQt(output);
    fWindow.Command(NSTambraGui::kCommandOutputFolder)->trigger();
    fFolder = NSTambraGui::PathToQt(input);
    fWindow.Command(NSTambraGui::kCommandInputFolder)->trigger();
    WaitForLook();
  }
  void WaitForLook() {
    QVERIFY(QTest::qWaitFor([this] { return !fWindow.IsLooking(); }, kPatience));
  }
  /// Runs a pack with these answers to its alerts; returns the messages of the alerts.
  QStringList Pack(const QStringList& answers) {
    fAnswers = answers;
    fMessages.clear();
    fWindow.Command(NSTambraGui::kCommandCreate)->trigger();
    const bool ended = QTest::qWaitFor([this] { return !fWindow.IsPacking(); }, kPatience);
    return ended ? fMessages : QStringList("the run does not end");
  }
  QString State() { return fWindow.StateText(); }
  /// Types the path of a folder and Enter.
  NSTambraGui::CFolderChooser& Type(qsizetype chooser, const std::filesystem::path& path) {
    auto& chosen = *fWindow.findChildren<NSTambraGui::CFolderChooser*>()[chooser];
    auto* const line = chosen.findChild<QLineEdit*>();
    line->selectAll();
    QTest::keyClicks(line, NSTambraGui::PathToQt(path));
    QTest::keyClick(line, Qt::Key_Enter);
    return chosen;
  }
  bool Shows(const QString& text) {
    return std::ranges::any_of(fWindow.findChildren<QLabel*>(), [&](const QLabel* label) {
      return label->isVisible() && label->text() == text;
    });
  }
  QStringList Findings() {
    const QAbstractItemModel& model = *Find<QTreeView>(NSTambraGui::kTextFindings).model();
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
      rows += model.index(row, 0).data().toString() + "|" + model.index(row, 1).data().toString() +
              "|" + model.index(row, 2).data().toString();
    }
    return rows;
  }
  QString fFolder;
  QString fFile;
  QStringList fAnswers;
  QStringList fMessages;
  QString fUnanswered;  ///< the message of an alert that is left open
  QList<QUrl> fOpened;
  bool fCanOpen = true;
  QStringList fEnds;
  NSTambraGui::CMainWindow fWindow;

 private:
  QWidget& Window() override { return fWindow; }
  void AnswerAlert() {
    auto* const alert = qobject_cast<NSTambraGui::CAlertDialog*>(QApplication::activeModalWidget());
    if (alert == nullptr || alert->accessibleDescription() == fUnanswered) return;
    fMessages += alert->accessibleDescription();
    if (!FindNameless(*alert).isEmpty()) fMessages += "nameless: " + FindNameless(*alert);
    const QString answer = fAnswers.isEmpty() ? "Escape" : fAnswers.takeFirst();
    if (answer == "Escape") return QTest::keyClick(alert, Qt::Key_Escape);
    for (QCheckBox* const box : alert->findChildren<QCheckBox*>()) {
      if (answer.endsWith("!")) box->setChecked(true);
    }
    for (QPushButton* const button : alert->findChildren<QPushButton*>()) {
      if (button->text().remove('&') == QString(answer).remove('!')) return button->click();
    }
    alert->reject();
    fMessages += "no button " + answer;
  }

  QTimer fTimer;
};

}  // namespace NSTest
