#include "core/jobs/design_bench.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/colors/basics.h"
#include "core/colors/color_figure.h"
#include "core/colors/formulas.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

double StockOf(const Session& session, const DesignColor& color, const std::string& database) {
  double stock = ColorFigure(session, color.Kind(), color.IngName, "Inventory", database);
  if (session.InvLotTracking == 1)
    stock +=
        session.File()
            .Scalar(fmt::format("SELECT SUM(LotQty) FROM {} WHERE LotCName = ? AND COALESCE(LotConsignment, 0) = 0",
                                Quoted(session.Table(LotTable(color.Kind()), database))),
                    {Value(color.IngName)})
            .Number();
  return stock;
}

Result<double> NeededOf(const Session& session, const Design& design, const DesignColor& color, const RunWish& wish,
                        double impressions) {
  if (!wish.estimate) return double{color.IngQty} * impressions / design.Impressions;
  SheetfedWork work;
  work.length = ShortestText(design.Length);
  work.width = ShortestText(design.Width);
  work.sheets = ShortestText(impressions);
  work.ink = wish.ink;
  work.stock = wish.stock;
  if (color.IngPercent > 0) {
    work.area = AreaType::Coverage;
    work.percent = std::to_string(color.IngPercent);
  }
  const auto estimate = EstimateSheetfed(session, work);
  if (!estimate) return std::unexpected(estimate.error());
  return estimate->pounds * double{UnitFactor(UnitPound, session.UMI)};
}

}  // namespace

Result<std::vector<RunNeed>> NeedsOfRun(const Session& session, const Design& design, const RunWish& wish) {
  const auto impressions = ParseNumber(wish.impressions);
  if (!impressions || *impressions <= 0)
    return Refuse("Impressions - Invalid Data", "Bad Value for Impressions.", "Impressions");
  if (!wish.estimate && design.Impressions <= 0)
    return Refuse("Design",
                  "The Design does not tell for how many impressions its quantities are.\n\nEnter its Impressions, or "
                  "choose the estimate.",
                  "Impressions");
  if (wish.estimate && !(design.Length > 0 && design.Width > 0))
    return Refuse("Design", "The Design has no Length and Width to estimate from.", "Length");
  std::vector<RunNeed> needs;
  for (const DesignColor& color : design.Colors()) {
    RunNeed need{.color = color};
    const auto needed = NeededOf(session, design, color, wish, *impressions);
    if (!needed) return std::unexpected(needed.error());
    need.needed = *needed;
    const std::string* database = session.FindDatabase(color.IngDB);
    need.known = !color.IngDB.empty() && database != nullptr &&
                 (color.Kind() == ColorKind::Mix ? MixColorExists(session, color.IngName, *database)
                                                 : BasicColorExists(session, color.IngName, *database));
    if (need.known) need.stock = StockOf(session, color, *database);
    need.toMake = std::max(0.0, need.needed - std::max(0.0, need.stock));
    needs.push_back(std::move(need));
  }
  return needs;
}

TableOf<RunNeed> RunNeedColumns(const Session& session) {
  const std::string unit(UnitName(session.UMI));
  using Need = RunNeed;
  return TableOf<Need>()
      .Add(
          "IngName", [](const Need& need) { return need.color.IngName; }, "Color Name")
      .Add("IngType", [](const Need& need) { return static_cast<int>(need.color.Kind()); })
      .Add(
          "", [](const Need& need) { return std::string(need.color.Kind() == ColorKind::Mix ? "Formula" : "Basic"); },
          "Type")
      .Add(
          "IngDB", [](const Need& need) { return need.color.IngDB; }, "Database")
      .Add("Needed", &Need::needed, fmt::format("Needed ({})", unit))
      .Large()
      .Add("Stock", &Need::stock, fmt::format("In Stock ({})", unit))
      .Large()
      .Add("ToMake", &Need::toMake, fmt::format("To Make ({})", unit))
      .Large()
      .Add("Known", &Need::known)
      .Add(
          "", [](const Need& need) { return std::string(need.known ? "" : "not in the Database"); }, "Note")
      .Show({"Color Name", "Type", "Database", fmt::format("Needed ({})", unit), fmt::format("In Stock ({})", unit),
             fmt::format("To Make ({})", unit), "Note"});
}

std::string BatchQuantityText(const Session& session, const RunNeed& need) {
  const double quantity = need.toMake * double{UnitFactor(session.UMI, session.UMF)};
  // What the arithmetic leaves behind the sixth decimal is no ink.
  return Fixed(std::ceil(RoundTo(quantity, 6) * 1000.0) / 1000.0, 3);
}

}  // namespace vellumark
