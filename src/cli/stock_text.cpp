#include "cli/stock_text.h"

#include "cli/color_fields.h"
#include "core/base/number.h"
#include "core/base/units.h"

namespace vellumark::cli {

Json LotJson(const Session& session, const LotRow& lot) {
  return {{"LotRefID", lot.LotRefID},
          {"LotNumber", lot.LotNumber},
          {"LotLoc", lot.LotLoc},
          {"LotContID", lot.LotContID},
          {"LotDate", lot.LotDate ? Json(lot.LotDate->DateText()) : Json()},
          {"LotQty", Number(lot.LotQty)},
          {"LotPrice", Price(session, lot.LotPrice)},
          {"LotConsignment", lot.LotConsignment}};
}

Json StockJson(const Session& session, const ColorStock& stock) {
  Json lots = Json::array();
  for (const LotRow& lot : stock.lots) lots.push_back(LotJson(session, lot));
  return {{"Color_Name", stock.Color_Name},
          {"Kind", static_cast<int>(stock.kind)},
          {"Inventory", Number(stock.Inventory)},
          {"lots", std::move(lots)},
          {"Unlotted", Number(RoundSingle(stock.Inventory, 3))},
          {"Lotted", Number(stock.lotted)},
          {"Total", Number(stock.total)}};
}

std::string StockText(const Session& session, const std::vector<ColorStock>& stock) {
  std::vector<std::vector<std::string>> rows;
  for (const ColorStock& one : stock) {
    rows.push_back(
        {one.Color_Name, KindText(one.kind), std::string(kUnlottedInv), "", "", "", Fixed(one.Inventory, 3), "", ""});
    for (const LotRow& lot : one.lots) {
      rows.push_back({"", "", lot.LotNumber, lot.LotLoc, lot.LotContID, lot.LotDate ? lot.LotDate->DateText() : "",
                      Fixed(lot.LotQty, 3), session.Perm_Costs == 0 ? "" : Fixed(lot.LotPrice, session.DecimalPlaces),
                      lot.LotConsignment ? "Yes" : "No"});
    }
    if (!one.lots.empty()) rows.push_back({"", "", "Total", "", "", "", Fixed(one.total, 3), "", ""});
  }
  const std::string quantity = "Quantity (" + std::string(UnitName(session.UMI)) + ")";
  return TableText(
      {"Color Name", "Type", "Lot Number", "Location", "Cont ID Num", "Date", quantity, "Price", "Consignment"}, rows,
      {false, false, false, false, false, false, true, true, false});
}

std::string KindText(ColorKind kind) {
  return kind == ColorKind::Mix ? "Formula" : "Basic";
}

void AddKindOption(CLI::App* verb, std::string& kind) {
  verb->add_option("--kind", kind, "Which is meant when both bear the name")
      ->transform(CLI::IsMember({"basic", "formula"}, CLI::ignore_case));
}

std::optional<ColorKind> KindOf(const std::string& option) {
  if (option.empty()) return std::nullopt;
  return option == "formula" ? ColorKind::Mix : ColorKind::Basic;
}

Json AnswerStock(Context& context, ColorKind kind, const std::string& name) {
  const std::vector<ColorStock> stock = ListStock(context.session, name, kind);
  if (!context.json) context.text = StockText(context.session, stock);
  return StockJson(context.session, stock.front());
}

}  // namespace vellumark::cli
