#include "desktop/cloud/get_put_data_form.h"

#include <QHBoxLayout>
#include <QTimer>
#include <QVBoxLayout>

#include "desktop/cloud/cloud_works.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kNarrow = 80;
constexpr int kMoment = 144;
constexpr int kWide = 320;

}  // namespace

Cloud_GetPutData_Form::Cloud_GetPutData_Form(WindowList& windowList, QWidget* owner, CloudParts parts, const QString& name,
                                             std::optional<CloudTask> task)
    : Dialog(windowList, owner, name, tr("Cloud")), parts_(std::move(parts)) {
  Form form(*this);
  title_ = form.Label("lblTitle");
  title_->setFont(Look::Heading());
  form.Wide(title_);
  form.Wide(subtitle_ = form.Hint({}, "lblSubtitle"));
  choice_ = new QWidget;
  Form choice(*this, *choice_);
  photos_ = choice.Check("chkDesignPhotos", tr("Include Design &Photos"));
  photos_->DoNotTrack();
  photosValue_ = choice.Hint({}, "lblDesignPhotos");
  auto* line = new QWidget;
  auto* sides = new QHBoxLayout(line);
  sides->setContentsMargins(0, 0, 0, 0);
  sides->setSpacing(space::kGap);
  sides->addWidget(photos_);
  sides->addWidget(photosValue_);
  sides->addStretch(1);
  choice.Wide(line);
  photosWarning_ = choice.Hint({}, "lblPhotosWarning");
  photosWarning_->setWordWrap(true);
  choice.Wide(photosWarning_);
  choice_->layout()->setContentsMargins(0, 0, 0, 0);
  form.Wide(choice_);
  accounts_ = form.Table("fgAccounts");
  accounts_->setAccessibleName(tr("Accounts"));
  accountRows_ = std::make_shared<TableSource>();
  accounts_->hide();
  log_ = new QListWidget;
  log_->setObjectName("lstLog");
  log_->setAccessibleName(tr("Log"));
  log_->setWordWrap(true);
  // One below the other; what is not there leaves its room to the log.
  auto* lists = new QWidget;
  auto* column = new QVBoxLayout(lists);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(space::kUnit);
  column->addWidget(accounts_, 1);
  column->addWidget(log_, 1);
  form.Wide(lists, 1);
  info_ = form.Label("lblUpdateInfo");
  info_->setWordWrap(true);
  info_->setTextFormat(Qt::PlainText);
  form.Wide(info_);
  form.Wide(meter_ = MakeMeter("pbMeter"));
  progress_.emplace(*info_, *meter_);
  form.Buttons({start_ = form.Button("cmdStart", tr("&Start")), exportLog_ = form.Button("cmdExportLog", tr("&Export Log")),
                cancel_ = form.Button("cmdCancel", tr("Cancel")), close_ = form.Button("cmdClose", tr("Close"))});
  connect(photos_, &QCheckBox::toggled, this, &Cloud_GetPutData_Form::ShowPhotosChoice);
  resize(840, 520);
  if (task) SetTask(*task, WorkOf(*task));
}

Cloud_GetPutData_Form::Photos Cloud_GetPutData_Form::PhotosOf(CloudTask task) {
  switch (task) {
    case CloudTask::CloudBackup:
    case CloudTask::CloudUtilitiesDataFileUpload:
    case CloudTask::CloudUtilitiesDataFileUpload_SelectUsers:
      return Photos::Upload;
    case CloudTask::DB_ImportExport_Designs:
    case CloudTask::RestoreDataFile:
    case CloudTask::CloudUtilityDataFileManager:
      return Photos::Download;
    default:
      return Photos::None;
  }
}

void Cloud_GetPutData_Form::SetTask(CloudTask task, CloudWork work) {
  task_ = task;
  work_ = std::move(work);
  const CloudTaskRow& row = RowOf(task);
  setWindowTitle(Q(row.title));
  title_->setText(Q(row.title));
  subtitle_->setText(Q(row.subtitle));
  choice_->setVisible(PhotosOf(task) != Photos::None);
  ShowPhotosChoice();
  Changed();
}

void Cloud_GetPutData_Form::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Text"))
    SetTask(CloudTask::CloudReportUploadForm, SendReport(arguments.Text("Name"), arguments.Text("Text")));
  if (!arguments.Has("Task")) return;
  const auto task = arguments.Get<CloudTask>("Task");
  SetTask(task, arguments.Has("Work") ? arguments.Get<CloudWork>("Work") : WorkOf(task));
}

