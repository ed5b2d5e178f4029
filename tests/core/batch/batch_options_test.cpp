#include "core/batch/batch_options.h"

#include <gtest/gtest.h>

#include "core/batch/batch_work.h"
#include "core/batch/cost_model.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

struct BatchOptionsTest : testing::Test, test::InkRoom {
  BatchOptionsTest() {
    // The keys that the ladder adds at the first start.
    session.support->settings.Change([](SupportRecords& records) {
      for (const char* key : {"BatchDefaultLotNumberValue", "BatchComplete"}) records.Append(key, "0");
      for (int i = 0; i < kUserFields; ++i) {
        const std::string n = std::to_string(i);
        records.Append("BatchUDTxtDefault" + n, "0");
        records.Append("BatchUDTxtValue" + n, "");
        records.Append("BatchUDTxtRequired" + n, "0");
        records.Append("Batches_UDNum_Format" + n, "3");
      }
    });
    ReadSettings(session);
  }
  std::string OnFile(std::string_view key) const {
    return SupportFile(session.support->settings.Path(), session.support->settings.Shape()).GetSupportValue(key);
  }
};

TEST_F(BatchOptionsTest, WhatIsStoredIsReadBackByWhoeverUsesIt) {
  const BatchOptions fresh = ReadBatchOptions(session);
  EXPECT_TRUE(fresh.mixByDefault);
  EXPECT_TRUE(!fresh.userOrder && fresh.ReturnToInventory && fresh.ShowBatchGraphic && fresh.ShowQuickInfo);
  EXPECT_FALSE(fresh.Overpour || fresh.BatchComplete || fresh.BatchDefaultLotNumberValue);
  EXPECT_EQ(fresh.texts[5].caption, "Text Lbl6");
  EXPECT_EQ(fresh.numbers[0].caption, "Num Lbl1");
  EXPECT_EQ(fresh.numbers[0].decimals, 3);

  BatchOptions options = fresh;
  options.UMF = 3;
  options.mixByDefault = false;
  options.userOrder = true;
  options.ReturnToInventory = false;
  options.ShowBatchGraphic = false;
  options.Overpour = true;
  options.BatchComplete = true;
  options.BatchDefaultLotNumberValue = true;
  options.QuickInfoField[9] = false;
  options.texts[2] = {"Press", true, "Press 4", true};
  options.numbers[1] = {"Viscosity", 1};
  std::vector<Change> told;
  const auto listening = session.changes.Subscribe([&](const std::vector<Change>& changes) { told = changes; });
  ASSERT_TRUE(SaveBatchOptions(session, options));
  EXPECT_EQ(ReadBatchOptions(session), options);
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].kind, Change::Kind::Settings);
  for (const auto& [key, value] : std::vector<std::pair<const char*, const char*>>{{"UMF", "3"},
                                                                                   {"BatchActionButton", "0"},
                                                                                   {"IngSortOrder", "1"},
                                                                                   {"ReturnToInventory", "0"},
                                                                                   {"ShowBatchGraphic", "0"},
                                                                                   {"Overpour", "1"},
                                                                                   {"BatchComplete", "1"},
                                                                                   {"BatchDefaultLotNumberValue", "1"},
                                                                                   {"QuickInfoField8", "1"},
                                                                                   {"QuickInfoField9", "0"},
                                                                                   {"BatchUDTxtDefault2", "1"},
                                                                                   {"BatchUDTxtValue2", "Press 4"},
                                                                                   {"BatchUDTxtRequired2", "1"},
                                                                                   {"BatchUDTxtRequired3", "0"},
                                                                                   {"Batches_UDNum_Format1", "1"}})
    EXPECT_EQ(OnFile(key), value) << key;
  const BatchWork work = NewBatchWork(session);
  EXPECT_EQ(work.UMF, 3);
  EXPECT_TRUE(!work.settings.mixByDefault && work.settings.Overpour);
  EXPECT_TRUE(work.settings.userOrder && !work.settings.ShowBatchGraphic);
}

TEST_F(BatchOptionsTest, ABadSettingIsRefusedAtItsFieldAndNothingIsStored) {
  struct Case {
    const char* what;
    void (*spoil)(BatchOptions&);
    const char* field;
    const char* text;
  };
  const std::vector<Case> cases{
      {"unit", [](BatchOptions& o) { o.UMF = 5; }, "cmbUMF", "Select a unit from the list."},
      {"no caption", [](BatchOptions& o) { o.texts[1].caption = "  "; }, "txtTextCaption1",
       "Enter a caption for this field."},
      {"a bar ends a column's title", [](BatchOptions& o) { o.numbers[5].caption = "A|B"; }, "txtNumberCaption5",
       "The text cannot hold a double quote, a vertical bar or a line end."},
      {"a quote ends a value", [](BatchOptions& o) { o.texts[0].value = "12\""; }, "txtTextValue0",
       "The text cannot hold a double quote, a vertical bar or a line end."},
      {"31 characters", [](BatchOptions& o) { o.texts[3].value = std::string(31, 'x'); }, "txtTextValue3",
       "The text cannot be longer than 30 characters."},
      {"decimals", [](BatchOptions& o) { o.numbers[2].decimals = 7; }, "cmbNumberFormat2",
       "Select a number of decimals from the list."},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    BatchOptions options = ReadBatchOptions(session);
    options.Overpour = true;
    each.spoil(options);
    const auto saved = SaveBatchOptions(session, options);
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error(), (Refusal{"Batch Settings", each.text, each.field}));
    EXPECT_EQ(OnFile("Overpour"), "0");
  }
  BatchOptions options = ReadBatchOptions(session);
  options.texts[0].value = "\u0416";
  const auto saved = SaveBatchOptions(session, options);
  ASSERT_FALSE(saved) << "the settings file's code page has no such letter";
  EXPECT_EQ(saved.error().field, "txtTextValue0");
}

