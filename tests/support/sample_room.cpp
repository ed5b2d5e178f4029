#include "support/sample_room.h"

#include <fstream>
#include <sstream>

#include "core/base/number.h"
#include "support/places.h"

namespace vellumark::test {

namespace {

constexpr DateTime kEntered{2025, 9, 14};

float Figure(const std::string& text) {
  return static_cast<float>(ParseNumber(text).value());
}

int Shade(const std::string& text) {
  return static_cast<int>(Figure(text));
}

}  // namespace

std::vector<std::vector<std::string>> SampleRows(const std::string& file) {
  std::ifstream in(SourceFolder() / "data/ink_room" / file);
  std::vector<std::vector<std::string>> rows;
  std::string line;
  for (std::getline(in, line); std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::istringstream cells(line);
    rows.emplace_back();
    for (std::string cell; std::getline(cells, cell, '\t');) rows.back().push_back(cell);
  }
  return rows;
}

void HaveSampleInkRoom(InkRoom& room, float leftover) {
  for (const auto& c : SampleRows("basics.tsv"))
    room.Basic(c[0], {{"Color_Code", c[1]},
                      {"Additive", c[2] == "1"},
                      {"PurchaseCost", Figure(c[3])},
                      {"VOC", Figure(c[4])},
                      {"HAP", Figure(c[5])},
                      {"Red", Shade(c[6])},
                      {"Green", Shade(c[7])},
                      {"Blue", Shade(c[8])},
                      {"Reorder", Figure(c[9])},
                      {"Inventory", Figure(c[10])},
                      {"Notes", c.size() > 12 ? c[12] : ""},
                      {"Date_Entered", kEntered},
                      {"Color_Guide", ""}});
  const auto formulas = SampleRows("ink_room.mfe");
  const auto swatches = SampleRows("swatches.tsv");
  for (std::size_t i = 0; i < formulas.size(); ++i) {
    std::vector<std::pair<std::string, float>> parts;
    for (std::size_t n = 1; n + 1 < formulas[i].size(); n += 2)
      parts.emplace_back(formulas[i][n], Figure(formulas[i][n + 1]));
    const auto& swatch = swatches[i];
    room.Mix(formulas[i][0], parts,
             {{"Color_Code", swatch[1]},
              {"Red", Shade(swatch[swatch.size() - 3])},
              {"Green", Shade(swatch[swatch.size() - 2])},
              {"Blue", Shade(swatch[swatch.size() - 1])},
              {"Inventory", i % 3 == 2 ? leftover : 0.0F},
              {"Recycle", true},
              {"Date_Entered", kEntered},
              {"LastModified", kEntered},
              {"Color_Guide", ""}});
  }
}

}  // namespace vellumark::test
