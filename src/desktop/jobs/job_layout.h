#pragma once

#include <functional>
#include <optional>

#include "core/jobs/job_tables.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/record_source.h"

namespace vellumark::desktop {

// How the grid of the Job Window is laid out, as the settings keep it under "JobRecord".

/// The rows of a Job. What was typed into a cell goes to `take`, where it may be asked about.
class JobRows : public RecordRows<JobRecord> {
 public:
  using RecordRows::RecordRows;
  /// These come with the next Refresh of the grid, which knows its place among those before.
  void ShowNext(std::vector<JobRecord> items) { next_ = std::move(items); }
  std::function<void(int row, const std::string& typed)> take;

  bool IsEditable(int row, int column) const override;
  Result<void> Edit(int row, int column, const std::string& typed) override;
  const char* Mark(int row, int column) const override;
  std::int64_t Key(int row) const override { return At(row).row; }
  int RowOf(std::int64_t key) const override;
  bool BeginReading(const std::function<bool(int row)>& keep) override;

 private:
  std::optional<std::vector<JobRecord>> next_;
};

/// All columns with their titles, and which of them are shown.
std::vector<TableColumn> JobTitles(const Session& session);
std::vector<std::size_t> ShownJobColumns(const Session& session);
void StoreShownJobColumns(Session& session, const std::vector<std::size_t>& shown);
/// A column of exported files alone, which is chosen with those of the window.
bool ExportsDateCompleted(const Session& session);
void StoreExportsDateCompleted(Session& session, bool exports);

/// Columns, widths and both sorts as they were kept; and keeps what the operator made of them.
void LayOutJobs(const Session& session, Grid& grid, const JobRows& rows);
/// Other columns are to be shown than are, or under other titles.
bool JobLayoutDiffers(const Session& session, const Grid& grid);
void KeepJobLayout(Session& session, const Grid& grid);

}  // namespace vellumark::desktop
