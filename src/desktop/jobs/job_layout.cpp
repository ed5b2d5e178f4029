#include "desktop/jobs/job_layout.h"

#include <algorithm>

#include "core/base/text.h"
#include "core/reports/report_settings.h"
#include "core/session/settings.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kTextWidth = 1935;  // twips
constexpr int kNameWidth = 2865;
constexpr int kFigureWidth = 1500;

constexpr std::string_view kDateCompleted = "Date Completed";

// The settings of a list of Job Records, as those of a report.
const ReportDefinition& Layout() {
  static const ReportDefinition layout{.window = "JobForm", .prefix = "JobRecord"};
  return layout;
}

auto Chosen() {
  return setting::Columns.Of("JobRecord");
}

constexpr std::size_t Place(JobColumn column) {
  return static_cast<std::size_t>(column);
}

int DefaultWidth(std::size_t place, const TableColumn& column) {
  if (place == Place(JobColumn::Color_Name) || place == Place(JobColumn::DesignDesc)) return kNameWidth;
  return column.format == Format::Text || column.format == Format::Number ? kTextWidth : kFigureWidth;
}

}  // namespace

bool JobRows::IsEditable(int, int column) const {
  return take && column == static_cast<int>(JobColumn::QtyUsed);
}

// A question may have to be asked, which no cell under the cursor can wait for: the old figure stands until then.
Result<void> JobRows::Edit(int row, int, const std::string& typed) {
  take(row, typed);
  return Decline("Qty Used");
}

const char* JobRows::Mark(int row, int column) const {
  if (column != static_cast<int>(JobColumn::BatchNo)) return nullptr;
  return At(row).IsOfBatch() ? "Batch" : "lot";
}

int JobRows::RowOf(std::int64_t key) const {
  const auto found = std::ranges::find(rows, key, &JobRecord::row);
  return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

bool JobRows::BeginReading(const std::function<bool(int row)>&) {
  if (auto next = std::exchange(next_, std::nullopt)) rows = *std::move(next);
  return false;
}

std::vector<TableColumn> JobTitles(const Session& session) {
  std::vector<TableColumn> columns = JobColumns(session).Columns();
  for (TableColumn& column : columns)
    if (column.key.empty()) column.key = PlainCaption(column.caption);
  return columns;
}

// Whatever is chosen: what a row is about.
std::vector<std::size_t> ShownJobColumns(const Session& session) {
  std::vector<std::size_t> shown = ReadShownColumns(session, Layout(), JobTitles(session));
  for (const JobColumn column : {JobColumn::Color_Name, JobColumn::BatchNo, JobColumn::QtyUsed})
    if (std::ranges::find(shown, Place(column)) == shown.end()) shown.push_back(Place(column));
  std::ranges::sort(shown);
  return shown;
}

void StoreShownJobColumns(Session& session, const std::vector<std::size_t>& shown) {
  if (shown == ShownJobColumns(session)) return;
  const bool exports = ExportsDateCompleted(session);
  SaveShownColumns(session, Layout(), JobTitles(session), shown);
  StoreExportsDateCompleted(session, exports);
}

bool ExportsDateCompleted(const Session& session) {
  const std::vector<std::string> chosen = SplitColumnSet(GetSetting(session, Chosen()));
  return std::ranges::any_of(chosen, [](const std::string& title) { return EqualNoCase(title, kDateCompleted); });
}

void StoreExportsDateCompleted(Session& session, bool exports) {
  if (exports == ExportsDateCompleted(session)) return;
  std::vector<std::string> chosen = SplitColumnSet(GetSetting(session, Chosen()));
  std::erase_if(chosen, [](const std::string& title) { return EqualNoCase(title, kDateCompleted); });
  if (exports) chosen.emplace_back(kDateCompleted);
  StoreSettings(session, {Chosen().To(JoinColumnSet(chosen))});
}

void LayOutJobs(const Session& session, Grid& grid, const JobRows& rows) {
  const std::vector<TableColumn> titles = JobTitles(session);
  const std::vector<std::size_t> shown = ShownJobColumns(session);
  std::vector<GridColumn> columns = rows.Columns();
  int place = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    GridColumn& column = columns[i];
    column.shown = std::ranges::find(shown, i) != shown.end();
    column.choosable = i != 0 && i != Place(JobColumn::Color_Name) && i != Place(JobColumn::BatchNo) &&
                       i != Place(JobColumn::QtyUsed);
    column.name = Q(PlainCaption(titles[i].caption));
    const int kept = column.shown ? GetSetting(session, setting::ColWidth.Of("JobRecord", place++)) : 0;
    column.width = (kept > 0 ? kept : DefaultWidth(i, titles[i])) / kTwipsPerPixel;
  }
  grid.SetColumns(std::move(columns));
  const ReportSort sort = ReadReportSort(session, Layout(), titles.size());
  grid.SetSort({static_cast<int>(sort.column), sort.descending, sort.second ? static_cast<int>(*sort.second) : -1,
                sort.secondDescending});
}

bool JobLayoutDiffers(const Session& session, const Grid& grid) {
  const std::vector<TableColumn> titles = JobTitles(session);
  const std::vector<std::size_t> shown = ShownJobColumns(session);
  for (std::size_t i = 0; i < titles.size(); ++i) {
    const bool shows = std::ranges::find(shown, i) != shown.end();
    if (grid.IsShown(static_cast<int>(i)) != shows || U8(grid.Columns()[i].caption) != titles[i].caption) return true;
  }
  return false;
}

void KeepJobLayout(Session& session, const Grid& grid) {
  std::vector<std::size_t> shown;
  std::vector<SettingText> widths;
  for (const int column : grid.ShownColumns()) {
    const auto kept = setting::ColWidth.Of("JobRecord", static_cast<int>(shown.size()));
    const int width = grid.ColumnWidth(column) * kTwipsPerPixel;
    if (GetSetting(session, kept) != width) widths.push_back(kept.To(width));
    shown.push_back(static_cast<std::size_t>(column));
  }
  StoreShownJobColumns(session, shown);
  if (!widths.empty()) StoreSettings(session, widths);
  const GridSort& sort = grid.Sort();
  ReportSort now{.column = static_cast<std::size_t>(std::max(sort.column, 0)), .descending = sort.descending};
  if (sort.second >= 0) {
    now.second = static_cast<std::size_t>(sort.second);
    now.secondDescending = sort.secondDescending;
  }
  if (now != ReadReportSort(session, Layout(), JobTitles(session).size())) SaveReportSort(session, Layout(), now);
}

}  // namespace vellumark::desktop
