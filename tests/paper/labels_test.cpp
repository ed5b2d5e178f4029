#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>

#include "paper/label_painter.h"
#include "paper/pdf.h"
#include "support/label_readers.h"

namespace vellumark::test {
namespace {

struct LabelPaperTest : testing::Test, LabelRoom {};

TEST_F(LabelPaperTest, StandsTrueToSizeInAllOrientations) {
  Show({{"Short Note", {720, 360}}});
  for (const auto& [key, value] : {std::pair{"Labels Across", "3"},
                                   {"Labels Down", "5"},
                                   {"Label Width", "5760"},
                                   {"Label Length", "2880"},
                                   {"Short Note Title", "0"},
                                   {"Left Margin", "140"},
                                   {"Top Margin", "280"}})
    Set(key, value);
  LabelData data;
  data["Short Note"] = "HERE";
  const std::filesystem::path pdf = folder / "labels.pdf";
  // Of the label in the third column of the fifth row, in points from the corner of the upright sheet.
  const double left = (140 + 2 * 5760 + 720) / 20.0;
  const double top = (280 + 4 * 2880 + 360) / 20.0;
  const double width = (140 + 3 * 5760) / 20.0;
  const double height = (280 + 5 * 2880) / 20.0;
  constexpr double kTenthOfMillimetre = 0.1 * 72 / 25.4;
  for (int orientation = 0; orientation < 4; ++orientation) {
    Set("Orientation", std::to_string(orientation));
    paper::LabelJob job = Job(data);
    job.start = 15;
    ASSERT_EQ(paper::PrintLabelsToFile(session, job, pdf), 1);
    const bool turned = orientation == 3;
    EXPECT_NE(RunTool("pdfinfo " + pdf.string())
                  .find(fmt::format("{} x {} pts", turned ? height : width, turned ? width : height)),
              std::string::npos)
        << orientation << RunTool("pdfinfo " + pdf.string());
    const auto pages = ReadPdf(pdf);
    ASSERT_EQ(pages.size(), 1U);
    ASSERT_EQ(pages[0].size(), 1U);
    const PdfWord& word = pages[0][0].words.at(0);
    const double seenLeft = orientation == 2 ? width - word.right : orientation == 3 ? width - word.bottom : word.left;
    EXPECT_NEAR(seenLeft, left, 6 * kTenthOfMillimetre) << orientation;
    const double seenTop = orientation == 2 ? height - word.bottom : orientation == 3 ? word.left : word.top;
    EXPECT_NEAR(seenTop, top, 6 * kTenthOfMillimetre) << orientation;
  }
}

TEST_F(LabelPaperTest, PaintsModulesOfWholeDots) {
  Set("Label BC Type", "Code 128");
  Show({{"Color Name BC", {1440, 720}}});
  LabelData data;
  data["Color Name"] = "RED";
  const paper::OffscreenFonts fonts;
  for (const auto& [dots, module] : {std::pair{203, 2}, {300, 3}, {600, 6}}) {
    const LabelDrawing drawing = DrawLabel(session, kLayout, data, {});
    const auto box = paper::BoxOfCode(drawing, drawing.elements.at(0), dots);
    ASSERT_TRUE(box);
    EXPECT_EQ(box->module, module) << dots;
    EXPECT_NEAR(box->left, dots, 0.1 / 25.4 * dots);
    QImage image(static_cast<int>(8.5 * dots), 2 * dots, QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    paper::LabelPainter(painter, dots, {}).Paint(drawing, 0, 0);
    painter.end();
    // Every run of black and white in a row through the bars is a whole number of modules.
    const uchar* row = image.constScanLine(box->top + box->height / 2);
    int x = box->left;
    for (const std::uint8_t width : box->bars.widths) {
      const uchar color = row[x];
      for (int i = 0; i < width * module; ++i) ASSERT_EQ(row[x + i], color) << dots << " at " << x + i;
      x += width * module;
      ASSERT_NE(row[x], color);
    }
  }
}

TEST_F(LabelPaperTest, IsReadByTwoReaders) {
  int announced = 0;
  for (const Symbology symbology : {Symbology::Code128, Symbology::Code39, Symbology::Code39Check})
    for (const int dots : {203, 300, 600}) announced += ReadRandomLabels(symbology, dots, 1, 7);
  EXPECT_LT(announced, 24) << "most of them can be read";
}

TEST_F(LabelPaperTest, TellsWhichCodeCannotBeReadAndWhy) {
  Set("Label BC Type", "Code 128");
  Set("Label Width", "2880");
  Show({{"Color Name BC", {0, 300}},
        {"Color Code BC", {0, 800}},
        {"Database BC", {100, 800}},
        {"Lot Number BC", {0, 2000}}});
  LabelData data;
  data["Color Name"] = "RED";
  data["Color Code"] = "R1";
  data["Database"] = "INK";
  data["Lot Number"] = "abcdefghijklmnopqrstuvwxyz{}~";
  auto checks = paper::CheckCodes(session, Job(data).drawings[0], 203);
  ASSERT_EQ(checks.size(), 4U);
  EXPECT_TRUE(checks[0].Reads) << checks[0].Reason;
  EXPECT_FALSE(checks[1].Reads && checks[2].Reads) << "they lie over each other";
  EXPECT_EQ(checks[3].Reason, "Its check is no character of the bar code.");
  data["Lot Number"] = "ABCDEFGHIJKLMNOPQRST";
  Set("Label Width", "1440");
  checks = paper::CheckCodes(session, Job(data).drawings[0], 203);
  EXPECT_EQ(checks[3].Reason, "It is longer than the label has room for.");
  Set("Label BC Type", "Code 3 of 9");
  EXPECT_TRUE(paper::CheckCodes(session, Job(data).drawings[0], 203)[0].Reason.starts_with("The character \"<\""));
}

TEST_F(LabelPaperTest, SetsATextSmallerBeforeItsNeighbourOrAnnouncesIt) {
  Set("Label Width", "5760");
  Set("Label Length", "2880");
  Set("Color Code Title", "0");
  Show({{"Color Name", {100, 300}}, {"Color Code", {3600, 400}}, {"Misc Text 1", {100, 2500}}});
  LabelData data;
  data["Color Name"] = "DEEP SEA BLUE";
  data["Color Code"] = "B1";
  data["Misc Text 1"] = "Keep closed";
  const paper::OffscreenFonts fonts;
  LabelDrawing drawing = Job(data).drawings[0];
  const int wide = paper::BoxOfText(drawing, drawing.elements[0], 300).font.pixelSize();
  EXPECT_LT(wide, 32 * 300 / 72);
  EXPECT_LE(paper::BoxOfText(drawing, drawing.elements[0], 300).ink.right(), 3600 * 300 / 1440.0);
  EXPECT_TRUE(paper::CheckPlaces(session, drawing, 300).empty());
  data["Color Name"] = "DEEP SEA BLUE OF THE NORTH 1234";
  Set("Misc Text 1 Top", "2800");
  drawing = Job(data).drawings[0];
  const auto faults = paper::CheckPlaces(session, drawing, 300);
  ASSERT_EQ(faults.size(), 2U);
  EXPECT_EQ(faults[0].Reason, "It runs into Color Code.");
  EXPECT_EQ(faults[1].Reason, "It is larger than the label has room for.");
}

TEST_F(LabelPaperTest, PutsAllFieldsIntoOneSquareCode) {
  Set("Label Width", "5760");
  Set("Label Length", "2880");
  Show({});
  LabelData data;
  data["Color Name"] = "RED";
  data["Lot Number"] = "A1";
  const paper::LabelJob job = Job(data, {.qrCode = true});
  const auto checks = paper::CheckCodes(session, job.drawings[0], 600);
  ASSERT_EQ(checks.size(), 1U);
  EXPECT_TRUE(checks[0].Reads) << checks[0].Reason;
  EXPECT_EQ(checks[0].Text, "<CN>RED\n<LN>A1");
  ASSERT_EQ(paper::PrintLabelsToFile(session, job, folder / "square.pdf"), 1);
  EXPECT_EQ(ReadByZbar(folder / "square.pdf", 600), (std::vector<std::string>{"<CN>RED", "<LN>A1"}));
}

}  // namespace
}  // namespace vellumark::test
