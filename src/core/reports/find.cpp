#include "core/reports/find.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/batch/holding.h"
#include "core/reports/batch_rows.h"
#include "core/reports/build.h"
#include "core/reports/by_name.h"
#include "core/reports/color_book.h"

namespace vellumark {
namespace {

using Special = FindField::Special;

enum class Comparison { Equal, AtLeast, AtMost, Contains };

struct Test {
  FindField field;
  Comparison comparison = Comparison::Equal;
  std::string text;
  std::int64_t number = 0;  // in the field's decimals, a day number, or 0 and 1
  int first = 0;            // of its columns in the query
};

struct FoundRow {
  std::vector<TableValue> cells;
  RowTarget target;
};

// What a subject shows, and the columns that this is read from.
struct Shape {
  std::vector<TableColumn> columns;
  std::string query;
  int queryColumns = 0;
  std::string order;
  FoundRow (*row)(const Statement& row, const std::string& database);
};

TableColumn Column(const char* caption, Format format = Format::Text) {
  return {.key = caption, .caption = caption, .format = format};
}

FoundRow ColorRow(const Statement& row, const std::string& database, ColorKind kind) {
  return {{row.Text(0), row.Text(1), ColorTypeText(kind, kind == ColorKind::Basic && row.Bool(2)), database},
          {kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic, database, row.Text(0)}};
}

TableValue DayOf(const Statement& row, int column) {
  const auto date = row.Date(column);
  return date ? TableValue(*date) : TableValue();
}

Shape ShapeOf(FindSubject subject) {
  switch (subject) {
    case FindSubject::Basic:
      return {
          {Column("Color Name"), Column("Color Code"), Column("Color Type"), Column("Database")},
          "Color_Name, Color_Code, Additive",
          3,
          "Color_Name",
          [](const Statement& row, const std::string& database) { return ColorRow(row, database, ColorKind::Basic); }};
    case FindSubject::Mix:
      return {
          {Column("Color Name"), Column("Color Code"), Column("Color Type"), Column("Database")},
          "Color_Name, Color_Code, Recycle",
          3,
          "Color_Name",
          [](const Statement& row, const std::string& database) { return ColorRow(row, database, ColorKind::Mix); }};
    case FindSubject::Batch:
      return {{Column("Color Name"), Column("Batch ID #", Format::Number), Column("Job Number"),
               Column("Date", Format::Date), Column("Database")},
              "Color_Name, BatchNo, JobNumber, Date_Entered",
              4,
              "BatchNo",
              [](const Statement& row, const std::string& database) {
                return FoundRow{{row.Text(0), row.Whole(1), row.Text(2), DayOf(row, 3), database},
                                {RowTarget::Kind::Batch, database, {}, static_cast<std::int32_t>(row.Whole(1))}};
              }};
    case FindSubject::Job:
      return {{Column("Job Number"), Column("Color Name"), Column("Batch/Item", Format::Number),
               Column("Date", Format::Date), Column("Database")},
              "JobNumber, Color_Name, BatchNo, Date_Entered, Database",
              5,
              "JobNumber, Date_Entered",
              [](const Statement& row, const std::string&) {
                return FoundRow{{row.Text(0), row.Text(1), row.Whole(2), DayOf(row, 3), row.Text(4)},
                                {RowTarget::Kind::Job, row.Text(4), row.Text(0)}};
              }};
    default:
      return {{Column("Design ID"), Column("Description"), Column("Last Used", Format::Date)},
              "DesignID, Description, LastUsed",
              3,
              "DesignID",
              [](const Statement& row, const std::string&) {
                return FoundRow{{row.Text(0), row.Text(1), DayOf(row, 2)}, {RowTarget::Kind::Design, {}, row.Text(0)}};
              }};
  }
}

const Table& TableOfSubject(FindSubject subject) {
  switch (subject) {
    case FindSubject::Basic:
      return schema::Basic;
    case FindSubject::Mix:
      return schema::Mix;
    case FindSubject::Batch:
      return schema::Batch;
    case FindSubject::Job:
      return schema::JobRecords;
    default:
      return schema::Designs;
  }
}

bool IsPerDatabase(FindSubject subject) {
  return subject == FindSubject::Basic || subject == FindSubject::Mix || subject == FindSubject::Batch;
}

Result<Test> TestOf(const std::vector<FindField>& fields, const FindTerm& term) {
  auto field = std::ranges::find_if(fields, [&](const FindField& known) {
    return EqualNoCase(known.caption, term.field) && (!term.columns || known.columns == *term.columns);
  });
  if (field == fields.end())
    field = std::ranges::find_if(fields, [&](const FindField& known) {
      return known.columns.size() == 1 && EqualNoCase(known.columns.front(), term.field);
    });
  if (field == fields.end()) {
    std::string known;
    for (const FindField& one : fields) known += (known.empty() ? "" : ", ") + one.caption;
    return Refuse("Find", fmt::format("{} is no field of this search, which has {}.", term.field, known), term.field);
  }
  const std::vector<std::string_view> comparisons = FindComparisons(field->kind);
  if (std::ranges::none_of(comparisons, [&](std::string_view one) { return EqualNoCase(one, term.comparison); })) {
    std::string known;
    for (const std::string_view one : comparisons) known += (known.empty() ? "\"" : ", \"") + std::string(one) + "\"";
    return Refuse("Find", fmt::format("{} can be compared by {}.", field->caption, known), field->caption);
  }
  Test test{.field = *field, .text = term.value};
  test.comparison = term.comparison == ">="                    ? Comparison::AtLeast
                    : term.comparison == "<="                  ? Comparison::AtMost
                    : EqualNoCase(term.comparison, "contains") ? Comparison::Contains
                                                               : Comparison::Equal;
  switch (field->kind) {
    case FindKind::Text:
      break;
    case FindKind::Date: {
      const auto date = ParseDateTime(Trim(term.value));
      if (!date) return Refuse("Invalid Date Value", "Invalid date value", field->caption);
      test.number = date->DayNumber();
      break;
    }
    case FindKind::Flag: {
      const std::string value = Upper(Trim(term.value));
      const bool yes = value == "YES" || value == "TRUE" || value == "1";
      if (!yes && value != "NO" && value != "FALSE" && value != "0")
        return Refuse("Invalid Value", field->caption + " is yes or no", field->caption);
      test.number = yes ? 1 : 0;
      break;
    }
    default: {
      const auto number = ParseNumber(Trim(term.value));
      if (!number) return Refuse("Invalid Numeric Value", "Invalid numeric value", field->caption);
      test.number = WholeUnits(field->kind == FindKind::Percent ? RoundTo(*number, 2) / 100 : *number, field->decimals);
    }
  }
  return test;
}

bool Holds(const Test& test, std::int64_t value) {
  switch (test.comparison) {
    case Comparison::AtLeast:
      return value >= test.number;
    case Comparison::AtMost:
      return value <= test.number;
    default:
      return value == test.number;
  }
}

bool TextHolds(const Test& test, std::string_view value) {
  if (test.comparison == Comparison::Contains) return FindNoCase(value, test.text) != std::string_view::npos;
  if (EqualNoCase(value, test.text)) return true;
  return test.field.special == Special::ColorName && StartsWithNoCase(value, "PANTONE ") &&
         EqualNoCase(value.substr(8), test.text);
}

/// One search of one Database.
class Search {
 public:
  Search(Session& session, FindSubject subject, const std::string& database, std::vector<Test>& tests, bool any)
      : session_(session),
        subject_(subject),
        database_(database),
        tests_(tests),
        any_(any),
        toUnit_(session),
        shape_(ShapeOf(subject)) {}

