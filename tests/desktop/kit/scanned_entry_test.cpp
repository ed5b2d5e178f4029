// What a scanner types, in fields of every kind and where there is none.

#include "desktop/kit/scanned_entry.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>

#include "desktop/kit/job_box.h"
#include "desktop/kit/message_prompt.h"
#include "desktop/kit/name_source.h"
#include "support/desk.h"
#include "support/scanner.h"

namespace vellumark::test {
namespace {

class LabelWindow : public desktop::Window {
 public:
  explicit LabelWindow(desktop::WindowList& list) : Window(list, "LabelWindow", "Label") {
    desktop::Form form(*this);
    session.AutoFillText = 1;
    session.NameLength = 20;
    form.Row("Name", form.Name("cmbColorName", desktop::SortedNames({"RED", "RED 032", "BLUE"})));
    form.Row("Job", form.Text("JobNumber", desktop::TextRule::Any(12)));
    form.Row("Lot", form.Text("txtLotNumber", desktop::TextRule::Upper(30)));
    form.Row("Quantity", form.Number("txtQty", 3));
    form.Row("Note", form.Note("txtNote", 2));
    auto* place = form.Combo("cmbLocation");
    place->setEditable(true);
    form.Row("Location", place);
    form.Row(form.Button("cmdPress", "Press", [this] { ++pressed; }));
  }
  int pressed = 0;
};

struct ScannedEntryTest : testing::Test, Desk {
  ScannedEntryTest() : window(windows) { ShowActive(window); }
  std::string Text(const char* name) { return Control<QLineEdit>(window, name).text().toStdString(); }
  void Focus(const char* name) { Control(window, name).setFocus(Qt::TabFocusReason); }
  std::string All() {
    return Text("cmbColorName") + "|" + Text("JobNumber") + "|" + Text("txtLotNumber") + "|" + Text("txtQty");
  }
  LabelWindow window;
  Scanner scanner;
};

TEST_F(ScannedEntryTest, ACodeStandsInItsFieldAloneAndTheNextHasTheFocus) {
  struct {
    const char* field;
    const char* before;
    const char* scan;
    const char* all;
    const char* focus;
  } const cases[] = {
      {"cmbColorName", "", "<CN>red\r", "RED|||", "JobNumber"},  // not RED 032
      {"cmbColorName", "BLUE", "<cn>PANTONE 185 C 1234 X\r\n", "PANTONE 185 C 1234 X|||", "JobNumber"},
      {"cmbColorName", "", "RED 0\r", "RED 0|||", "JobNumber"},  // by its speed: nothing is filled in behind it
      {"cmbColorName", "", "BLUE\t", "BLUE|||", "JobNumber"},
      {"JobNumber", "old", "<JN>J-1042\n", "|J-1042||", "txtLotNumber"},
      {"txtLotNumber", "x", "<LN>a<1>\r", "||A1|", "txtQty"},
      {"txtLotNumber", "", "<UN>ANN\t", "||ANN|", "txtQty"},
      // A code of all fields, one a line: the one that belongs here.
      {"txtLotNumber", "", "<CN>RED\r\n<CC>R1\r\n<LN>A1\r\n<JN>J1\r\n", "||A1|", "txtQty"},
      {"JobNumber", "", "<CN>RED\r<JN>J1\r<LN>A1\r", "|J1||", "txtLotNumber"},
      // Too long for the field, or no number: nothing of it.
      {"JobNumber", "J-1", "<JN>J-1042-1043-1044\r", "|J-1||", "JobNumber"},
      {"txtQty", "5", "<CN>RED\r", "|||5", "txtQty"},
      {"txtQty", "5", "<U1>7.5\r", "|||7.5", "txtNote"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.scan);
    for (const char* name : {"cmbColorName", "JobNumber", "txtLotNumber", "txtQty"})
      Control<QLineEdit>(window, name).clear();
    if (*c.before != 0) Type(Control(window, c.field), c.before);
    Focus(c.field);
    scanner.Pause();
    scanner.Type(c.scan);
    EXPECT_TRUE(WaitFor([&] { return All() == c.all && FocusName() == c.focus; }, 400)) << All() << " " << FocusName();
  }
  // In the line of a drop-down.
  Focus("cmbLocation");
  scanner.Pause();
  scanner.Type("<LL>SHELF 3");
  auto& place = Control<QComboBox>(window, "cmbLocation");
  EXPECT_TRUE(WaitFor([&] { return place.currentText() == "SHELF 3"; }, 1000)) << place.currentText().toStdString();
  place.setEditText("<ll>B");
  Focus("txtQty");
  EXPECT_EQ(place.currentText(), "B");
  // Without an end, once nothing more comes.
  Focus("txtLotNumber");
  scanner.Pause();
  scanner.Type("<LN>B2");
  EXPECT_TRUE(WaitFor([&] { return Text("txtLotNumber") == "B2"; }, 1000));
  EXPECT_EQ(FocusName(), "txtLotNumber");
  // A tag that somebody typed goes when the field is left.
  scanner.Pause();
  Fill(window, "JobNumber", "<jn>J7");
  EXPECT_EQ(Text("JobNumber"), "J7");
  Fill(window, "JobNumber", "A<B");
  EXPECT_EQ(Text("JobNumber"), "A<B") << "no tag, and no part of one";
}

TEST_F(ScannedEntryTest, WhatAPersonTypesIsNoScan) {
  Focus("JobNumber");
  scanner.TypeSlowly("<JN");
  EXPECT_EQ(Text("JobNumber"), "<JN");
  Focus("txtLotNumber");
  scanner.Pause();
  scanner.Type("<XY>Z\r");
  EXPECT_TRUE(WaitFor([&] { return Text("txtLotNumber") == "<XY>Z"; }, 500)) << "a tag that no label has";
  Focus("cmbColorName");
  scanner.TypeSlowly("RE\r");
  EXPECT_EQ(Text("cmbColorName"), "RED") << "the completion is taken";
}

// The focus moves while the code is under way: to a message, to another field, to a button.
TEST_F(ScannedEntryTest, WhateverComesUpMeanwhileACodeLandsWhole) {
  Focus("txtLotNumber");
  scanner.Type("<LN>A1");
  Focus("cmbColorName");
  scanner.Type("-7\r");
  EXPECT_EQ(All(), "||A1-7|");
  Focus("JobNumber");
  scanner.Pause();
  scanner.Type("77123");  // no tag; letter by letter
  Focus("cmbColorName");
  scanner.Type("456\r");
  EXPECT_EQ(All(), "|77123456|A1-7|");

  // Nothing can be written on a button: it is not pressed, and no message is answered.
  for (const char* scan : {"<JN>J1\r", "4711 Y\r", "5\r", "<CN>NO YES\r\n"}) {
    Focus("cmdPress");
    scanner.Pause();
    scanner.Type(scan);
    EXPECT_EQ(window.pressed, 0) << scan;
  }
  Focus("cmdPress");
  scanner.Pause();
  scanner.TypeSlowly("y\r");
  EXPECT_EQ(window.pressed, 1);
  desktop::MessagePrompt messages;
  for (const char* scan : {"<CN>YN\r", "N77Y\r\n", "12.5\r"}) {
    Answer answer = Answer::Cancel;
    WithModal(
        [&] {
          answer = messages.Show({"Title", "Text", Buttons::YesNoCancel, Icon::Question, Answer::Yes});
        },
        [&](QWidget& dialog) {
          scanner.Pause();
          scanner.Type(scan);
          QTest::qWait(200);
          EXPECT_TRUE(dialog.isVisible()) << scan;
          if (!dialog.isVisible()) return;
          scanner.TypeSlowly("n");
        });
    EXPECT_EQ(answer, Answer::No);
  }
  EXPECT_EQ(All(), "|77123456|A1-7|");
}

TEST(ScannedTags, FieldsAreKnownByTheSystemsNames) {
  Desk desk;
  const auto tag = [](const char* name) {
    QLineEdit line;
    line.setObjectName(name);
    return desktop::ScannedEntry::TagOf(line).toStdString();
  };
  EXPECT_EQ(tag("txtLotContID") + tag("cmbLotNum") + tag("txtScanLL") + tag("JobNumber3") + tag("cmbJN"),
            "<LC><LN><LL><JN><JN>");
  EXPECT_EQ(tag("txtNotes"), "");
  QComboBox combo;
  combo.setObjectName("cmbLocation");
  combo.setEditable(true);
  EXPECT_EQ(desktop::ScannedEntry::TagOf(*combo.lineEdit()), "<LL>");
}

}  // namespace
}  // namespace vellumark::test
