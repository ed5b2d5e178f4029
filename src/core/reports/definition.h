#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/datafile/color_kind.h"
#include "core/reports/date_ranges.h"
#include "core/session/session.h"

namespace vellumark {

/// How long a report works: it shows how far it is, and stops when it is told to.
class ReportWatch {
 public:
  explicit ReportWatch(Progress& progress) : progress_(progress) {}
  /// To be asked after each record; false once the operator cancelled.
  bool GoOn(double percent);
  /// At the end: a cancel that came with the last record counts too.
  void LookAgain();
  bool Cancelled() const { return cancelled_; }
  /// A total that the rows do not tell: Batches or Jobs that stand in several of them count once.
  void SetTotal(std::string key, TableValue value) { totals_[std::move(key)] = std::move(value); }
  /// The number of what the report counts, where that is not its rows.
  void SetCount(std::int64_t count) { count_ = count; }
  std::optional<std::int64_t> Count() const { return count_; }
  const std::map<std::string, TableValue>& Totals() const { return totals_; }

 private:
  Progress& progress_;
  bool cancelled_ = false;
  int calls_ = 0;
  std::optional<std::int64_t> count_;
  std::map<std::string, TableValue> totals_;
};

/// A choice of a report that is neither column nor date, kept under the report's prefix and this name unless it has a
/// key of its own.
struct ReportOption {
  std::string name;
  std::string meaning;
  int choices = 2;       ///< 0 to choices - 1
  int byDefault = 0;     ///< where no setting is on file
  std::string key = {};  ///< of the setting
};

/// What a report is about beside its dates.
enum class ReportSubject { None, Formula, Color, Design, Job };
/// Which Databases it reads.
enum class ReportScope { Current, All, Chosen };

struct ReportDefinition;

/// What a definition gets to work with.
struct ReportContext {
  Session& session;
  const ReportDefinition& report;
  ReportWatch& watch;
  DateRange dates{};
  std::string name{};               ///< of the colour, Design or Job
  std::optional<ColorKind> kind{};  ///< of the colour; nothing: whatever bears the name
  std::vector<std::string> databases{};
  std::string user{};  ///< only Batches of this user; empty: of all
  std::map<std::string, int> options{};

  int Option(const std::string& option) const { return options.at(option); }
  /// "Quantity (lb.)" and "Cost of Batch $".
  std::string InUnit(std::string_view caption) const;
  std::string InMoney(std::string_view caption) const;
  Database& File() const { return session.File(); }
};

/// One report: what is asked, and the table that answers. Everything else is done by the frame.
struct ReportDefinition {
  std::string key = {};
  std::string group = {};
  std::string caption = {};
  std::string window = {};
  std::string prefix = {};  ///< of its settings
  std::string name = {};    ///< in its title: "Production Report"
  std::string noun = {};    ///< of what it counts: "Batches"
  std::string description = {};
  std::string dateRangeKey = {};  ///< the setting of its range; empty: it has no dates
  ReportSubject subject = ReportSubject::None;
  ReportScope scope = ReportScope::Current;
  std::vector<ReportOption> options = {};
  /// A row of totals follows when any column has a total.
  std::function<ListTable(const ReportContext& context)> table = {};
  bool edits = false;        ///< has cells that are edited in place
  bool usesLots = false;     ///< refused while Lotted Inventory is off
  bool usesHistory = false;  ///< refused where there is no stock history of its days
  bool asOf = false;         ///< tells of the last day of its range alone
};

}  // namespace vellumark
