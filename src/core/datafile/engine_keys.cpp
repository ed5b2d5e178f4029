#include "core/datafile/engine_keys.h"

#include <fmt/format.h>

#include <string>
#include <vector>

#include "core/base/refusal.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

struct Keyless {
  std::string name;
  std::string layout;
};

// A table with a primary key of another kind is one of the marks that an earlier program made: nobody asks for its rows
// by number.
std::vector<Keyless> TablesWithoutKey(Database& file) {
  std::vector<Keyless> tables;
  Statement row = file.Prepare(
      "SELECT name, sql FROM main.sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' AND "
      "sql "
      "LIKE 'CREATE TABLE %' AND sql NOT LIKE '%PRIMARY KEY%'");
  while (row.Step()) tables.push_back({row.Text(0), row.Text(1)});
  return tables;
}

// The layout is open to be written for no longer than this.
class OpenLayout {
 public:
  explicit OpenLayout(Database& file) : file_(file) { file_.Execute("PRAGMA writable_schema=ON"); }
  ~OpenLayout() { file_.Execute("PRAGMA writable_schema=OFF"); }
  OpenLayout(const OpenLayout&) = delete;
  OpenLayout& operator=(const OpenLayout&) = delete;

 private:
  Database& file_;
};

std::string WithKey(const Database& file, const Keyless& table) {
  if (!table.layout.ends_with(')'))
    throw Failure(file.Path().string(), "is damaged: nobody knows the layout of the table " + table.name);
  return fmt::format("{}, {} INTEGER PRIMARY KEY)", table.layout.substr(0, table.layout.size() - 1), Quoted(kRowKey));
}

}  // namespace

// A column that is the row's own number takes no place in the row, and as the last one it moves no other: rows and
// indexes stand already as the new layout has them.
void GiveRowKeys(Database& file) {
  const std::vector<Keyless> tables = TablesWithoutKey(file);
  if (tables.empty()) return;
  Transaction transaction(file);
  {
    const OpenLayout open(file);
    Statement layout =
        file.Prepare("UPDATE main.sqlite_master SET sql = ?1 WHERE type = 'table' AND name = ?2 AND sql = ?3");
    for (const Keyless& table : tables)
      layout.Bind(1, WithKey(file, table)).Bind(2, table.name).Bind(3, table.layout).Run();
    const std::int64_t version = file.Scalar("PRAGMA schema_version").Whole();
    file.Execute(fmt::format("PRAGMA schema_version={}", version + 1));
  }
  // The engine reads the layout anew with the first of these, and whatever it cannot read ends here.
  for (const Keyless& table : tables)
    file.Scalar(fmt::format("SELECT {} FROM {} LIMIT 1", Quoted(kRowKey), Quoted(table.name)));
  transaction.Commit();
}

void ShowRowKeys(Database& file) {
  for (const Keyless& table : TablesWithoutKey(file))
    file.Execute(fmt::format("CREATE TEMP VIEW {0} AS SELECT *, rowid AS {1} FROM main.{0}", Quoted(table.name),
                             Quoted(kRowKey)));
}

}  // namespace vellumark
