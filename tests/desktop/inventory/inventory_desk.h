#pragma once

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <string>
#include <vector>

#include "core/inventory/stock_list.h"
#include "core/session/options.h"
#include "core/settings/settings.h"
#include "core/settings/support_files.h"
#include "desktop/colors/register.h"
#include "desktop/inventory/register.h"
#include "desktop/kit/grid.h"
#include "support/desktop.h"
#include "support/stock_room.h"

namespace vellumark::test {

/// The windows of stock on an ink room, without the reminder that the first of them shows.
struct InventoryDesk : StockRoom {
  InventoryDesk() {
    desktop::RegisterInventoryWindows(windows);
    desktop::RegisterColorsWindows(windows);
    session.support->settings.AppendSupportValue(setting::InvRecordMethod.key, "0");  // the ladder adds it at the first start
    Setting(setting::LottedInvReminder.key, "0");
  }

  /// Stock is entered by unit weight and count, with containers.
  void ByContainer() {
    InventorySettings settings = ReadInventorySettings(session);
    settings.InvRecordMethod = 1;
    ASSERT_TRUE(SaveInventorySettings(session, settings));
  }
  void NegativeAllowed() {
    InventorySettings settings = ReadInventorySettings(session);
    settings.AllowNegInv = true;
    ASSERT_TRUE(SaveInventorySettings(session, settings));
  }

  desktop::Window& Open(const desktop::Arguments& arguments = {}) {
    form = windows.OpenForm("AdjustInventoryForm", arguments);
    ShowActive(*form);
    return *form;
  }
  /// Types the name and goes on.
  void Enter(const std::string& name) {
    Type(Control(*form, "cmbColorName"), name);
    PressOn(Qt::Key_Return);
  }
  /// Types into the fields as they come, each left with Enter; nothing typed leaves a field as it is.
  void Keys(const std::vector<std::string>& typed) {
    for (const std::string& text : typed) {
      if (!text.empty()) TypeOn(text);
      PressOn(Qt::Key_Return);
    }
  }
  std::string Text(const char* field) {
    QWidget& widget = Control(*form, field);
    if (auto* combo = qobject_cast<QComboBox*>(&widget)) return combo->currentText().toStdString();
    if (auto* label = qobject_cast<QLabel*>(&widget)) return label->text().remove('&').toStdString();
    if (auto* button = qobject_cast<QPushButton*>(&widget)) return button->text().remove('&').toStdString();
    return dynamic_cast<QLineEdit&>(widget).text().toStdString();
  }
  desktop::Grid& List() { return Control<desktop::Grid>(*form, "InvColorList"); }
  /// The visible cells of a shown row, parted by blanks.
  std::string Row(int shown) {
    desktop::Grid& list = List();
    const int row = list.ShownRows().at(static_cast<std::size_t>(shown));
    std::string text;
    for (int column = 1; column < static_cast<int>(list.Columns().size()); ++column) {
      if (!list.IsShown(column)) continue;
      const std::string cell = list.Model().Source()->Text(row, column);
      text += (text.empty() ? "" : "|") + cell;
    }
    return text;
  }
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    for (std::size_t i = 0; i < List().ShownRows().size(); ++i) rows.push_back(Row(static_cast<int>(i)));
    return rows;
  }

  desktop::WindowList windows{session};
  desktop::Window* form = nullptr;
};

}  // namespace vellumark::test
