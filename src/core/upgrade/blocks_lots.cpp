#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/inventory/lots.h"
#include "core/upgrade/ladder.h"

// The blocks that bring lots into tables of their own, and what Batches took of them.

namespace vellumark {
namespace {

using schema::Numbered;

constexpr int kOldLots = 10;  // ILot_Name0 to ILot_Name9 of a colour

std::string Consumption(const std::string& database) {
  return TableOfDatabase(database, "_Batch_LotInv_Consumption");
}

}  // namespace

void MakeConsumption(UpgradeRun& run, const std::string& database) {
  const std::string batch = TableOfDatabase(database, "_Batch");
  const std::string table = Consumption(database);
  if (run.Has(table) || !run.Has(batch)) return;
  run.MakeTable(table, {{"BatchNo", FieldType::Long},
                        {"Date_Entered", FieldType::Date},
                        {"Ingredient", FieldType::Text, 30},
                        {"Ing_Type", FieldType::Byte},
                        {"Unlotted_Inv", FieldType::Single},
                        {"ILot_Name", FieldType::Text, 30},
                        {"ILot_Qty", FieldType::Single}});
  std::string columns = fmt::format("{}, {}, {}", run.Sql(batch, "BatchNo"), run.Sql(batch, "Date_Entered"), run.Sql(batch, "UMF"));
  const int lines = run.Count(batch, "Ingredient");
  for (const char* word : {"Ingredient", "IngType", "Amount"})
    for (int n = 0; n < lines; ++n) columns += ", " + run.Sql(batch, Numbered(word, run.First(batch, word) + n));
  Statement line = run.file.Prepare(
      fmt::format("INSERT INTO {} (BatchNo, Date_Entered, Ingredient, Ing_Type, Unlotted_Inv, ILot_Name, ILot_Qty) VALUES "
                  "(?1, ?2, ?3, ?4, ?5, '', 0)",
                  Quoted(table)));
  Statement row = run.file.Prepare(fmt::format("SELECT {} FROM {}", columns, run.From(batch)));
  std::int64_t made = 0;
  while (row.Step()) {
    const auto stored = static_cast<int>(row.Whole(2));
    const int unit = stored >= UnitPound && stored <= UnitOunce ? stored : run.session.UMI;
    for (int n = 0; n < lines; ++n) {
      if (row.TextView(3 + n).empty() || row.Number(3 + 2 * lines + n) == 0) continue;
      const double amount = row.Number(3 + 2 * lines + n);
      const float taken = unit == run.session.UMI
                              ? static_cast<float>(amount)
                              : RoundSingle(amount * static_cast<double>(UnitFactor(unit, run.session.UMI)), 3);
      line.Bind(1, row.Get(0)).Bind(2, row.Get(1)).Bind(3, row.TextView(3 + n)).Bind(4, row.Whole(3 + lines + n));
      line.Bind(5, taken).Run();
      ++made;
    }
  }
  run.Changed(table, "what Batches took was told by their lines", made);
}

void AddLotDates(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    for (const char* suffix : {"_Basic", "_Mix"}) {
      const std::string table = TableOfDatabase(database, suffix);
      run.Doing("Couldn't add ILot_Date field to " + table);
      run.AddFamily(table, "ILot_Date", run.First(table, "ILot_Name"), kOldLots, "NULL");
    }
    run.Doing("Couldn't add ILot_Date field to " + Consumption(database));
    run.Add(Consumption(database), "ILot_Date", "NULL");
  });
}

namespace {

// The decimal that people see of a Single, so that what is taken away from one place is what comes to the other.
double AsRead(double stored) {
  return LeadingNumber(ShortestText(static_cast<float>(stored)));
}

// One colour's row as the lots were kept in it.
struct OldLot {
  std::string name;
  double quantity = 0;
  std::optional<DateTime> date;
};

class LotMigration {
 public:
  LotMigration(UpgradeRun& run, const std::string& database, ColorKind kind)
      : run_(run), colors_(TableName(database, ColorTable(kind))), lots_(TableName(database, LotTable(kind))), kind_(kind) {}

