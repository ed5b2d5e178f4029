#include "core/datafile/cost_decimals.h"

#include "core/datafile/pending_rollups.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

// Of a file without a note. Most files have no more, so that most need none.
constexpr int kFewestDecimals = 2;

const Table& Layout() {
  static const Table table{"MSysCostDecimals", {Field{"Decimals", FieldType::Byte}}, {}};
  return table;
}

}  // namespace

void SettleCostDecimals(Database& file, const std::vector<std::string>& databases, int decimals) {
  const std::string& table = Layout().name;
  const bool noted = file.TableExists(table);
  const Value before = noted ? file.Scalar("SELECT Decimals FROM MSysCostDecimals LIMIT 1") : Value();
  if ((before.IsNull() ? kFewestDecimals : before.Whole()) == decimals) return;
  Transaction transaction(file);
  for (const std::string& database : databases) MarkPendingRollUps(file, database, {.cost = true});
  if (!noted) file.CreateTable(table, Layout());
  file.Execute("DELETE FROM MSysCostDecimals");
  InsertRow(file, Layout(), table, {{"Decimals", decimals}});
  transaction.Commit();
}

}  // namespace vellumark