int Cloud_GetPutData_Form::exec() {
  bool may = false;
  WithFiles(*this, windowTitle(), [&] { may = FormHost::Accepted(RequireCloud(session)) && work_; });
  if (!may) return Rejected;
  // It begins when it can be seen.
  if (PhotosOf(task_) == Photos::None) QTimer::singleShot(0, this, [this] { Run(); });
  return Dialog::exec();
}

void Cloud_GetPutData_Form::ShowPhotosChoice() {
  const bool uploads = PhotosOf(task_) == Photos::Upload;
  const bool on = photos_->isChecked();
  photosValue_->setText(!on ? tr("No - Skip") : uploads ? tr("Yes - Upload") : tr("Yes - Download"));
  QString warning = uploads ? tr("Uploading Design Photos could take a long time.")
                            : tr("Downloading Design Photos could take a long time.");
  if (task_ == CloudTask::CloudUtilitiesDataFileUpload_SelectUsers)
    warning = tr("Upload Design Photos to selected Users? It could take a long time.");
  if (task_ == CloudTask::CloudUtilitiesDataFileUpload)
    warning = tr("Upload Design Photos to this User? It could take a long time.");
  photosWarning_->setText(on ? warning : QString());
}

void Cloud_GetPutData_Form::UpdateEnabled() {
  const bool running = progress_->IsRunning();
  const bool over = outcome_.has_value();
  const bool waits = !running && !over;
  photos_->setEnabled(waits);
  start_->setVisible(waits && PhotosOf(task_) != Photos::None);
  cancel_->setVisible(!over);
  exportLog_->setVisible(over && !outcome_->log.empty());
  close_->setVisible(over);
}

bool Cloud_GetPutData_Form::MayClose() {
  if (!progress_->IsRunning()) return true;
  progress_->Cancel();
  cancel_->setEnabled(false);
  return false;
}

void Cloud_GetPutData_Form::reject() {
  if (outcome_ && outcome_->done) return accept();
  Dialog::reject();
}

void Cloud_GetPutData_Form::cmdStart_Click() {
  Run();
}

void Cloud_GetPutData_Form::cmdCancel_Click() {
  reject();
}

void Cloud_GetPutData_Form::Run() {
  if (progress_->IsRunning() || outcome_) return;
  const auto line = parts_.connect(session.clock);
  CloudDesk desk{session, *line, *progress_, [this](const std::string& text) {
                   log_->addItem(Q(text));
                   log_->scrollToBottom();
                 }};
  progress_->Start();
  Changed();
  bool refused = false;
  const bool whole = WithFiles(*this, windowTitle(), [&] {
    const auto made = work_(desk, photos_->isChecked());
    refused = !FormHost::Accepted(made);
    if (refused) return;
    outcome_ = made->outcome;
    if (made->accounts) ShowAccounts(*made->accounts);
  });
  progress_->Finish();
  if (!whole || refused) return done(Rejected);
  ShowEnding();
}

void Cloud_GetPutData_Form::ShowEnding() {
  info_->setText(Q(outcome_->Text()));
  result.Set("Outcome", *outcome_);
  SetDefaultButton(close_);
  Changed();
  close_->setFocus();
}

void Cloud_GetPutData_Form::ShowAccounts(const ListTable& accounts) {
  std::vector<GridColumn> columns;
  for (const TableColumn& column : accounts.columns) {
    columns.push_back(ColumnOf(column));
    if (column.format != Format::Text) columns.back().width = column.format == Format::Moment ? kMoment : kNarrow;
    if (column.key == "Why") columns.back().width = kWide;
  }
  accounts_->SetColumns(columns);
  accounts.read([this, &accounts](const TableRow& row) {
    TableSource::Row cells;
    for (std::size_t i = 0; i < accounts.columns.size(); ++i)
      cells.emplace_back(CellTextInWindow(accounts.columns[i], row.Cell(i)), CellNumber(row.Cell(i)));
    accountRows_->Add(std::move(cells));
    return true;
  });
  accounts_->SetSource(accountRows_);
  accounts_->show();
}

void Cloud_GetPutData_Form::cmdExportLog_Click() {
  const LogPlace place = parts_.logPlace();
  WithFiles(*this, tr("Log File"), [&] { ExportCloudLog(session, *outcome_, place.folder, place.name); });
}

}  // namespace vellumark::desktop
