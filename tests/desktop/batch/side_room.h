#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QRegularExpression>
#include <QLineEdit>
#include <QRadioButton>

#include "core/batch/additions.h"
#include "core/batch/record.h"
#include "core/settings/support_files.h"
#include "desktop/batch/register.h"
#include "desktop/kit/fields.h"
#include "support/combos.h"
#include "support/desktop.h"
#include "support/ink_room.h"

namespace vellumark::test {

/// An ink room with the windows around the Batch Window, and a Batch on the bench: 100 lb. of TARGET of 30 VIOLET
/// recycled, 45 RED and 25 BLUE, and 2 DRIER added.
struct SideRoom : testing::Test, InkRoom {
  SideRoom() {
    // The keys that the ladder adds at the first start.
    session.support->settings.Change([](SupportRecords& records) {
      for (const char* key : {"BatchDefaultLotNumberValue", "BatchComplete"}) records.Append(key, "0");
      for (int i = 0; i < kBatchUserFields; ++i) {
        const std::string n = std::to_string(i);
        records.Append("BatchUDTxtDefault" + n, "0");
        records.Append("BatchUDTxtValue" + n, "");
        records.Append("BatchUDTxtRequired" + n, "0");
        records.Append("Batches_UDNum_Format" + n, "3");
      }
    });
    Setting("InvLotTracking", "0");
    Breaks("RollUps");  // VIOLET has a cost that tells which of the figures a window shows
    Basic("RED", {{"PurchaseCost", 4.125F},
                  {"VOC", 0.5F},
                  {"HAP", 0.25F},
                  {"Inventory", 500.0F},
                  {"Red", 214},
                  {"Green", 40},
                  {"Blue", 48}});
    Basic("BLUE", {{"PurchaseCost", 6.0625F},
                   {"VOC", 1.0F},
                   {"HAP", 2.0F},
                   {"Inventory", 500.0F},
                   {"Red", 20},
                   {"Green", 60},
                   {"Blue", 170}});
    Basic("DRIER", {{"PurchaseCost", 10.5F}, {"VOC", 3.0F}, {"HAP", 0.5F}, {"Inventory", 50.0F}});
    Mix("TARGET", {{"RED", 60.0F}, {"BLUE", 40.0F}},
        {{"PurchaseCost", 7.125F}, {"Color_Code", "T-60-40"}, {"Red", 120}, {"Green", 50}, {"Blue", 130}});
    Mix("VIOLET", {{"RED", 50.0F}, {"BLUE", 50.0F}},
        {{"Inventory", 30.0F},
         {"Recycle", true},
         {"BasicCost", 5.25F},
         {"PurchaseCost", 8.5F},
         {"BasicVOC", 0.75F},
         {"VOC", 0.5F},
         {"BasicHAP", 1.125F},
         {"HAP", 1.0F},
         {"Red", 110},
         {"Green", 30},
         {"Blue", 150}});
    desktop::RegisterBatchSideWindows(windows);
  }

  /// Runs a dialog; what it gave back.
  std::optional<desktop::Arguments> Run(const std::string& name, const desktop::Arguments& arguments,
                                        const std::function<void(QWidget&)>& inside) {
    std::optional<desktop::Arguments> result;
    WithModal([&] { result = windows.RunDialog(name, arguments); }, inside);
    return result;
  }
  /// What the settings file holds, read by someone else.
  std::string OnFile(std::string_view key) const {
    return SupportFile(session.support->settings.Path(), session.support->settings.Shape()).GetSupportValue(key);
  }

  desktop::WindowList windows{session};
};

inline std::string TextOf(QWidget& window, const char* name) {
  return Control<QLabel>(window, name).text().toStdString();
}

inline std::string Typed(QWidget& window, const char* name) {
  return Control<QLineEdit>(window, name).text().toStdString();
}

/// All that a window says in the labels that can be seen, a line each.
inline std::string Says(QWidget& window) {
  std::string all = "\n";
  for (const auto* label : window.findChildren<QLabel*>())
    if (label->isVisible()) all += label->text().remove(QRegularExpression("&(?=[^&\\s])")).toStdString() + "\n";
  return all;
}

}  // namespace vellumark::test