  // False when `take` wanted no more.
  bool Run(const std::function<bool(FoundRow row)>& take, ReportWatch& watch) {
    std::string columns = shape_.query;
    int count = shape_.queryColumns;
    for (Test& test : tests_) {
      test.first = count;
      for (const std::string& column : test.field.columns) {
        columns += ", " + Quoted(column);
        ++count;
      }
      if (test.field.special == Special::InBatchUnit) {
        columns += ", UMF";
        ++count;
      }
      if (test.field.special == Special::LotsOfBatch) ReadLotsOfBatches(test);
      if (test.field.special == Special::LotsOfColor) ReadLotsOfColors(test);
      if (test.field.special == Special::WithLots) ReadLotTotals();
    }
    const std::string table = Quoted(IsPerDatabase(subject_) ? session_.Table(TableOfSubject(subject_), database_)
                                                             : TableOfSubject(subject_).name);
    const double all = std::max(1.0, session_.File().Scalar(fmt::format("SELECT COUNT(*) FROM {}", table)).Number());
    Statement rows =
        session_.File().Prepare(fmt::format("SELECT {} FROM {}{} ORDER BY {}", columns, table,
                                            subject_ == FindSubject::Job ? " WHERE Database = ?1" : "", shape_.order));
    if (subject_ == FindSubject::Job) rows.Bind(1, database_);
    double done = 0;
    while (rows.Step()) {
      if (IsFound(rows) && !take(shape_.row(rows, database_))) return false;
      if (!watch.GoOn(100 * ++done / all)) return false;
    }
    return true;
  }

