#include "core/jobs/design_tables.h"

#include <fmt/format.h>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/color_figure.h"
#include "core/session/rights.h"
#include "core/session/settings.h"

namespace vellumark {

TableOf<Design> DesignColumns(const Session& session) {
  TableOf<Design> table;
  DesignFields().AddColumns(table, SeenBy(session));
  table
      .Add(
          "", [](const Design& design) { return design.Colors().size(); }, "Colors")
      .Add(
          "", [](const Design& design) { return design.Photos().size(); }, "Photos")
      .Add(
          "", [](const Design& design) { return design.LastUsed; }, "Last Used", Format::Date)
      .Show({"Design ID", "Description", "Impressions", "Colors", "Photos", "Last Used"});
  return table;
}

ListTable ListDesigns(const Session& session) {
  return DesignColumns(session).Of([&session](const auto& take) { ForEachDesign(session, take); });
}

std::vector<DesignColorCost> DesignCosts(const Session& session, const std::vector<DesignColor>& colors) {
  const bool purchase = GetSetting(session, setting::DesignsCostModelIndex) == 1;
  std::vector<DesignColorCost> costs;
  for (const DesignColor& color : colors) {
    DesignColorCost line{color, std::nullopt, std::nullopt};
    const bool mix = color.Kind() == ColorKind::Mix;
    const std::string* database = session.FindDatabase(color.IngDB);
    const float figure = database == nullptr ? 0
                                             : ColorFigure(session, color.Kind(), color.IngName,
                                                           mix && !purchase ? "BasicCost" : "PurchaseCost", *database);
    line.unitCost = SeenPrice(session, figure);
    if (line.unitCost) line.cost = double{color.IngQty} * double{figure};
    costs.push_back(std::move(line));
  }
  return costs;
}

std::string DesignTotalCost(const Session& session, const std::vector<DesignColor>& colors) {
  if (!SeenPrice(session, 0)) return "User Permissions - Price Blocked";
  double total = 0;
  for (const DesignColorCost& line : DesignCosts(session, colors)) total += *line.cost;
  return Fixed(total, session.DecimalPlaces);
}

TableOf<DesignColorCost> DesignColorColumns(const Session& session) {
  using Line = DesignColorCost;
  const std::string unit(UnitName(session.UMI));
  return TableOf<Line>()
      .Add(
          "IngName", [](const Line& line) { return line.color.IngName; }, "Color Name")
      .Add(
          "IngCCode", [](const Line& line) { return line.color.IngCCode; }, "Color Code")
      .Add(
          "IngDB", [](const Line& line) { return line.color.IngDB; }, "Database")
      .Add(
          "", [](const Line& line) { return std::string(line.color.Kind() == ColorKind::Mix ? "Formula" : "Basic"); },
          "Type")
      .Add(
          "IngType", [](const Line& line) { return static_cast<int>(line.color.Kind()); }, "Kind")
      .Add(
          "IngQty", [](const Line& line) { return line.color.IngQty; }, fmt::format("Quantity ({})", unit))
      .Add(
          "IngPercent", [](const Line& line) { return line.color.IngPercent; }, "% Coverage")
      .Add("UnitCost", &Line::unitCost, fmt::format("Cost per {}", unit), Format::Amount, session.DecimalPlaces)
      .Add(
          "Cost", [](const Line& line) { return line.cost ? TableValue(*line.cost) : TableValue(); }, "Cost",
          Format::Amount, session.DecimalPlaces)
      .Show({"Color Name", "Type", "Database", fmt::format("Quantity ({})", unit), "% Coverage",
             fmt::format("Cost per {}", unit), "Cost"});
}

}  // namespace vellumark
