#include "core/batch/dispense.h"

#include <filesystem>
#include <nlohmann/json.hpp>

#include "core/base/files.h"
#include "core/base/text.h"
#include "life_room.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

// A Batch with recycled ink, an Additive, an addition of an ink that it has already, and notes of several lines.
struct Dispensing : LifeRoom, testing::Test {
  Dispensing() {
    Setting("InvLotTracking", "0");
    session.InvLotTracking = 0;
    Basic("RED", 100, {{"Color_Code", "R\"1\\\xC3\x89"}});
    Basic("WHITE", 200, {{"Color_Code", "W,1"}});
    Basic("WAX", 10, {{"Color_Code", "X"}, {"Additive", true}});
    Formula("PINK", {{"RED", 25.0F}, {"WHITE", 75.0F}}, 0, {{"Notes", "soft\r\npink"}, {"Color_Code", "P,7"}});
    Formula("TINT", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 2, {{"Color_Code", "T"}});
    Mixed("PINK", "10");
    (void)TakeRecycled(session, record, "TINT", "2");
    (void)AddBatchAdditions(session, record, {{"WAX", "0.5"}, {"RED", "0.25"}});
    (void)EnterBatchField(session, record, "Notes", "first\nsecond, third");
    (void)EnterBatchField(session, record, "ShortNote", "short");
    fs::create_directory(folder / "hot");
  }
  /// The whole file as it was sent.
  std::string Sent(const std::string& format, bool additives = true, bool recycles = true) {
    const std::string name = "D " + format;
    if (!ReadDispenser(session, name)) {
      prompt.Expect("New Dispenser", Answer::Ok, "Dispenser Saved.");
      EXPECT_TRUE(AddDispenser(session, "d " + format, format, (folder / "hot").string()));
    }
    prompt.Expect("File Sent");
    const auto file = Dispense(session, record, {Upper(name), additives, recycles});
    if (!file) return file.error().text;
    path = file->filename().string();
    const std::string bytes = ReadFileBytes(*file);
    fs::remove(*file);
    return bytes;
  }
  std::string path;
};