// ---- The cost model as typed

TEST_F(BatchOptionsTest, ATypedCostModelIsReadAndRefused) {
  Setting("DecimalPlaces", "3");
  BatchCostModel before;
  before.MixVOCModelType = 2;
  const auto read = ReadCostModel(session, {1, 2, " 12.34567 ", "0", "12.34"}, before);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->CostModelType, 1);
  EXPECT_EQ(read->MixCostOption, 2);
  EXPECT_EQ(read->MixVOCModelType, 2) << "not told here";
  const CostModelEntry shown = ShowCostModel(session, *read);
  EXPECT_EQ(shown.FixedCostOfBatch, "12.346");
  EXPECT_EQ(shown.FixedCostPerUnit, "0.000");
  EXPECT_EQ(shown.MarkupPercent, "12.3");

  struct Case {
    CostModelEntry typed;
    Refusal refusal;
  };
  const Refusal cost{"Invalid Cost", "You must enter a valid, positive cost.", "txtFixedCostBatch"};
  const Refusal percent{"Invalid Percentage", "You must enter a valid percentage between 0 and 100.",
                        "txtMarkupPercent"};
  const std::vector<Case> cases{
      {{0, 0, "-0.01", "0", "0"}, cost},
      {{0, 0, "", "0", "0"}, cost},
      {{0, 0, "1e3", "0", "0"}, cost},
      {{0, 0, "100000", "0", "0"}, cost},
      {{0, 0, "1", "x", "0"}, {cost.title, cost.text, "txtFixedCostUnit"}},
      {{0, 0, "1", "1", "100.1"}, percent},
      {{0, 0, "1", "1", "-1"}, percent},
      {{0, 0, "1", "1", "ten"}, percent},
  };
  for (const Case& each : cases) {
    const auto refused = ReadCostModel(session, each.typed, before);
    ASSERT_FALSE(refused) << each.typed.FixedCostOfBatch << " " << each.typed.MarkupPercent;
    EXPECT_EQ(refused.error(), each.refusal);
  }
}

TEST_F(BatchOptionsTest, TheExampleGoesWithUnitAndDecimals) {
  EXPECT_EQ(CostModelExample(session), "(Example - 10 lb. * 8.75 = 87.50)");
  Setting("UMI", "2");
  Setting("DecimalPlaces", "4");
  EXPECT_EQ(CostModelExample(session), "(Example - 10 kg. * 8.7500 = 87.5000)");
}

TEST_F(BatchOptionsTest, TheCostDetailAddsUpToTheTotal) {
  // 100 lb.: basics 40.00, mixes 60.00, fixed 5.00, 0.10 a pound = 10.00, markup 12.5 % of 100.00 = 12.50.
  BatchWork work;
  work.cost = {0, 1, 5, 0.1F, 12.5F, 0, 0};
  work.figures.CostOfBasics = Currency::From(40);
  work.figures.CostOfMixes = Currency::From(60);
  work.figures.Markup = Currency::From(12.5);
  work.figures.TotalCost = Currency::From(127.5);
  const auto lines = [&] {
    std::vector<std::string> texts;
    for (const CostLine& line : CostDetail(session, work)) texts.push_back(line.caption + ": " + line.amount.Fixed(2));
    return texts;
  };
  EXPECT_EQ(lines(), (std::vector<std::string>{"Cost of Basics / Additives: 40.00",
                                               "Cost of Recycled Ink (Master Formula Purchase Cost): 60.00",
                                               "Ingredient Cost - Subtotal: 100.00", "Fixed Cost of Batch: 5.00",
                                               "Fixed Cost of 0.10 / lb.: 10.00", "Markup Ingredients 12.5%: 12.50",
                                               "Addtional Costs - Subtotal: 27.50", "Total Cost of Batch: 127.50"}));
  work.cost.CostModelType = 1;
  work.figures.CostOfBasics = Currency::From(100);
  work.figures.CostOfMixes = {};
  EXPECT_EQ(lines().front(), "Batch Cost calculated with Master Formula Purchase Cost: 100.00");
  EXPECT_EQ(lines().size(), 6U);
}

}  // namespace
}  // namespace vellumark