  void Run() {
    if (!run_.Has(colors_)) return;
    const std::string counter = run_.Own(colors_, "LotRefID", FieldType::Long);
    const std::string stock = run_.Own(colors_, "Inventory", FieldType::Single);
    Statement update = run_.file.Prepare(
        fmt::format("UPDATE {} SET {} = ?1, {} = ?2 WHERE RowKey = ?3", run_.From(colors_), counter, stock));
    Statement insert = run_.file.Prepare(
        fmt::format("INSERT INTO {} (LotRefID, LotCName, LotNumber, LotLoc, LotContID, LotDate, LotQty, LotPrice, "
                    "LotConsignment) VALUES (?1, ?2, ?3, '', '', ?4, ?5, ?6, 0)",
                    Quoted(lots_)));
    const int columns = Open();
    while (row_->Step()) {
      const std::int64_t key = row_->Whole(0);
      const std::string color = row_->Text(1);
      Value inventory = row_->Get(2);
      const double price = row_->Number(4);
      const std::int64_t before = row_->Whole(3);
      std::int64_t ref = before;
      double inLots = 0;
      double loose = 0;
      for (int n = 0; n < columns; ++n) {
        const OldLot lot{Trim(row_->TextView(5 + n)), row_->Number(5 + columns + n), row_->Date(5 + 2 * columns + n)};
        if (lot.name.empty() || lot.quantity < 0) {
          if (lot.quantity != 0) Loosen(color, lot, loose);
          continue;
        }
        insert.Bind(1, ++ref).Bind(2, color).Bind(3, lot.name).Bind(4, Value(lot.date));
        insert.Bind(5, lot.quantity).Bind(6, price).Run();
        inLots += AsRead(lot.quantity);
        ++made_;
      }
      if (ref == before && loose == 0) continue;
      const double moved = run_.stockHoldsLots ? -inLots : loose;
      if (moved != 0) inventory = RoundTo(AsRead(inventory.Number()) + moved, 6);
      update.Bind(1, ref).Bind(2, inventory).Bind(3, key).Run();
    }
    row_.reset();
    run_.Changed(lots_, "lots were made of ILot_Name, ILot_Qty and ILot_Date, at the cost of their color", made_);
  }

  /// After what names lots has found them by their dates.
  static void DateTheRest(UpgradeRun& run, const std::string& lots) {
    run.Changed(lots, "the date was none: today's",
                run.file.Prepare(fmt::format("UPDATE {} SET LotDate = ?1 WHERE LotDate IS NULL", Quoted(lots)))
                    .Bind(1, Value(run.session.clock.Today()))
                    .Run());
  }

 private:
  int Open() {
    const int first = run_.First(colors_, "ILot_Name");
    const int columns = std::max(run_.Count(colors_, "ILot_Name"), kOldLots);
    std::string sql = fmt::format("SELECT Src.RowKey, {}, {}, COALESCE({}, 0), COALESCE({}, 0)",
                                  run_.Sql(colors_, "Color_Name"), run_.Sql(colors_, "Inventory"),
                                  run_.Sql(colors_, "LotRefID"),
                                  run_.Sql(colors_, kind_ == ColorKind::Mix ? "BasicCost" : "PurchaseCost"));
    std::string holds;
    for (const char* word : {"ILot_Name", "ILot_Qty", "ILot_Date"})
      for (int n = first; n < first + columns; ++n) sql += ", " + run_.Sql(colors_, Numbered(word, n));
    for (int n = first; n < first + columns; ++n)
      holds += fmt::format("{}{} <> '' OR {} <> 0", holds.empty() ? "" : " OR ", run_.Sql(colors_, Numbered("ILot_Name", n)),
                           run_.Sql(colors_, Numbered("ILot_Qty", n)));
    row_.emplace(run_.file.Prepare(fmt::format("{} FROM {} WHERE {}", sql, run_.From(colors_), holds)));
    return columns;
  }

  void Loosen(const std::string& color, const OldLot& lot, double& loose) {
    loose += AsRead(lot.quantity);
    const std::string quantity = Fixed(static_cast<float>(lot.quantity), 3);
    run_.ToLookAt(colors_, lot.name.empty()
                               ? fmt::format("{}: {} lay in a lot without a name and is unlotted stock now", color, quantity)
                               : fmt::format("{}: the lot {} held {}, which is unlotted stock now", color, lot.name, quantity));
  }

