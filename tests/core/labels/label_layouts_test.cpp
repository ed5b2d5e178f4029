#include "core/labels/label_layouts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <tuple>

#include "core/base/files.h"
#include "core/labels/label_drawing.h"
#include "core/session/settings.h"
#include "core/settings/label_defaults.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

constexpr LabelKind kLabel = LabelKind::Label;
const std::string kDefault = "Default Label";

struct LabelsTest : testing::Test, InkRoom {
  void Set(const std::string& layout, const std::string& key, const std::string& value, LabelKind kind = kLabel) {
    const auto saved = SaveLabelSetting(session, kind, layout, key, value);
    ASSERT_TRUE(saved) << saved.error().text;
  }
  std::vector<std::string> Keys(const std::string& layout) {
    std::vector<std::string> keys;
    for (const SupportRecord& r : session.support->label.Read().Records())
      if (r.layout == layout) keys.push_back(r.key);
    return keys;
  }
  std::map<std::string, std::string> Drawn(const LabelData& data, const LabelOptions& options = {}) {
    std::map<std::string, std::string> drawn;
    for (const LabelElement& e : DrawLabel(session, kDefault, data, options).elements) drawn[e.item] = e.text;
    return drawn;
  }
};

TEST_F(LabelsTest, ACopyHasEveryKeyAndLivesByItself) {
  // A layout of an earlier program, without the lot's items.
  session.support->label.Change([](SupportRecords& file) {
    SupportRecords old(RecordShape::LayoutKeyValue);
    for (const SupportRecord& r : file.Records())
      if (!r.key.starts_with("Lot ")) old.Append(r.layout, r.key, r.value);
    file = SupportRecords(RecordShape::LayoutKeyValue, {});
    for (const SupportRecord& r : old.Records()) file.Append(r.layout, r.key, r.value);
  });
  Set(kDefault, "Color Name Left", "77");
  ASSERT_TRUE(CopyLabelLayout(session, kLabel, "default label", " Drums "));
  EXPECT_EQ(LabelLayouts(session, kLabel), (std::vector<std::string>{kDefault, "Drums"}));
  EXPECT_EQ(Keys("Drums").size(), DefaultLabel("").size());
  Set("Drums", "Color Name Left", "1440");
  EXPECT_EQ(LabelNumber(session, kLabel, kDefault, "Color Name Left"), 77);
  EXPECT_EQ(LabelNumber(session, kLabel, "Drums", "Color Name Left"), 1440);

  prompt.Expect("Overwrite Existing Label Layout?", Answer::No, "Overwrite existing Drums Label Layout?");
  EXPECT_TRUE(CopyLabelLayout(session, kLabel, kDefault, "DRUMS").error().declined);
  prompt.Expect("Overwrite Label Layout?", Answer::Yes, "Overwrite the existing Label Layout 'Drums'?");
  std::vector<SupportRecord> design = LabelRecords(session, kLabel, kDefault);
  ASSERT_TRUE(SaveLabelLayout(session, kLabel, "Drums", design));
  EXPECT_EQ(LabelNumber(session, kLabel, "Drums", "Color Name Left"), 77);

  prompt.Expect("Delete Label Layout?", Answer::Yes,
                "Are you sure you want to permanently delete the Label Layout 'Drums'?");
  ASSERT_TRUE(DeleteLabelLayout(session, kLabel, "Drums"));
  EXPECT_TRUE(Keys("Drums").empty());
  EXPECT_EQ(GetSetting(session, setting::LabelLayoutList), "Default Label|");
  EXPECT_EQ(DeleteLabelLayout(session, kLabel, kDefault).error().title, "Delete Label Layout?");
  EXPECT_FALSE(Keys(kDefault).empty());
}

