#include "core/upgrade/settle.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>
#include <variant>

#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/mend_fields.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

// Fields in which nothing means something, or of which a later step knows better.
bool KeepsNull(const Table& table, const Field& field) {
  static const std::set<std::string, std::less<>> kKept{"BatchNo", "LotRefID", "SetName", "Password"};
  const bool text = field.type == FieldType::Text || field.type == FieldType::Memo;
  if (field.type == FieldType::Date || (text && !field.zeroLength)) return true;
  const bool counter = &table == &schema::Basic || &table == &schema::Mix;  // LotRefID counts there
  return kKept.contains(field.name) && !(counter && field.name == "LotRefID");
}

// A field of the layout, with what stands in it where nothing does.
struct Place {
  const Field* field;
  bool keepsNull;
  Value empty;
};

std::vector<Place> PlacesOf(const Table& table) {
  std::vector<Place> places;
  for (const Field& field : table.fields) {
    const bool text = field.type == FieldType::Text || field.type == FieldType::Memo;
    places.push_back({&field, KeepsNull(table, field), text ? Value("") : Value(0)});
  }
  return places;
}

// What became of the values of a table, by field and in words.
class Mendings {
 public:
  void Count(const Field& field, std::string what) { ++counts_[{field.name, std::move(what)}]; }
  /// A field that held nothing; of a numbered family the word is told.
  void CountEmpty(const Field& field) {
    ++empty_;
    if (!known_.insert(&field).second) return;
    emptyFields_.insert(field.name.substr(0, field.name.find_last_not_of("0123456789") + 1));
  }
  void Tell(UpgradeRun& run, const std::string& table) const {
    for (const auto& [of, count] : counts_) run.Changed(table, fmt::format("{}: {}", of.first, of.second), count);
    std::string fields;
    for (const std::string& field : emptyFields_) fields += (fields.empty() ? "" : ", ") + field;
    run.Changed(table, fmt::format("values that were missing are empty texts and 0 now: {}", fields), empty_);
  }

 private:
  std::int64_t empty_ = 0;
  std::unordered_set<const Field*> known_;
  std::set<std::string> emptyFields_;
  std::map<std::pair<std::string, std::string>, std::int64_t> counts_;
};

class Settled {
 public:
  Settled(UpgradeRun& run, Database& fresh, int fileVersion, UpgradeReport& report)
      : run_(run), fresh_(fresh), fileVersion_(fileVersion), report_(report) {}

  void Table(const std::string& name, const vellumark::Table& layout) {
    // Indexes are made when the rows are there; names that stand twice the steps that follow change.
    vellumark::Table bare = layout;
    bare.indexes.clear();
    bare.key.clear();
    fresh_.CreateTable(name, bare);
    known_.insert(Upper(name));
    const LadderTable* from = run_.Find(name);
    if (from == nullptr) {
      if (&layout == &schema::BatchScaleResults) return;
      run_.Changed(name, "the table was made: the file has none");
      report_.tables.push_back({.Table = name});
      return;
    }
    run_.Doing(fmt::format("Couldn't write the rows of {}", name));
    run_.Show("Writing the updated file ...", name);
    UpgradeTable told{.Table = name, .Read = from->read};
    Write(*from, layout, bare, name, told);
    told.Left += run_.LeftRows(name);
    told.Made = std::max<std::int64_t>(0, told.Written + told.Left - told.Read);
    report_.tables.push_back(std::move(told));
    TellUnknownFields(*from, layout);
  }

  void TellUnknownTables() {
    for (const auto& [key, table] : run_.Tables()) {
      if (known_.contains(key)) continue;
      const std::int64_t left = run_.LeftRows(table.name);
      const std::int64_t rows = run_.Rows(table.name);
      if (table.made) continue;
      report_.tables.push_back({.Table = table.name, .Read = table.read, .Left = table.read});
      if (left == 0 && rows > 0) run_.Refused(table.name, "the table belongs to no Database that DBList names", rows);
      if (left == 0 && rows == 0) run_.Changed(table.name, "the table belongs to no Database that DBList names");
    }
  }

