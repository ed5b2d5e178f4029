#include "desktop/jobs/job_change_forms.h"

#include <algorithm>

#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "core/jobs/designs.h"
#include "core/jobs/job_options.h"
#include "core/session/settings.h"
#include "desktop/jobs/design_box.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kWidth = 520;

Refusal NoDate(const char* field) {
  return {"Invalid Date", "Please enter a valid date.", field};
}

// What the three windows of a figure have each of its own.
struct Figure {
  JobField field;
  AmountKey key;
  float JobRecord::*value;
  const char* name;
  const char* column;
  const char* title;
  const char* caption;
  Result<void> (*write)(Session& session, const std::vector<std::int64_t>& rows, std::string_view typed);
};
constexpr Figure kFigures[] = {
    {JobField::UnitCost, AmountKey::Currency, &JobRecord::UnitCost, "UpdateJobCostModel", "UnitCost",
     QT_TRANSLATE_NOOP("JobFigureForm", " Jobs - Change Unit Cost"), QT_TRANSLATE_NOOP("JobFigureForm", "&New Unit Cost"),
     vellumark::UpdateJobCostModel},
    {JobField::VOC, AmountKey::VOC, &JobRecord::VOC, "UpdateJobVOCModel", "VOC",
     QT_TRANSLATE_NOOP("JobFigureForm", " Jobs - Change VOC"), QT_TRANSLATE_NOOP("JobFigureForm", "&New VOC"),
     vellumark::UpdateJobVOCModel},
    {JobField::HAP, AmountKey::HAP, &JobRecord::HAP, "UpdateJobHAPModel", "HAP",
     QT_TRANSLATE_NOOP("JobFigureForm", " Jobs - Change HAP"), QT_TRANSLATE_NOOP("JobFigureForm", "&New HAP"),
     vellumark::UpdateJobHAPModel},
};

const Figure& FigureOf(JobField field) {
  return *std::ranges::find(kFigures, field, &Figure::field);
}

}  // namespace

// ---- What they share

JobChangeForm::JobChangeForm(WindowList& windowList, QWidget* owner, const QString& name, const QString& title)
    : Dialog(windowList, owner, name, title) {
  setMinimumWidth(kWidth);
}

void JobChangeForm::BeginForm(Form& form) {
  form.Row(tr("Items"), items_ = form.Label("lblItems"));
  items_->setWordWrap(true);
  form.Row(tr("Now"), old_ = form.Value("lblOld", 1));
}

void JobChangeForm::EndForm(Form& form, const QString& toAll) {
  form.Row(toAll_ = form.Check("chkAll", toAll));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
}

void JobChangeForm::OnOpen(const Arguments& arguments) {
  rows_ = arguments.Get<Rows>("Rows");
  job_ = arguments.Text("JobNumber");
  const auto item = rows_.empty() ? std::nullopt : ReadJobRecord(session, rows_.front());
  if (!item) return;
  const QString first = tr("%1  %2").arg(Q(item->ItemText()), Q(item->Color_Name));
  items_->setText(rows_.size() == 1 ? first : tr("%1 and %2 more").arg(first).arg(rows_.size() - 1));
  ShowItem(*item, arguments);
  if (old_->text().isEmpty()) old_->setText(DateText(std::nullopt));  // a dash
}

void JobChangeForm::cmdSave_Click() {
  Rows rows = rows_;
  if (toAll_->isChecked()) {
    rows.clear();
    for (const JobRecord& item : JobItems(session, job_)) rows.push_back(item.row);
  }
  if (Accepted(Write(rows))) accept();
}

// ---- Cost, VOC and HAP

QString JobFigureForm::NameOf(JobField field) {
  return FigureOf(field).name;
}

JobFigureForm::JobFigureForm(WindowList& windowList, QWidget* owner, JobField field)
    : JobChangeForm(windowList, owner, NameOf(field), tr(FigureOf(field).title)), field_(field) {
  const Figure& figure = FigureOf(field);
  Form form(*this);
  BeginForm(form);
  value_ = form.Number("txtNew", DecimalsOf(session, figure.key), tr("0 to 99999"));
  value_->Means(figure.column);
  form.Row(tr(figure.caption), {value_, form.Hint(tr("per %1").arg(Q(UnitName(session.UMI))))});
  EndForm(form, tr("Apply to &all items of the Job"));
}

void JobFigureForm::ShowItem(const JobRecord& item, const Arguments&) {
  const Figure& figure = FigureOf(field_);
  old_->SetText(AmountText(session, figure.key, item.*figure.value));
  value_->SetText(old_->Text());
  value_->selectAll();
}

Result<void> JobFigureForm::Write(const Rows& rows) {
  return FigureOf(field_).write(session, rows, value_->Text());
}

// ---- The Design

