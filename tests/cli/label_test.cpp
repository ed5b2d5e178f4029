#include <gtest/gtest.h>

#include "support/cli_run.h"
#include "support/pdf_text.h"

namespace vellumark {
namespace {

TEST(CliLabels, KeepsLayoutsAndPrintsThem) {
  const test::CliRoom room;
  room.MakeFile();
  EXPECT_EQ(room.Json({"label", "copy", "Default Label", "Drums"}).dump(), R"(["Default Label","Drums"])");
  for (const auto& [key, value] :
       {std::pair{"Label BC Type", "Code 128"}, {"Labels Down", "2"}, {"Label Length", "5760"}})
    EXPECT_EQ(room.Json({"label", "set", "drums", key, value})[key], value);
  const auto shown = room.Json({"label", "show", "Drums", "--filter", "Labels Down"});
  EXPECT_EQ(shown.dump(), R"([{"Key":"Labels Down","Value":"2"}])");
  EXPECT_EQ(room.Run({"label", "set", "Drums", "Labels Down", "0"}).status, 1);

  const std::string out = room.folder / "drums.pdf";
  const auto printed = room.Json({"label", "print", "Drums", "Color Name=DEEP RED", "Lot_Number=A1", "--labels", "3",
                                  "--start", "2", "--out", out});
  EXPECT_EQ(printed["Pages"], 2);
  EXPECT_EQ(printed["Codes"].dump(), R"([{"Field":"Color Name BC","Text":"<CN>DEEP RED","Reads":true,"Reason":null},)"
                                     R"({"Field":"Lot Number BC","Text":"<LN>A1","Reads":true,"Reason":null}])");
  const auto pages = ReadPdf(out);
  ASSERT_EQ(pages.size(), 2U);
  EXPECT_EQ(LinesOf(pages[1]),
            (std::vector<std::string>{"DEEP RED", "Lot Number : A1", "DEEP RED", "Lot Number : A1"}));

  const auto nothing = room.Run({"--json", "label", "print", "Drums", "--out", room.folder / "bad.pdf"});
  EXPECT_EQ(nothing.Json()["refused"]["text"], "There is nothing on this label that could be printed.");
  // A code of which nothing can be read is asked about before anything is printed.
  const std::vector<std::string> bad{
      "label", "print", "Drums", "Color Name=" + std::string(27, 'z'), "--out", room.folder / "bad.pdf"};
  EXPECT_EQ(room.Run(bad).status, 3);
  EXPECT_FALSE(std::filesystem::exists(room.folder / "bad.pdf"));
  EXPECT_EQ(room.Json({"label", "encode", "code128", "AB1234"}).dump(),
            R"({"Text":"AB1234","Codes":[204,65,66,199,44,66,202,206]})");
  EXPECT_EQ(room.Run({"label", "encode", "code39", "abc"}).status, 1);

  room.Json({"--yes", "color", "add", "RED", "PurchaseCost=4"});
  room.Json({"--yes", "formula", "add", "PINK", "RED=100"});
  const std::string recipe = room.folder / "recipe.pdf";
  room.Json({"label", "print", "Default Label", "--kind", "formula", "Color_Name=PINK", "--out", recipe});
  const auto lines = LinesOf(ReadPdf(recipe).at(0));
  EXPECT_NE(std::ranges::find(lines, "RED 100.000"), lines.end());
  EXPECT_EQ(room.Json({"--yes", "label", "delete", "Drums"}).dump(), R"(["Default Label"])");
}

// What the sheet of a Job's returns says in bars, typed by a scanner as it stands, brings the ink back.
TEST(CliLabels, ReturnsOfAJobAreScannedFromTheirSheet) {
  const test::CliRoom room;
  room.MakeFile();
  for (const std::vector<std::string>& verb : std::vector<std::vector<std::string>>{
           {"--yes", "settings", "set", "InvLotTracking", "1"},
           {"--yes", "color", "add", "DEEP RED", "PurchaseCost=4"},
           {"--yes", "stock", "adjust", "DEEP RED", "20", "--lot", "A1", "--cont", "C7"},
           {"--yes", "job", "add-item", "J-1", "DEEP RED", "8", "--lot", "A1"}})
    room.Json(verb);
  const std::string sheet = room.folder / "returns.pdf";
  room.Json({"job", "returns", "J-1", "--out", sheet});
  EXPECT_EQ(room.Run({"job", "returns", "NONE", "--out", sheet}).status, 1);
  const std::string scan = room.folder / "scan.txt";
  RunTool(fmt::format("pdftoppm -gray -aaVector no -r 300 -singlefile '{0}' '{1}'; zbarimg -q --raw -Sdisable "
                            "-Scode128.enable '{1}.pgm' > '{1}'; echo 3 >> '{1}'",
                            sheet, scan));
  const auto booked = room.Json({"stock", "scan", scan});
  ASSERT_EQ(booked.size(), 1U) << booked.dump();
  EXPECT_TRUE(booked[0]["Success"]) << booked.dump();
  EXPECT_EQ(booked[0]["LC"], "C7");
  EXPECT_EQ(room.Json({"job", "show", "J-1"})["Items"][0]["QtyUsed"], 5);
}

}  // namespace
}  // namespace vellumark