  UpgradeRun& run_;
  std::string colors_;
  std::string lots_;
  ColorKind kind_;
  std::optional<Statement> row_;
  std::int64_t made_ = 0;
};

// What Batches took: a line for the lot, a line for what was in none.
void MoveConsumption(UpgradeRun& run, const std::string& database) {
  const std::string from = Consumption(database);
  if (!run.Has(from)) return;
  const std::string to = TableOfDatabase(database, "_Batch_LotInv");
  run.Doing("Couldn't fill " + to);
  const auto move = [&](const std::string& number, const std::string& date, const std::string& quantity, const std::string& where) {
    return run.file
        .Prepare(fmt::format("INSERT INTO {} (BatchNo, DateEntered, IngName, IngType, LotRefID, LotNumber, LotLoc, LotContID, "
                             "LotDate, LotQty, LotPrice) SELECT {}, {}, {}, {}, 0, {}, '', '', {}, {}, 0 FROM {} WHERE {}",
                             Quoted(to), run.Sql(from, "BatchNo"), run.Sql(from, "Date_Entered"), run.Sql(from, "Ingredient"),
                             run.Sql(from, "Ing_Type"), number, date, quantity, run.From(from), where))
        .Run();
  };
  const std::string name = run.Sql(from, "ILot_Name");
  const std::string isLot = fmt::format("TRIM(COALESCE({}, '')) <> ''", name);
  const std::string inLot = fmt::format("COALESCE({}, 0)", run.Sql(from, "ILot_Qty"));
  const std::string rest = fmt::format("COALESCE({}, 0)", run.Sql(from, "Unlotted_Inv"));
  const std::int64_t all = run.Rows(from);
  run.Changed(to, "lines for lots", move(fmt::format("TRIM({})", name), run.Sql(from, "ILot_Date"), inLot, isLot));
  run.Changed(to, "lines for unlotted stock",
              move(SqlText(kUnlottedInv), "NULL", rest, fmt::format("{} AND {} <> 0", isLot, rest)) +
                  move(SqlText(kUnlottedInv), "NULL", fmt::format("{} + {}", rest, inLot),
                       fmt::format("NOT ({}) AND {} + {} <> 0", isLot, rest, inLot)));
  const auto count = [&](const std::string& where) {
    return run.file.Scalar(fmt::format("SELECT COUNT(*) FROM {} WHERE {}", run.From(from), where)).Whole();
  };
  if (const std::int64_t nameless = count(fmt::format("NOT ({}) AND {} <> 0", isLot, inLot)); nameless > 0)
    run.ToLookAt(to, "what a Batch took of a lot without a name is told as unlotted stock", nameless);
  if (const std::int64_t nothing = count(fmt::format("NOT ({}) AND {} + {} = 0", isLot, rest, inLot)); nothing > 0)
    run.Changed(from, "lines that took nothing make no row", nothing);
  run.LeftOut(from, "its rows stand in " + to, all);
}

// The lot of the colour with this number, of this day where both tell one.
std::string LotRefSql(const std::string& lots, const std::string& color, const std::string& number, const std::string& date) {
  return fmt::format(
      "COALESCE((SELECT MIN(Lot.LotRefID) FROM {0} AS Lot WHERE Lot.LotCName = {1} AND Lot.LotNumber = {2} AND (Lot.LotDate "
      "IS NULL OR {3} IS NULL OR SUBSTR(Lot.LotDate, 1, 10) = SUBSTR({3}, 1, 10))), 0)",
      Quoted(lots), color, number, date);
}

void FindLots(UpgradeRun& run, const std::string& database) {
  const std::string basicLots = TableOfDatabase(database, "_Basic_LotInv");
  const std::string mixLots = TableOfDatabase(database, "_Mix_LotInv");
  const std::string taken = TableOfDatabase(database, "_Batch_LotInv");
  run.Doing("Couldn't find the lots of " + taken);
  const auto find = [&](const std::string& lots, const char* kind) {
    run.file
        .Prepare(fmt::format("UPDATE {} SET LotRefID = {} WHERE LotNumber <> {} AND {}", run.From(taken),
                             LotRefSql(lots, "Src.IngName", "Src.LotNumber", "Src.LotDate"), SqlText(kUnlottedInv), kind))
        .Run();
  };
  find(mixLots, "IngType = 2");
  find(basicLots, "IngType <> 2");
  run.Changed(taken, "the lot is not there any more: LotRefID is 0",
              run.file.Scalar(fmt::format("SELECT COUNT(*) FROM {} WHERE LotRefID = 0 AND LotNumber <> {}", run.From(taken),
                                          SqlText(kUnlottedInv)))
                  .Whole());
  const std::string batch = TableOfDatabase(database, "_Batch");
  run.Doing("Couldn't find the lots of " + batch);
  if (!run.Has(batch)) return;
  const std::string number = run.Sql(batch, "LotNumber");
  const std::string ref = run.Own(batch, "LotRefID", FieldType::Long);
  if (number == "''" || number == "NULL") return;
  run.file
      .Prepare(fmt::format("UPDATE {} SET {} = {} WHERE COALESCE({}, '') <> ''", run.From(batch), ref,
                           LotRefSql(mixLots, run.Sql(batch, "Color_Name"), number, run.Sql(batch, "Date_Entered")), number))
      .Run();
  run.Changed(batch, "the lot is not there any more: LotRefID is 0",
              run.file
                  .Scalar(fmt::format("SELECT COUNT(*) FROM {} WHERE COALESCE({}, '') <> '' AND COALESCE({}, 0) = 0",
                                      run.From(batch), number, ref))
                  .Whole());
}

void RemoveLotFields(UpgradeRun& run, const std::string& database) {
  for (const char* suffix : {"_Basic", "_Mix"})
    for (const char* word : {"ILot_Name", "ILot_Qty", "ILot_Date"}) run.RemoveFamily(TableOfDatabase(database, suffix), word);
}

// Numbered fields begin with 0 now; what has no place in the layout is told by name.
void Renumber(UpgradeRun& run, const std::string& table, std::string_view old, std::string_view now, int slots) {
  const int first = run.First(table, old);
  const int count = run.Count(table, old);
  for (int n = 0; n < count && n < slots; ++n) run.Rename(table, Numbered(old, first + n), Numbered(now, n));
  if (first > 0 && count > 0)
    run.Changed(table, fmt::format("{} and on are {} and on", Numbered(old, first), Numbered(now, 0)), run.Rows(table));
}

void DropBeyond(UpgradeRun& run, const std::string& table, std::string_view names, std::string_view quantities, int first, int last) {
  for (int n = first; n <= last; ++n) {
    const std::string name = Numbered(names, n);
    if (!run.Has(table, name)) continue;
    Statement row = run.file.Prepare(fmt::format("SELECT {0}, {1}, COALESCE({2}, 0) FROM {3} WHERE COALESCE({1}, '') <> ''",
                                                 run.Sql(table, "Color_Name"), run.Sql(table, name),
                                                 run.Sql(table, Numbered(quantities, n)), run.From(table)));
    while (row.Step())
      run.Refused(table, fmt::format("{}: {} holds {} with {}, for which there is no place", row.TextView(0), name,
                                     row.TextView(1), Fixed(row.Single(2), 3)));
  }
}

void MoveRecipes(UpgradeRun& run, const std::string& database) {
  constexpr int kMost = 40;  // far beyond what any version had
  const std::string mix = TableOfDatabase(database, "_Mix");
  Renumber(run, mix, "BC", "BC", schema::kIngredientSlots);
  Renumber(run, mix, "BQ", "BQ", schema::kIngredientSlots);
  const std::string batch = TableOfDatabase(database, "_Batch");
  Renumber(run, batch, "Ingredient", "IngName", schema::kBatchLines);
  Renumber(run, batch, "Amount", "IngQty", schema::kBatchLines);
  Renumber(run, batch, "IngType", "IngType", schema::kBatchLines);
  DropBeyond(run, mix, "BC", "BQ", schema::kIngredientSlots, kMost);
  DropBeyond(run, batch, "Ingredient", "Amount", 0, kMost);
  for (int n = 0; n <= kMost; ++n) {
    if (n >= schema::kIngredientSlots)
      for (const char* word : {"BC", "BQ"}) run.Remove(mix, Numbered(word, n));
    for (const char* word : {"Ingredient", "Amount"}) run.Remove(batch, Numbered(word, n));
    if (n >= schema::kBatchLines) run.Remove(batch, Numbered("IngType", n));
  }
}

void FindLotsOfJobs(UpgradeRun& run) {
  const std::string jobs = "JobRecords";
  if (!run.Has(jobs)) return;
  run.Show("JobRecords Table, Adding New Fields:");
  run.Doing("Couldn't add LotRefID field to JobRecords");
  run.Add(jobs, "LotRefID", "0");
  run.Add(jobs, "LotLoc", "''");
  run.Add(jobs, "LotContID", "''");
  run.Add(jobs, "LotDate", "NULL");
  run.Show("Creating Lot Data - Job Table:");
  run.Doing("Couldn't find the lots of JobRecords");
  const std::string number = run.Sql(jobs, "LotNumber");
  if (number == "''" || number == "NULL") return;
  const std::string ref = run.Own(jobs, "LotRefID", FieldType::Long);
  const std::string date = run.Own(jobs, "LotDate", FieldType::Date);
  for (const std::string& database : run.databases)
    for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
      const std::string lots = TableName(database, LotTable(kind));
      const std::string where =
          fmt::format("{} = {} AND COALESCE({}, '') <> '' AND COALESCE({}, 0) {} 2", run.Sql(jobs, "Database"), SqlText(database),
                      number, run.Sql(jobs, "ItemType"), kind == ColorKind::Mix ? "=" : "<>");
      const std::string color = run.Sql(jobs, "Color_Name");
      run.file
          .Prepare(fmt::format("UPDATE {} SET {} = {} WHERE {}", run.From(jobs), ref, LotRefSql(lots, color, number, "NULL"), where))
          .Run();
      run.file
          .Prepare(fmt::format("UPDATE {} SET {} = (SELECT Lot.LotDate FROM {} AS Lot WHERE Lot.LotCName = {} AND Lot.LotRefID = "
                               "{} LIMIT 1) WHERE {} > 0 AND {}",
                               run.From(jobs), date, Quoted(lots), color, run.Sql(jobs, "LotRefID"), ref, where))
          .Run();
    }
}