 private:
  bool IsFound(const Statement& row) const {
    if (tests_.empty()) return true;
    const auto holds = [&](const Test& test) { return RowHolds(test, row); };
    return any_ ? std::ranges::any_of(tests_, holds) : std::ranges::all_of(tests_, holds);
  }

  bool RowHolds(const Test& test, const Statement& row) const {
    const FindField& field = test.field;
    switch (field.special) {
      case Special::LotsOfBatch:
        return batches_.at(&test).contains(row.Whole(1));
      case Special::LotsOfColor:
        return colors_.at(&test).contains(row.TextView(0));
      case Special::WithLots: {
        std::int64_t total = WholeUnits(row.Single(test.first), 3);
        if (const auto lots = lotTotals_.find(row.TextView(0)); lots != lotTotals_.end()) total += lots->second;
        return Holds(test, total);
      }
      case Special::InBatchUnit:
        return Holds(test, toUnit_.Thousandths(row.Single(test.first), row.Whole(test.first + 1)));
      default:
        break;
    }
    switch (field.kind) {
      case FindKind::Text:
        for (std::size_t i = 0; i < field.columns.size(); ++i)
          if (TextHolds(test, row.TextView(test.first + static_cast<int>(i)))) return true;
        return false;
      case FindKind::Date: {
        const auto date = row.Date(test.first);
        return date && Holds(test, date->DayNumber());
      }
      case FindKind::Flag:
        return Holds(test, row.Bool(test.first) ? 1 : 0);
      default:
        return !row.IsNull(test.first) &&
               Holds(test,
                     field.decimals == 0 ? row.Whole(test.first) : WholeUnits(row.Single(test.first), field.decimals));
    }
  }

  ColorKind Kind() const { return subject_ == FindSubject::Mix ? ColorKind::Mix : ColorKind::Basic; }

  void ReadLotsOfBatches(const Test& test) {
    auto& found = batches_[&test];
    Statement rows = session_.File().Prepare(
        fmt::format("SELECT BatchNo, LotNumber FROM {}", session_.QuotedTable(schema::BatchLotInv, database_)));
    while (rows.Step())
      if (TextHolds(test, rows.TextView(1))) found.insert(rows.Whole(0));
  }

  void ReadLotsOfColors(const Test& test) {
    auto& found = colors_[&test];
    Statement rows = session_.File().Prepare(
        fmt::format("SELECT LotCName, LotNumber FROM {}", session_.QuotedTable(LotTable(Kind()), database_)));
    while (rows.Step())
      if (TextHolds(test, rows.TextView(1))) found.emplace(rows.Text(0));
  }

