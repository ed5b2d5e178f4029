#include "desktop/datafile/update_data_file_form.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScreen>
#include <algorithm>

#include "core/datafile/file_kind.h"
#include "core/datafile/lifecycle.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kFrame = 60;  // of the window and of the screen's own bars

}  // namespace

/// What goes on, in the lines of the window.
class UpdateDataFileForm::Shown final : public vellumark::Progress {
 public:
  explicit Shown(UpdateDataFileForm& form) : form_(form) { painted_.start(); }
  void Begin(std::string_view text) override {
    const QStringList lines = Q(text).split('\n');
    form_.status_->setText(lines.value(0));
    form_.component_->setText(lines.value(1).trimmed());
    form_.statement_->clear();
    Paint();
  }
  void Percent(double percent) override {
    form_.bar_->setValue(static_cast<int>(percent * 10));
    form_.statement_->setText(UpdateDataFileForm::tr("%1 % of this step").arg(static_cast<int>(percent)));
    if (painted_.elapsed() >= kPaintEvery) Paint();
  }

 private:
  static constexpr int kPaintEvery = 40;  // ms
  void Paint() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    painted_.restart();
  }
  UpdateDataFileForm& form_;
  QElapsedTimer painted_;
};

UpdateDataFileForm::UpdateDataFileForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "UpdateDataFileForm", tr("Update Data File")),
      tables_(std::make_shared<RecordRows<UpgradeTable>>(UpgradeTableColumns())),
      lines_(std::make_shared<RecordRows<StepLineOf>>(StepColumns())) {
  Form form(*this);
  form.Heading(tr("Update Data File"));
  heading_ = Paragraph(form, {}, "lblHeading");
  file_ = Paragraph(form, {}, "lblFile");
  version_ = Paragraph(form, {}, "lblFileVersion");
  place_ = QuietParagraph(form, {}, "lblPlace");
  form.Space();
  status_ = Paragraph(form, {}, "lblStatus");
  component_ = Paragraph(form, {}, "lblComponent");
  statement_ = QuietParagraph(form, {}, "lblUpdateStatement");
  bar_ = new QProgressBar;
  bar_->setObjectName("pbProgress");
  bar_->setAccessibleName(tr("Progress of the update"));
  bar_->setRange(0, 1000);
  bar_->setTextVisible(false);
  form.Wide(bar_);
  TabSet tabs = form.Tabs("TabReport");
  tabs_ = tabs.Widget();
  Form rows = tabs.Page(tr("&Sums and Rows"), "TabTables");
  sums_ = Paragraph(rows, {}, "lblSums");
  fgTables_ = rows.Table("fgTables");
  fgTables_->SetColumns(tables_->Columns());
  rows.Wide(fgTables_, 1);
  Form lines = tabs.Page(tr("&What was done"), "TabLines");
  fgReport_ = lines.Table("fgReport");
  fgReport_->SetColumns(lines_->Columns());
  fgReport_->ShowFilter(tr("Filter"));
  lines.Wide(fgReport_, 1);
  form.Buttons({ok_ = form.Button("cmdOK", tr("&OK")), print_ = form.Button("cmdPrint", tr("&Print Report ...")),
                cancel_ = form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(560);
  Enter(State::Ready);
}

void UpdateDataFileForm::Enter(State state) {
  state_ = state;
  const bool done = state == State::Done;
  ok_->setEnabled(state != State::Running);
  cancel_->setVisible(!done);
  cancel_->setEnabled(state == State::Ready);
  print_->setVisible(done);
  print_->setEnabled(done && CanPrint(windows));
  tabs_->setVisible(done);
  bar_->setVisible(state == State::Running);
  component_->setVisible(state == State::Running);
  statement_->setVisible(state == State::Running);
  file_->setVisible(!done);
  status_->setVisible(state != State::Ready);
}

void UpdateDataFileForm::OnOpen(const Arguments& arguments) {
  path_ = arguments.Text("Path");
  const bool jet = LookAtDataFile(path_).jet;
  file_->setText(Q(path_.string()));
  heading_->setText(jet ? tr("This data file was made by an earlier program") : tr("This data file is of an older version"));
  version_->setText(tr("Its file version is %1; this program works with version %2.").arg(arguments.Number("FileVersion")).arg(kFileVersion));
  place_->setText(jet ? tr("OK brings what it holds into a new file, %1. The file itself stays as it is.").arg(Q(UpdatedFile(path_).filename().string()))
                      : tr("OK brings it up to date. A copy of the file as it is stays beside it as %1.").arg(Q(SafetyCopyPath(path_).filename().string())));
  FitHeight(*this);
  ok_->setFocus();
}

void UpdateDataFileForm::cmdOK_Click() {
  if (state_ == State::Done) return accept();
  if (state_ == State::Running) return;
  Enter(State::Running);
  FitHeight(*this);
  Shown shown(*this);
  std::optional<std::string> failed;
  const bool went = WithFiles(*this, tr("Update Data File"), [&] {
    try {
      auto updated = UpdateDataFile(session, {.source = path_, .shown = &shown});
      if (!FormHost::Accepted(updated)) return;
      report_ = *std::move(updated);
      Enter(State::Done);
    } catch (const UpdateFailure& failure) {
      failed = failure.text;
    }
  });
  if (failed) session.prompt.Tell(std::string(kUpdateFailed), *failed, vellumark::Icon::Critical);
  if (failed || !went) {
    Enter(State::Ready);
    return Dialog::reject();
  }
  state_ == State::Done ? ShowReport() : Enter(State::Ready);
}

void UpdateDataFileForm::ShowReport() {
  result.Set("Path", report_.file.string());
  status_->setText(tr("Updating completed successfully!"));
  QString sums;
  for (const UpgradeSum& sum : report_.sums)
    sums += (sums.isEmpty() ? "" : "\n") + (sum.Same() ? tr("%1: %2, before and after").arg(Q(sum.What), Q(sum.Before))
                                                      : tr("%1: %2 before, %3 after").arg(Q(sum.What), Q(sum.Before), Q(sum.After)));
  sums_->setText(sums);
  heading_->setText(report_.Balanced() ? tr("Every row is accounted for") : tr("Not every sum is the same: see what was done"));
  version_->setText(tr("The updated file is %1").arg(Q(report_.file.string())));
  place_->setText(tr("The report is kept beside it in %1").arg(Q(report_.text.filename().string())));
  tables_->rows = report_.tables;
  lines_->rows = LinesOf(report_);
  fgTables_->SetSource(tables_);
  fgReport_->SetSource(lines_);
  resize(900, std::min(640, screen()->availableGeometry().height() - kFrame));
  ok_->setFocus();
  QApplication::beep();
}

void UpdateDataFileForm::cmdPrint_Click() {
  PrintSheet(windows, UpgradeSheet(report_));
}

// The work cannot be stopped in the middle; what is done stays done.
void UpdateDataFileForm::reject() {
  if (state_ == State::Running) return;
  state_ == State::Done ? accept() : Dialog::reject();
}

}  // namespace vellumark::desktop
