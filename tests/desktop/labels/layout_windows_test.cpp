#include <QComboBox>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <fstream>

#include "core/base/files.h"
#include "core/session/settings.h"
#include "core/settings/label_defaults.h"
#include "layout_desk.h"
#include "paper/label_print.h"
#include "support/pdf_text.h"

namespace vellumark::test {
namespace {

struct LayoutWindowsTest : testing::Test, LayoutDesk {
  QWidget& Paper() { return *Surface().viewport(); }
  QPoint Middle(const std::string& name) { return Surface().OnScreen(Box(name)->item).center().toPoint(); }
  void Drag(QPoint from, QPoint by, Qt::KeyboardModifiers with = Qt::NoModifier, bool release = true) {
    QTest::mousePress(&Paper(), Qt::LeftButton, with, from);
    for (int i = 1; i <= 4; ++i) Move(from + by * i / 4, with);
    if (release) QTest::mouseRelease(&Paper(), Qt::LeftButton, with, from + by);
    Settle();
  }
  void Move(QPoint to, Qt::KeyboardModifiers with) {
    QMouseEvent move(QEvent::MouseMove, to, Paper().mapToGlobal(to), Qt::NoButton, Qt::LeftButton, with);
    QApplication::sendEvent(&Paper(), &move);
  }
  double Left(const std::string& name) { return Box(name)->item.left; }
  std::string PictureFile(const char* name, int width, int height, int dots = 96, QRgb color = qRgb(0, 0, 0)) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    image.setDotsPerMeterX(static_cast<int>(std::lround(dots / 0.0254)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    const std::string path = (folder / name).string();
    if (!image.save(QString::fromStdString(path))) throw std::runtime_error("no picture " + path);
    return path;
  }
};

constexpr int kDots = 288;  // of an inch

// The dark pixels in a part of a picture.
QRect Ink(const QImage& image, const QRectF& part) {
  QRect ink;
  const QRect pixels = part.toAlignedRect() & image.rect();
  for (int y = pixels.top(); y <= pixels.bottom(); ++y)
    for (int x = pixels.left(); x <= pixels.right(); ++x)
      if (qGray(image.pixel(x, y)) < 100) ink |= QRect(x, y, 1, 1);
  return ink;
}

TEST_F(LayoutWindowsTest, ShowsToATenthOfAMillimetreWhatThePdfHolds) {
  const std::string logo = PictureFile("logo.bmp", 96, 48);
  std::filesystem::create_directories(PicturesOfLabels(session));
  std::filesystem::copy(logo, PicturesOfLabels(session) / "logo.bmp");
  struct {
    const char* window;
    LabelKind kind;
    std::vector<std::string> items;
    std::vector<std::pair<std::string, std::string>> values;
  } const layouts[] = {
      {"LabelLayoutForm",
       LabelKind::Label,
       {"Color Name", "Color Code", "Color Name BC", "Picture Image"},
       {{"Color Name Left", "300"},
        {"Color Name Top", "200"},
        {"Color Code Left", "3011"},
        {"Color Code Top", "1403"},
        {"Label BC Type", "Code 128"},
        {"Color Name BC Left", "433"},
        {"Color Name BC Top", "1517"},
        {"Color Name BC FontSize", "20"},
        {"Picture Image Left", "3777"},
        {"Picture Image Top", "333"},
        {"Picture Image Location", "logo.bmp"}}},
      {"GH_LabelLayoutForm",
       LabelKind::Hazard,
       {"Picto_Image 5"},
       {{"Picto_Image 5 Left", "2222"}, {"Picto_Image 5 Top", "1111"}}},
      {"Formula_LabelLayoutForm", LabelKind::Formula, {"Formula"}, {{"Formula Left", "1234"}, {"Formula Top", "432"}}}};
  for (const auto& [window, kind, items, values] : layouts) {
    SCOPED_TRACE(window);
    OnlyOnFile(items, kind);
    OnFile({{"Label Width", "5760"}, {"Label Length", "2880"}}, kind);
    OnFile(values, kind);
    Open(window).resize(2400, 1100);
    if (kind != LabelKind::Hazard) Fill(*form, kind == LabelKind::Label ? "cmbColor" : "cmbCN", "PINK");
    Surface().SetZoom(1);
    Surface().SetZoom(kDots / 1440.0 / Surface().PixelsPerTwip());
    Settle();
    const QPointF corner = Surface().LabelOnScreen().topLeft();
    ASSERT_TRUE(Paper().rect().contains(Surface().LabelOnScreen().toRect()));
    QImage shown(Paper().size(), QImage::Format_RGB32);
    Paper().render(&shown);
    const paper::LabelJob job{.paper = PaperOfLayout(session, kind, "Default Label"),
                              .drawings = {Surface().Shown().data}};
    paper::PrintLabelsToFile(session, job, folder / "label.pdf");
    RunTool(fmt::format("pdftoppm -gray -singlefile -png -r {} '{}' '{}'", kDots, (folder / "label.pdf").string(),
                        (folder / "label").string()));
    const QImage printed(QString::fromStdString((folder / "label.png").string()));
    ASSERT_EQ(printed.width(), 4 * kDots);
    for (const std::string& item : items) {
      ASSERT_NE(Box(item), nullptr) << item;
      QRectF part = Surface().OnScreen(Box(item)->item);
      const QRect onScreen = Ink(shown, part).translated(-corner.toPoint());
      const QRect onPaper = Ink(printed, part.translated(-corner));
      ASSERT_FALSE(onPaper.isEmpty()) << item;
      constexpr double kTenthOfMillimetre = 0.1 / 25.4 * kDots;
      EXPECT_NEAR(onScreen.left(), onPaper.left(), kTenthOfMillimetre) << item;
      EXPECT_NEAR(onScreen.top(), onPaper.top(), kTenthOfMillimetre) << item;
      EXPECT_NEAR(onScreen.right(), onPaper.right(), kTenthOfMillimetre) << item;
      EXPECT_NEAR(onScreen.bottom(), onPaper.bottom(), kTenthOfMillimetre) << item;
    }
    EXPECT_TRUE(form->Leave());
  }
}

TEST_F(LayoutWindowsTest, IsWorkedByTheMouse) {
  OnlyOnFile({"Color Name", "Date", "Username"});
  OnFile({{"Label Width", "5760"},
          {"Label Length", "4320"},
          {"Date Top", "1800"},
          {"Date Left", "1440"},
          {"Username Top", "2880"},
          {"Username Left", "2000"}});
  Open("LabelLayoutForm");
  const double scale = Surface().PixelsPerTwip();
  // Near the left edge of another box it snaps to it, and with Alt it does not.
  Drag(Middle("Username"), QPoint(static_cast<int>(std::lround(-555 * scale)), 0));
  EXPECT_EQ(Left("Username"), 1440);
  Drag(Middle("Username"), QPoint(static_cast<int>(30 * scale), 0), Qt::AltModifier);
  EXPECT_NE(Left("Username"), 1440);
  EXPECT_EQ(Control<QLabel>(*form, "lblX").text(), Control<QLineEdit>(*form, "txtX").text().prepend("X = ") + " in.");
  Click(*form, "cmdUndo");
  EXPECT_EQ(Left("Username"), 1440);
  Click(*form, "cmdUndo");
  EXPECT_EQ(Left("Username"), 2000);
  EXPECT_FALSE(Control<QPushButton>(*form, "cmdUndo").isEnabled());

  // A frame around two, which then go together and not over the edge.
  const QRectF date = Surface().OnScreen(Box("Date")->item);
  const QRectF user = Surface().OnScreen(Box("Username")->item);
  const QPoint begin(static_cast<int>(date.left()) - 12, static_cast<int>(date.top()) - 12);
  Drag(begin, QPoint(static_cast<int>(user.left()) + 12, static_cast<int>(user.top()) + 12) - begin);
  EXPECT_EQ(Surface().Selected(), (std::vector<std::string>{"Date", "Username"}));
  Drag(Middle("Date"), QPoint(-4000, 0));
  EXPECT_EQ(Left("Date"), 0);
  EXPECT_EQ(Left("Username"), 560);
  EXPECT_EQ(OnFile("Date Left"), "1440") << "nothing is written until it is saved";
  // Escape takes a drag back, then the selection; the window stays.
  Drag(Middle("Date"), QPoint(60, 40), Qt::NoModifier, false);
  EXPECT_NE(Left("Date"), 0);
  Press(Surface(), Qt::Key_Escape);
  EXPECT_EQ(Left("Date"), 0);
  QTest::mouseRelease(&Paper(), Qt::LeftButton, {}, Middle("Date"));
  Press(Surface(), Qt::Key_Escape);
  EXPECT_TRUE(Surface().Selected().empty());
  EXPECT_TRUE(windows.IsFormOpen("LabelLayoutForm"));
  prompt.Expect("Label Layout - Save Information?", Answer::Cancel, "Save changes before closing?");
  Press(Surface(), Qt::Key_Escape);
  ASSERT_TRUE(windows.IsFormOpen("LabelLayoutForm"));
  prompt.Expect("Label Layout - Save Information?", Answer::Yes);
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  Press(Surface(), Qt::Key_Escape);
  EXPECT_FALSE(windows.IsFormOpen("LabelLayoutForm"));
  EXPECT_EQ(OnFile("Username Left"), "560");
}

TEST_F(LayoutWindowsTest, IsWorkedByTheKeysAlone) {
  OnlyOnFile({"Color Name", "Date", "Username", "Database"});
  OnFile({{"Label Width", "5760"}, {"Label Length", "4320"}, {"Date Top", "1800"}, {"Date Left", "1440"}});
  Open("LabelLayoutForm");
  while (FocusName() != "Surface") PressOn(Qt::Key_Tab);
  PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Surface().Selected(), std::vector<std::string>{"Color Name"});
  for (int i = 0; i < 2; ++i) PressOn(Qt::Key_PageDown);
  EXPECT_EQ(Surface().Selected(), std::vector<std::string>{"Date"});
  PressOn(Qt::Key_Right);
  EXPECT_EQ(Left("Date"), std::round(1.01 * 1440));
  PressOn(Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(Left("Date"), 17 * 90) << "to the next line of the grid";
  PressOn(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Left("Date"), 1440) << "the steps of one hand are one step back";
  EXPECT_EQ(Surface().accessibleDescription(), "Date, X = 1.000 in., Y = 1.250 in.");
  Surface().setFocus();
  const auto& zoom = Control<QComboBox>(*form, "cmbZoom");
  PressOn(Qt::Key_1);
  EXPECT_EQ(zoom.currentText(), "True size");
  const double trueSize = Surface().PixelsPerTwip();
  EXPECT_DOUBLE_EQ(trueSize * 1440, Surface().screen()->physicalDotsPerInch());
  PressOn(Qt::Key_Plus);
  EXPECT_DOUBLE_EQ(Surface().PixelsPerTwip(), 1.5 * trueSize);
  EXPECT_EQ(zoom.currentText(), "150 %");
  PressOn(Qt::Key_0);
  EXPECT_EQ(zoom.currentText(), "Whole label");
  PressOn(Qt::Key_PageDown, Qt::ShiftModifier);
  EXPECT_EQ(Surface().Selected(), (std::vector<std::string>{"Date", "Username"}));
  Page("TabSelected");
  Press(Control(*form, "cmdAlignLeft"), Qt::Key_Space);
  EXPECT_EQ(Left("Date"), 0);
  // One font for both, each on the page of the selected boxes.
  Fill(*form, "txtFontSize", "18");
  Press(Surface(), Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(Surface().Selected().size(), 4U);
  Press(Control(*form, "cmdSpaceDown"), Qt::Key_Space);
  Surface().Select({"Database"});
  Press(Surface(), Qt::Key_Delete);
  EXPECT_EQ(Box("Database"), nullptr);
  EXPECT_FALSE(Control<QCheckBox>(*form, "chkDataDatabase").isChecked());
  prompt.Expect("Overwrite Label Layout?", Answer::Yes, "Overwrite the existing Label Layout 'Default Label'?");
  Press(Surface(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(OnFile("Date Left"), "0");
  EXPECT_EQ(OnFile("Username FontSize"), "18");
  EXPECT_EQ(OnFile("Date FontSize"), "18");
  EXPECT_EQ(OnFile("Database Visible"), "0");
  EXPECT_FALSE(Control<QPushButton>(*form, "cmdSave").isEnabled());
  // Steps go back behind a save too, and can be saved again.
  PressOn(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_NE(Box("Database"), nullptr);
  EXPECT_TRUE(Control<QPushButton>(*form, "cmdSave").isEnabled());
  prompt.Expect("Label Layout - Save Information?", Answer::No);
}

TEST_F(LayoutWindowsTest, TakesWhatIsTypedInEitherUnitAndMarksWhatCannotBe) {
  Open("LabelLayoutForm");
  Page("TabSheet");
  Fill(*form, "txtLabelWidth", "4");
  Fill(*form, "txtLabelLength", "2");
  Click(*form, "optMM");
  EXPECT_EQ(Control<QLineEdit>(*form, "txtLabelWidth").text(), "101.60");
  Fill(*form, "txtTopMargin", "12.7");
  Fill(*form, "txtLabelsDown", "5");
  Page("TabSelected");
  Surface().Select({"Date"});
  Settle();
  EXPECT_TRUE(Control(*form, "MoveField_X_MM").isVisible());
  EXPECT_FALSE(Control(*form, "MoveField_X_IN").isVisible());
  Fill(*form, "txtX", "25.5");
  Click(Control(*form, "MoveField_X_MM_More"));
  EXPECT_EQ(Left("Date"), std::round(25.75 * 1440 / 25.4));
  EXPECT_EQ(Control<QLabel>(*form, "lblY").text(), "Y = 31.75 mm.");

  Page("TabSheet");
  Fill(*form, "txtLabelsAcross", "101");
  Page("TabTexts");
  Fill(*form, "txtText2", "say \"no\"");
  const std::string before = ReadFileBytes(session.support->label.Path());
  prompt.Expect("Label Layout");
  Click(*form, "cmdSave");
  EXPECT_EQ(ReadFileBytes(session.support->label.Path()), before);
  EXPECT_TRUE(FocusName() == "txtLabelsAcross" || FocusName() == "txtText2") << FocusName();
  Page("TabTexts");
  Fill(*form, "txtText2", "yes");
  Page("TabSheet");
  prompt.Expect("Label Layout", Answer::Ok, "Labels Across is a whole number from 1 to 100.");
  Click(*form, "cmdSave");
  EXPECT_EQ(FocusName(), "txtLabelsAcross");
  Fill(*form, "txtLabelsAcross", "2");
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  Click(*form, "cmdSave");
  for (const auto& [key, value] : {std::pair{"Label Width", "5760"},
                                   {"Label Length", "2880"},
                                   {"Top Margin", "720"},
                                   {"Labels Across", "2"},
                                   {"Labels Down", "5"},
                                   {"Label_UOM", " mm."},
                                   {"Misc Text 2 Text", "yes"}})
    EXPECT_EQ(OnFile(key), value) << key;
}

TEST_F(LayoutWindowsTest, AddsRevertsSwitchesAndDeletesLayouts) {
  const auto saveAs = [&](const std::string& name) {
    WithModal([&] { Click(*form, "cmdSaveAs"); },
              [&](QWidget& dialog) {
                Fill(dialog, "txtLabelName", name);
                Click(dialog, "cmdSave");
              });
    ShowActive(*form);
  };
  struct {
    const char* window;
    LabelKind kind;
  } const kinds[] = {{"LabelLayoutForm", LabelKind::Label},
                     {"GH_LabelLayoutForm", LabelKind::Hazard},
                     {"Formula_LabelLayoutForm", LabelKind::Formula}};
  for (const auto& [window, kind] : kinds) {
    SCOPED_TRACE(window);
    Open(window);
    auto& names = Control<QComboBox>(*form, "cmbLabelName");
    Page("TabSheet");
    Fill(*form, "txtLeftMargin", "0.5");
    saveAs("Drums");
    EXPECT_EQ(names.currentText(), "Drums");
    EXPECT_EQ(OnFile("Left Margin", kind, "Drums"), "720");
    EXPECT_EQ(OnFile("Left Margin", kind), "0") << "the other one stays";
    EXPECT_EQ(LabelRecords(session, kind, "Drums").size(), NewLabelDesign(kind).Records().size());
    Fill(*form, "txtLeftMargin", "1");
    // Another one of the list: what is not saved is asked about.
    prompt.Expect("Cancel Without Saving Changes?", Answer::No);
    names.setFocus();
    PressOn(Qt::Key_Up);
    EXPECT_EQ(names.currentText(), "Drums");
    EXPECT_EQ(Control<QLineEdit>(*form, "txtLeftMargin").text(), "1.000");
    prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
    Click(*form, "cmdRevert");
    EXPECT_EQ(Control<QLineEdit>(*form, "txtLeftMargin").text(), "0.500");
    names.setFocus();
    PressOn(Qt::Key_Up);
    EXPECT_EQ(names.currentText(), "Default Label");
    EXPECT_EQ(Control<QLineEdit>(*form, "txtLeftMargin").text(), "0.000");
    prompt.Expect("Delete Label Layout?", Answer::Yes,
                  "Are you sure you want to permanently delete the Label Layout 'Default Label'?");
    Click(*form, "cmdDelete");
    EXPECT_EQ(names.currentText(), "Drums");
    prompt.Expect("Delete Label Layout?", Answer::Ok);
    Click(*form, "cmdDelete");
    EXPECT_EQ(LabelLayouts(session, kind), std::vector<std::string>{"Drums"}) << "the last one stays";
    // Written by another program: shown, as long as nothing here would be lost.
    ASSERT_TRUE(SaveLabelSetting(session, kind, "Drums", "Left Margin", "1440"));
    StoreSettings(session, {});
    windows.DeliverChanges();
    EXPECT_EQ(Control<QLineEdit>(*form, "txtLeftMargin").text(), "1.000");
    EXPECT_TRUE(form->Leave());
  }
}

TEST_F(LayoutWindowsTest, TakesPicturesThatFitAndTellsOfOthers) {
  Open("LabelLayoutForm");
  Page("TabTexts");
  const std::string none = (folder / "none.jpg").string();
  ReplaceFile(none, "no picture at all");
  const std::string cut = PictureFile("cut.bmp", 96, 96);
  ReplaceFile(cut, ReadFileBytes(cut).substr(0, 200));
  std::string huge = ReadFileBytes(PictureFile("huge.bmp", 8, 8));
  for (const std::size_t at : {18U, 22U}) huge.replace(at, 4, std::string("\xFF\xFF\xFF\x0F", 4));
  ReplaceFile(folder / "huge.bmp", huge);
  const std::string before = OnFile("Picture Image Location");
  for (const std::string& bad :
       {PictureFile("wide.bmp", 193, 20), PictureFile("high.jpg", 20, 385), PictureFile("fine.bmp", 20, 20, 300),
        PictureFile("other.png", 20, 20), none, cut, (folder / "huge.bmp").string()}) {
    SCOPED_TRACE(bad);
    chosen = QString::fromStdString(bad);
    prompt.Expect("Picture Selection");
    Click(*form, "cmdPicture");
    EXPECT_EQ(Box("Picture Image"), nullptr);
    EXPECT_EQ(OnFile("Picture Image Location"), before);
  }
  EXPECT_EQ(asked.title, "Picture Selection");
  EXPECT_EQ(asked.filter, "Picture Files (*.jpg; *.bmp)|*.jpg; *.bmp");
  chosen = QString::fromStdString(PictureFile("fits.bmp", 192, 384));
  QTest::mouseDClick(&Control(*form, "Image1"), Qt::LeftButton);
  Settle();
  ASSERT_NE(Box("Picture Image"), nullptr);
  EXPECT_EQ(Box("Picture Image")->item.width, 2 * 1440);
  EXPECT_EQ(Box("Picture Image")->item.height, 4 * 1440);
  // Gone before it was saved: nothing of the layout is.
  std::filesystem::rename(chosen.toStdString(), folder / "aside.bmp");
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  prompt.Expect("Picture Selection");
  Click(*form, "cmdSave");
  EXPECT_EQ(OnFile("Picture Image Visible"), "0");
  std::filesystem::rename(folder / "aside.bmp", chosen.toStdString());
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  Click(*form, "cmdSave");
  EXPECT_EQ(OnFile("Picture Image Location"), "fits.bmp");
  EXPECT_TRUE(std::filesystem::exists(PicturesOfLabels(session) / "fits.bmp"));
  EXPECT_TRUE(form->Leave());
  // Gone later: the layout opens, says so, and takes another.
  std::filesystem::remove(PicturesOfLabels(session) / "fits.bmp");
  Open("LabelLayoutForm");
  EXPECT_TRUE(WaitFor([&] { return Box("Picture Image")->fault.contains("is no picture that can be read"); }));
  EXPECT_TRUE(Note().contains("is no picture that can be read")) << Note().toStdString();
  Surface().Select({"Picture Image"});
  Press(Surface(), Qt::Key_Space);
  EXPECT_TRUE(Box("Picture Image")->fault.isEmpty() || WaitFor([&] { return Box("Picture Image")->fault.isEmpty(); }));
  Click(*form, "cmdNoPicture");
  EXPECT_EQ(Box("Picture Image"), nullptr);
  prompt.Expect("Label Layout - Save Information?", Answer::No);
}

TEST_F(LayoutWindowsTest, GroupsFieldsIntoBarCodesAndReadsCodesBack) {
  OnlyOnFile({"Color Name", "Color Name BC", "Misc Bar Code Data 1"});
  OnFile({{"Label Width", "5760"}, {"Label Length", "4320"}, {"Misc Bar Code Data 1 Top", "2880"}});
  Open("LabelLayoutForm");
  Page("TabBarCodes");
  EXPECT_EQ(Box("Color Name BC"), nullptr) << "no bar codes are in use";
  Control<QComboBox>(*form, "cmbBC_Type").setFocus();
  PressOn(Qt::Key_End);
  ASSERT_NE(Box("Color Name BC"), nullptr);
  Fill(*form, "cmbColor", "PINK");
  for (const char* check : {"chkMBCD1LN", "chkMBCD1CN", "chkMBCD1CC"}) Click(*form, check);
  EXPECT_EQ(Control<QLabel>(*form, "lblMBCD1").text(), "Lot Number + Color Name + Color Code");
  Click(*form, "chkMBCD1LN");
  Click(*form, "chkMBCD2M4");
  const auto textOf = [&](const std::string& item) {
    for (const LabelElement& element : Surface().Shown().data.elements)
      if (element.item == item) return element.text;
    return std::string();
  };
  EXPECT_EQ(textOf("Misc Bar Code Data 1"), "<U1>PINKP7");
  Click(*form, "cmdClearMBCD2");
  EXPECT_FALSE(Control<QCheckBox>(*form, "chkMBCD2M4").isChecked());
  Page("TabTexts");
  Fill(*form, "txtText1", std::string(28, 'X'));
  Page("TabBarCodes");
  Click(*form, "chkMBCD1M1");
  EXPECT_TRUE(Note().contains("Combined data from selected fields cannot exceed 30 characters."))
      << Note().toStdString();
  Click(*form, "chkMBCD1M1");
  // One over the other: neither can be read, and both say so.
  EXPECT_TRUE(WaitFor([&] { return Note().isEmpty(); })) << Note().toStdString();
  Page("TabSelected");
  Surface().Select({"Misc Bar Code Data 1"});
  Fill(*form, "txtX", "3");
  Fill(*form, "txtY", "0");
  EXPECT_TRUE(WaitFor([&] { return !Box("Misc Bar Code Data 1")->fault.isEmpty(); }));
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  Click(*form, "cmdSave");
  EXPECT_EQ(OnFile("Label BC Type"), "Code 128");
  EXPECT_EQ(OnFile("Misc Bar Code Data 1 Combined"), "CNCC");
  prompt.Expect("Valid Data", Answer::Ok, "Enter a valid Color / Database name.");
  Fill(*form, "cmbColor", "NO SUCH");
  EXPECT_EQ(FocusName(), "cmbColor");
}

TEST_F(LayoutWindowsTest, KeepsPrintersAndPapersByTheirNames) {
  EXPECT_EQ(CleanUpPaperType(std::string_view("A5  \0\0x", 7)), "A5");
  OnFile({{"Printer", "gone"}, {"Paper Type", "Label 4x2"}, {"Paper Type ID", "271"}});
  Open("LabelLayoutForm");
  Page("TabSheet");
  auto& printers = Control<QComboBox>(*form, "cmbPrinter");
  EXPECT_EQ(printers.findText("Rendering Subsystem"), -1);
  EXPECT_EQ(printers.currentText(), "gone (not on this computer)");
  auto& papers = Control<QComboBox>(*form, "cmbPaperTypes");
  EXPECT_EQ(papers.currentText(), "Label 4x2");
  EXPECT_FALSE(form->InEdit());
  const auto choose = [&](QComboBox& box, const QString& text) {
    box.setCurrentIndex(box.findText(text));
    Q_EMIT box.activated(box.currentIndex());
    Settle();
  };
  choose(printers, "Zebra at the bench");
  choose(papers, "A5");
  EXPECT_TRUE(Note().contains("The labels of a sheet do not fit on its paper.")) << Note().toStdString();
  choose(Control<QComboBox>(*form, "cmbOrientation"), "Reverse Portrait");
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  Click(*form, "cmdSave");
  EXPECT_EQ(OnFile("Printer"), "zebra");
  EXPECT_EQ(OnFile("Paper Type"), "A5");
  EXPECT_EQ(OnFile("Paper Type ID"), "11");
  EXPECT_EQ(OnFile("Orientation"), "2");
}

TEST_F(LayoutWindowsTest, OpensLayoutsThatAreNotWhole) {
  StoreSettings(session, {setting::LabelLayoutList.To("Default Label|Ghost|")});
  Open("LabelLayoutForm", {{"LayoutName", "Ghost"}});
  EXPECT_EQ(Control<QComboBox>(*form, "cmbLabelName").currentText(), "Ghost");
  EXPECT_TRUE(Surface().Shown().boxes.empty());
  Page("TabSheet");
  EXPECT_EQ(Control<QLineEdit>(*form, "txtLabelWidth").text(), "");
  Fill(*form, "txtLabelWidth", "4");
  Fill(*form, "txtLabelLength", "3");
  Page("TabItems");
  Click(*form, "chkDataDate");
  prompt.Expect("Overwrite Label Layout?", Answer::Yes);
  Click(*form, "cmdSave");
  EXPECT_EQ(OnFile("Label Width", LabelKind::Label, "Ghost"), "5760");
  EXPECT_EQ(OnFile("Date Visible", LabelKind::Label, "Ghost"), "1");
  EXPECT_EQ(OnFile("Color Name Visible", LabelKind::Label, "Ghost"), "1") << "as in a new layout";
  EXPECT_TRUE(form->Leave());

  // Cut in the middle of a record.
  const std::filesystem::path file = session.support->label.Path();
  const std::string bytes = ReadFileBytes(file);
  for (const std::size_t part : {bytes.size() / 2, bytes.size() / 7, std::size_t{20}}) {
    SCOPED_TRACE(part);
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes.substr(0, part);
    Open("LabelLayoutForm");
    Page("TabSheet");
    Fill(*form, "txtLabelWidth", "5");
    prompt.Expect("Overwrite Label Layout?", Answer::Yes);
    Click(*form, "cmdSave");
    EXPECT_EQ(OnFile("Label Width"), "7200");
    const SupportRecords written = session.support->label.Read();
    for (const SupportRecord& record : DefaultLabel("Default Label"))
      EXPECT_TRUE(written.Contains("Default Label", record.key)) << record.key;
    EXPECT_TRUE(form->Leave());
  }
}

TEST_F(LayoutWindowsTest, HasPictures) {
  Setting("InvLotTracking", "1");
  OnFile({{"Label Width", "8640"}, {"Label Length", "7200"}, {"Label BC Type", "Code 128"}});
  Open("LabelLayoutForm");
  Fill(*form, "cmbColor", "PINK");
  Surface().Select({"Color Name", "Date"});
  // A full label follows the hand.
  const CpuTimer timer;
  Surface().Nudge(1, 0, false);
  Settle();
  Surface().viewport()->grab();
  EXPECT_LT(timer.Ms(), 50 * kSlower);
  Picture(*form, "label-layout-items");
  for (const char* page : {"TabSelected", "TabSheet", "TabBarCodes", "TabTexts"}) {
    Page(page);
    Picture(*form, std::string("label-layout-") + page);
  }
  Page("TabItems");
  Picture(*form, "label-layout-large", {1920, 1080});
  Picture(*form, "label-layout-small", {960, 540});
  prompt.Expect("Label Layout - Save Information?", Answer::No);
  EXPECT_TRUE(form->Leave());
  OnFile({{"Picto_Image 2 Visible", "1"}, {"Picto_Image 7 Visible", "1"}}, LabelKind::Hazard);
  Open("GH_LabelLayoutForm");
  Page("TabPictograms");
  Picture(*form, "hazard-layout");
  EXPECT_TRUE(form->Leave());
  Open("Formula_LabelLayoutForm");
  Fill(*form, "cmbCN", "PINK");
  Picture(*form, "formula-layout");
}

}  // namespace
}  // namespace vellumark::test
