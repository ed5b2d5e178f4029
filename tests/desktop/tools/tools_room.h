#pragma once

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <algorithm>

#include "core/base/number.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "desktop/kit/grid.h"
#include "desktop/tools/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"

namespace vellumark::test {

/// An ink room with the tools of its windows, worked with keys and clicks.
struct ToolsRoom : testing::Test, InkRoom {
  ToolsRoom() { RegisterToolsWindows(windows); }

  /// Some inks, two Additives, a set of them with 5 percent, and formulas with and without it.
  void HaveInks() {
    for (const char* name : {"BLUE", "GREEN", "RED", "WHITE"}) Basic(name, {{"Red", 40}, {"Green", 90}, {"Blue", 200}});
    for (const char* name : {"DRIER", "WAX"}) Basic(name, {{"Additive", true}});
    Set("SLOW", {{"DRIER", 2.0F}, {"WAX", 3.0F}});
    Mix("NAVY", {{"BLUE", 60}, {"GREEN", 20}, {"RED", 20}}, {{"Red", 20}, {"Green", 30}, {"Blue", 90}});
    Mix("PINK", {{"RED", 10}, {"WHITE", 90}}, {{"Red", 240}, {"Green", 170}, {"Blue", 190}});
    Mix("PURPLE", {{"BLUE", 40}, {"RED", 60}}, {{"Red", 110}, {"Green", 30}, {"Blue", 140}});
    Mix("SLOW PINK", {{"RED", 20}, {"WHITE", 75}, {"DRIER", 2}, {"WAX", 3}},
        {{"AddSetName", "SLOW"}, {"Red", 230}, {"Green", 120}, {"Blue", 150}});
  }
  void Set(const std::string& name, const std::vector<std::pair<std::string, float>>& rows) {
    std::vector<Cell> cells{{"SetName", name}};
    std::string list;
    for (std::size_t n = 0; n < schema::kSetSlots; ++n) {
      const bool used = n < rows.size();
      cells.emplace_back(schema::Numbered("Add_Name", static_cast<int>(n)), used ? rows[n].first : "");
      cells.emplace_back(schema::Numbered("Add_Percent", static_cast<int>(n)), used ? rows[n].second : 0.0F);
      if (used) list += "<" + rows[n].first + ">";
    }
    cells.emplace_back("SetList", list);
    AddRow(schema::Additives, cells);
  }
  /// "RED 60.000, BLUE 40.000 SLOW" as it is stored.
  std::string Stored(const std::string& name) {
    const auto mix = ReadMix(session, name);
    if (!mix) return "gone";
    std::string text;
    for (const Ingredient& line : mix->Ingredients())
      text += (text.empty() ? "" : ", ") + line.name + " " + Fixed(line.amount, 3);
    return mix->AddSetName.empty() ? text : text + " " + mix->AddSetName;
  }

  desktop::Window& Open(const char* name) {
    form = windows.OpenForm(name);
    if (form != nullptr) ShowActive(*form);
    return *form;
  }
  desktop::Grid& List(const char* name) { return Control<desktop::Grid>(*form, name); }
  /// A column of a list as it is shown.
  std::vector<std::string> Shown(const char* list, int column = 1) {
    std::vector<std::string> texts;
    for (const int row : List(list).ShownRows()) texts.push_back(List(list).Model().Source()->Text(row, column));
    return texts;
  }
  /// A click on a cell of the row with that text in its first column of texts.
  void ClickCell(const char* list, const std::string& text, int column, int textColumn = 1) {
    desktop::Grid& grid = List(list);
    const auto texts = Shown(list, textColumn);
    const auto found = std::ranges::find(texts, text);
    ASSERT_NE(found, texts.end()) << list << " does not show " << text;
    const QModelIndex index = grid.Model().index(static_cast<int>(found - texts.begin()), column);
    grid.View().scrollTo(index);
    QTest::mouseClick(grid.View().viewport(), Qt::LeftButton, Qt::NoModifier, grid.View().visualRect(index).center());
    Settle();
  }
  void Check(const char* list, const std::string& color) { ClickCell(list, color, 0); }
  bool IsOn(const char* name) { return Control(*form, name).isEnabled(); }
  std::string Text(const char* field) { return Control<QLineEdit>(*form, field).text().toStdString(); }
  std::string Label(const char* name) { return Control<QLabel>(*form, name).text().toStdString(); }
  void Choose(const char* combo, const std::string& entry) {
    auto& box = Control<QComboBox>(*form, combo);
    box.setFocus();
    PressOn(Qt::Key_Home);
    for (int step = 0; step < box.count() && box.currentText().toStdString() != entry; ++step) PressOn(Qt::Key_Down);
    EXPECT_EQ(box.currentText().toStdString(), entry);
  }

  desktop::WindowList windows{session};
  desktop::Window* form = nullptr;
};

}  // namespace vellumark::test
