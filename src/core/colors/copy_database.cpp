#include "core/colors/copy_database.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/datafile/databases.h"
#include "core/datafile/schema.h"
#include "core/session/stock_lines.h"

namespace vellumark {
namespace {

// ?1 is today.
std::string CopiedValue(const std::string& field, bool keepStock) {
  if (field == "Date_Entered" || field == "LastModified") return "?1";
  if (field == "Inventory" && !keepStock) return "0.0";
  return Quoted(field);
}

// `colorSet` is the expression that builds Color_Set; empty for tables without one.
void CopyTable(Session& session, const Table& table, const std::string& from, const std::string& to, bool keepStock,
               const std::string& colorSet) {
  std::string fields;
  std::string values;
  for (const Field& field : table.fields) {
    const std::string_view comma = fields.empty() ? "" : ", ";
    fields.append(comma).append(Quoted(field.name));
    values.append(comma).append(field.name == "Color_Set" ? colorSet : CopiedValue(field.name, keepStock));
  }
  Statement copy =
      session.File().Prepare(fmt::format("INSERT INTO {} ({}) SELECT {} FROM {} ORDER BY rowid",
                                         Quoted(TableName(to, table)), fields, values, Quoted(TableName(from, table))));
  if (values.find("?1") != std::string::npos) copy.Bind(1, session.clock.Today());
  copy.Run();
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

std::set<std::string> MissingIngredients(Session& session, const std::string& database) {
  std::set<std::string> missing;
  const std::string mix = Quoted(TableName(database, schema::Mix));
  const std::string basic = Quoted(TableName(database, schema::Basic));
  for (int n = 0; n < schema::kIngredientSlots; ++n) {
    Statement row =
        session.File().Prepare(fmt::format("SELECT DISTINCT BC{0} FROM {1} WHERE BC{0} <> '' AND BC{0} NOT IN (SELECT "
                                           "Color_Name FROM {2} WHERE Color_Name "
                                           "IS NOT NULL)",
                                           n, mix, basic));
    while (row.Step()) missing.insert(Upper(row.TextView(0)));
  }
  return missing;
}

void CopyInfo(Session& session, const std::string& from, const std::string& to) {
  Statement copy = session.File().Prepare(
      fmt::format("UPDATE {} SET (FullName, Disclaimer, TradeMark, TemplateFile) = (SELECT FullName, Disclaimer, "
                  "TradeMark, TemplateFile FROM {} LIMIT 1)",
                  Quoted(TableName(to, schema::Info)), Quoted(TableName(from, schema::Info))));
  copy.Run();
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
  const bool keepStock = LeadingInteger(GetSupportValue(session, "AllowNegInv")) == 1;

  ProgressRun progress(session.progress, "Copying Database ...");
  Transaction transaction(session.File());
  CreateEmptyDatabase(session.File(), *name);
  CopyTable(session, schema::Basic, *from, *name, keepStock, {});
  progress.Step(1, 4);
  CopyTable(session, schema::Mix, *from, *name, keepStock, ColorSetExpression());
  progress.Step(2, 4);
  for (const std::string& ingredient : MissingIngredients(session, *name))
    AddZeroBasic(session, ingredient, false, *name);
  progress.Step(3, 4);
  CopyTable(session, schema::Additives, *from, *name, keepStock, {});
  CopyInfo(session, *from, *name);
  StockLine line = NewStockLine(session, StockEvent::Copied, ColorKind::Basic, *name);
  line.reason = "Copy of " + *from;
  AddLinesOfDatabase(session.File(), line);
  transaction.Commit();
  session.databaseList.push_back(*name);
  return name;
}

}  // namespace vellumark
