// Designs, the estimator and files of records from the command line.

#include <gtest/gtest.h>

#include "core/base/files.h"
#include "support/cli_run.h"
#include "support/pixel.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

TEST(CliDesigns, GoFromEntryToFileAndBack) {
  test::CliRoom room;
  room.MakeFile();
  room.Json({"color", "add", "RED", "PurchaseCost=4", "Inventory=3"});
  room.Json({"formula", "add", "PINK", "RED=100"});
  ReplaceFile(room.folder / "front.png", test::PixelPng());
  auto shown = room.Json({"design", "add", "box", "PINK=2:40", "RED@ink=1", "Description=A box", "Notes=two\nlines",
                          "Impressions=1000", "Length=254", "--uom", "mm."});
  EXPECT_EQ(shown["DesignID"], "BOX");
  EXPECT_EQ(shown["Length"], 10);
  EXPECT_EQ(shown["Notes"], "two\nlines");
  EXPECT_EQ(shown["IngType0"], 2);
  EXPECT_EQ(shown["TotalCost"], "12.00");
  shown = room.Json({"design", "photo", "BOX", "add", (room.folder / "front.png").string()});
  EXPECT_EQ(shown["Photos"][0]["Name"], "front.jpg");
  EXPECT_EQ(room.Json({"design", "bench", "BOX", "--impressions", "5000"})[1]["ToMake"], 2);
  fs::create_directories(room.folder / "out");
  const std::string file = (room.folder / "out/designs.txt").string();
  EXPECT_EQ(room.Json({"design", "export", file})["Designs"], 1);
  EXPECT_TRUE(fs::exists(room.folder / "out/DesignPhotos/front.jpg"));

  // Unanswered, and nothing happened; then removed, its photo too.
  EXPECT_EQ(room.Run({"design", "delete", "BOX"}).status, 3);
  EXPECT_EQ(room.Json({"design", "list"}).size(), 1U);
  room.Json({"--answer", "Delete Design=yes", "design", "delete", "BOX"});
  EXPECT_FALSE(fs::exists(room.folder / "DesignPhotos/front.jpg"));
  EXPECT_EQ(room.Json({"design", "import", file})["Photos"], 1);
  shown = room.Json({"design", "show", "BOX"});
  EXPECT_EQ(shown["IngQty0"], 2);
  EXPECT_FALSE(shown["Photos"][0]["Missing"]);
  EXPECT_EQ(room.Run({"design", "rename", "BOX", "- split -"}).status, 1);
  EXPECT_EQ(room.Run({"design", "edit", "BOX", "Length=x"}).status, 1);

  EXPECT_EQ(room.Json({"estimate", "sheetfed", "--ink", "gold", "--stock", "matte coated", "--area", "solid",
                       "--length", "10", "--width", "15", "--uom", "in.", "--sheets", "20000"}),
            (nlohmann::ordered_json{{"Pounds", "20.00"}, {"Kilograms", "9.09"}}));
  const test::CliAnswer bad = room.Run(
      {"estimate", "flexo", "--anilox", "2", "--percent", "101", "--length", "6", "--width", "4", "--sheets", "9"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.err, "Percentage Error: Percent value exceeds 100\n");
  room.Json({"batch", "save", "--formula", "PINK", "--quantity", "2", "--mix"});
  const std::string records = (room.folder / "records.txt").string();
  EXPECT_EQ(room.Json({"batch", "export", "--first", "1", "--last", "5", "--out", records})["Records"], 1);
  EXPECT_TRUE(ReadFileBytes(records).starts_with("Color Name\tPINK\r\n"));
}

}  // namespace
}  // namespace vellumark