UpdateJobDesignID::UpdateJobDesignID(WindowList& windowList, QWidget* owner)
    : JobChangeForm(windowList, owner, "UpdateJobDesignID", tr(" Jobs - Change Design ID")) {
  Form form(*this);
  BeginForm(form);
  design_ = form.Add(new DesignBox("cmbDesignID", session));
  design_->Means("DesignID");
  form.Row(tr("&New Design ID"), design_);
  form.Row(form.Hint(tr("Without one the reference is taken away.")));
  EndForm(form, tr("&Apply Design ID to all Job Record Items"));
}

void UpdateJobDesignID::ShowItem(const JobRecord& item, const Arguments&) {
  old_->SetText(item.DesignDesc.empty() ? item.DesignID : item.DesignID + " - " + item.DesignDesc);
  design_->SetText(item.DesignID);
  design_->selectAll();
}

Result<void> UpdateJobDesignID::Write(const Rows& rows) {
  return vellumark::UpdateJobDesignID(session, rows, design_->Text());
}

// ---- Texts and numbers of the house's own

UpdateJobUDText::UpdateJobUDText(WindowList& windowList, QWidget* owner)
    : JobChangeForm(windowList, owner, "UpdateJobUDText", tr(" Jobs - Change User Defined Data")) {
  Form form(*this);
  BeginForm(form);
  text_ = form.Text("txtText", TextRule::Any(static_cast<int>(kUserTextWidth)));
  value_ = form.Number("txtNumber", 3);
  caption_ = form.Row(tr("New"), {text_, value_, required_ = form.Hint(tr("required"), "lblRequired")});
  EndForm(form, tr("Apply to &all items of the Job"));
}

void UpdateJobUDText::ShowItem(const JobRecord& item, const Arguments& arguments) {
  number_ = static_cast<int>(arguments.Number("Number"));
  isNumber_ = arguments.Get<bool>("IsNumber");
  const auto place = static_cast<std::size_t>(number_);
  caption_->setText(Q(GetSetting(session, isNumber_ ? setting::JobCustomNumericLabelCaption[number_]
                                                    : setting::JobCustomTextLabelCaption[number_]))
                        .replace('&', "&&"));
  old_->SetText(isNumber_ ? JobNumericText(session, number_, item.UD_Numeric.at(place)) : item.UD_Text.at(place));
  TextField* field = isNumber_ ? value_ : text_;
  text_->setVisible(!isNumber_);
  value_->setVisible(isNumber_);
  required_->setVisible(!isNumber_ && GetSetting(session, setting::JobUDTxtRequired[number_]));
  if (isNumber_) {
    value_->SetDecimals(GetSetting(session, setting::Jobs_UDNum_Format[number_]));
    value_->SetText(old_->Text());
  } else {
    text_->SetText(old_->Text());
  }
  field->Means(schema::Numbered(isNumber_ ? "UD_Numeric" : "UD_Text", number_));
  field->setFocus();
  field->selectAll();
}

Result<void> UpdateJobUDText::Write(const Rows& rows) {
  return isNumber_ ? UpdateJobUDNumeric(session, rows, number_, value_->Text())
                   : vellumark::UpdateJobUDText(session, rows, number_, text_->Text());
}

// ---- Dates

JobsNewReturnDate::JobsNewReturnDate(WindowList& windowList, QWidget* owner)
    : JobChangeForm(windowList, owner, "JobsNewReturnDate", tr(" Jobs - New Return Date")) {
  Form form(*this);
  BeginForm(form);
  date_ = form.Date("dtpReturned");
  date_->Means("Date_Returned");
  form.Row(tr("&New Date Returned"), date_);
  EndForm(form, tr("Apply to &all items of the Job"));
}

void JobsNewReturnDate::ShowItem(const JobRecord& item, const Arguments&) {
  old_->SetText(U8(DateText(item.Date_Returned)));
  date_->SetDate(session.clock.Today());
}

Result<void> JobsNewReturnDate::Write(const Rows& rows) {
  const auto date = date_->Date();
  if (!date) return std::unexpected(NoDate("Date_Returned"));
  return vellumark::JobsNewReturnDate(session, rows, *date);
}

JobClosingDate::JobClosingDate(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "JobClosingDate", tr(" Jobs - Closing Date")) {
  Form form(*this);
  form.Row(tr("Job Number"), job_ = form.Value("lblJobNumber", 1));
  form.Row(tr("Date Completed"), old_ = form.Label("lblOld"));
  date_ = form.Date("dtpCompleted");
  date_->Means("Date_Completed");
  form.Row(tr("&Close the Job on"), date_);
  form.Row(form.Hint(tr("All items of the Job get this date.")));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(kWidth);
}

void JobClosingDate::OnOpen(const Arguments& arguments) {
  const Job job = LoadJob(session, arguments.Text("JobNumber"));
  job_->SetText(job.JobNumber);
  old_->setText(job.Date_Completed ? DateText(job.Date_Completed) : tr("open"));
  date_->SetDate(session.clock.Today());
}

void JobClosingDate::cmdSave_Click() {
  const auto date = date_->Date();
  if (!date) return ShowRefusal(NoDate("Date_Completed"));
  if (Accepted(vellumark::JobClosingDate(session, job_->Text(), *date))) accept();
}

}  // namespace vellumark::desktop
