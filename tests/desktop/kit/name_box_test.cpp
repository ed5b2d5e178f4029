#include "desktop/kit/name_box.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QCompleter>

#include "desktop/kit/window.h"
#include "support/desk.h"
#include "support/desktop.h"

namespace vellumark::test {
namespace {

using desktop::NameBox;
using desktop::SortedNames;

class NameForm : public desktop::Window {
  Q_OBJECT

 public:
  NameForm(desktop::WindowList& list, std::vector<std::string> names) : Window(list, "NameForm", tr("Name")) {
    desktop::Form form(*this);
    form.Row(tr("&Name"), box = form.Name("txtName", SortedNames(std::move(names))));
    form.Row(tr("Next"), form.Text("txtNext"));
  }
  NameBox* box;
};

struct NameBoxTest : testing::Test, Desk {
  NameBoxTest() { ShowActive(form); }
  NameForm form{windows,
                {"BLACK", "PANTONE 185 C", "PANTONE 1855 U", "PANTONE RED 032", "RED 12", "RED 9", "186 BLUE",
                 "VERY LONG NAME OF AN INK COLOR"}};
  NameBox& box = *form.box;
};

TEST_F(NameBoxTest, CompletesWhileTypingAndSelectsWhatItAdded) {
  const struct {
    const char* typed;
    const char* text;
    const char* selected;
    const char* name;
  } rows[] = {
      {"bl", "BLACK", "ACK", "BLACK"},
      {"185", "185 C", " C", "PANTONE 185 C"},
      {"1855", "1855 U", " U", "PANTONE 1855 U"},
      {"186", "186 BLUE", " BLUE", "186 BLUE"},
      {"red", "RED 032", " 032", "PANTONE RED 032"},
      {"red 1", "RED 12", "2", "RED 12"},
      {"red 12", "RED 12", "", "RED 12"},
      {"xyz", "XYZ", "", "XYZ"},
  };
  for (const auto& row : rows) {
    box.SetText("");
    Type(box, row.typed);
    EXPECT_EQ(box.Text(), row.text) << row.typed;
    EXPECT_EQ(box.selectedText().toStdString(), row.selected) << row.typed;
    EXPECT_EQ(box.Name(), row.name) << row.typed;
  }
}

TEST_F(NameBoxTest, DeletingAndArrowsOnlyTakeTheCompletionBack) {
  for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Left, Qt::Key_Right}) {
    box.SetText("");
    Type(box, "185");
    Press(box, key);
    EXPECT_EQ(box.Text(), "185");
    EXPECT_EQ(box.cursorPosition(), 3);
    EXPECT_EQ(box.Name(), "185") << "the colour is no longer meant";
    if (key != Qt::Key_Backspace) continue;
    Press(box, key);
    EXPECT_EQ(box.Text(), "18") << "then they do what they always do, and complete nothing";
  }
}

TEST_F(NameBoxTest, LeavingPutsTheWholeNameIn) {
  std::vector<std::string> left;
  QObject::connect(&box, &NameBox::Left, &box, [&](QWidget* to) {
    left.push_back(box.Text() + " to " + (to == nullptr ? "" : to->objectName().toStdString()));
  });
  Type(box, "185");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(left, (std::vector<std::string>{"PANTONE 185 C to txtNext"}));
  EXPECT_EQ(FocusName(), "txtNext");
}

TEST_F(NameBoxTest, AScannedTagGoesWhenTheFieldIsLeft) {
  Type(box, "<cn>red 9");
  EXPECT_EQ(box.Text(), "<CN>RED 9");
  EXPECT_EQ(box.Name(), "RED 9");
  PressOn(Qt::Key_Tab);
  EXPECT_EQ(box.Text(), "RED 9");
}

TEST_F(NameBoxTest, KeepsTheConfiguredLengthTypedOrPasted) {
  session.NameLength = 10;
  session.AutoFillText = 0;
  form.FocusField("txtNext");
  Type(box, "abcdefghijklm");
  EXPECT_EQ(box.Text(), "ABCDEFGHIJ");
  box.SetText("");
  QApplication::clipboard()->setText("abcdefghijklm");
  Press(box, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(box.Text(), "ABCDEFGHIJ");
}

TEST_F(NameBoxTest, CompletesNothingWhenSwitchedOffOrInTheMiddleOfAName) {
  session.AutoFillText = 0;
  Type(box, "bl");
  EXPECT_EQ(box.Text(), "BL");
  session.AutoFillText = 1;
  box.SetText("ACK");
  box.setCursorPosition(0);
  QTest::keyClicks(&box, "b");
  EXPECT_EQ(box.Text(), "BACK");
}

TEST_F(NameBoxTest, SaysOnceThatThePrefixNeedNotBeTyped) {
  int hints = 0;
  QObject::connect(&box, &NameBox::PantoneTyped, &box, [&] { ++hints; });
  session.AutoFillText = 0;
  Type(box, "pantone");
  EXPECT_EQ(hints, 1);
  box.SetText("");
  Type(box, "pantone");
  EXPECT_EQ(hints, 1);
}

TEST_F(NameBoxTest, TheListShowsWhatBeginsSoAndOneIsPicked) {
  std::string picked;
  QObject::connect(&box, &NameBox::Picked, &box, [&](const QString& name) { picked = name.toStdString(); });
  Type(box, "red");
  Press(box, Qt::Key_Down);
  QAbstractItemView& list = *box.findChild<QCompleter*>()->popup();
  ASSERT_TRUE(list.isVisible());
  ASSERT_EQ(list.model()->rowCount(), 3);
  EXPECT_EQ(list.model()->index(0, 0).data().toString(), "PANTONE RED 032");
  QTest::keyClick(&list, Qt::Key_Down);
  QTest::keyClick(&list, Qt::Key_Down);
  QTest::keyClick(&list, Qt::Key_Return);
  Settle();
  EXPECT_EQ(picked, "RED 12");
  EXPECT_EQ(box.Name(), "RED 12");
}

TEST_F(NameBoxTest, CompletesFromAHundredThousandNamesBetweenTwoKeys) {
  std::vector<std::string> names;
  for (int i = 0; i < 100'000; ++i)
    names.push_back((i % 2 == 0 ? "PANTONE " : "INK ") + std::to_string(i * 7919LL % 1000003));
  box.SetSource(SortedNames(names));
  double worst = 0;
  for (const char key : std::string("INK 12345")) {
    const CpuTimer timer;
    QTest::keyClick(&box, key);
    worst = std::max(worst, timer.Ms());
  }
  std::cout << "slowest key: " << worst << " ms\n";
  EXPECT_LT(worst, 20 * kSlower);
}

TEST_F(NameBoxTest, Looks) {
  form.resize(560, 200);
  Type(box, "185");
  Picture(form, "kit-name-box", {560, 200});
}

}  // namespace
}  // namespace vellumark::test

#include "name_box_test.moc"
