#include <gtest/gtest.h>

#include "support/cli_run.h"
#include "support/pdf_text.h"

namespace vellumark {
namespace {

using Words = std::vector<std::string>;

// The program itself, its file read back by another one.
struct PrintShop : test::CliRoom {
  PrintShop() {
    path = MakeFile();
    for (const char* name : {"RED", "WHITE"}) Json({"--yes", "color", "add", name, "PurchaseCost=4", "Inventory=100"});
    Json({"--yes", "formula", "add", "PINK", "RED=25", "WHITE=75"});
    Json({"--yes", "batch", "save", "--formula", "PINK", "--quantity", "20", "--mix", "--short-note", "for the fair"});
  }
  std::vector<std::string> Print(Words words, const std::string& name = "out.pdf") const {
    words.insert(words.end(), {"--out", folder / name, "--yes"});
    const auto answer = Json(words);
    EXPECT_EQ(answer["File"], (folder / name).string());
    const auto pages = ReadPdf(folder / name);
    EXPECT_EQ(answer["Pages"], pages.size());
    std::vector<std::string> lines;
    for (const PdfPage& page : pages)
      for (const std::string& line : LinesOf(page)) lines.push_back(line);
    return lines;
  }
  std::string path;
};

TEST(CliPrint, PrintsListsAndTickets) {
  const PrintShop shop;
  const auto ticket = shop.Print({"batch", "ticket", "1"});
  for (const char* line :
       {"The Vellumark", "Batch", "PINK", "Batch ID #: 000001", "Short Note: for the fair", "Ingredient Amount Unit",
        "WHITE 15.000 lb.", "RED 5.000 lb.", "TOTAL WEIGHT 20.000", "Cost of Batch 80.00"})
    EXPECT_NE(std::ranges::find(ticket, line), ticket.end()) << line;

  // A list as it is asked for, whatever a program would be told.
  const auto list = shop.Print({"color", "list", "--sort", "Color_Name", "--desc", "--filter", "e", "--landscape"});
  const auto white = std::ranges::find(list, "WHITE 85.000 0.000 4.00 0.000 0.000");
  ASSERT_NE(white, list.end()) << fmt::format("{}", fmt::join(list, "\n"));
  EXPECT_EQ(*(white + 1), "RED 95.000 0.000 4.00 0.000 0.000");
  EXPECT_NE(std::ranges::find(list, "Basic Colors"), list.end());
  const auto card = shop.Print({"formula", "show", "PINK"});
  for (const char* line : {"Master Formula", "PINK", "RED 25.000", "Basic Cost 4.00"})
    EXPECT_NE(std::ranges::find(card, line), card.end()) << line;
  const auto stock = shop.Print({"stock", "show"});
  EXPECT_NE(std::ranges::find(stock, "RED Basic Unlotted Inv. 95.000"), stock.end())
      << fmt::format("{}", fmt::join(stock, "\n"));
}

TEST(CliPrint, TellsWhyNothingWasPrinted) {
  const PrintShop shop;
  const std::string gone = shop.folder / "gone/list.pdf";
  const auto failed = shop.Run({"formula", "list", "--out", gone});
  EXPECT_EQ(failed.status, 4);
  EXPECT_EQ(failed.err, gone + ": No such file or directory\n");
  EXPECT_EQ(shop.Run({"formula", "list", "--out", shop.folder / "list.doc"}).status, 2);
  EXPECT_EQ(shop.Run({"batch", "ticket", "1"}).status, 2);
  EXPECT_EQ(shop.Run({"batch", "ticket", "7", "--out", shop.folder / "no.pdf"}).status, 1);
  EXPECT_FALSE(std::filesystem::exists(shop.folder / "no.pdf"));
}

// Whatever writes a file that is named to it: one that is there stays until somebody says that it may go.
TEST(CliPrint, AFileThatIsThereIsAskedAbout) {
  const PrintShop shop;
  for (const Words& words : {Words{"color", "list", "--out", "x.pdf"},
                             {"batch", "ticket", "1", "--out", "x.pdf"},
                             {"label", "print", "Default Label", "Color Name=RED", "--out", "x.pdf"},
                             {"report", "run", "InventoryForm", "--out", "x.pdf"},
                             {"report", "run", "InventoryForm", "--out", "x.txt"},
                             {"report", "export", "InventoryForm", "--out", "x.xlsx"},
                             {"report", "chart", "InventoryForm", "--out", "x.svg"},
                             {"formula", "export", "x.mfe"},
                             {"batch", "export", "--first", "1", "--last", "1", "--out", "x.txt"}}) {
    const std::filesystem::path file = shop.folder / words.back();
    ReplaceFile(file, "old");
    Words asked = words;
    asked.back() = file.string();
    EXPECT_EQ(shop.Run(asked).status, 3) << words[0] << " " << words[1];
    EXPECT_EQ(ReadFileBytes(file), "old") << words[0] << " " << words[1];
    asked.insert(asked.begin(), "--no");
    EXPECT_EQ(shop.Run(asked).status, 1) << words[0] << " " << words[1];
    asked.front() = "--yes";
    EXPECT_EQ(shop.Run(asked).status, 0) << words[0] << " " << words[1];
    EXPECT_NE(ReadFileBytes(file), "old") << words[0] << " " << words[1];
  }
}

}  // namespace
}  // namespace vellumark
