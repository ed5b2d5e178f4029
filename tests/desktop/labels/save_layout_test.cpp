#include <gtest/gtest.h>

#include "core/labels/label_layouts.h"
#include "core/session/settings.h"
#include "desktop/labels/label_windows.h"
#include "desktop/labels/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

struct SaveLayoutTest : testing::Test, InkRoom {
  SaveLayoutTest() {
    desktop::RegisterLabelWindows(windows);
    StoreSettings(session, {setting::GH_LabelLayoutList.To("Default Label|"),
                            setting::Formula_LabelLayoutList.To("Default Label|")});
  }
  desktop::WindowList windows{session};
};

// The three of them on their own lists and files: an empty name, a name in use, a new one, each with its text.
TEST_F(SaveLayoutTest, KeepsADesignUnderAName) {
  for (const desktop::LabelWindows& kind : desktop::kLabelWindows) {
    SCOPED_TRACE(kind.save);
    auto design = LabelRecords(session, kind.kind, "Default Label");
    for (SupportRecord& record : design)
      if (record.key == "Labels Across") record.value = "4";
    std::optional<desktop::Arguments> kept;
    WithModal([&] { kept = windows.RunDialog(kind.save, {{"Design", design}, {"LayoutName", "Default Label"}}); },
              [&](QWidget& dialog) {
                if (kind.kind == LabelKind::Label) Picture(dialog, "label-save-layout", {});
                Fill(dialog, "txtLabelName", " ");
                prompt.Expect("Label Layout", Answer::Ok, "Please enter a name for this Label Layout.");
                Click(dialog, "cmdSave");
                EXPECT_EQ(FocusName(), "txtLabelName");
                Fill(dialog, "txtLabelName", "default label");
                prompt.Expect("Overwrite Existing Label Layout?", Answer::No,
                              "Overwrite existing Default Label Label Layout?");
                Click(dialog, "cmdSave");
                Fill(dialog, "txtLabelName", "Drums");
                PressOn(Qt::Key_Return);
              });
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->Text("LayoutName"), "Drums");
    EXPECT_EQ(LabelLayouts(session, kind.kind), (std::vector<std::string>{"Default Label", "Drums"}));
    EXPECT_EQ(LabelSetting(session, kind.kind, "Drums", "Labels Across"), "4");
    EXPECT_EQ(LabelSetting(session, kind.kind, "Default Label", "Labels Across"), "1");
    EXPECT_FALSE(LabelSetting(session, kind.kind, "Drums", "Label Width").empty());
  }
}

}  // namespace
}  // namespace vellumark::test
