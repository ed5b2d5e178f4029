#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <QPrinter>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <map>
#include <set>
#include <span>

#include "core/base/refusal.h"
#include "paper/pdf.h"
#include "support/pdf_text.h"
#include "support/places.h"
#include "support/scratch.h"

namespace vellumark::paper {
namespace {

using test::ScratchFolder;

// Columns "T0", "N1", "T2" ...: texts "r3c0" and figures with three decimals, `columns` of them, one by one.
ListTable Grid(std::size_t rows, std::size_t columns, const std::string& totals = {}) {
  TableOf<std::size_t> table;
  for (std::size_t c = 0; c < columns; ++c) {
    if (c % 2 == 0)
      table.Add(fmt::format("T{}", c), [c](std::size_t row) { return fmt::format("r{}c{}", row, c); });
    else
      table.Add(fmt::format("N{}", c), [c](std::size_t row) { return static_cast<double>(row * 100 + c) + 0.125; });
    if (c % 2 == 1 && !totals.empty()) table.Total(totals);
  }
  return table.Of([rows](const auto& take) {
    for (std::size_t row = 0; row < rows; ++row)
      if (!take(row)) return;
  });
}

// The table of these rows as they stand; columns are of the format of the first row's cell.
ListTable Rows(std::vector<TableColumn> columns, std::vector<std::vector<TableValue>> rows) {
  class Kept final : public TableRow {
   public:
    explicit Kept(const std::vector<TableValue>& cells) : cells_(cells) {}
    TableValue Cell(std::size_t column) const override { return cells_[column]; }

   private:
    const std::vector<TableValue>& cells_;
  };
  return {std::move(columns), {}, {}, [rows = std::move(rows)](const TableSink& take) {
            for (const auto& row : rows)
              if (!take(Kept(row))) return;
          }};
}

class PaperTest : public testing::Test {
 protected:
  PaperTest() {
    options.family = "Open Sans";
    options.caption = "Version 5.0.0   -   /shop.vkd";
    options.database = "MAIN";
    options.printed = {2026, 11, 25, 14, 5, 0};
  }

  std::vector<PdfPage> Print(const Sheet& sheet, int* pages = nullptr) {
    SheetLayout layout(sheet, options, progress);
    const int printed = WritePdf(file, sheet.title, layout, progress);
    if (pages != nullptr) *pages = printed;
    return ReadPdf(file);
  }