void MakeLotTablesOf(UpgradeRun& run, const std::string& database) {
  const auto show = [&](const char* status) { run.Show(status, "Database: " + database); };
  const std::string basic = TableOfDatabase(database, "_Basic");
  const std::string mix = TableOfDatabase(database, "_Mix");
  const std::string batch = TableOfDatabase(database, "_Batch");
  show("Creating New Lotted Inv Tables:");
  run.Doing("Couldn't make the lot tables of " + database);
  for (const Table* table : {&schema::BasicLotInv, &schema::MixLotInv, &schema::BatchLotInv})
    run.MakeTable(TableName(database, *table), table->fields);
  show("Creating Basic / Mix LAB Tables:");
  for (const Table* table : {&schema::BasicLab, &schema::MixLab}) run.MakeTable(TableName(database, *table), table->fields);
  show("Basic, Mix, Batch Tables, Add New Fields:");
  run.Doing("Couldn't add LotRefID field to the tables of " + database);
  for (const std::string& table : {basic, mix, batch}) run.Add(table, "LotRefID", "0");
  run.Add(mix, "LastModified", run.Sql(mix, "Date_Entered"));
  for (const char* figure : {"Lab_L", "Lab_a", "Lab_b", "Lab_D", "Lab_Density"}) run.Add(batch, figure, "0");
  for (const char* text : {"Lab_LS", "Lab_PT", "Lab_Note"}) run.Add(batch, text, "''");
  show("Mix, Batch Tables, Re-arranging Data:");
  run.Doing("Couldn't re-arrange the data of " + database);
  MoveRecipes(run, database);
  show("Migrate Data to New Lotted Inv Tables:");
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    const std::string lots = TableName(database, LotTable(kind));
    run.Doing("Couldn't fill " + lots);
    LotMigration(run, database, kind).Run();
    run.Index(lots, "LotCName");
  }
  MoveConsumption(run, database);
  show("Creating LotRefID - Batch Tables:");
  FindLots(run, database);
  for (const char* lots : {"_Basic_LotInv", "_Mix_LotInv"}) LotMigration::DateTheRest(run, TableOfDatabase(database, lots));
  show("Deleting Lotted Fields from Original Tables:");
  RemoveLotFields(run, database);
  show("Mix, Batch Tables, Removing Fields:");
  show("Basic, Mix, Batch Tables, Reset Ord Pos.:");
  show("Basic, Mix Tables, Updating Pantone Info:");
  run.Doing("Couldn't update the Pantone info of " + database);
  for (const std::string& table : {basic, mix}) {
    const std::string guide = run.Sql(table, "Color_Guide");
    if (guide == "''" || guide == "NULL") continue;
    const std::string column = run.Own(table, "Color_Guide", FieldType::Text);
    run.Changed(table, "FORMULA GUIDE is FORMULA GUIDE GP1601A now",
                run.file
                    .Prepare(fmt::format("UPDATE {0} SET {1} = 'FORMULA GUIDE GP1601A' WHERE {1} = 'FORMULA GUIDE'", run.From(table), column))
                    .Run());
  }
}

}  // namespace

void MakeLotTables(UpgradeRun& run) {
  for (const std::string& database : run.databases) MakeLotTablesOf(run, database);
  FindLotsOfJobs(run);
  run.Show("Job Table, Reset Ord Pos.:");
}

}  // namespace vellumark
