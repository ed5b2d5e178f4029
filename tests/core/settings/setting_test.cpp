#include "core/settings/setting.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "core/settings/catalogue.h"
#include "core/settings/ladder.h"
#include "core/settings/settings.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

TEST(Settings, EveryKeyOfAFileIsToldAndHoldsWhatItCanMean) {
  const test::ScratchFolder scratch;
  SupportFiles files(scratch.Path());
  WriteMissingSupportFiles(files);
  ASSERT_TRUE(RunLadder(files, nullptr));
  const SupportRecords settings = files.settings.Read();
  for (const auto& [layout, key, value] : settings.Records()) {
    SCOPED_TRACE(fmt::format("{} = {}", key, value));
    const SettingInfo* info = FindSetting(key);
    ASSERT_NE(info, nullptr);
    EXPECT_FALSE(info->meaning.empty());
    EXPECT_TRUE(IsUsable(*info, value));
    EXPECT_TRUE(CheckSettingText(info, key, value));
    if (info->kind == SettingKind::Text) continue;
    for (const std::string& bad : {std::string("x"), fmt::format("{}", info->limits.least - 1),
                                   std::string(info->kind == SettingKind::Number ? "1e3" : "0.5"),
                                   fmt::format("{:.0f}", info->limits.most * 2 + 1)}) {
      const auto checked = CheckSettingText(info, key, bad);
      ASSERT_FALSE(checked) << bad;
      EXPECT_TRUE(checked.error().text.starts_with(key + " is ")) << checked.error().text;
      EXPECT_TRUE(checked.error().text.ends_with(", not \"" + bad + "\".")) << checked.error().text;
    }
  }
  EXPECT_EQ(UnusableSettings(settings), std::vector<std::string>{});
  EXPECT_EQ(FindSetting("KeyOfALaterVersion"), nullptr);
  EXPECT_EQ(FindSetting("QuickInfoField10"), nullptr) << "beyond the group";
  EXPECT_EQ(FindSetting("InkEstA74"), nullptr);
  EXPECT_EQ(FindSetting("UMI0"), nullptr);
}

TEST(Settings, WhatAKeyCannotMeanIsRefused) {
  struct Case {
    const char* key;
    const char* good;
    const char* bad;
    const char* text;
  };
  const Case cases[] = {
      {"UMI", "4", "abc", "UMI is a whole number from 1 to 4, not \"abc\"."},
      {"AllowNegInv", "0", "", "AllowNegInv is 0 or 1, not \"\"."},
      {"MarkupPercent", "12.5", "101", "MarkupPercent is a number from 0 to 100, not \"101\"."},
      {"Batches_UDNum_Format2", "6", "7", "Batches_UDNum_Format2 is a whole number from 0 to 6, not \"7\"."},
      {"BatchListColWidth74", "0", "-1", "BatchListColWidth74 is a whole number of 0 or more, not \"-1\"."},
      {"RecListSecondSortCol", "-1", "-2", "RecListSecondSortCol is a whole number of -1 or more, not \"-2\"."},
      {"RecListSecondSortOrder", "1", "2", "RecListSecondSortOrder is 0 or 1, not \"2\"."},
      {"ReorderColumns", "|A||B|", "|A|B",
       "ReorderColumns is a list of column titles, each between bars as in \"|Color Code||Reorder|\", not \"|A|B\"."},
      {"LabelLayoutList", "Default Label|Big|", "Big",
       "LabelLayoutList is a list of layouts, each closed by a bar as in \"Default Label|\", not \"Big\"."},
      {"BatchUDTxtValue3", "12 cups", "12\" cups", "A value cannot hold a double quote or a line end."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.key);
    EXPECT_TRUE(CheckSettingText(FindSetting(c.key), c.key, c.good));
    const auto checked = CheckSettingText(FindSetting(c.key), c.key, c.bad);
    ASSERT_FALSE(checked);
    EXPECT_EQ(checked.error().text, c.text);
  }
  // A name that the machine gave, and a key of a later version.
  EXPECT_TRUE(CheckSettingText(FindSetting("PrinterDevice"), "PrinterDevice", "12\" roll λ"));
  EXPECT_TRUE(CheckSettingText(nullptr, "KeyOfALaterVersion", "abc"));
}

TEST(Settings, WhatStandsOnFileIsReadByItsTypeAndRange) {
  const auto expect = [](const auto& named, const char* text, auto value) {
    EXPECT_EQ(named.Of(text), value) << named.key << " = \"" << text << '"';
  };
  expect(setting::UMI.Named(), "", 1);  // 0 is no unit
  expect(setting::UMI.Named(), " 3 ", 3);
  expect(setting::UMI.Named(), "5", 1);
  for (const auto& [text, length] : {std::pair{"9", 30}, {"10", 10}, {"30.9", 30}, {"31", 30}, {"X", 30}, {"", 30}})
    expect(setting::UDCNameCCodeLen.Named(), text, length);
  for (const auto& [text, decimals] : {std::pair{"", 0}, {"6", 6}, {"7", 3}, {"-1", 3}, {"two", 3}})
    expect(setting::Batches_UDNum_Format[5], text, decimals);
  expect(setting::MarkupPercent.Named(), "12.5", 12.5F);
  expect(setting::MarkupPercent.Named(), "101", 0.0F);
  // A switch that is missing is off; another value counts as its initial one where nothing else is told.
  expect(setting::InvLotTracking.Named(), "", false);
  expect(setting::InvLotTracking.Named(), "2", true);
  expect(setting::AllowNegInv.Named(), "yes", false);
  expect(setting::IngSortOrder.Named(), "7", true);
  expect(setting::RemindBackup.Named(), "7", false);
  // Those of a list window may not be on file yet.
  expect(setting::SecondSortCol.Of("NewReport"), "", -1);
  expect(setting::ShowBasics.Of("NewReport"), "", true);
  expect(setting::ColWidth.Of("NewReport", 3), "1500", 1500);

  EXPECT_EQ(setting::ColWidth.Of("NewReport", 3).To(2865).key, "NewReportColWidth3");
  EXPECT_EQ(setting::InkEstD[7 * 4 + 3].To(1).key, "InkEstD73");
  EXPECT_EQ(setting::FixedCostOfBatch.To(0.1F).value, "0.1");
  EXPECT_THROW(setting::UMI.To(0), BadValue);
  EXPECT_THROW(setting::Columns.Of("NewReport").To("Color Code"), BadValue);
}

}  // namespace
}  // namespace vellumark
