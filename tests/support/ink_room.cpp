#include "support/ink_room.h"

#include <fmt/format.h>

#include <algorithm>

namespace vellumark::test {

InkRoom::InkRoom() {
  session.DataFolder = folder / "VKDat";
  std::filesystem::create_directories(session.DataFolder);
  session.support = std::make_unique<SupportFiles>(session.DataFolder);
  WriteMissingSupportFiles(*session.support);
  const std::filesystem::path path = folder / "Test Data.vkd";
  CreateFile(path);
  session.DataFileDB = Database::Open(path, OpenMode::Exclusive);
  session.DataFileDB->SetChanges(&session.changes);
  session.DataFileName = path.string();
  session.DataFileOpen = true;
  CreateEmptyDatabase(session.File(), "INK");
  session.CurrentDatabase = "INK";
  session.databaseList = {"INK"};
  ReadSettings(session);
}

InkRoom::~InkRoom() {
  if (!session.DataFileDB) session.DataFileDB = Database::Open(session.DataFileName, OpenMode::Exclusive);
  sound.Expect(session, CheckState::InUse);
}

void InkRoom::Basic(const std::string& name, std::vector<Cell> cells) {
  cells.insert(cells.begin(),
               {{"Color_Name", name}, {"IngSort", session.File().Scalar("SELECT COUNT(*) FROM INK_Basic")}});
  AddRow(schema::Basic, std::move(cells));
}

void InkRoom::Mix(const std::string& name, const std::vector<std::pair<std::string, float>>& parts,
                  std::vector<Cell> cells) {
  std::string set;
  for (std::size_t i = 0; i < schema::kIngredientSlots; ++i) {
    const bool used = i < parts.size();
    cells.emplace_back(schema::Numbered("BC", static_cast<int>(i)), used ? parts[i].first : "");
    cells.emplace_back(schema::Numbered("BQ", static_cast<int>(i)), used ? parts[i].second : 0.0F);
    if (used) set += "<" + parts[i].first + ">";
  }
  cells.emplace_back("Color_Name", name);
  cells.emplace_back("Color_Set", set);
  Recipe recipe;
  for (const auto& [ingredient, amount] : parts) recipe.push_back({ingredient, ShownAmount(amount)});
  const RolledUp figures = RollUpRecipe(session, recipe);
  cells.insert(cells.begin(),
               {{"BasicCost", figures.BasicCost}, {"BasicVOC", figures.BasicVOC}, {"BasicHAP", figures.BasicHAP}});
  AddRow(schema::Mix, std::move(cells));
}

std::int64_t InkRoom::AddRow(const Table& table, std::vector<Cell> cells) {
  // A cell given later overrides a default given earlier.
  std::vector<Cell> unique;
  for (Cell& cell : cells) {
    auto found = std::find_if(unique.begin(), unique.end(), [&](const Cell& c) { return c.first == cell.first; });
    if (found == unique.end()) {
      unique.push_back(std::move(cell));
    } else {
      found->second = std::move(cell.second);
    }
  }
  const Arranging arranging;
  Transaction transaction(session.File());
  const std::int64_t row = InsertRow(session.File(), table, session.Table(table), unique);
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    if (&table == &ColorTable(kind)) TellStock(kind, unique, "Color_Name", "Inventory");
    if (&table == &LotTable(kind)) TellStock(kind, unique, "LotCName", "LotQty");
  }
  if (&table == &schema::Batch) MoveCounter(unique);
  if (&table == &schema::Additives) MarkAdditives(unique);
  transaction.Commit();
  return row;
}

void InkRoom::HaveStock(ColorKind kind, float quantity) {
  const Arranging arranging;
  Transaction transaction(session.File());
  const std::string table = session.QuotedTable(ColorTable(kind));
  Statement colors = session.File().Prepare("SELECT Color_Name, Inventory FROM " + table);
  while (colors.Step()) {
    StockLine line = NewStockLine(session, StockEvent::Opening, kind, {}, colors.Text(0));
    line.result = quantity;
    line.change = StockDifference(colors.Single(1), quantity);
    AddStockLine(session.File(), line);
  }
  session.File().Prepare("UPDATE " + table + " SET Inventory = ?").Bind(1, quantity).Run();
  transaction.Commit();
}

void InkRoom::MoveCounter(const std::vector<Cell>& cells) {
  for (const auto& [field, value] : cells)
    if (field == "BatchNo")
      session.File()
          .Prepare(
              "UPDATE FileInfo SET BatchNumber = CASE WHEN BatchNumber > ?1 % 999999 THEN BatchNumber ELSE ?1 % 999999 "
              "+ 1 END")
          .Bind(1, value.Whole())
          .Run();
}

void InkRoom::MarkAdditives(const std::vector<Cell>& cells) {
  for (const auto& [field, value] : cells) {
    if (!field.starts_with("Add_Name") || value.Text().empty()) continue;
    session.File().Prepare("UPDATE INK_Basic SET Additive = 1 WHERE Color_Name = ?").Bind(1, value).Run();
    const std::string percent = "Add_Percent" + field.substr(8);
    session.File()
        .Prepare(fmt::format("UPDATE INK_Additives SET {0} = 1 WHERE COALESCE({0}, 0) = 0 AND {1} = ?", percent, field))
        .Bind(1, value)
        .Run();
  }
}

void InkRoom::TellStock(ColorKind kind, const std::vector<Cell>& cells, const std::string& name,
                        const std::string& quantity) {
  const auto value = [&](const std::string& field) {
    const auto found = std::find_if(cells.begin(), cells.end(), [&](const Cell& c) { return c.first == field; });
    return found == cells.end() ? Value() : found->second;
  };
  StockLine line = NewStockLine(session, StockEvent::Opening, kind, {}, value(name).Text());
  line.result = value(quantity).Single();
  if (line.result == 0 || !HasStockHistory(session.File())) return;
  line.change = StockDifference(0, line.result);
  line.LotNumber = value("LotNumber").Text();
  if (quantity == "LotQty") line.LotRefID = static_cast<std::int32_t>(value("LotRefID").Whole());
  AddStockLine(session.File(), line);
}

Value InkRoom::Scalar(std::string_view sql, std::initializer_list<Value> parameters) {
  return session.File().Scalar(sql, parameters);
}

void InkRoom::Setting(std::string_view key, std::string_view value) {
  session.support->settings.SetSupportValue(key, value);
  ReadSettings(session);
}

}  // namespace vellumark::test
