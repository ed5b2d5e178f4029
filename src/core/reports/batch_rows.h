#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/number.h"
#include "core/base/table.h"
#include "core/batch/record.h"
#include "core/reports/definition.h"

namespace vellumark {

// Batches as reports count them: in the inventory unit, every figure as it is printed, in whole thousandths and
// ten-thousandths, so that a sum of Batches is the sum of what stands in the rows.

/// Takes quantities of any Batch into the inventory unit.
class ToInventoryUnit {
 public:
  explicit ToInventoryUnit(const Session& session);
  /// A quantity on file, in thousandths.
  std::int64_t Thousandths(float quantity, std::int64_t unit) const {
    return Thousandths(OfWholeUnits(WholeUnits(quantity, 3), 3), unit);
  }
  std::int64_t Thousandths(double quantity, std::int64_t unit) const { return WholeUnits(quantity * Factor(unit), 3); }
  double Factor(std::int64_t unit) const {
    return unit >= 1 && unit <= 4 ? factors_[static_cast<std::size_t>(unit)] : 1;
  }

 private:
  std::array<double, 5> factors_{};
};

/// The figures of one Batch, or of several added up.
struct BatchFiguresSum {
  std::int64_t Batches = 0;
  std::int64_t Quantity = 0;  ///< made, thousandths
  std::int64_t Recycled = 0;  ///< of it, thousandths
  Currency CostOfMixes;
  Currency CostOfBasics;
  Currency FixedCosts;
  Currency MarkupCosts;
  Currency CostOfBatch;
  std::int64_t VOC = 0;  ///< thousandths
  std::int64_t HAP = 0;

  BatchFiguresSum& operator+=(const BatchFiguresSum& other);
  double RecycledShare() const;
};

/// The share with four decimals, 0 of nothing.
double ShareOf(std::int64_t part, std::int64_t whole);

/// The columns of a query that the figures of a Batch are made of, and the figures of a row that begins with them.
std::string_view FigureColumns();
constexpr int kFigureColumns = 13;
class FigureReader {
 public:
  explicit FigureReader(const Session& session) : toUnit_(session), decimals_(session.DecimalPlaces) {}
  BatchFiguresSum Read(const Statement& row) const;
  const ToInventoryUnit& ToUnit() const { return toUnit_; }

