#include "core/settings/setting_values.h"

#include <gtest/gtest.h>

#include "core/settings/catalogue.h"

namespace vellumark {
namespace {

TEST(SettingValues, EveryDefaultIsOneThatItsKeyCanMean) {
  for (const SupportRecord& record : DefaultSettings().Records())
    EXPECT_TRUE(CheckSettingValue(record.key, record.value)) << record.key << " = " << record.value;
}

TEST(SettingValues, WhatAKeyCannotMeanIsRefused) {
  struct Case {
    const char* key;
    const char* good;
    const char* bad;
    const char* text;
  };
  const Case cases[] = {
      {"UMI", "4", "abc", "UMI is a whole number from 1 to 4, not \"abc\"."},
      {"UMI", "1", "5", "UMI is a whole number from 1 to 4, not \"5\"."},
      {"UMI", "2", "1.5", "UMI is a whole number from 1 to 4, not \"1.5\"."},
      {"DecimalPlaces", "4", "1", "DecimalPlaces is a whole number from 2 to 4, not \"1\"."},
      {"AllowNegInv", "1", "yes", "AllowNegInv is 0 or 1, not \"yes\"."},
      {"AllowNegInv", "0", "", "AllowNegInv is 0 or 1, not \"\"."},
      {"MarkupPercent", "12.5", "101", "MarkupPercent is a number from 0 to 100, not \"101\"."},
      {"QuickInfoField9", "1", "2", "QuickInfoField9 is 0 or 1, not \"2\"."},
      {"BatchListColWidth74", "0", "-1", "BatchListColWidth74 is a whole number of 0 or more, not \"-1\"."},
      {"RecListSecondSortCol", "-1", "-2", "RecListSecondSortCol is a whole number of -1 or more, not \"-2\"."},
      {"RecListSortCol", "0", "-1", "RecListSortCol is a whole number of 0 or more, not \"-1\"."},
      {"RecListSecondSortOrder", "1", "2", "RecListSecondSortOrder is 0 or 1, not \"2\"."},
      {"BatchListDateRange", "10", "11", "BatchListDateRange is a whole number from 0 to 10, not \"11\"."},
      {"ReorderColumns", "|A||B|", "|A|B",
       "ReorderColumns is a list of column titles, each between bars as in \"|Color Code||Reorder|\", not \"|A|B\"."},
      {"LabelLayoutList", "Default Label|Big|", "Big",
       "LabelLayoutList is a list of layouts, each closed by a bar as in \"Default Label|\", not \"Big\"."},
      {"BatchUDTxtValue3", "12 cups", "12\" cups", "A value cannot hold a double quote or a line end."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.key);
    EXPECT_TRUE(CheckSettingValue(c.key, c.good));
    const auto checked = CheckSettingValue(c.key, c.bad);
    ASSERT_FALSE(checked);
    EXPECT_EQ(checked.error().text, c.text);
  }
  // A name that the machine gave, and a key of a later version.
  EXPECT_TRUE(CheckSettingValue("PrinterDevice", "12\" roll λ"));
  EXPECT_TRUE(CheckSettingValue("KeyOfALaterVersion", "abc"));
}

}  // namespace
}  // namespace vellumark
