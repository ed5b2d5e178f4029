#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QTabWidget>
#include <string>
#include <vector>

#include "core/labels/label_work.h"
#include "core/session/settings.h"
#include "desktop/labels/design_surface.h"
#include "desktop/labels/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"

namespace vellumark::test {

/// The windows of labels on an ink room, with two printers and a chooser of files that answers with `chosen`.
struct LayoutDesk : InkRoom {
  LayoutDesk() {
    Basic("RED");
    Basic("WHITE");
    Mix("PINK", {{"RED", 20.0F}, {"WHITE", 80.0F}}, {{"Color_Code", "P7"}});
    // The ladder adds these at the first start.
    for (const auto& list : {setting::GH_LabelLayoutList, setting::Formula_LabelLayoutList})
      session.support->settings.AppendSupportValue(list.key, "Default Label|");
    session.support->settings.AppendSupportValue(setting::BC_Label_Prefix_Identifier.key, "1");
    desktop::PrintDevices devices;
    devices.printers = [] {
      return desktop::SystemPrinters{{{"Zebra at the bench", "zebra"}, {"Rendering Subsystem", "rendering"}}, "zebra"};
    };
    devices.chooseFile = [this](const desktop::FileChoice& choice, QWidget*) {
      asked = choice;
      return chosen;
    };
    desktop::RegisterLabelWindows(windows, devices);
  }
  ~LayoutDesk() { windows.CloseChildWindows(); }

  desktop::Window& Open(const std::string& name, const desktop::Arguments& arguments = {}) {
    form = windows.OpenForm(name, arguments);
    form->resize(1280, 720);
    ShowActive(*form);
    return *form;
  }
  desktop::DesignSurface& Surface() { return Control<desktop::DesignSurface>(*form, "Surface"); }
  void Page(const char* page) {
    auto& tabs = Control<QTabWidget>(*form, "Pages");
    tabs.setCurrentWidget(&Control(*form, page));
    Settle();
  }
  /// What stands in the file of layouts.
  std::string OnFile(const std::string& key, LabelKind kind = LabelKind::Label,
                     const std::string& layout = "Default Label") {
    return LabelSetting(session, kind, layout, key);
  }
  void OnFile(const std::vector<std::pair<std::string, std::string>>& values, LabelKind kind = LabelKind::Label) {
    for (const auto& [key, value] : values) {
      const auto saved = SaveLabelSetting(session, kind, "Default Label", key, value);
      ASSERT_TRUE(saved) << saved.error().text;
    }
  }
  /// Hides all but these.
  void OnlyOnFile(const std::vector<std::string>& items, LabelKind kind = LabelKind::Label) {
    for (const DesignItem& item : ItemsOfDesign(kind))
      OnFile({{item.shown, std::ranges::find(items, item.name) == items.end() ? "0" : "1"}}, kind);
  }
  const desktop::SurfaceBox* Box(const std::string& name) {
    for (const desktop::SurfaceBox& box : Surface().Shown().boxes)
      if (box.item.name == name) return &box;
    return nullptr;
  }
  QString Note() { return Control<QLabel>(*form, "lblNote").text(); }

  desktop::WindowList windows{session};
  desktop::Window* form = nullptr;
  QString chosen;
  desktop::FileChoice asked;
};

}  // namespace vellumark::test