 private:
  ToInventoryUnit toUnit_;
  int decimals_;
};

/// What of a Batch stands beside its figures.
struct BatchDetail {
  std::string database;
  std::string Color_Name;
  std::int32_t BatchNo = 0;
  std::optional<DateTime> Date_Entered;
  std::string Username;
  std::string ShortNote;
  std::string LotNumber;
  std::string JobNumber;
  std::string Notes;
  std::string Color_Code;
  bool Complete = false;
  double PercentRec = 0;  ///< fraction with four decimals
  std::array<std::string, kBatchUserFields> UD_Text;
  std::array<float, kBatchUserFields> UD_Numeric{};
  std::array<float, 5> Lab{};
  std::string Lab_LS;
  std::string Lab_PT;
  std::string Lab_Note;
};
std::string_view DetailColumns();
constexpr int kDetailColumns = 31;
BatchDetail ReadBatchDetail(const Statement& row, int first);

/// One filled line of a Batch, in the inventory unit, with the round-off where it fell.
struct ReportLine {
  std::string_view name;  ///< valid while the row is taken
  std::int64_t type = 1;  ///< 1 basic, 2 recycled colour, 3 addition
  std::int64_t quantity = 0;
};
std::string_view LineColumns();
void ReadReportLines(const Statement& row, int first, std::int64_t unit, const ToInventoryUnit& toUnit,
                     std::vector<ReportLine>& lines);

/// The Batches of a Database within the dates, by number. `columns` are read; `where` (may be empty) narrows them, its
/// parameters are ?3 and on. Ends when `take` answers false or the report is cancelled.
struct BatchQuery {
  std::string columns;
  std::string where = {};
  std::vector<Value> parameters = {};
  std::string order = "BatchNo";  ///< empty: as they come
};
void ForEachReportBatch(const ReportContext& context, const std::string& database, const BatchQuery& query,
                        const std::function<bool(const Statement& row)>& take);

/// Who made Batches of the current Database, by name.
std::vector<std::string> BatchUsers(const Session& session);

/// Whether a Batch has a line of that colour and kind, of any kind without one, as a condition on its row with the name
/// as ?3.
std::string HasLineOf(std::optional<ColorKind> kind);
/// A Basic Color is consumed as an ingredient and as an addition.
bool IsLineOf(std::optional<ColorKind> kind, std::int64_t type);

// Columns that several reports share. The record has the figures as `sum` and, of one Batch, the rest as `batch`.

template <class Record>
auto ShownQty(std::int64_t BatchFiguresSum::*figure) {
  return [figure](const Record& record) { return OfWholeUnits(record.sum.*figure, 3); };
}
template <class Record>
auto ShownCost(Currency BatchFiguresSum::*figure) {
  return [figure](const Record& record) { return (record.sum.*figure).ToDouble(); };
}

template <class Record>
void AddQuantityColumns(TableOf<Record>& table, const ReportContext& context) {
  using Sum = BatchFiguresSum;
  table.Add("Quantity", ShownQty<Record>(&Sum::Quantity), context.InUnit("Quantity"))
      .Sum()
      .Add("QtyRec", ShownQty<Record>(&Sum::Recycled), context.InUnit("Qty Recycled"))
      .Sum();
}

template <class Record>
void AddCostColumns(TableOf<Record>& table, const ReportContext& context, std::string_view total,
                    std::string_view emissions) {
  using Sum = BatchFiguresSum;
  const int decimals = context.session.DecimalPlaces;
  const auto cost = [&](const char* key, Currency Sum::*figure, std::string_view caption) {
    table.Add(key, ShownCost<Record>(figure), context.InMoney(caption), Format::Money, decimals).Sum();
  };
  cost("CostOfMixes", &Sum::CostOfMixes, "Cost of Mixes");
  cost("CostOfBasics", &Sum::CostOfBasics, "Cost of Basics");
  cost("FixedCosts", &Sum::FixedCosts, "Fixed Costs");
  cost("MarkupCosts", &Sum::MarkupCosts, "Markup Costs");
  cost("CostOfBatch", &Sum::CostOfBatch, total);
  table.Add("VOC", ShownQty<Record>(&Sum::VOC), std::string(emissions) + "VOCs").Sum();
  table.Add("HAP", ShownQty<Record>(&Sum::HAP), std::string(emissions) + "HAPs").Sum();
}

/// Six texts and six numbers under their own captions.
std::string UserTextCaption(const Session& session, bool job, int number);
std::string UserNumberCaption(const Session& session, bool job, int number);
int UserNumberDecimals(const Session& session, bool job, int number);

/// When a Batch was made and by whom, its note, lot and job, of rows that hold one.
template <class Record>
void AddBatchColumns(TableOf<Record>& table) {
  table
      .Add(
          "Date_Entered", [](const Record& r) { return r.batch.Date_Entered; }, "Date Entered", Format::Date)
      .Add(
          "Username", [](const Record& r) { return r.batch.Username; }, "Username")
      .Add(
          "ShortNote", [](const Record& r) { return r.batch.ShortNote; }, "Short Note")
      .Add(
          "LotNumber", [](const Record& r) { return r.batch.LotNumber; }, "Lot Number")
      .Add(
          "JobNumber", [](const Record& r) { return r.batch.JobNumber; }, "Job Number");
}

template <class Record>
void AddUserColumns(TableOf<Record>& table, const ReportContext& context, bool job,
                    const std::array<std::string, kBatchUserFields>& (*texts)(const Record&),
                    const std::array<float, kBatchUserFields>& (*numbers)(const Record&)) {
  for (int i = 0; i < kBatchUserFields; ++i) {
    const auto n = static_cast<std::size_t>(i);
    table.Add(
        schema::Numbered("UD_Text", i), [texts, n](const Record& record) { return texts(record)[n]; },
        UserTextCaption(context.session, job, i));
  }
  for (int i = 0; i < kBatchUserFields; ++i) {
    const auto n = static_cast<std::size_t>(i);
    const int decimals = UserNumberDecimals(context.session, job, i);
    table
        .Add(
            schema::Numbered("UD_Numeric", i),
            [numbers, n, decimals](const Record& record) {
              return OfWholeUnits(WholeUnits(numbers(record)[n], decimals), decimals);
            },
            UserNumberCaption(context.session, job, i), Format::Amount, decimals)
        .Sum();
  }
}

/// User fields, laboratory and notes of a Batch.
template <class Record>
void AddBatchEndColumns(TableOf<Record>& table, const ReportContext& context) {
  AddUserColumns<Record>(
      table, context, false, [](const Record& r) -> const auto& { return r.batch.UD_Text; },
      [](const Record& r) -> const auto& { return r.batch.UD_Numeric; });
  const std::array<std::pair<const char*, const char*>, 5> lab{{{"Lab_L", "Lab L"},
                                                                {"Lab_a", "Lab a"},
                                                                {"Lab_b", "Lab b"},
                                                                {"Lab_D", "Lab Delta"},
                                                                {"Lab_Density", "Lab Density"}}};
  for (std::size_t i = 0; i < lab.size(); ++i)
    table.Add(
        lab[i].first, [i](const Record& r) { return OfWholeUnits(WholeUnits(r.batch.Lab[i], 2), 2); }, lab[i].second,
        Format::Amount, 2);
  table
      .Add(
          "Lab_LS", [](const Record& r) { return r.batch.Lab_LS; }, "Lab Light Source")
      .Add(
          "Lab_PT", [](const Record& r) { return r.batch.Lab_PT; }, "Lab Paper Type")
      .Add(
          "Lab_Note", [](const Record& r) { return r.batch.Lab_Note; }, "Lab Note")
      .Add(
          "Notes", [](const Record& r) { return r.batch.Notes; }, "Notes", Format::Notes);
}

/// A click on the row opens the Batch.
inline RowTarget BatchTarget(const BatchDetail& batch) {
  return {RowTarget::Kind::Batch, batch.database, {}, batch.BatchNo};
}

}  // namespace vellumark