  // Of the lots, less what an open Batch holds of the colour.
  void ReadLotTotals() {
    lotTotals_.clear();
    if (session_.InvLotTracking == 1) {
      Statement rows = session_.File().Prepare(
          fmt::format("SELECT LotCName, LotQty FROM {}", session_.QuotedTable(LotTable(Kind()), database_)));
      while (rows.Step()) lotTotals_[rows.Text(0)] += WholeUnits(rows.Single(1), 3);
    }
    for (const HeldStock& held : ReadHeldStock(session_.File()))
      if (held.kind == Kind() && EqualNoCase(held.database, database_) &&
          (held.LotRefID == 0 || session_.InvLotTracking == 1))
        lotTotals_[held.Color_Name] -= WholeUnits(held.quantity, 3);
  }

  Session& session_;
  FindSubject subject_;
  const std::string& database_;
  std::vector<Test>& tests_;
  bool any_;
  ToInventoryUnit toUnit_;
  Shape shape_;
  std::unordered_map<const Test*, std::unordered_set<std::int64_t>> batches_;
  std::unordered_map<const Test*, std::unordered_set<std::string, NameHash, NameEqual>> colors_;
  std::unordered_map<std::string, std::int64_t, NameHash, NameEqual> lotTotals_;
};

Result<std::vector<std::string>> DatabasesOf(const Session& session, const FindRequest& request) {
  if (request.subject == FindSubject::Design || request.databases.empty()) return std::vector{session.CurrentDatabase};
  if (request.databases.size() == 1 &&
      (EqualNoCase(request.databases.front(), "all") || EqualNoCase(request.databases.front(), "All Databases")))
    return session.databaseList;
  return NamedDatabases(session, request.databases, "cmbDatabases");
}

ListTable TableOfRows(std::vector<TableColumn> columns, std::shared_ptr<const std::vector<FoundRow>> rows) {
  class Row final : public TableRow {
   public:
    explicit Row(const FoundRow& row) : row_(row) {}
    TableValue Cell(std::size_t column) const override { return row_.cells[column]; }
    RowTarget Target() const override { return row_.target; }

   private:
    const FoundRow& row_;
  };
  return {std::move(columns), {}, {}, [rows = std::move(rows)](const TableSink& take) {
            for (const FoundRow& row : *rows)
              if (!take(Row(row))) return;
          }};
}

}  // namespace

Result<FindAnswer> Find(Session& session, const FindRequest& request) {
  const std::vector<FindField> fields = FindFields(session, request.subject);
  std::vector<Test> tests;
  for (const FindTerm& term : request.terms) {
    if (TrimView(term.value).empty()) continue;
    auto test = TestOf(fields, term);
    if (!test) return std::unexpected(test.error());
    tests.push_back(*std::move(test));
  }
  const auto databases = DatabasesOf(session, request);
  if (!databases) return std::unexpected(databases.error());
  const ProgressRun run(session.progress, "Searching ...");
  ReportWatch watch(session.progress);
  FindAnswer answer;
  const Shape shape = ShapeOf(request.subject);
  auto rows = std::make_shared<std::vector<FoundRow>>();
  for (const std::string& database : *databases) {
    const bool goesOn = Search(session, request.subject, database, tests, request.any)
                            .Run(
                                [&](FoundRow row) {
                                  answer.complete = (rows->size() + 1) * shape.columns.size() <= kMostReportCells;
                                  if (answer.complete) rows->push_back(std::move(row));
                                  return answer.complete;
                                },
                                watch);
    if (!goesOn) break;
  }
  watch.LookAgain();
  if (!answer.complete) {
    answer.warningTitle = "Incomplete Report";
    answer.warning =
        "The search data found is too large to display on this report.\nChange filter criteria so the report can be "
        "built "
        "without data loss.";
  } else if (watch.Cancelled()) {
    answer.complete = false;
    answer.warningTitle = "Incomplete Data";
    answer.warning = "Because you decided to cancel, this data is incomplete.";
  }
  if (rows->empty() && answer.complete) return Refuse("No Matching Records", "No matching records were found.");
  answer.count = static_cast<std::int64_t>(rows->size());
  answer.table = TableOfRows(shape.columns, std::move(rows));
  return answer;
}

}  // namespace vellumark