TEST_F(Dispensing, WritesTheSixFormats) {
  const std::string latin = "R\"1\\\xC9";
  const std::string keyed = Lines({"[Recipe]", "ProtocolVersion=\t1", "Type=\tBasic", "ID=\tPINK", "Info=\tshort",
                                   "Date=\t10-03-2026\t12:0:0", "UseLeftOvers=\tYES", "Quantity=\t10.750",
                                   "AddInkQuantityFactor=", "IFT=\t100.00000", "WeightPerArea=\t100.00000", "",
                                   "[Assortment]", "ID=\tINK Database",
                                   "Info=\tfirst second, third - soft  pink", "",
                                   "[Component1]", "ID=\tWHITE", "Info=\tW,1", "Part=\t0.60465", "",
                                   "[Component2]", "ID=\tTINT", "Info=\tT", "Part=\t0.18605", "",
                                   "[Component3]", "ID=\tRED", "Info=\t" + latin, "Part=\t0.16279", "",
                                   "[Component4]", "ID=\tWAX", "Info=\tX", "Part=\t0.04651", "",
                                   "[MeasValue]", "M_Cond=", "Remission=", "", "[ActRecipe]", "M_Cond=", "Remission="});
  EXPECT_EQ(Sent("FGI"), keyed);
  EXPECT_EQ(path, "1-03_10_2026.txt");
  EXPECT_EQ(Sent("SPK"), keyed);
  const std::string json = Lines({"{",
                                  "     \"Recipe\" : {",
                                  "          \"ProtocolVersion\" : \"1\",",
                                  "          \"Type\" : \"Basic\",",
                                  "          \"ID\" : \"PINK\",",
                                  "          \"Info\" : \"short\",",
                                  "          \"Date\" : \"10-03-2026_12:0:0\",",
                                  "          \"UseLeftOvers\" : \"NO\",",
                                  "          \"Quantity\" : \"8.250\",",
                                  "          \"AddInkQuantityFactor\" : \"\",",
                                  "          \"IFT\" : \"100.00000\",",
                                  "          \"WeightPerArea\" : \"100.00000\"",
                                  "     },",
                                  "     \"Assortment\" : {",
                                  "          \"ID\" : \"INK Database\",",
                                  "          \"Info\" : \"first second, third - soft  pink\"",
                                  "     },",
                                  "     \"Components\" : {",
                                  "          \"Component1\" : {",
                                  "               \"ID\" : \"WHITE\",",
                                  "               \"Info\" : \"W,1\",",
                                  "               \"Part\" : \"0.78788\"",
                                  "          },",
                                  "          \"Component2\" : {",
                                  "               \"ID\" : \"RED\",",
                                  "               \"Info\" : \"R\\\"1\\\\\xC3\x89\",",
                                  "               \"Part\" : \"0.21212\"",
                                  "          }",
                                  "     },",
                                  "     \"MeasValue\" : {",
                                  "          \"M_Cond=\" : \"\",",
                                  "          \"Remission=\" : \"\"",
                                  "     },",
                                  "     \"ActRecipe\" : {",
                                  "          \"M_Cond=\" : \"\",",
                                  "          \"Remission=\" : \"\"",
                                  "     }",
                                  "}"});
  EXPECT_EQ(Sent("JSON", false, false), json);
  EXPECT_EQ(path, "1-03_10_2026.json");
  EXPECT_EQ(Sent("JSON txt", false, false), json);
  EXPECT_EQ(nlohmann::json::parse(json)["Components"]["Component2"]["Info"], "R\"1\\\xC3\x89");
  EXPECT_EQ(Sent("NFL"), Lines({"1", "INK Database", "-", "PINK", "STAMM", "G", "4", "10.75", "WHITE", "6.500", "--", "TINT",
                                "2.000", "--", "RED", "1.750", "--", "WAX", "0.500", "--", ""}));
  EXPECT_EQ(path, "1-03_10_2026.dat");
  EXPECT_EQ(Sent("XNI", false), Lines({"*,Material,plant,Ord Type,Order#,Description", "COR1_H00,P 7,,,1,PINK",
                                       "*,Tot ord qty,UOM,Finish dt,Ord start dt",
                                       "COR1_H01,10.25,lb,10-03-2026,10-03-2026",
                                       "*,Ingredient-Material,Ingredient-desc,req. qty,UOM,Item Cat,Ind.revelancy,St.Loc,"
                                       "Batch#,Backflush ind.,Plant,Operation#",
                                       "COR1_D00,W 1,WHITE,6.500,lb,L,X,1,,X,,", "COR1_D00,T,TINT,2.000,lb,L,X,1,,X,,",
                                       "COR1_D00," + latin + ",RED,1.750,lb,L,X,1,,X,,", "*"}));
  EXPECT_EQ(path, "COR1-1-100326.csv");
}

TEST_F(Dispensing, PartsAddUpAndABatchOfRecycledInkAloneGoesOut) {
  Formula("THIRD", {{"RED", 33.333F}, {"WHITE", 33.333F}, {"WAX", 33.334F}});
  Mixed("THIRD", "3");
  const DispenseJob thirds = PrepareDispense(session, record, {"", true, false});
  ASSERT_EQ(thirds.lines.size(), 3U);
  EXPECT_EQ(ShortestText(thirds.lines[0].Part) + ShortestText(thirds.lines[1].Part), "0.333340.33333");
  Mixed("TINT", "2");
  ASSERT_TRUE(TakeRecycled(session, record, "TINT", "2").value_or(false));
  ASSERT_EQ(record.work.Rows.size(), 1U);
  EXPECT_TRUE(Sent("NFL").ends_with("TINT\r\n2.000\r\n--\r\n\r\n"));
  EXPECT_EQ(Title(Dispense(session, record, {"D NFL", false, false})), "File not Sent");
  SetQuantityText(record.work, "3");
  EXPECT_EQ(Title(Dispense(session, record, {"D NFL", false, true})), "Recalculate Batch");
}

