#include <gtest/gtest.h>

#include <filesystem>

#include "core/datafile/writer.h"
#include "support/cli_run.h"
#include "support/scale_on_pty.h"

namespace vellumark {
namespace {

using nlohmann::ordered_json;
using Words = std::vector<std::string>;

// A stored Batch of 6 RED and 4 BLUE, and a scale at 9600.
struct ScaleShop : test::CliRoom {
  ScaleShop() {
    MakeFile();
    for (const Words& words : {Words{"settings", "set", "InvLotTracking", "0"},
                               {"color", "add", "RED"},
                               {"color", "add", "BLUE"},
                               {"stock", "adjust", "RED", "100"},
                               {"stock", "adjust", "BLUE", "100"},
                               {"formula", "add", "TARGET", "RED=60", "BLUE=40"},
                               {"batch", "save", "--formula", "TARGET", "--quantity", "10", "--mix"},
                               {"scale", "settings", "CommPort=" + scale.Port(), "BaudRate=9600"}})
      Done(words);
  }
  void Done(const Words& words) const {
    const auto answer = Run(words);
    EXPECT_EQ(answer.status, 0) << words.front() << " " << words.at(1) << ": " << answer.err;
  }
  /// What a refused verb says.
  std::string Refused(Words words) const {
    words.insert(words.begin(), "--json");
    const auto answer = Run(words);
    EXPECT_EQ(answer.status, 1) << answer.out << answer.err;
    return answer.status == 1 ? answer.Json()["refused"]["text"].get<std::string>() : "";
  }
  test::ScaleOnPty scale{folder.Path()};
};

TEST(CliScale, WeighsAStoredBatchAndSendsIt) {
  ScaleShop shop;
  EXPECT_EQ(shop.Refused({"scale", "read"}), "The scale is not on. Switch it on first.");
  EXPECT_EQ(shop.Refused({"scale", "settings", "BaudRate=1000"}), "BaudRate is 300, 600, 1200, 2400, 4800 or 9600.");
  shop.Done({"scale", "on", "--boot-time", "50"});
  EXPECT_EQ(shop.Refused({"scale", "settings", "BaudRate=300"}), "Power scale off to use the Setup feature");
  shop.scale.Weigh("6.000");
  EXPECT_EQ(shop.Json({"scale", "read", "--count", "2"}),
            ordered_json::parse(R"([{"Weight":6.0,"Unit":null},{"Weight":6.0,"Unit":null}])"));
  EXPECT_EQ(shop.Run({"scale", "watch", "--seconds", "1"}).out, "6.000 \n");
  EXPECT_EQ(shop.Json({"batch", "weigh", "1", "1"}),
            ordered_json::parse(R"({"BatchNo":1,"Name":"RED","Target":"6.000","Weighed":"6.000","Reformulated":false,
              "Left":[{"Row":2,"Name":"BLUE","Target":"4.000"}]})"));
  shop.Done({"scale", "tare"});
  // A question that stands unanswered leaves the Batch as it was.
  shop.scale.Weigh("4.500");
  EXPECT_EQ(shop.Run({"batch", "weigh", "1", "2"}).status, 3);
  const auto over = shop.Json({"--yes", "batch", "weigh", "1", "2"});
  EXPECT_EQ(over["Reformulated"], true);
  EXPECT_EQ(over["Left"][0]["Target"], "0.750");
  shop.Done({"--yes", "batch", "weigh", "1", "1", "--weight", "0.75"});
  EXPECT_EQ(shop.Json({"stock", "show", "BLUE"}).at(0)["Inventory"], 95.5);
  shop.Done({"scale", "off", "--boot-time", "50"});
  EXPECT_EQ(shop.scale.Commands(), (Words{"300 PON", "300 CFC 9600 7 1 1 0 0", "9600 ZRO", "9600 CFC 300 7 1 1 0 0",
                                          "300 POF"}));

  const std::filesystem::path hot = shop.folder / "hot";
  std::filesystem::create_directory(hot);
  shop.Done({"dispenser", "add", "\xC3\xB6st", "--format", "json txt", "--folder", hot.string()});
  EXPECT_EQ(shop.Json({"dispenser", "list"})[0]["Pathway"], hot.string());
  const std::string file = shop.Json({"--now", "2026-03-10 09:05:03", "batch", "dispense", "1", "\xC3\xB6st"})["File"];
  EXPECT_EQ(file, (hot / "1-03_10_2026.txt").string());
  const auto recipe = ordered_json::parse(ReadFileBytes(file));
  EXPECT_EQ(recipe["Recipe"]["Date"], "10-03-2026_9:5:3");
  EXPECT_EQ(recipe["Recipe"]["Quantity"], "11.250");
  shop.Done({"dispenser", "remove", "\xC3\xB6st"});
  EXPECT_EQ(shop.Refused({"batch", "dispense", "1", "EAST"}), "Batch file could not be sent to:\n\nEAST");
}

}  // namespace
}  // namespace vellumark
