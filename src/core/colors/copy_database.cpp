#include "core/colors/copy_database.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <set>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/colors/formula_tools.h"
#include "core/datafile/databases.h"
#include "core/datafile/pending_rollups.h"
#include "core/datafile/row_pieces.h"
#include "core/datafile/schema.h"
#include "core/session/settings.h"
#include "core/session/stock_lines.h"

namespace vellumark {
namespace {

// ?1 is today.
std::string CopiedValue(const std::string& field, bool keepStock) {
  if (field == "Date_Entered" || field == "LastModified") return "?1";
  if (field == "Inventory" && !keepStock) return "0.0";
  return Quoted(field);
}

// What the work tells of itself: the share of it that is done. False when it is to stop.
using GoOn = std::function<bool(double percent)>;

// `colorSet` is the expression that builds Color_Set; empty for tables without one. False when it was stopped.
bool CopyTable(Session& session, const Table& table, const std::string& from, const std::string& to, bool keepStock,
               const std::string& colorSet, const GoOn& goOn) {
  std::string fields;
  std::string values;
  for (const Field& field : table.fields) {
    const std::string_view comma = fields.empty() ? "" : ", ";
    fields.append(comma).append(Quoted(field.name));
    values.append(comma).append(field.name == "Color_Set" ? colorSet : CopiedValue(field.name, keepStock));
  }
  const std::string source = TableName(from, table);
  Statement copy = session.File().Prepare(
      fmt::format("INSERT INTO {} ({}) SELECT {} FROM {} WHERE RowKey BETWEEN ?2 AND ?3 ORDER BY RowKey",
                  QuotedTable(to, table), fields, values, Quoted(source)));
  const bool dated = values.find("?1") != std::string::npos;
  return ForRowPieces(session.File(), source, [&](std::int64_t first, std::int64_t last, double percent) {
    if (dated) copy.Bind(1, session.clock.Today());
    copy.Bind(2, first).Bind(3, last).Run();
    return goOn(percent);
  });
}

std::string ColorSetExpression() {
  std::string expression;
  for (int n = 0; n < schema::kIngredientSlots; ++n) {
    const std::string slot = schema::Numbered("BC", n);
    expression += fmt::format("{0}CASE WHEN COALESCE({1}, '') = '' THEN '' ELSE '<' || {1} || '>' END",
                              expression.empty() ? "" : " || ", slot);
  }
  return expression;
}

// Empty also when it was stopped.
std::set<std::string> MissingIngredients(Session& session, const std::string& database, const GoOn& goOn) {
  std::set<std::string> missing;
  const std::string mix = QuotedTable(database, schema::Mix);
  const std::string basic = QuotedTable(database, schema::Basic);
  for (int n = 0; n < schema::kIngredientSlots; ++n) {
    Statement row =
        session.File().Prepare(fmt::format("SELECT DISTINCT BC{0} FROM {1} WHERE BC{0} <> '' AND BC{0} NOT IN (SELECT "
                                           "Color_Name FROM {2} WHERE Color_Name "
                                           "IS NOT NULL)",
                                           n, mix, basic));
    while (row.Step()) missing.insert(Upper(row.TextView(0)));
    if (!goOn(100.0 * (n + 1) / schema::kIngredientSlots)) return {};
  }
  return missing;
}

void CopyInfo(Session& session, const std::string& from, const std::string& to) {
  Statement copy = session.File().Prepare(
      fmt::format("UPDATE {} SET (FullName, Disclaimer, TradeMark, TemplateFile) = (SELECT FullName, Disclaimer, "
                  "TradeMark, TemplateFile FROM {} LIMIT 1)",
                  QuotedTable(to, schema::Info), QuotedTable(from, schema::Info)));
  copy.Run();
}

// The rows of the tables, with whatever ingredients the formulas lack. False when it was stopped.
bool CopyRows(Session& session, const std::string& from, const std::string& to) {
  const bool keepStock = GetSetting(session, setting::AllowNegInv);
  // The formulas are by far the longest part.
  const auto part = [&](double begin, double end) {
    return [&session, begin, end](double percent) {
      session.progress.Percent(begin + (end - begin) * percent / 100);
      return !session.progress.Cancelled();
    };
  };
  if (!CopyTable(session, schema::Basic, from, to, keepStock, {}, part(0, 10))) return false;
  if (!CopyTable(session, schema::Mix, from, to, keepStock, ColorSetExpression(), part(10, 80))) return false;
  for (const std::string& ingredient : MissingIngredients(session, to, part(80, 95)))
    AddZeroBasic(session, ingredient, false, to);
  return CopyTable(session, schema::Additives, from, to, keepStock, {}, part(95, 100));
}

}  // namespace

Result<std::string> CopyDatabase(Session& session, std::string_view source, std::string_view typedName) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const auto from =
      std::ranges::find_if(session.databaseList, [&](const std::string& d) { return EqualNoCase(d, source); });
  if (from == session.databaseList.end())
    return Refuse("Database Not Found", fmt::format("The {} Database is not in this Data File.", source),
                  "cmbDatabases");
  auto name = NewDatabaseName(typedName, session.databaseList, session.DataFileName);
  if (!name) return name;

  ProgressRun progress(session.progress, "Copying Database ...");
  Transaction transaction(session.File());
  CreateEmptyDatabase(session.File(), *name);
  if (!CopyRows(session, *from, *name)) return BulkSteps::Stopped("New Database");
  CopyInfo(session, *from, *name);
  CopyPendingRollUps(session.File(), *from, *name);
  StockLine line = NewStockLine(session, StockEvent::Copied, ColorKind::Basic, *name);
  line.reason = "Copy of " + *from;
  AddLinesOfDatabase(session.File(), line);
  transaction.Commit();
  session.databaseList.push_back(*name);
  return name;
}

}  // namespace vellumark
