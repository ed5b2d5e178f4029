// The windows that print labels, on a real ink room, by the keys of an operator; what they print is read back.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPrinter>

#include "core/labels/label_subjects.h"
#include "core/session/settings.h"
#include "desktop/kit/print_label.h"
#include "desktop/labels/label_preview.h"
#include "desktop/labels/register.h"
#include "support/desktop.h"
#include "support/label_readers.h"

namespace vellumark::test {
namespace {

void PicturesOf(QWidget& window, const std::string& name) {
  Picture(window, name);
  Picture(window, name + "-1920", {1920, 1080});
  Picture(window, name + "-960", {960, 540});
}

struct LabelWindowsTest : testing::Test, LabelRoom {
  LabelWindowsTest() {
    session.TradeMark = "PANTONE is a trademark.";
    desktop::RegisterLabelWindows(
        windows, {.printers = [this] { return printers; },
                  .open =
                      [this](const std::string& device) {
                        opened = device;
                        if (gone) throw Failure(device, "This printer is no longer there.");
                        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
                        printer->setOutputFormat(QPrinter::PdfFormat);
                        printer->setOutputFileName(QString::fromStdString(Printed().string()));
                        printer->setResolution(300);
                        return printer;
                      },
                  .chooseFile = [this](const desktop::FileChoice&,
                                       QWidget*) { return QString::fromStdString(Saved().string()); }});
    StoreSettings(session, {setting::GH_LabelLayoutList.To("Default Label|"),
                            setting::Formula_LabelLayoutList.To("Default Label|"), setting::InvLotTracking.To(true),
                            setting::BC_Label_Prefix_Identifier.To(true)});
    Basic("RED", {{"Color_Code", "R1"}});
    Basic("BLUE", {{"Color_Code", "B1"}});
    Mix("PANTONE 185 C", {{"RED", 60}, {"BLUE", 40}}, {{"Color_Code", "P185"}});
    AddRow(schema::MixLotInv, {{"LotCName", "PANTONE 185 C"}, {"LotRefID", 1}, {"LotNumber", "L-7"},
                               {"LotLoc", "SHELF 2"}, {"LotContID", "C1"}, {"LotQty", 5.0F}});
    AddRow(schema::MixLotInv, {{"LotCName", "PANTONE 185 C"}, {"LotRefID", 2}, {"LotNumber", "L-7"},
                               {"LotLoc", "SHELF 3"}, {"LotContID", "C2"}, {"LotQty", 5.0F}});
    for (const auto& [key, value] : {std::pair{"Label BC Type", "Code 128"}, {"Labels Across", "2"},
                                     {"Labels Down", "2"}, {"Label Width", "6000"}, {"Label Length", "7200"},
                                     {"Misc Text 1 Text", "Keep closed"}, {"Health Text", "1"}})
      Set(key, value);
    Show({{"Color Name", {100, 100}}, {"Color Name BC", {300, 900}}, {"Color Code", {100, 1500}},
          {"Lot Number BC", {300, 2400}}, {"Lot Cont ID", {100, 3000}}, {"Lot Location", {3000, 3000}},
          {"Misc Text 1", {100, 3600}}, {"Health - Fire - Reactivity", {100, 4200}},
          {"Pantone Trademark", {100, 4800}}});
  }
  std::filesystem::path Printed() const { return folder / "printed.pdf"; }
  std::filesystem::path Saved() const { return folder / "saved.pdf"; }
  desktop::Window& Open(const char* name) {
    desktop::Window* window = windows.OpenForm(name);
    window->resize(1280, 600);
    ShowActive(*window);
    Settle();
    return *window;
  }
  static std::string Text(QWidget& window, const char* name) {
    return Control<QLineEdit>(window, name).text().toStdString();
  }
  static std::string Faults(QWidget& window) {
    QTest::qWait(300);
    return Control<QLabel>(window, "lblFaults").text().toStdString();
  }
  std::vector<std::string> Lines(const std::filesystem::path& pdf) const {
    std::vector<std::string> lines;
    for (const PdfPage& page : ReadPdf(pdf))
      for (std::string& line : LinesOf(page)) lines.push_back(std::move(line));
    return lines;
  }

