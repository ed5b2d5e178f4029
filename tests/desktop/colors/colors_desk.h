#pragma once

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <string>
#include <vector>

#include "desktop/colors/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"
#include "support/sample_room.h"

namespace vellumark::test {

inline constexpr const char* kName = "cmbColorName";
inline const std::string kPad30(30, ' ');

/// An ink room and the windows of its colours, one of them open.
struct ColorsDesk : InkRoom {
  ColorsDesk() { desktop::RegisterColorsWindows(windows); }

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
};

}  // namespace vellumark::test