TEST_F(LabelsTest, RefusesWhatWouldBreakALayout) {
  struct {
    const char* key;
    const char* value;
  } const bad[] = {{"Labels Across", "0"},      {"Labels Down", "101"},      {"Label Width", "0"},
                   {"Orientation", "4"},        {"Color Name Top", "-1"},    {"Color Name FontSize", "x"},
                   {"Color Name Visible", "2"}, {"Label BC Type", "Code 4"}, {"Color Name FontBold", "1"},
                   {"No Such Key", "1"},        {"Misc Text 1 Text", "a\"b"}};
  const std::string before = ReadFileBytes(session.support->label.Path());
  for (const auto& [key, value] : bad) EXPECT_FALSE(SaveLabelSetting(session, kLabel, kDefault, key, value)) << key;
  for (const char* name : {"A|B", "", " \t ", "A\"B"}) EXPECT_FALSE(AddLabelLayout(session, kLabel, name, {})) << name;
  EXPECT_EQ(AddLabelLayout(session, kLabel, "", {}).error().text, "Please enter a name for this Label Layout.");
  EXPECT_EQ(ReadFileBytes(session.support->label.Path()), before);
  // In the list and without records: everything reads as nothing, and a label is drawn nonetheless.
  StoreSettings(session, {setting::LabelLayoutList.To("Ghost|")});
  EXPECT_EQ(LabelNumber(session, kLabel, "Ghost", "Color Name Visible"), 0);
  EXPECT_TRUE(DrawLabel(session, "Ghost", {}, {}).elements.empty());
  EXPECT_EQ(PaperOfLayout(session, kLabel, "Ghost").Capacity(), 1);
}

TEST_F(LabelsTest, DrawsItemsWithTitlesAndTaggedCodes) {
  LabelData data;
  data["Color Name"] = "BLUE®®";
  data["Color Code"] = "B1";
  data["Lot Number"] = "L7";
  data["Misc Text 4"] = "four";
  data["Fire"] = "2";
  Set(kDefault, "Label BC Type", "Code 128");
  Set(kDefault, "Database Title", "0");
  Set(kDefault, "Misc Bar Code Data 1 Visible", "1");
  Set(kDefault, "Misc Bar Code Data 1 Combined", "CCLN");
  ASSERT_TRUE(CombineMiscBarCodes(session, kDefault, data));
  auto drawn = Drawn(data);
  EXPECT_EQ(drawn["Color Name"], "BLUE®®");
  EXPECT_EQ(drawn["Color Name BC"], "<CN>BLUE®");
  EXPECT_EQ(drawn["Color Code"], "Color Code : B1");
  EXPECT_EQ(drawn["Lot Number BC"], "<LN>L7");
  EXPECT_EQ(drawn["Misc Text 4 BC"], "<M3>four");
  EXPECT_EQ(drawn["Misc Bar Code Data 1"], "<U1>B1L7");
  EXPECT_EQ(drawn["Health - Fire - Reactivity"], "Health     Fire 2    Reactivity ");
  EXPECT_FALSE(drawn.contains("Database") || drawn.contains("Job Number BC") || drawn.contains("Pantone Trademark"));
  drawn = Drawn(data, {.identifiers = false, .qrCode = true});
  EXPECT_EQ(drawn["Lot Number BC"], "L7");
  EXPECT_EQ(drawn["QR Code"], "<CN>BLUE®\n<CC>B1\n<LN>L7\n<M3>four");
  Setting("InvLotTracking", "0");
  EXPECT_FALSE(Drawn(data).contains("Lot Number"));
  // The trademark of guides, of their colours only.
  session.TradeMark = "PANTONE is a trademark";
  EXPECT_FALSE(Drawn(data).contains("Pantone Trademark"));
  data["Color Name"] = "PANTONE 185 C";
  EXPECT_EQ(Drawn(data)["Pantone Trademark"], "PANTONE is a trademark");
  // That of the label's own Database, wherever it is printed, while there are guides.
  CreateEmptyDatabase(session.File(), "GUIDE");
  session.databaseList = {"INK", "GUIDE"};
  session.File().Execute("UPDATE GUIDE_Info SET TradeMark = 'of the guide'");
  data["Database"] = "guide";
  EXPECT_FALSE(Drawn(data).contains("Pantone Trademark"));
  session.ProgramFolder = folder.Path();
  std::ofstream(folder / "pdbt.vkt") << "guides";
  EXPECT_EQ(Drawn(data)["Pantone Trademark"], "of the guide");
  session.ProgramFolder.clear();

  data["Color Code"] = std::string(29, 'X');
  EXPECT_EQ(CombineMiscBarCodes(session, kDefault, data).error().field, "txtMBCData1");
  // A code that no label shows keeps none from being printed.
  for (const auto& [key, off, on] : {std::tuple{"Misc Bar Code Data 1 Visible", "0", "1"},
                                     {"Label BC Type", "Not Using", "Code 128"}}) {
    Set(kDefault, key, off);
    EXPECT_TRUE(CombineMiscBarCodes(session, kDefault, data)) << key;
    EXPECT_EQ(data["Misc Bar Code Data 1"], "");
    Set(kDefault, key, on);
  }
  EXPECT_EQ(RunOfFields(FieldsOfRun("CNxxM4L")), "CNM4");
}