  ScratchFolder folder;
  std::filesystem::path file = folder / "sheet.pdf";
  OffscreenFonts fonts;
  NoProgress progress;
  PageOptions options;
};

// Words below the upper frame and above the lower one.
std::vector<PdfLine> BodyOf(const PdfPage& page) {
  std::vector<PdfLine> body;
  bool inside = false;
  for (const PdfLine& line : page) {
    if (line.Text().starts_with("Printed by")) return body;
    if (inside) body.push_back(line);
    inside = inside || line.Text().starts_with("Database:");
  }
  return body;
}

// For whoever runs the tests, to be looked at: build/screens/paper-NAME-1.png.
void Picture(const std::filesystem::path& file, const std::string& name) {
  const std::filesystem::path& screens = test::ScreensFolder();
  std::filesystem::create_directories(screens);
  RunTool(fmt::format("pdftoppm -r 60 -l 1 -png '{}' '{}'", file.string(), (screens / ("paper-" + name)).string()));
}

struct Shape {
  const char* name;
  bool landscape;
  int percent;
  bool fit;
  std::size_t columns;
  std::size_t rows;
  std::size_t groups;
};

class Shapes : public PaperTest, public testing::WithParamInterface<Shape> {};

// Every cell stands on paper, under the captions of its group, in the order of the table, and the first column beside
// all of them.
TEST_P(Shapes, PrintsEveryCell) {
  const Shape& shape = GetParam();
  options.landscape = shape.landscape;
  options.fontPercent = shape.percent;
  options.fitToPage = shape.fit;
  int printed = 0;
  const auto pages = Print(Sheet::Of("Grid", Grid(shape.rows, shape.columns, "Totals")), &printed);
  ASSERT_EQ(pages.size(), static_cast<std::size_t>(printed));
  Picture(file, shape.name);
  std::set<std::string> seen;
  std::vector<std::string> captions;
  std::size_t groups = 0;
  std::size_t row = 0;
  std::map<std::size_t, double> rights;  // of the figures of a column
  for (const PdfPage& page : pages) {
    const auto body = BodyOf(page);
    ASSERT_FALSE(body.empty());
    const auto words = [](const PdfLine& line) {
      std::vector<std::string> texts;
      for (const PdfWord& word : line.words) texts.push_back(word.text);
      return texts;
    };
    const auto head = words(body.front());
    if (head != captions) {
      ++groups;
      captions = head;
      row = 0;
      rights.clear();
      EXPECT_EQ(captions.front(), "T0");
    }
    for (std::size_t i = 1; i < body.size(); ++i) {
      if (body[i].words.front().text == "Totals") continue;
      ASSERT_EQ(body[i].words.size(), captions.size()) << body[i].Text();
      for (std::size_t n = 0; n < captions.size(); ++n) {
        const std::size_t column = std::stoul(captions[n].substr(1));
        const PdfWord& word = body[i].words[n];
        ASSERT_EQ(word.text,
                  column % 2 == 0 ? fmt::format("r{}c{}", row, column) : fmt::format("{}.125", row * 100 + column));
        seen.insert(word.text);
        if (column % 2 == 1) {
          EXPECT_NEAR(word.right, rights.try_emplace(column, word.right).first->second, 0.3);
        }
      }
      ++row;
    }
  }
  EXPECT_EQ(row, shape.rows);
  EXPECT_EQ(groups, shape.groups);
  EXPECT_EQ(seen.size(), shape.rows * shape.columns);
}

INSTANTIATE_TEST_SUITE_P(All, Shapes,
                         testing::Values(Shape{"portrait", false, 100, true, 6, 150, 1},
                                         Shape{"landscape60", true, 60, true, 14, 150, 1},
                                         Shape{"fitted", false, 100, true, 14, 90, 1},
                                         Shape{"spread", false, 100, false, 24, 90, 4},
                                         Shape{"spread60", true, 60, false, 40, 60, 3}),
                         [](const auto& shape) { return shape.param.name; });

TEST_F(PaperTest, SetsTheFrameOfEveryPage) {
  options.trademark = "INK is a trade mark of Somebody";
  Sheet sheet = Sheet::Of("Color List", Grid(80, 3));
  sheet.subtitle = "Basic Colors only";
  sheet.incomplete = true;
  const auto pages = Print(sheet);
  ASSERT_GT(pages.size(), 1U);
  for (std::size_t n = 0; n < pages.size(); ++n) {
    const auto lines = LinesOf(pages[n]);
    const std::vector<std::string> head{"The Vellumark", "Color List - INCOMPLETE",
                                        fmt::format("Version 5.0.0 - /shop.vkd Page {}", n + 1),
                                        "Database: MAIN 2026-11-25 14:05", "Basic Colors only"};
    EXPECT_TRUE(std::ranges::equal(std::span(lines).first(head.size()), head))
        << fmt::format("{}", fmt::join(lines, "|"));
    EXPECT_EQ(lines[lines.size() - 2], "Printed by The Vellumark, production manager for the ink room");
    EXPECT_EQ(lines.back(), "INK is a trade mark of Somebody");
  }
  EXPECT_NE(RunTool(fmt::format("pdfinfo '{}'", file.string())).find("Title:           Color List\n"),
            std::string::npos);
}

// A column too narrow for what it holds: a number is whole or "####", never another number; a text loses its end.
TEST_F(PaperTest, CutsNoNumber) {
  Sheet sheet = Sheet::Of(
      "Narrow", Rows({{"Name", "", {}, Format::Text}, {"Qty", "", {}, Format::Amount}, {"No", "", {}, Format::Text}},
                     {{std::string("A"), 1.5, std::string("000042")},
                      {std::string("PANTONE REFLEX BLUE C"), 12345.678, std::string("000043")},
                      {std::string("B"), 123456789012.125, std::string("000000000000000044")}}));
  sheet.blocks.front().widths = {1500, 800, 800};
  const auto body = BodyOf(Print(sheet).front());
  ASSERT_EQ(body.size(), 4U);
  EXPECT_EQ(body[1].Text(), "A 1.500 000042");
  ASSERT_GE(body[2].words.size(), 4U) << body[2].Text();
  const std::vector<PdfWord>& tight = body[2].words;
  const PdfWord& number = tight[tight.size() - 2];
  EXPECT_EQ(number.text, "12345.678");
  const auto high = [](const PdfWord& word) { return word.bottom - word.top; };
  EXPECT_LT(high(number), high(tight.front()) - 0.5);
  const std::string name = body[2].Text().substr(0, body[2].Text().find(" 12345.678"));
  EXPECT_TRUE(std::string("PANTONE REFLEX BLUE C").starts_with(name) && name.size() > 8 && name.size() < 21) << name;
  EXPECT_EQ(body[3].words[1].text, std::string(body[3].words[1].text.size(), '#')) << body[3].Text();
  EXPECT_EQ(body[3].words[2].text, std::string(body[3].words[2].text.size(), '#')) << body[3].Text();
  // Of one width with a page: a column is clamped, not lost.
  sheet.blocks.front().widths = {20000, 1500, 1500};
  options.fitToPage = false;
  EXPECT_EQ(BodyOf(Print(sheet).front())[1].Text(), "A 1.500 000042");
}

// Paper follows the locale; a note is one line of a list.
TEST_F(PaperTest, WritesNumbersAndDatesAsTheLocaleDoes) {
  options.locale = QLocale(QLocale::German, QLocale::Germany);
  options.guideLines = true;
  ListTable table = Rows({{"Name", "", {}, Format::Text},
                          {"Qty", "", {}, Format::Amount, 3, true},
                          {"No", "", {}, Format::Whole},
                          {"Date", "", {}, Format::When},
                          {"Share", "", {}, Format::Percent}},
                         {{std::string("2.5 INK\nnew\tdrum"), 2012.5, std::int64_t{1200}, DateTime{2026, 2, 3}, 0.125}});
  table.totals = "Totals";
  const auto pages = Print(Sheet::Of("Colors", table));
  Picture(file, "german");
  const auto lines = LinesOf(pages.front());
  EXPECT_NE(std::ranges::find(lines, "2.5 INK new drum 2.012,500 1200 03.02.26 12,50%"), lines.end())
      << fmt::format("{}", fmt::join(lines, "\n"));
  EXPECT_NE(std::ranges::find(lines, "Totals 2.012,500"), lines.end());
  EXPECT_NE(std::ranges::find(lines, "Database: MAIN 25.11.26 14:05"), lines.end());
}

TEST_F(PaperTest, AsksBelowSevenPointsOnly) {
  const auto fitOf = [&](std::vector<double> widths, bool landscape = false) {
    std::vector<TableColumn> columns(widths.size(), {"C", "", {}, Format::Text});
    Sheet sheet = Sheet::Of("Wide", Rows(columns, {}));
    sheet.blocks.front().widths = std::move(widths);
    options.landscape = landscape;
    return SheetLayout(sheet, options, progress).Fitting();
  };
  // 0.012 units a twip.
  EXPECT_EQ(fitOf({2860, 1940, 1940}).size, 12);
  EXPECT_NEAR(fitOf({2860, 1940, 1940}).needed, 80.88, 0.001);
  const PageFit eight = fitOf({5000, 5000});
  EXPECT_EQ(eight.size, 8);
  EXPECT_FALSE(eight.asks);
  const PageFit six = fitOf({6000, 6000});
  EXPECT_EQ(six.size, 6);
  EXPECT_TRUE(six.asks);
}

// A printer and a PDF get the same page to the dot.
TEST_F(PaperTest, LaysOutForPrinterAndPdfAlike) {
  options.landscape = true;
  Sheet sheet = Sheet::Of("Both", Grid(60, 8, "Totals"));
  sheet.blocks.push_back({.heading = "Notes", .fields = {{"Lot", "A 12"}}, .lines = {"Stir well.\nThen wait."}});
  const auto pdf = Print(sheet);
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(QString::fromStdString((folder / "printer.pdf").string()));
  SheetLayout layout(sheet, options, progress);
  EXPECT_EQ(PaintPages(printer, "printer", layout, {}, progress), static_cast<int>(pdf.size()));
  const auto printed = ReadPdf(folder / "printer.pdf");
  ASSERT_EQ(printed.size(), pdf.size());
  for (std::size_t page = 0; page < pdf.size(); ++page) {
    ASSERT_EQ(LinesOf(printed[page]), LinesOf(pdf[page]));
    for (std::size_t line = 0; line < pdf[page].size(); ++line)
      EXPECT_EQ(printed[page][line].words, pdf[page][line].words) << pdf[page][line].Text();
  }
  // Some of the pages.
  printer.setOutputFileName(QString::fromStdString((folder / "second.pdf").string()));
  EXPECT_EQ(PaintPages(printer, "printer", layout, {2, 2}, progress), 1);
  EXPECT_EQ(LinesOf(ReadPdf(folder / "second.pdf").front()), LinesOf(pdf[1]));
}

TEST_F(PaperTest, LeavesNoHalfFile) {
  const Sheet sheet = Sheet::Of("Large", Grid(2000, 6));
  SheetLayout layout(sheet, options, progress);
  const auto failureOf = [&](const std::filesystem::path& target) -> std::string {
    try {
      WritePdf(target, "Large", layout, progress);
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "written";
  };
  EXPECT_EQ(failureOf(folder / "gone/list.pdf"), (folder / "gone/list.pdf").string() + ": No such file or directory");
  std::filesystem::create_directory(folder / "list.pdf");
  EXPECT_TRUE(failureOf(folder / "list.pdf").starts_with((folder / "list.pdf").string() + ": "));

  std::ofstream(folder / "kept.pdf") << "what stood there";
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const rlimit little{20000, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &little);
  const std::string full = failureOf(folder / "kept.pdf");
  ::setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(full, (folder / "kept.pdf").string() + ": File too large");
  EXPECT_EQ(ReadPdf(folder / "kept.pdf").size(), 0U);

  class Cancels final : public Progress {
   public:
    void Begin(std::string_view) override {}
    void Percent(double) override {}
    bool Cancelled() override { return true; }
  } cancels;
  EXPECT_EQ(WritePdf(folder / "stopped.pdf", "Large", layout, cancels), 0);
  std::set<std::string> left;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) left.insert(entry.path().filename());
  EXPECT_EQ(left, (std::set<std::string>{"kept.pdf", "list.pdf"}));
  EXPECT_GT(WritePdf(folder / "kept.pdf", "Large", layout, progress), 30);
}

}  // namespace
}  // namespace vellumark::paper