 private:
  void Write(const LadderTable& from, const vellumark::Table& layout, const vellumark::Table& bare, const std::string& name,
             UpgradeTable& told) {
    std::string columns;
    std::vector<std::string> fields;
    const std::vector<Place> places = PlacesOf(layout);
    for (const Place& place : places) {
      const std::string& field = place.field->name;
      fields.push_back(field);
      std::string sql = run_.Sql(name, field);
      if (!run_.Has(name, field)) {
        sql = place.keepsNull ? "NULL" : place.empty.IsText() ? "''" : "0";
        if (from.read > 0) run_.Changed(name, fmt::format("the field {} was made: the file has none", field));
      }
      columns += (columns.empty() ? "" : ", ") + sql;
    }
    const bool single = &layout == &schema::FileInfo;
    RowWriter writer(fresh_, bare, name, fields);
    Mendings mendings;
    Statement row = run_.file.Prepare(fmt::format("SELECT {} FROM {}", columns, run_.From(name)));
    const std::int64_t all = std::max<std::int64_t>(1, from.read);
    while (row.Step()) {
      if (single && told.Written == 1) {
        ++told.Left;
        run_.Refused(name, "a second row: the file has one");
        continue;
      }
      bool mended = false;
      for (std::size_t i = 0; i < places.size(); ++i) mended = Take(writer, places[i], i, row, mendings, name) || mended;
      if (single) Head(writer, layout);
      writer.Insert();
      told.Written += 1;
      told.Mended += mended ? 1 : 0;
      if (told.Written % 2048 == 0)
        run_.session.progress.Percent(40 + 30 * static_cast<double>(told.Written % all) / static_cast<double>(all));
    }
    mendings.Tell(run_, name);
  }

  // One value; true when it could not come in as it is.
  bool Take(RowWriter& writer, const Place& into, std::size_t place, const Statement& row, Mendings& mendings, const std::string& name) {
    const Field& field = *into.field;
    const int column = static_cast<int>(place);
    if (row.IsNull(column)) {
      writer.Set(place, into.keepsNull ? Value() : into.empty);
      if (!into.keepsNull) mendings.CountEmpty(field);
      return false;
    }
    const Value value = row.Get(column);
    try {
      // A text that may not be empty and is holds nothing.
      const auto* text = std::get_if<std::string>(&value.Held());
      if (text != nullptr && text->empty() && into.keepsNull) {
        writer.Set(place, Value());
        return false;
      }
      if (field.type == FieldType::Single && value.IsNumber() &&
          value.Number() != static_cast<double>(static_cast<float>(value.Number())))
        mendings.Count(field, "rounded to what a Single holds");
      writer.Set(place, value);
      return false;
    } catch (const BadValue&) {
      const Value nearest = NearestValue(field, value);
      writer.Set(place, nearest);
      mendings.Count(field, MendedText(field, nearest));
      if (place == 0 && field.type == FieldType::Text)
        run_.Renamed(name, fmt::format("{}: \"{}\" is \"{}\" now", field.name, value.Text(), nearest.Text()));
      return true;
    }
  }

  void Head(RowWriter& writer, const vellumark::Table& layout) {
    writer.Set(static_cast<std::size_t>(layout.Find("FileVersion")), fileVersion_);
    writer.Set(static_cast<std::size_t>(layout.Find("DBList")), JoinMarked(run_.databases, '|'));
  }

  // A field that no layout has and no block moved: whether anything stood in it.
  void TellUnknownFields(const LadderTable& table, const vellumark::Table& layout) {
    for (const LadderField& field : table.fields) {
      if (layout.Find(field.name) >= 0) continue;
      const std::int64_t filled =
          run_.file.Scalar(fmt::format("SELECT COUNT(*) FROM {0} WHERE {1} IS NOT NULL AND {1} <> '' AND {1} <> 0",
                                       run_.From(table.name), field.sql))
              .Whole();
      if (filled > 0) run_.Refused(table.name, fmt::format("the field {} is none of the layout: its values did not come in", field.name), filled);
    }
  }

  UpgradeRun& run_;
  Database& fresh_;
  int fileVersion_;
  UpgradeReport& report_;
  std::set<std::string> known_;
};

}  // namespace

void SettleRows(UpgradeRun& run, Database& fresh, int fileVersion, UpgradeReport& report) {
  run.StartStep("Rows");
  Transaction transaction(fresh);
  Settled settled(run, fresh, fileVersion, report);
  for (const Table* table : schema::Global()) settled.Table(table->name, *table);
  if (run.Has(schema::Users.name)) settled.Table(schema::Users.name, schema::Users);
  for (const std::string& database : run.databases)
    for (const Table* table : schema::PerDatabase()) settled.Table(TableName(database, *table), *table);
  settled.TellUnknownTables();
  fresh.CompleteLayout(run.databases);
  transaction.Commit();
}

}  // namespace vellumark
