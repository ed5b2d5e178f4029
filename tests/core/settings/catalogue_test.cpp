#include "core/settings/catalogue.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/base/refusal.h"
#include "core/settings/support_files.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

TEST(CatalogueTest, ANewFileHolds1259RecordsInTheirOrder) {
  const SupportRecords settings = DefaultSettings();
  const std::vector<SupportRecord>& records = settings.Records();
  ASSERT_EQ(records.size(), 1259U);
  // Number of the record, key, value: the seams of the list.
  const std::vector<std::pair<std::size_t, std::pair<std::string, std::string>>> probes{
      {0, {"AdjustBatchColumns", "|Recyclable||Inventory||Color Code|"}},
      {1, {"AdjustBatchColWidth0", "2865"}},  // the one window without sort keys
      {11, {"BasicCostListColumns", "|Color Type||Color Code||Purchase Cost|"}},
      {12, {"BasicCostListSortOrder", "0"}},
      {13, {"BasicCostListSortCol", "0"}},
      {14, {"BasicCostListSecondSortOrder", "0"}},
      {15, {"BasicCostListSecondSortCol", "-1"}},
      {16, {"BasicCostListColWidth0", "2865"}},
      {1064, {"SumProductionColWidth19", "0"}},
      {1065, {"UMI", "1"}},
      {1258, {"JobCustomNumericLabelCaption5", "Num Lbl6"}},
  };
  for (const auto& [number, record] : probes) {
    EXPECT_EQ(records[number].key, record.first) << number;
    EXPECT_EQ(records[number].value, record.second) << number;
  }
}

TEST(CatalogueTest, OnlyTheTwoSlippedColumnKeysStandTwice) {
  std::map<std::string, int> counts;
  for (const SupportRecord& record : DefaultSettings().Records()) ++counts[record.key];
  std::vector<std::string> twice;
  for (const auto& [key, count] : counts)
    if (count > 1) twice.push_back(key);
  EXPECT_EQ(twice, (std::vector<std::string>{"ColorListColWidth16", "SumConsumptionColWidth15"}));
  EXPECT_FALSE(counts.contains("ColorListDBColWidth16"));
  EXPECT_FALSE(counts.contains("SumConsumptionColWidth155"));
  EXPECT_FALSE(counts.contains("StartupVar_FileVersion")) << "the ladder brings the version";
}

TEST(CatalogueTest, DefaultsOfTheKeysThatOthersRead) {
  const SupportRecords settings = DefaultSettings();
  const std::vector<std::pair<std::string, std::string>> expected{
      {"BatchListDateRange", "6"},    {"ColorListDateRange", "0"},
      {"RecListSortOrder", "1"},      {"RecListSortCol", "2"},
      {"BatchListColWidth74", "0"},   {"SumConsumptionColWidth157", "0"},
      {"InventoryColWidth0", "2865"}, {"InventoryColWidth1", "1065"},
      {"InventoryColWidth4", "1500"}, {"InventoryColWidth5", "0"},
      {"InkEstD00", "300000"},        {"InkEstD03", "400000"},
      {"InkEstD42", "175000"},        {"InkEstA63", "150000"},
      {"InkEstA73", "425000"},        {"LabelLayoutList", "Default Label|"},
      {"InvCutoff", "0.5"},           {"MonthsToRemindArchive", "66"},
      {"PrinterFont", "Arial"},       {"BatchCustomTextLabelCaption0", "Text Lbl1"},
      {"QuickInfoField9", "1"},       {"PrintBatchNotes3", "0"},
  };
  for (const auto& [key, value] : expected) {
    EXPECT_TRUE(settings.Contains(key)) << key;
    EXPECT_EQ(settings.Get(key), value) << key;
  }
  // What a later version of the settings brings in must not stand in a new file already.
  for (const char* later : {"InventoryColWidth33", "DetProductionColWidth33", "BatchListColWidth75", "PrintMixNotes3"})
    EXPECT_FALSE(settings.Contains(later)) << later;
}

