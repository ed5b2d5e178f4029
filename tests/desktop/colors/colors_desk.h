#pragma once

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "core/base/number.h"
#include "desktop/colors/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"
#include "support/places.h"

namespace vellumark::test {

inline constexpr const char* kName = "cmbColorName";
inline const std::string kPad30(30, ' ');

/// An ink room and the windows of its colours, one of them open.
struct ColorsDesk : InkRoom {
  ColorsDesk() { desktop::RegisterColorsWindows(windows); }

  /// The colours and formulas of the sample ink room.
  void HaveInkRoom() {
    const auto single = [](const std::string& text) { return static_cast<float>(ParseNumber(text).value()); };
    const auto basics = Lines("basics.tsv");
    for (std::size_t i = 1; i < basics.size(); ++i) {
      const auto& c = basics[i];
      Basic(c[0], {{"Color_Code", c[1]},
                   {"Additive", c[2] == "1"},
                   {"PurchaseCost", single(c[3])},
                   {"VOC", single(c[4])},
                   {"HAP", single(c[5])},
                   {"Red", static_cast<int>(single(c[6]))},
                   {"Green", static_cast<int>(single(c[7]))},
                   {"Blue", static_cast<int>(single(c[8]))},
                   {"Reorder", single(c[9])},
                   {"Inventory", single(c[10])},
                   {"Notes", c.size() > 12 ? c[12] : ""},
                   {"Date_Entered", DateTime{2025, 9, 14}},
                   {"Color_Guide", ""}});
    }
    const auto formulas = Lines("ink_room.mfe");
    const auto swatches = Lines("swatches.tsv");
    for (std::size_t i = 1; i < formulas.size(); ++i) {
      std::vector<std::pair<std::string, float>> parts;
      for (std::size_t n = 1; n + 1 < formulas[i].size(); n += 2)
        parts.emplace_back(formulas[i][n], single(formulas[i][n + 1]));
      const auto& swatch = swatches[i];
      Mix(formulas[i][0], parts,
          {{"Color_Code", swatch[1]},
           {"Red", static_cast<int>(single(swatch[swatch.size() - 3]))},
           {"Green", static_cast<int>(single(swatch[swatch.size() - 2]))},
           {"Blue", static_cast<int>(single(swatch[swatch.size() - 1]))},
           {"Color_Guide", ""},
           {"Recycle", true},
           {"Date_Entered", DateTime{2025, 9, 14}},
           {"LastModified", DateTime{2025, 9, 14}}});
    }
  }

  desktop::Window& Open(const char* name) {
    form = windows.OpenForm(name);
    ShowActive(*form);
    return *form;
  }
  /// Types the name and goes on.
  void Enter(const std::string& name) {
    Type(Control(*form, kName), name);
    PressOn(Qt::Key_Return);
  }
  std::string Text(const char* field) { return Control<QLineEdit>(*form, field).text().toStdString(); }
  std::string Label(const char* name) { return Control<QLabel>(*form, name).text().toStdString(); }
  bool IsOn(const char* name) { return Control(*form, name).isEnabled(); }
  void ExpectEmpty() {
    EXPECT_EQ(Text(kName), "");
    EXPECT_EQ(FocusName(), kName);
    EXPECT_FALSE(IsOn("cmdSave"));
  }

  desktop::WindowList windows{session};
  desktop::Window* form = nullptr;

 private:
  static std::vector<std::vector<std::string>> Lines(const std::string& file) {
    std::ifstream in(SourceFolder() / "data/ink_room" / file);
    std::vector<std::vector<std::string>> lines;
    for (std::string line; std::getline(in, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      std::vector<std::string> cells;
      std::istringstream row(line);
      for (std::string cell; std::getline(row, cell, '\t');) cells.push_back(cell);
      lines.push_back(cells);
    }
    return lines;
  }
};

}  // namespace vellumark::test
