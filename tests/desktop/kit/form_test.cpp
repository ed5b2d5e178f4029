#include "desktop/kit/form.h"

#include <QClipboard>
#include <QTabWidget>

#include "support/desk.h"
#include "support/desktop.h"

namespace vellumark::test {
namespace {

using desktop::CheckField;
using desktop::ComboField;
using desktop::DateField;
using desktop::Field;
using desktop::NoteField;
using desktop::NumberField;
using desktop::RadioField;
using desktop::TextField;
using desktop::TextRule;

/// The ink card that the tests fill in.
class CardForm : public desktop::Window {
  Q_OBJECT

 public:
  explicit CardForm(desktop::WindowList& list) : Window(list, "CardForm", tr("Ink card")) {
    desktop::Form form(*this);
    form.Heading(tr("Color"));
    form.Row(tr("&Name"), name_ = form.Text("txtName", TextRule::UpperName(15)));
    name_->Means("Color_Name");
    form.Row(tr("&Reorder point"), {reorder_ = form.Number("txtReorder", 3, tr("0 to 99999")), form.Hint(tr("lb."))});
    form.Row(tr("&Unit"), unit_ = form.Combo("cmbUnit", {"lb.", "kg.", "g.", "oz."}));
    form.Row(tr("Entered"), date_ = form.Date("dtEntered"));
    form.Row(additive_ = form.Check("chkAdd", tr("Additive")));
    form.Row(tr("Inventory"), {form.Value("lblInventory"), form.Hint(tr("lb."))});
    auto tabs = form.Tabs("SSTab1");
    auto notes = tabs.Page(tr("Notes"));
    notes.Row(tr("N&otes"), notes_ = form.Note("txtNotes"));
    auto paper = tabs.Page(tr("Printing"));
    paper.Row(tr("Page"),
              page_ = form.Radio("optPage", {{"OptPortrait", tr("Portrait")}, {"OptLandscape", tr("Landscape")}}));
    paper.Row(tr("Copies"), form.Text("txtCopies", TextRule::Digits(3)));
    form.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
    Control<desktop::ValueField>(*this, "lblInventory").SetText("1204.350");
  }

  void UpdateEnabled() override {
    ++asked_;
    Control<QWidget>(*this, "cmdSave").setEnabled(!name_->Text().empty());
  }

  TextField* name_;
  NumberField* reorder_;
  ComboField* unit_;
  DateField* date_;
  CheckField* additive_;
  NoteField* notes_;
  RadioField* page_;
  int saved_ = 0;
  int asked_ = 0;

