#include <fmt/format.h>

#include <memory>

#include "cli/frame.h"
#include "core/base/text.h"
#include "core/jobs/ink_estimator.h"

namespace vellumark::cli {
namespace {

// A place in a list of names: the number, or the name in any case.
std::optional<int> PlaceOf(std::span<const std::string_view> names, const std::string& typed) {
  for (std::size_t i = 0; i < names.size(); ++i)
    if (EqualNoCase(names[i], typed) || std::to_string(i) == typed) return static_cast<int>(i);
  return std::nullopt;
}

CLI::Option* AddChoice(CLI::App* verb, const std::string& option, int& place, std::span<const std::string_view> names,
                       const std::string& what) {
  std::string list;
  for (const std::string_view name : names) list += (list.empty() ? "" : ", ") + std::string(name);
  return verb
      ->add_option_function<std::string>(
          option, [&place, names](const std::string& typed) { place = *PlaceOf(names, typed); }, what + ": " + list)
      ->check([names](const std::string& typed) {
        return PlaceOf(names, typed) ? std::string() : typed + " is none of the list";
      });
}

void AddArea(CLI::App* verb, PrintedArea& area) {
  verb->add_option("--length", area.length, "Length that is printed")->required();
  verb->add_option("--width", area.width, "Width that is printed")->required();
  verb->add_option("--sheets", area.sheets, "Number of sheets")->required();
  verb->add_option_function<std::string>(
          "--uom", [&area](const std::string& typed) { area.unit = *ParseLengthUnit(typed); }, "in. or mm.")
      ->check([](const std::string& typed) {
        return ParseLengthUnit(typed) ? std::string() : typed + " is not in. or mm.";
      });
}

Result<Json> Answer(Context& context, const Result<InkEstimate>& estimate, const Result<Sheet>& sheet) {
  if (!estimate) return std::unexpected(estimate.error());
  if (context.prints) context.sheet = *sheet;
  return Json{{"Pounds", estimate->PoundsText()}, {"Kilograms", estimate->KilogramsText()}};
}

}  // namespace

void AddEstimateCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "estimate", "How much ink a job will need: sheetfed, flexo");
  auto* sheetfed = noun->add_subcommand("sheetfed", "By the mileage of ink and stock");
  const auto sheets = std::make_shared<SheetfedWork>();
  const auto area = std::make_shared<int>(0);
  AddChoice(sheetfed, "--ink", sheets->ink, kInkTypeNames, "Type of ink")->required();
  AddChoice(sheetfed, "--stock", sheets->stock, kStockTypeNames, "Type of stock")->required();
  AddChoice(sheetfed, "--area", *area, kAreaTypeNames, "Area type")->required();
  sheetfed->add_option("--percent", sheets->percent, "Coverage, with the area type Coverage");
  sheetfed->add_option("--up", sheets->up, "Impressions up")->check(CLI::Range(1, kMostUp));
  AddArea(sheetfed, *sheets);
  commands.AddPrinting(sheetfed);
  commands.Add(sheetfed, Needs::Nothing, [sheets, area](Context& context) {
    sheets->area = static_cast<AreaType>(*area);
    return Answer(context, EstimateSheetfed(context.session, *sheets), SheetfedSheet(context.session, *sheets));
  });

  auto* flexo = noun->add_subcommand("flexo", "By the factor of the anilox");
  const auto labels = std::make_shared<FlexoWork>();
  flexo->add_option("--anilox", labels->anilox, "The choice: 0 to 3")
      ->required()
      ->check(CLI::Range(0, kAniloxChoices - 1));
  flexo->add_option("--percent", labels->percent, "Coverage per label")->required();
  AddArea(flexo, *labels);
  commands.AddPrinting(flexo);
  commands.Add(flexo, Needs::Nothing, [labels](Context& context) {
    return Answer(context, EstimateFlexo(context.session, *labels), FlexoSheet(context.session, *labels));
  });
}

}  // namespace vellumark::cli