  desktop::SystemPrinters printers{{{"Labels", "ZEBRA"}}, ""};
  std::string opened;
  bool gone = false;
  desktop::WindowList windows{session};
};

// From Get Data to paper, and once more after the program was away.
TEST_F(LabelWindowsTest, PrintsALabelOfAColorFromItsLot) {
  QWidget* form = &Open("LabelForm");
  EXPECT_EQ(Text(*form, "txtText1"), "Keep closed");
  EXPECT_EQ(FocusName(), "txtColorName");
  WithModal([&] { PressOn(Qt::Key_F2); },
            [&](QWidget& dialog) {
              Picture(dialog, "label-data-selection", {});
              ShowActive(dialog);
              TypeOn("nothing");
              prompt.Expect("Valid Data", Answer::Ok, "Enter a valid Color / Database name.");
              Click(dialog, "cmdSelect");
              EXPECT_EQ(FocusName(), "cmbCN");
              Fill(dialog, "cmbCN", "pantone 185 C");
              EXPECT_EQ(Text(dialog, "cmbCN"), "PANTONE 185 C");
              EXPECT_EQ(Control<QLabel>(dialog, "lblColorCode").text(), "P185");
              auto& lot = Control<QComboBox>(dialog, "cmbLN");
              ASSERT_EQ(lot.count(), 2);
              lot.setFocus();
              PressOn(Qt::Key_Down);
              Control<QComboBox>(dialog, "cmbLC").setFocus();
              PressOn(Qt::Key_Down);
              Click(dialog, "cmdSelect");
            });
  EXPECT_EQ(Text(*form, "txtColorName"), "PANTONE 185 C");
  EXPECT_EQ(Text(*form, "txtColorCode"), "P185");
  EXPECT_EQ(Text(*form, "txtDatabase"), "INK");
  EXPECT_EQ(Text(*form, "txtDate"), "2026-03-10");
  EXPECT_EQ(Text(*form, "txtLotNumber"), "L-7");
  EXPECT_EQ(Text(*form, "txtLotLocation"), "SHELF 3");
  EXPECT_EQ(Text(*form, "txtLotContID"), "C2");
  EXPECT_EQ(Faults(*form), "");
  PicturesOf(*form, "label-form");
  ShowActive(*form);

  // No printer, one that is gone, one that is taken away in between.
  prompt.Expect("Label Template - Print", Answer::Ok,
                "A printer has to be selected for the label template.\nClick the Label Design button to change the "
                "printer.");
  PressOn(Qt::Key_P, Qt::ControlModifier);
  Set("Printer", "OLD");
  prompt.Expect("Label Template - Print", Answer::Ok,
                "Selected printer is no longer recognized on the PC.\nClick the Label Design button to change the "
                "printer.");
  PressOn(Qt::Key_P, Qt::ControlModifier);
  Set("Printer", "ZEBRA");
  gone = true;
  prompt.Expect("ZEBRA", Answer::Ok, "This printer is no longer there.");
  PressOn(Qt::Key_P, Qt::ControlModifier);
  gone = false;

  // From the third place of the sheet: two on the first page, one on the second.
  Fill(*form, "ScrollStartLabel", "9");
  EXPECT_EQ(Text(*form, "ScrollStartLabel"), "4");
  Fill(*form, "ScrollStartLabel", "3");
  Fill(*form, "txtLabels", "none");
  EXPECT_EQ(Text(*form, "txtLabels"), "1");
  Fill(*form, "txtLabels", "3");
  PressOn(Qt::Key_P, Qt::ControlModifier);
  EXPECT_EQ(opened, "ZEBRA");
  EXPECT_EQ(ReadPdf(Printed()).size(), 2U);
  const auto lines = Lines(Printed());
  EXPECT_EQ(std::ranges::count(lines, "Keep closed Keep closed"), 1) << fmt::format("{}", fmt::join(lines, "\n"));
  EXPECT_EQ(std::ranges::count(lines, "Health 1 Fire Reactivity"), 1);
  EXPECT_NE(std::ranges::find(lines, "PANTONE is a trademark."), lines.end());
  const std::vector<std::string> read = ReadByZbar(Printed(), 300);
  // Of a page the reader tells the same text once.
  EXPECT_EQ(std::ranges::count(read, "<CN>PANTONE 185 C"), 2) << fmt::format("{}", fmt::join(read, "\n"));
  EXPECT_EQ(std::ranges::count(read, "<LN>L-7"), 2);

  // The last labels again: data, layout and count, in a window that is opened anew.
  Click(*form, "cmdClear");
  EXPECT_EQ(Text(*form, "txtColorName"), "");
  windows.CloseChildWindows();
  Settle();
  form = &Open("LabelForm");
  PressOn(Qt::Key_F9);
  EXPECT_EQ(Text(*form, "txtColorName") + Text(*form, "txtLabels") + Text(*form, "ScrollStartLabel"),
            "PANTONE 185 C33");
  Click(*form, "cmdPDF");
  EXPECT_EQ(Lines(Saved()), lines);
}

TEST_F(LabelWindowsTest, ShowsWhatDoesNotReadAndAsksBeforeItPrints) {
  Set("Printer", "ZEBRA");
  QWidget& form = Open("LabelForm");
  Fill(form, "txtColorName", "<CN>RED");
  EXPECT_EQ(Text(form, "txtColorName"), "RED") << "a scanner's tag";
  Fill(form, "txtLotNumber", "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234");
  EXPECT_EQ(Faults(form), "");
  Set("Label Width", "2000");
  Fill(form, "txtLotNumber", "ABCDEFGHIJKLMNOPQRSTUVWXYZ1235");
  EXPECT_EQ(Faults(form), "Lot Number BC: It is longer than the label has room for.");
  auto& preview = Control<desktop::LabelPreview>(form, "Preview");
  const auto reds = [&] {
    const QImage seen = preview.Page()->grab().toImage();
    int count = 0;
    for (int y = 0; y < seen.height(); ++y)
      for (int x = 0; x < seen.width(); ++x)
        if (const QColor c = seen.pixelColor(x, y); c.red() > 150 && c.green() < 120) ++count;
    return count;
  };
  EXPECT_GT(reds(), 100);
  Picture(form, "label-form-fault");
  ShowActive(form);
  prompt.Expect("Label Bar Codes", Answer::No);
  PressOn(Qt::Key_P, Qt::ControlModifier);
  EXPECT_FALSE(std::filesystem::exists(Printed()));
  prompt.Expect("Label Bar Codes", Answer::Yes);
  PressOn(Qt::Key_P, Qt::ControlModifier);
  EXPECT_TRUE(std::filesystem::exists(Printed()));

  // Identifiers that the bar code has no characters for: told in a box at Print alone.
  Set("Label Width", "6000");
  Set("Label BC Type", "Code 3 of 9");
  Fill(form, "txtLotNumber", "A1");
  EXPECT_NE(Faults(form).find("The character \"<\" cannot be used in this barcode."), std::string::npos);
  prompt.Expect("Bad Barcode Character", Answer::Ok,
                "The character \"<\" cannot be used in this barcode. \nPlease re-enter data not using this character.")
      .Expect("Label Bar Codes", Answer::No);
  PressOn(Qt::Key_P, Qt::ControlModifier);
  Click(form, "chk_BC_Identifier");
  EXPECT_FALSE(GetSetting(session, setting::BC_Label_Prefix_Identifier));
  EXPECT_EQ(Faults(form), "");
  EXPECT_EQ(reds(), 0);

  // A text that runs into another one; a picture that is gone.
  Show({{"Color Code", {100, 100}}, {"Misc Text 1", {100, 150}}});
  session.support->label.Change([](SupportRecords& file) {
    file.Set("Default Label", "Picture Image Visible", "1");
    file.Set("Default Label", "Picture Image Location", "gone.jpg");
  });
  Fill(form, "txtColorCode", "R1");
  const std::string faults = Faults(form);
  EXPECT_NE(faults.find("Color Code: It runs into Misc Text 1."), std::string::npos) << faults;
  EXPECT_NE(faults.find("gone.jpg is no picture that can be read."), std::string::npos) << faults;
}

TEST_F(LabelWindowsTest, PrintsOneLabelForEachContainer) {
  std::vector<LabelData> labels;
  for (const LotRow& lot : LotsOf(session, ColorKind::Mix, "PANTONE 185 C"))
    labels.push_back(*LabelOfLot(session, ColorKind::Mix, "PANTONE 185 C", lot));
  desktop::OpenLabelForm(windows, labels);
  QWidget& form = Open("LabelForm");
  EXPECT_EQ(Text(form, "txtLabels"), "2");
  EXPECT_EQ(Text(form, "txtLotContID"), "C1");
  Click(form, "cmdNextLabel");
  EXPECT_EQ(Text(form, "txtLotContID"), "C2");
  EXPECT_EQ(Text(form, "txtText1"), "Keep closed");
  Fill(form, "txtLotContID", "C9");
  Click(form, "cmdPreviousLabel");
  Click(form, "chkQRCode");
  Click(form, "cmdPDF");
  const auto lines = Lines(Saved());
  EXPECT_NE(std::ranges::find(lines, "Lot Cont ID : C1 Lot Location : SHELF 2 Lot Cont ID : C9 Lot Location : SHELF 3"),
            lines.end())
      << fmt::format("{}", fmt::join(lines, "\n"));
  const auto read = ReadByZbar(Saved(), 300);
  EXPECT_EQ(std::ranges::count(read, "<LC>C1"), 1);
  EXPECT_EQ(std::ranges::count(read, "<LC>C9"), 1);
  // Which of the lots of a number, for the scanner alone; what was typed over is no longer it.
  EXPECT_EQ(std::ranges::count(read, "<CT>2"), 2);
  EXPECT_EQ(std::ranges::count(read, "<LR>1"), 1);
  EXPECT_EQ(std::ranges::count(read, "<LR>2"), 0);
  Click(form, "chkQRCode");
}

TEST_F(LabelWindowsTest, SaysThatThereIsNothingToPrint) {
  session.support->label.Change([](SupportRecords& file) { file.RemoveRecords("Default Label"); });
  QWidget& form = Open("LabelForm");
  Fill(form, "txtColorName", "pantone 12");
  EXPECT_EQ(Text(form, "txtColorName"), "PANTONE 12");
  prompt.Expect("Label Template - Print", Answer::Ok, "There is nothing on this label that could be printed.");
  Click(form, "cmdPDF");
  EXPECT_FALSE(std::filesystem::exists(Saved()));
}

TEST_F(LabelWindowsTest, PutsFieldsTogetherIntoOneCode) {
  Show({{"Misc Bar Code Data 1", {300, 300}}});
  Set("Misc Bar Code Data 1 Combined", "CNLN");
  QWidget& form = Open("LabelForm");
  Fill(form, "txtColorName", "RED");
  Fill(form, "txtLotNumber", "L7");
  EXPECT_EQ(Text(form, "txtMBCData1"), "REDL7");
  EXPECT_TRUE(Control<QLineEdit>(form, "txtMBCData1").isReadOnly());
  Click(form, "cmdPDF");
  EXPECT_EQ(ReadByZbar(Saved(), 300), std::vector<std::string>{"<U1>REDL7"});
  Fill(form, "txtLotNumber", std::string(28, 'L'));
  EXPECT_NE(Faults(form).find("Combined data from selected fields cannot exceed 30 characters."), std::string::npos);
  prompt.Expect("Misc Bar Code Data", Answer::Ok);
  std::filesystem::remove(Saved());
  Click(form, "cmdPDF");
  EXPECT_FALSE(std::filesystem::exists(Saved()));
}

TEST_F(LabelWindowsTest, PrintsHazardLabels) {
  for (const auto& [key, value] : {std::pair{"Label Width", "5760"}, {"Label Length", "7200"}, {"Labels Across", "2"},
                                   {"Picto_Image 2 Visible", "1"}, {"Picto_Image 2 Top", "5400"}, {"Picto_Image 2 Left", "0"},
                                   {"Picto_Image 7 Top", "5400"}, {"Picto_Image 7 Left", "1700"}})
    ASSERT_TRUE(SaveLabelSetting(session, LabelKind::Hazard, kLayout, key, value));
  QWidget& form = Open("GH_LabelForm");
  EXPECT_TRUE(Control<QCheckBox>(form, "chkPicto2").isChecked());
  EXPECT_FALSE(Control<QCheckBox>(form, "chkPicto7").isChecked());
  TypeOn("DANGER");
  Type(Control(form, "txtHazardStatement"),
       "Highly flammable liquid and vapour. Causes serious eye irritation. May cause drowsiness or dizziness.");
  EXPECT_EQ(Faults(form), "");
  PicturesOf(form, "hazard-form");
  ShowActive(form);
  Click(form, "cmdPDF");
  const auto lines = Lines(Saved());
  EXPECT_NE(std::ranges::find(lines, "DANGER"), lines.end());
  EXPECT_EQ(std::ranges::find(lines, "Highly flammable liquid and vapour. Causes serious eye irritation. May cause "
                                     "drowsiness or dizziness."),
            lines.end())
      << "it goes over lines";
  const auto reds = [&](int left) {
    RunTool(fmt::format("pdftoppm -r 72 -png '{}' '{}'", Saved().string(), (folder / "page").string()));
    QImage page(QString::fromStdString((folder / "page-1.png").string()));
    int count = 0;
    for (int y = 270; y < 342; ++y)
      for (int x = left; x < left + 72; ++x)
        if (const QColor c = page.pixelColor(x, y); c.red() > 150 && c.green() < 100) ++count;
    return count;
  };
  EXPECT_GT(reds(0), 100);
  EXPECT_EQ(reds(85), 0);
  Click(form, "chkPicto7");
  Click(form, "chkPicto2");
  std::filesystem::remove(Saved());
  Click(form, "cmdPDF");
  EXPECT_EQ(reds(0), 0);
  EXPECT_GT(reds(85), 100);
  prompt.Expect("Label Template - Print", Answer::Ok,
                "A printer has to be selected for the label template.\nClick the Edit Label Layout button to change "
                "printer.");
  PressOn(Qt::Key_P, Qt::ControlModifier);
}

TEST_F(LabelWindowsTest, PrintsTheRecipeOfAFormula) {
  std::vector<std::pair<std::string, float>> parts;
  for (int i = 0; i < 15; ++i) {
    Basic(fmt::format("INK {:02}", i));
    parts.emplace_back(fmt::format("INK {:02}", i), i == 0 ? 30.0F : 5.0F);
  }
  Mix("FIFTEEN", parts, {{"Color_Code", "F15"}});
  // Asked for where a colour's data are, which a Basic Color has no recipe for.
  QWidget& labels = Open("LabelForm");
  WithModal([&] { Click(labels, "cmdGetColorInfo"); },
            [&](QWidget& dialog) {
              Click(dialog, "optBasic");
              prompt.Expect("Non Formula Color", Answer::Ok, "Color is not a formula.");
              Click(dialog, "cmdFormulaLabel");
              Click(dialog, "optFormula");
              Fill(dialog, "cmbCN", "FIFTEEN");
              Click(dialog, "cmdFormulaLabel");
            });
  QWidget& form = Open("Formula_LabelForm");
  EXPECT_EQ(Text(form, "cmbCN"), "FIFTEEN");
  EXPECT_EQ(Text(form, "txtColorCode"), "F15");
  EXPECT_EQ(Faults(form), "");
  PicturesOf(form, "formula-form");
  ShowActive(form);
  Click(form, "cmdPDF");
  const auto lines = Lines(Saved());
  EXPECT_EQ(std::ranges::count_if(lines, [](const std::string& line) { return line.starts_with("INK "); }), 15);
  EXPECT_NE(std::ranges::find(lines, "INK 00 30.000"), lines.end());
  ASSERT_TRUE(SaveLabelSetting(session, LabelKind::Formula, kLayout, "Label Length", "3000"));
  Fill(form, "txtColorCode", "F16");
  EXPECT_EQ(Faults(form), "Formula: It is larger than the label has room for.");
  prompt.Expect("Bad Color Name", Answer::Ok, "Enter / Select a valid Color Name.");
  Fill(form, "cmbCN", "NONE");
  prompt.Expect("Bad Color Name", Answer::Ok, "Enter / Select a valid Color Name.");
  Click(form, "cmdPDF");
}

TEST_F(LabelWindowsTest, TheMenuLeadsToEachKindAndFromThereToItsLayout) {
  for (const char* name : {"LabelForm", "GH_LabelForm", "Formula_LabelForm"}) {
    desktop::Window* menu = windows.OpenForm("LabelMenu");
    ShowActive(*menu);
    if (std::string_view(name) == "LabelForm") Picture(*menu, "label-menu", {});
    Click(*menu, (std::string("cmd") + name).c_str());
    Settle();
    EXPECT_TRUE(windows.IsFormOpen(name));
    EXPECT_FALSE(windows.IsFormOpen("LabelMenu"));
    ShowActive(*windows.Form(name));
    Click(*windows.Form(name), "cmdLabelDesign");
    Settle();
  }
  for (const char* name : {"LabelLayoutForm", "GH_LabelLayoutForm", "Formula_LabelLayoutForm"}) {
    ASSERT_TRUE(windows.IsFormOpen(name));
    EXPECT_EQ(Control<QComboBox>(*windows.Form(name), "cmbLabelName").currentText(), "Default Label");
  }
}

}  // namespace
}  // namespace vellumark::test