 public Q_SLOTS:
  void cmdSave_Click() override { ++saved_; }
  void cmdCancel_Click() { Leave(); }
};

struct FormTest : testing::Test, Desk {
  FormTest() { ShowActive(card); }
  CardForm card{windows};
};

TEST_F(FormTest, EnterWalksThroughTheFieldsInTheirOrderAndClicksTheDefaultButtonAtTheEnd) {
  Type(*card.name_, "red 12");
  EXPECT_EQ(card.name_->Text(), "RED 12");
  for (const char* next : {"txtReorder", "cmbUnit", "dtEntered", "chkAdd", "txtNotes"}) {
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), next);
  }
  PressOn(Qt::Key_Return);
  EXPECT_EQ(card.notes_->Text(), "\n") << "a note takes Enter as a new line";
  PressOn(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(card.saved_, 1);
}

TEST_F(FormTest, EnterSelectsWhatItComesTo) {
  card.reorder_->SetText("12.500");
  Type(*card.name_, "A");
  PressOn(Qt::Key_Enter, Qt::KeypadModifier);
  EXPECT_EQ(card.reorder_->selectedText(), "12.500");
}

TEST_F(FormTest, EnterPassesOverWhatIsSwitchedOff) {
  card.reorder_->setEnabled(false);
  Type(*card.name_, "A");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(FocusName(), "cmbUnit");
}

TEST_F(FormTest, ADefaultButtonThatIsOffIsNotClicked) {
  card.notes_->setFocus();
  PressOn(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(card.saved_, 0);
}

TEST_F(FormTest, ShortcutsClickTheirButtonsWhileTheyAreOn) {
  Type(*card.notes_, "x");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(card.saved_, 0) << "there is no name yet";
  Type(*card.name_, "A");
  PressOn(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(card.saved_, 1);
}

TEST_F(FormTest, WhatIsEnabledFollowsEachChange) {
  EXPECT_FALSE(card.CanDo("cmdSave"));
  card.name_->SetText("RED");
  EXPECT_TRUE(card.CanDo("cmdSave"));
  card.name_->SetText("");
  EXPECT_FALSE(card.CanDo("cmdSave"));
}

TEST_F(FormTest, EveryKindOfFieldKnowsWhenItIsDirty) {
  const std::pair<const char*, std::function<void()>> changes[] = {
      {"txtName", [&] { Type(*card.name_, "B"); }},
      {"txtReorder", [&] { Type(*card.reorder_, "3"); }},
      {"cmbUnit", [&] { Press(*card.unit_, Qt::Key_Down); }},
      {"dtEntered",
       [&] {
         card.date_->SetDate(DateTime{2026, 3, 1});
       }},
      {"chkAdd", [&] { Press(*card.additive_, Qt::Key_Space); }},
      {"txtNotes", [&] { Type(*card.notes_, "n"); }},
      {"optPage", [&] { card.page_->Choose(1); }},
  };
  for (const auto& [name, change] : changes) {
    EXPECT_FALSE(card.IsDirty()) << name;
    change();
    EXPECT_TRUE(card.IsDirty()) << name;
    EXPECT_TRUE(card.FindField(name)->IsDirty()) << name;
    card.MarkClean();
  }
}

TEST_F(FormTest, ARefusalPutsTheFocusOnItsFieldMarksItAndBringsItsPageForward) {
  card.name_->SetText("RED");
  prompt.Expect("Invalid Name", Answer::Ok, "No such name.");
  card.ShowRefusal({"Invalid Name", "No such name.", "Color_Name"});
  EXPECT_EQ(FocusName(), "txtName");
  EXPECT_EQ(card.name_->selectedText(), "RED");
  EXPECT_TRUE(card.name_->HasFault());
  EXPECT_EQ(card.name_->accessibleDescription(), "No such name.");
  TypeOn("B");
  EXPECT_FALSE(card.name_->HasFault()) << "the mark goes with the first change";

  auto& tabs = Control<QTabWidget>(card, "SSTab1");
  prompt.Expect("Copies");
  card.ShowRefusal({"Copies", "1 to 999", "txtCopies"});
  EXPECT_EQ(tabs.currentIndex(), 1);
  EXPECT_EQ(FocusName(), "txtCopies");
}

TEST_F(FormTest, AButtonWithoutItsSlotIsAMistakeThatShowsAtOnce) {
  QWidget part;
  desktop::Form form(card, part);
  EXPECT_THROW(form.Button("cmdRecycle", "Recycle"), std::logic_error);
}

TEST_F(FormTest, EscapeCloses) {
  auto* other = new CardForm(windows);
  ShowActive(*other);
  const QPointer<CardForm> watch = other;
  Press(*other->notes_, Qt::Key_Escape);
  EXPECT_TRUE(watch.isNull());
}

TEST(TextRules, DropWhatDoesNotFitTypedOrPasted) {
  const struct {
    const char* what;
    TextRule rule;
    const char* start;
    const char* typed;
    const char* becomes;
  } rows[] = {
      {"small letters", TextRule::UpperName(15), "", "red 12", "RED 12"},
      {"characters without a meaning in names", TextRule::UpperName(15), "", "a#b_c%d<e>", "ABCDE"},
      {"marks of a tag", TextRule::ScannedName(15), "", "<cn>a!", "<CN>A!"},
      {"a name too long", TextRule::UpperName(5), "", "abcdefgh", "ABCDE"},
      {"digits", TextRule::Digits(3), "", "1a2b34", "123"},
      {"numbers", TextRule::Number(10), "", "-1x2.5e", "-12.5"},
      {"capitals outside A to Z", TextRule::Upper(10), "", "gr\xC3\xBCn", "GR\xC3\x9CN"},
      {"what the program put there stays", TextRule::UpperName(15), "Gr\xC3\xBCn (a)", "!x", "XGr\xC3\xBCn (a)"},
  };
  for (const auto& row : rows) {
    TextField typed("txt", row.rule);
    typed.show();
    typed.SetText(row.start);
    Type(typed, row.typed);
    EXPECT_EQ(typed.Text(), row.becomes) << row.what << ", typed";

    TextField pasted("txt", row.rule);
    pasted.show();
    pasted.SetText(row.start);
    QApplication::clipboard()->setText(desktop::Q(row.typed));
    QTest::keyClick(&pasted, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(pasted.Text(), row.becomes) << row.what << ", pasted";
  }
}

TEST(TextRules, ARefusedKeyLeavesTheSelectionAlone) {
  TextField field("txt", TextRule::UpperName(5));
  field.SetText("ABCDE");
  field.selectAll();
  QTest::keyClicks(&field, "#");
  EXPECT_EQ(field.Text(), "ABCDE");
  QTest::keyClicks(&field, "x");
  EXPECT_EQ(field.Text(), "X");
}

TEST(TextRules, PastingInTheMiddleNeverCutsWhatStandsBehind) {
  TextField field("txt", TextRule::UpperName(6));
  field.SetText("ABCD");
  field.setCursorPosition(2);
  QApplication::clipboard()->setText("x-y-z");
  QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(field.Text(), "ABX-CD");
}

TEST(NumberFields, SpeakTheLocalesDecimalsOnScreenAndAPointInside) {
  QLocale::setDefault(QLocale(QLocale::German));
  NumberField field("txt", 3);
  field.SetNumber(1.0005F);
  EXPECT_EQ(field.text(), "1,001");
  EXPECT_EQ(field.Text(), "1.001");
  field.clear();
  QTest::keyClicks(&field, "2.5");
  EXPECT_EQ(field.text(), "2,5");
  EXPECT_EQ(field.Text(), "2.5");
  QLocale::setDefault(QLocale::c());
}

TEST(DateFields, CanBeEmpty) {
  DateField field("dt");
  EXPECT_FALSE(field.Date().has_value());
  field.SetDate(DateTime{2026, 2, 28});
  EXPECT_EQ(field.Date(), (DateTime{2026, 2, 28}));
  field.SetDate(std::nullopt);
  EXPECT_FALSE(field.Date().has_value());
}

TEST_F(FormTest, Looks) {
  card.name_->SetText("PANTONE 1");
  card.reorder_->SetText("25.000");
  card.date_->SetDate(DateTime{2026, 3, 10});
  card.additive_->setChecked(true);
  prompt.Expect("x");
  card.ShowRefusal({"x", "You must enter an amount between\n0 and 99999", "txtReorder"});
  Picture(card, "kit-form", {720, 560});
}

}  // namespace
}  // namespace vellumark::test

#include "form_test.moc"