// Notes are no data for the machine; names are, and codes where the format has them.
TEST_F(Dispensing, NotesGoOutWithoutWhatTheCodePageLacksAndNamesDoNot) {
  ASSERT_TRUE(EnterBatchField(session, record, "Notes", "caf\xC3\xA9 \xCE\xB1"));
  EXPECT_NE(Sent("SPK").find("caf\xE9 ? - soft"), std::string::npos);
  EXPECT_NE(Sent("JSON").find("\xCE\xB1"), std::string::npos);
  session.File().Execute("UPDATE INK_Basic SET Color_Code = '\xCE\xB2' WHERE Color_Name = 'RED'");
  Mixed("PINK", "10");
  prompt.Expect("New Dispenser");
  ASSERT_TRUE(AddDispenser(session, "\xC3\xBC fgi", "FGI", (folder / "hot").string()));
  const auto refused = Dispense(session, record, {"\xC3\xBC fgi", true, true});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().title, "File not Sent");
  EXPECT_TRUE(refused.error().text.starts_with("\xCE\xB2 has a character")) << refused.error().text;
  EXPECT_TRUE(Sent("NFL").starts_with("1\r\n"));
  EXPECT_EQ(Title(AddDispenser(session, "\xC3\x9C FGI ", "FGI", (folder / "hot").string())), "Duplicate Name");
  prompt.Expect("Remove Dispenser");
  ASSERT_TRUE(RemoveDispensers(session, {"\xC3\xBC fgi"}));
  EXPECT_FALSE(ReadDispenser(session, "\xC3\x9C FGI"));
}

// The number of a Batch that is given up comes again, and its file is still there.
TEST_F(Dispensing, TheFileOfAnUnsavedBatchIsNotAnothersToReplace) {
  const DispenseChoice choice{"D NFL", true, true};
  Sent("NFL");
  const auto send = [&](std::optional<Answer> asked) {
    if (asked) prompt.Expect("Batch File", *asked);
    if (asked != Answer::No) prompt.Expect("File Sent");
    const auto file = Dispense(session, record, choice);
    return file ? ReadFileBytes(*file) : file.error().title;
  };
  const std::string pink = send(std::nullopt);
  Mixed("TINT", "3");  // the Batch before is given up unsaved
  ASSERT_EQ(record.BatchNo, 1);
  EXPECT_EQ(send(Answer::No), "Batch File");
  Save();
  Open(1);
  EXPECT_EQ(send(Answer::No), "Batch File") << "saved or not, the file is not its own";
  EXPECT_EQ(ReadFileBytes(folder / "hot" / "1-03_10_2026.dat"), pink);
  const std::string tint = send(Answer::Yes);
  EXPECT_NE(tint, pink);
  EXPECT_EQ(send(std::nullopt), tint);
}

TEST_F(Dispensing, AsksBeforeItReplacesAndSaysWhatFails) {
  EXPECT_EQ(Title(CheckAnyDispenser(session)), "Add a Dispenser");
  EXPECT_EQ(Title(AddDispenser(session, " ", "FGI", folder.Path().string())), "No Dispenser Name");
  EXPECT_EQ(Title(AddDispenser(session, "A", "XYZ", folder.Path().string())), "New Dispenser");
  EXPECT_EQ(Title(AddDispenser(session, "A", "FGI", (folder / "none").string())), "Dispenser Folder Missing");
  Sent("FGI");
  EXPECT_EQ(Title(AddDispenser(session, "d fgi", "FGI", folder.Path().string())), "Duplicate Name");
  EXPECT_EQ(Title(Dispense(session, record, {"NONE", true, true})), "File not Sent");

  const DispenseChoice choice{"D FGI", true, true};
  prompt.Expect("File Sent");
  ASSERT_TRUE(Dispense(session, record, choice));
  prompt.Expect("File Sent");
  ASSERT_TRUE(Dispense(session, record, choice)) << "sent anew before it is saved";
  // Once it is saved the file is its own.
  Save();
  Open(1);
  prompt.Expect("File Sent");
  ASSERT_TRUE(Dispense(session, record, choice));
  // Nothing but the file is left in the folder, in which a program waits for files.
  EXPECT_EQ(std::distance(fs::directory_iterator(folder / "hot"), fs::directory_iterator()), 1);
  fs::remove_all(folder / "hot");
  EXPECT_EQ(Title(Dispense(session, record, choice)), "Dispenser Folder Missing");
  fs::create_directories(folder / "hot" / "1-03_10_2026.txt");
  EXPECT_THROW((void)Dispense(session, record, choice), Failure);
  prompt.Expect("Remove Dispenser", Answer::Ok, "Dispenser(s) Removed");
  ASSERT_TRUE(RemoveDispensers(session, {"D FGI"}));
  EXPECT_EQ(Title(RemoveDispensers(session, {"D FGI"})), "Remove Dispenser");
}

}  // namespace
}  // namespace vellumark::test
