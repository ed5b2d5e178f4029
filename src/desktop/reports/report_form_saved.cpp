#include <fmt/format.h>

#include <QLineEdit>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/cloud/cloud_reports.h"
#include "core/reports/report_settings.h"
#include "core/reports/report_text.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/text.h"
#include "desktop/reports/chart_panel.h"
#include "desktop/reports/report_form.h"
#include "desktop/reports/report_name_form.h"
#include "paper/chart_picture.h"

// What is kept of a report under a name, what is printed of it, and the chart beside it.

namespace vellumark::desktop {

// ---- Saved reports

void ReportForm::cmdSaveReport_Click() {
  TakeArrangement();
  const KeepText keep = [this](const std::string& name) -> Result<void> {
    const bool mine = saved_ && EqualNoCase(saved_->name, Trim(name));
    if (!mine && FindSavedReport(session, name, FindAnyReport) &&
        !session.prompt.Ask("Saved Report", fmt::format("{} is saved already.\nReplace it?", Trim(name)), Answer::No))
      return Decline("Saved Report", "Name");
    SavedReport saved = SavedFrom(name, definition_, Request(), *report_);
    if (auto kept = SaveReport(session, saved, FindAnyReport); !kept) return kept;
    saved.name = Trim(name);
    saved_ = std::move(saved);
    return {};
  };
  const std::string offered = saved_ ? saved_->name : U8(windowTitle());
  if (windows.RunDialog("ReportNameForm", {{"Title", U8(tr("Save Report"))}, {"Name", offered}, {"Keep", keep}}))
    setWindowTitle(Q(saved_->name));
}

void ReportForm::OpenSaved(const std::string& name) {
  saved_ = FindSavedReport(session, name, FindAnyReport);
  if (!saved_) return;
  setWindowTitle(Q(saved_->name));
  const ReportRequest& asked = saved_->request;
  if (subject_ != nullptr)
    subject_->SetText(definition_.subject == ReportSubject::Job      ? asked.job
                      : definition_.subject == ReportSubject::Design ? asked.design
                                                                     : asked.color);
  kind_ = asked.kind;
  if (range_ != nullptr) {
    if (asked.from && asked.to) {
      quiet_ = true;
      from_->SetDate(asked.from);
      to_->SetDate(asked.to);
      quiet_ = false;
      range_->setCurrentIndex(kCustomRange);
    } else if (const int place = range_->findText(Q(asked.rangeName), Qt::MatchFixedString); place >= 0) {
      ChooseRange(place);
    }
  }
  if (user_ != nullptr) user_->setCurrentIndex(std::max(0, user_->findText(Q(asked.user), Qt::MatchFixedString)));
  if (databases_ != nullptr)
    for (int i = 0; i < databases_->count(); ++i)
      databases_->SetChecked(i, asked.databases.empty() || std::ranges::any_of(asked.databases, [&](const auto& one) {
                                  return EqualNoCase(one, U8(databases_->item(i)->text()));
                                }));
  for (const OptionField& field : options_)
    for (const auto& [option, value] : asked.options) {
      if (!EqualNoCase(option, field.option->name)) continue;
      if (field.combo != nullptr)
        field.combo->setCurrentIndex(LeadingInteger(value));
      else
        field.check->setChecked(value == "1");
    }
  arrangesSaved_ = true;
  // One that is gone is told and not passed over: what is left is another report.
  const auto run = [this] {
    if (databases_ == nullptr || Accepted(NamedDatabases(session, saved_->request.databases, "lstDatabases")))
      cmdFind_Click();
  };
  QMetaObject::invokeMethod(this, run, Qt::QueuedConnection);
}

// As it was saved: the columns, their widths, the order, the filter.
void ReportForm::ArrangeAsSaved(BuiltReport& built) {
  if (!std::exchange(arrangesSaved_, false)) return;
  if (const auto lost = LostColumns(*saved_, built.columns); !lost.empty())
    session.prompt.Tell("Saved Report", LostColumnsText(saved_->name, lost));
  Arrange(built, *saved_);
  shownColumns_.clear();
  SetColumns(built.columns, built.shown);
  const ReportSort& sort = built.sort;
  grid_->SetSort({static_cast<int>(sort.column), sort.descending, sort.second ? static_cast<int>(*sort.second) : -1,
                  sort.secondDescending});
  filter_->setText(Q(saved_->filter));
}

// ---- Ranges of dates

void ReportForm::ListRanges() {
  if (range_ == nullptr) return;
  const QString chosen = range_->currentText();
  QStringList names;
  for (const std::string_view name : DateRangeNames()) names += Q(name);
  ranges_ = ReadCustomRanges(session);
  for (const NamedRange& range : ranges_) names += Q(range.name);
  const QSignalBlocker quiet(range_);
  range_->clear();
  range_->addItems(names);
  const int place = range_->findText(chosen);
  range_->setCurrentIndex(place >= 0 ? place : kCustomRange);
  UpdateEnabled();
}

const NamedRange* ReportForm::KeptRange() const {
  const auto listed = static_cast<int>(DateRangeNames().size());
  if (range_ == nullptr || range_->currentIndex() < listed) return nullptr;
  return &ranges_.at(static_cast<std::size_t>(range_->currentIndex() - listed));
}

void ReportForm::ChooseRange(int place) {
  const auto listed = static_cast<int>(DateRangeNames().size());
  const DateRange dates = place >= listed
                              ? ranges_.at(static_cast<std::size_t>(place - listed)).dates
                              : RangeOf(place, session.DataFileDB ? ReportToday(session) : session.clock.Today());
  quiet_ = true;
  range_->setCurrentIndex(place);
  from_->SetDate(dates.from);
  to_->SetDate(dates.to);
  quiet_ = false;
}

// Keeps the dates under a name, or forgets those that are.
void ReportForm::cmdKeepRange_Click() {
  if (const NamedRange* kept = KeptRange()) {
    const std::string name = kept->name;
    if (!session.prompt.Ask("Date Range", fmt::format("Delete the range of dates {}?", name), Answer::No)) return;
    range_->setCurrentIndex(kCustomRange);
    static_cast<void>(Accepted(DeleteCustomRange(session, name)));
    ListRanges();
    return;
  }
  if (!from_->Date() || !to_->Date()) return;
  const KeepText keep = [this](const std::string& name) {
    return SaveCustomRange(session, {name, {*from_->Date(), *to_->Date()}});
  };
  const auto named =
      windows.RunDialog("ReportNameForm", {{"Title", U8(tr("Keep these dates"))}, {"Name", ""}, {"Keep", keep}});
  if (!named) return;
  ListRanges();
  ChooseRange(std::max(0, range_->findText(Q(Trim(named->Text("Name"))), Qt::MatchFixedString)));
  Changed();
}

// ---- Chart and paper

void ReportForm::cmdChart_Click() {
  const bool open = chartPanel_->isHidden();
  chartPanel_->setVisible(open);
  chartPanel_->KeepOpen(open);
  ShowChart();
}

void ReportForm::ShowChart() {
  if (chartPanel_ == nullptr || chartPanel_->isHidden()) return;
  if (report_) TakeArrangement();
  chartPanel_->Show(report_);
}

void ReportForm::cmdPrint_Click() {
  TakeArrangement();
  Sheet sheet = ReportSheet(*report_);
  if (!chartPanel_->isHidden())
    if (const auto chart = chartPanel_->Chart()) sheet.blocks.insert(sheet.blocks.begin(), paper::ChartBlock(*chart));
  PrintSheet(windows, sheet);
}

}  // namespace vellumark::desktop