TEST(SupportFilesTest, EachMissingFileIsMadeOnItsOwn) {
  const test::ScratchFolder scratch;
  SupportFiles files(scratch / "shared" / "VKDat");
  const WrittenSupportFiles first = WriteMissingSupportFiles(files);
  EXPECT_TRUE(first.settings && first.label && first.hazardLabel && first.formulaLabel);
  EXPECT_FALSE(files.scale.Exists());
  EXPECT_EQ(files.settings.GetSupportValue("DecimalPlaces"), "2");

  files.settings.SetSupportValue("UMI", "4");
  files.label.SetSupportValue("Default Label", "Color Name Top", "99");
  std::filesystem::remove(files.hazardLabel.Path());
  const WrittenSupportFiles second = WriteMissingSupportFiles(files);
  EXPECT_TRUE(second.hazardLabel);
  EXPECT_FALSE(second.settings || second.label || second.formulaLabel);
  EXPECT_EQ(files.settings.GetSupportValue("UMI"), "4");
  EXPECT_EQ(files.label.GetSupportValue("Default Label", "Color Name Top"), "99");

  WriteFreshSupportFiles(files);
  EXPECT_EQ(files.settings.GetSupportValue("UMI"), "1");
  EXPECT_EQ(files.label.GetSupportValue("Default Label", "Color Name Top"), "0");
}

TEST(SupportFilesTest, DefaultLabelsHoldEachKeyOnce) {
  const test::ScratchFolder scratch;
  SupportFiles files(scratch.Path());
  WriteMissingSupportFiles(files);
  for (const SupportFile* file : {&files.label, &files.hazardLabel, &files.formulaLabel}) {
    std::map<std::string, int> counts;
    for (const SupportRecord& record : file->Read().Records()) {
      EXPECT_EQ(record.layout, "Default Label");
      EXPECT_EQ(++counts[record.key], 1) << record.key;
    }
  }
  const auto expect = [](const SupportFile& file, const std::vector<std::pair<std::string, std::string>>& values) {
    for (const auto& [key, value] : values) EXPECT_EQ(file.GetSupportValue("Default Label", key), value) << key;
  };
  expect(files.label, {{"Label Width", "12240"},
                       {"Label BC Type", "Not Using"},
                       {"Color Name FontSize", "32"},
                       {"Lot Number Top", "2160"},
                       {"Lot Location BC Left", "4920"},
                       {"Lot Cont ID BC FontSize", "24"},
                       {"Misc Text 2 BC Left", "1260"},
                       {"Misc Text 4 BC Left", "4140"},
                       {"Short Note BC FontName", "Code 128"},
                       {"Misc Bar Code Data 2 Top", "5400"},
                       {"Misc Bar Code Data 1 Visible", "0"},
                       {"Picture Image Left", "4320"}});
  expect(files.hazardLabel, {{"Signal Word Enabled", "1"}, {"Picto_Image 9 Visible", "0"}, {"Picto Size", "1"}});
  expect(files.formulaLabel, {{"Formula FontName", "Arial"}, {"Date Enabled", "1"}});
}

TEST(SupportFilesTest, CloudFoldersAreMadeAndAFileInTheWayIsNamed) {
  const test::ScratchFolder scratch;
  const DataFolders folders(scratch.Path());
  folders.MakeCloudFolders();
  folders.MakeCloudFolders();
  for (const char* path :
       {"Cloud Certs", "Cloud Uploads/SUVFiles_Backup", "Cloud Uploads/DesignPhotos_Backup",
        "Cloud Uploads/DesignPhotos_Share", "Cloud Downloads/Backups/DesignPhotos", "Cloud Downloads/Backups/SUVFiles",
        "Cloud Downloads/ShareData", "Cloud Downloads/CloudAdmin_Reports", "Cloud Downloads/CloudAdmin_DataFiles",
        "Cloud Log Files"})
    EXPECT_TRUE(std::filesystem::is_directory(scratch / path)) << path;

  std::filesystem::remove(folders.cloudCerts);
  std::ofstream(folders.cloudCerts) << "in the way";
  try {
    folders.MakeCloudFolders();
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.subject, folders.cloudCerts.string());
  }
}

}  // namespace
}  // namespace vellumark