TEST_F(LabelsTest, LaysLabelsOnTheirSheet) {
  Set(kDefault, "Labels Across", "2");
  Set(kDefault, "Labels Down", "2");
  Set(kDefault, "Label Width", "5760");
  Set(kDefault, "Label Length", "2880");
  Set(kDefault, "Left Margin", "100");
  Set(kDefault, "Top Margin", "200");
  const LabelPaper paper = PaperOfLayout(session, kLabel, kDefault);
  struct {
    int start, number, page;
    double left, top;
  } const places[] = {
      {3, 0, 0, 100, 3080}, {3, 1, 0, 5860, 3080}, {3, 2, 1, 100, 200}, {0, 0, 0, 100, 200}, {9, 1, 1, 100, 200}};
  for (const auto& [start, number, page, left, top] : places) {
    const LabelPlace place = PlaceOfLabel(paper, start, number);
    EXPECT_TRUE(place.page == page && place.left == left && place.top == top) << start << "/" << number;
  }
  for (const auto& [typed, count] : {std::pair{"3", 3}, {"0", 1}, {"-2", 1}, {"x", 1}, {"", 1}, {"2.9", 2}})
    EXPECT_EQ(ReadLabelCount(typed), count) << typed;
  EXPECT_TRUE(CheckLabelPicture("jpg", 192, 384, 96));
  for (const auto& [across, down, dpi] : {std::tuple{193, 10, 96.0}, {10, 385, 96.0}, {10, 10, 72.0}, {0, 10, 96.0}})
    EXPECT_FALSE(CheckLabelPicture("BMP", across, down, dpi)) << across;
  EXPECT_FALSE(CheckLabelPicture("PNG", 10, 10, 96));
}

TEST_F(LabelsTest, FillsAFormulaLabelWithEachIngredient) {
  std::vector<std::pair<std::string, float>> parts;
  for (int i = 0; i < 15; ++i) parts.emplace_back("C" + std::to_string(i), i == 0 ? 30.0F : 5.0F);
  for (const auto& [name, amount] : parts) Basic(name);
  Mix("PANTONE 12 C", parts, {{"Color_Code", "P12"}});
  const auto data = FormulaLabelData(session, "12 C");
  ASSERT_TRUE(data) << data.error().text;
  EXPECT_EQ(data->Of("Color Name"), "PANTONE 12 C");
  EXPECT_EQ(std::ranges::count(data->Of("Formula"), '\n'), 14);
  EXPECT_TRUE(data->Of("Formula").starts_with("C0  30.000\n"));
  EXPECT_EQ(FormulaLabelData(session, "NONE").error().text, "Enter / Select a valid Color Name.");
  // A new settings file has this list from the ladder.
  StoreSettings(session, {setting::GH_LabelLayoutList.To("Default Label|")});
  ASSERT_TRUE(SaveLabelSetting(session, LabelKind::Hazard, kDefault, "Picto_Image 3 Visible", "1"));
  ASSERT_TRUE(SaveLabelSetting(session, LabelKind::Hazard, kDefault, "Picto Size", ".50"));
  const LabelDrawing hazard = DrawSmallLabel(session, LabelKind::Hazard, kDefault, {{{"Signal Word", "Danger"}}});
  ASSERT_EQ(hazard.elements.size(), 2U);
  EXPECT_EQ(hazard.elements[1].number, 3);
  EXPECT_EQ(hazard.elements[1].size, 720);
}

}  // namespace
}  // namespace vellumark::test
