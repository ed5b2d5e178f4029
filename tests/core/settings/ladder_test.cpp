#include "core/settings/ladder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/settings/label_defaults.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using Pairs = std::vector<std::pair<std::string, std::string>>;

class TestDataFile final : public LadderDataFile {
 public:
  explicit TestDataFile(fs::path folder) : folder_(std::move(folder)) { fs::create_directories(folder_); }
  void SetDaysToRemindBackup(int days) override { this->days = days; }
  fs::path Folder() const override { return folder_; }

  int days = -1;

 private:
  fs::path folder_;
};

std::map<std::string, std::pair<std::string, fs::file_time_type>> StateOf(const fs::path& folder) {
  std::map<std::string, std::pair<std::string, fs::file_time_type>> state;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file())
      state[fs::relative(entry.path(), folder).string()] = {ReadFileBytes(entry.path()), entry.last_write_time()};
  return state;
}

class LadderTest : public testing::Test {
 protected:
  // A settings file with these records, a current one but for them.
  void GivenVersion(const std::string& version, const std::string& labelVersion, const Pairs& more) {
    SupportRecords records(RecordShape::KeyValue);
    records.Append("BatchListColWidth74", "0");
    records.Append("StartupVar_FileVersion", version);
    records.Append("LabelTemplate_Version", labelVersion);
    for (const auto& [key, value] : more) records.Append(key, value);
    files.settings.Write(records);
    WriteMissingSupportFiles(files);
  }

  void SetUp() override { MakeFolder(files.folder); }

  void Expect(const Pairs& values) {
    for (const auto& [key, value] : values) {
      EXPECT_TRUE(files.settings.Read().Contains(key)) << key;
      EXPECT_EQ(files.settings.GetSupportValue(key), value) << key;
    }
  }

  std::size_t PlaceOf(std::string_view key) {
    const SupportRecords settings = files.settings.Read();
    for (std::size_t i = 0; i < settings.Records().size(); ++i)
      if (settings.Records()[i].key == key) return i;
    ADD_FAILURE() << key << " is missing";
    return 0;
  }

  test::ScratchFolder scratch;
  SupportFiles files{scratch / "VKDat"};
  TestDataFile dataFile{scratch / "Data"};
};

TEST_F(LadderTest, CarriesANewFileToTheEnd) {
  WriteMissingSupportFiles(files);
  const SupportRecords fresh = files.settings.Read();
  const std::string freshLabel = ReadFileBytes(files.label.Path());
  EXPECT_TRUE(RunLadder(files, &dataFile));

  Expect(
      {{"StartupVar_FileVersion", "47"},
       {"LabelTemplate_Version", "4"},
       {"GH_LabelTemplate_Version", "2"},
       {"Formula_LabelTemplate_Version", "2"},
       {"GH_LabelLayoutList", "Default Label|"},
       {"Formula_LabelLayoutList", "Default Label|"},
       {"InventoryColWidth6", "2865"},
       {"InventoryColWidth35", "1940"},
       {"InventoryColWidth36", "1500"},
       {"InventoryColWidth42", "0"},
       {"InventoryDetailSelectedColWidth33", "2865"},
       {"InventoryDetailSelectedColWidth43", "0"},
       {"BC_PrintItem_9", "1"},
       {"BC_PrintItem_10", "0"},
       {"MC_PrintItem_14", "1"},
       {"MC_PrintItem_18", "0"},
       {"PControl_IncludeData", "1"},
       {"BatchLotListColumns", "|Color Name||Job Number||Date Entered||Ing. Name|"},
       {"BatchLotListDateRange", "6"},
       {"Anilox0", ".5"},
       {"RemindBackup", "1"},
       {"Jobs_UDNum_Format5", "3"},
       {"JobUDTxtRequired5", "0"},
       {"BatchListForm_FileFormat", "0"},
       {"ProductionForm_UDHeader", "|Color Name||Date Entered||Quantity||Qty Recycled||% Recycled||Cost of Batch|"},
       {"BatchListForm_MultipleRows_IncTotals", "1"},
       {"CloudUtilityReportViewer_DefaultDir", ""},
       {"BasicCostListForm_UDHeader", "|Color Name||Color Code||Purchase Cost|"},
       {"ColorListDBColWidth15", "1940"},
       {"ColorListDBColWidth16", "1940"},
       {"InventoryColumns", "|Color Type||Unlotted Inventory||Unit Cost||Total Cost||Consignment|"},
       {"InventoryForm_UDHeader", "|Color Name||Color Type||Unlotted Inventory||Unit Cost||Total Cost||Consignment|"},
       {"CloudInvSpecificColorOptConsignment", "0"},
       {"JobRecordColWidth33", "0"},
       {"BatchListColWidth83", "0"},
       {"BatchListRowColWidth46", "0"},
       {"UDCNameCCodeLen", "30"},
       {"InvRecordMethod", "0"},
       {"PrintRecListPercentValue", "50"}});

  // Nothing of the new file is lost, in its order, and no key has come to stand twice.
  std::map<std::string, int> counts;
  for (const SupportRecord& record : files.settings.Read().Records()) ++counts[record.key];
  for (const auto& [key, count] : counts)
    EXPECT_EQ(count, key == "ColorListColWidth16" || key == "SumConsumptionColWidth15" ? 2 : 1) << key;
  const std::vector<SupportRecord> now = files.settings.Read().Records();
  std::size_t place = 0;
  for (const SupportRecord& record : now) place += place < 1259 && record.key == fresh.Records()[place].key;
  EXPECT_EQ(place, 1259U);

  EXPECT_EQ(PlaceOf("PrintLABBatchDetails"), PlaceOf("PrintExtraBatchDetails") + 1);
  EXPECT_EQ(PlaceOf("InvRecordMethod"), PlaceOf("InvLotTracking") + 1);
  EXPECT_EQ(PlaceOf("JobRecordColWidth33"), PlaceOf("JobRecordColWidth32") + 1);
  EXPECT_EQ(PlaceOf("PrintRecListPercent"), PlaceOf("BatchComplete") + 1);

  EXPECT_EQ(files.scale.Read().Records(), (std::vector<SupportRecord>{{"", "CommPort", ""},
                                                                      {"", "BaudRate", "300"},
                                                                      {"", "Parity", "Odd"},
                                                                      {"", "WordLen", "7"},
                                                                      {"", "StopBit", "1"},
                                                                      {"", "Echo", "0"},
                                                                      {"", "NetID", ""},
                                                                      {"", "Handshaking", "comXOnXoff"}}));
  EXPECT_EQ(ReadFileBytes(files.label.Path()), freshLabel) << "a new label has all that the steps add";
  EXPECT_EQ(dataFile.days, 1);
  EXPECT_TRUE(fs::is_directory(dataFile.Folder() / "DesignPhotos"));
}

TEST_F(LadderTest, ACurrentFileIsLeftAlone) {
  WriteMissingSupportFiles(files);
  RunLadder(files, &dataFile);
  const auto before = StateOf(scratch.Path());
  dataFile.days = -1;
  EXPECT_FALSE(RunLadder(files, &dataFile));
  EXPECT_EQ(StateOf(scratch.Path()), before);
  EXPECT_EQ(dataFile.days, -1);
}

TEST_F(LadderTest, AnUnknownVersionStopsIt) {
  for (const char* version : {"5 ", " 5", "48", "05", "five"}) {
    GivenVersion(version, "1", {{"RemindBackup", "0"}});
    const auto before = StateOf(scratch.Path());
    EXPECT_FALSE(RunLadder(files, &dataFile)) << version;
    EXPECT_EQ(StateOf(scratch.Path()), before) << version;
  }
}

TEST_F(LadderTest, CarriesOnFromAnyVersion) {
  struct Case {
    const char* version;
    Pairs given;
    Pairs expected;
    std::vector<const char*> absent;  // keys of earlier versions do not come back
  };
  const std::vector<Case> cases{
      {"10", {{"RemindBackup", "0"}}, {{"RemindBackup", "1"}, {"JobListForm_DateQuery", "0"}}, {"Anilox0"}},
      {"11", {{"RemindBackup", "0"}}, {{"RemindBackup", "0"}}, {"BatchDefaultLotNumberValue"}},
      {"20",
       {{"BatchListColumns", "|Quantity|"}, {"BatchListSecondSortCol", "-1"}, {"BatchListColWidth0", "1"}},
       {{"BatchListForm_UDHeader", "|Batch Number||Quantity|"}, {"BatchListForm_DefaultFileName", ""}},
       {"BatchUDTxtValue0"}},
      {"20", {{"BatchListForm_FileFormat", "1"}}, {{"BatchListForm_FileFormat", "1"}}, {}},
      {"22",
       {{"BasicCostListColumns", "|Purchase Cost||Color Type|"}, {"BasicCostListForm_UDHeader", "x"}},
       {{"BasicCostListColumns", "|Color Type||Color Code||Purchase Cost|"},
        {"BasicCostListForm_UDHeader", "|Color Name||Color Code||Purchase Cost|"}},
       {"ColorListForm_FileFormat"}},
      {"25",
       {{"ColorListDBColWidth14", "7"}, {"ColorListDBColWidth15", "0"}, {"ColorListDBColWidth17", "0"}},
       {{"ColorListDBColWidth15", "1940"}, {"ColorListDBColWidth16", "1940"}, {"ColorListDBColWidth17", "0"}},
       {"DesignUsageFormColumns"}},
      {"30",
       {{"DetConsumptionColumns", "|Inventory||Inventory Note|"}, {"ReorderColumns", "|Inventory|"}},
       {{"DetConsumptionColumns", "|Unlotted Inventory||Inventory Note|"}, {"ReorderColumns", "|Inventory|"}},
       {"UDCNameCCodeLen"}},
      {"40",
       {{"InventoryColumns", "|Total Cost|"}, {"CloudInvDetSelectedColumns", "|Consignment|"}},
       {{"InventoryColumns", "|Total Cost||Consignment|"},
        {"CloudInvDetSelectedColumns", "|Consignment|"},
        {"InventoryOptConsignment", "0"},
        {"InventorySummaryOptConsignment", "0"}},
       {"PrintMixNotes0", "MC_PrintItem_15"}},
      {"46",
       {{"PrintRecListPercentValue", "75"}},
       {{"PrintRecListPercentValue", "75"}, {"PrintRecListPercent", "0"}},
       {"SumProductionColWidth20"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.version);
    GivenVersion(c.version, "4", c.given);
    EXPECT_TRUE(RunLadder(files, &dataFile));
    Expect(c.expected);
    Expect({{"StartupVar_FileVersion", "47"}, {"LabelTemplate_Version", "4"}});
    for (const char* key : c.absent) EXPECT_FALSE(files.settings.Read().Contains(key)) << key;
  }
}

TEST_F(LadderTest, AnEmptyWidthOrVersionIsFilledInItsPlace) {
  files.settings.Write(SupportRecords(
      RecordShape::KeyValue,
      {{"", "BatchListColWidth74", ""}, {"", "StartupVar_FileVersion", ""}, {"", "LabelTemplate_Version", "4"}}));
  WriteMissingSupportFiles(files);
  RunLadder(files, nullptr);
  Expect({{"BatchListColWidth74", "0"}, {"StartupVar_FileVersion", "47"}, {"LabelTemplate_Version", "4"}});
  int versions = 0;
  for (const SupportRecord& record : files.settings.Read().Records())
    versions += record.key == "StartupVar_FileVersion";
  EXPECT_EQ(versions, 1);
}

// A label file as version 1 of the template left it: no free bar codes, no lots, another bar code font, and a layout of
// the shop's own without its free texts.
SupportRecords FirstLabelFile() {
  SupportRecords records(RecordShape::LayoutKeyValue);
  for (const char* layout : {"Default Label", "Drum"})
    for (const SupportRecord& record : DefaultLabel(layout)) {
      const auto has = [&record](std::string_view part) { return record.key.find(part) != std::string::npos; };
      if (has("Misc Bar Code") || has("Lot Location") || has("Lot Cont ID") || record.key == "Label BC Type") continue;
      if (layout == std::string_view("Drum") && has("Misc Text") && record.key.ends_with(" Text")) continue;
      records.Append(layout, record.key,
                     has("BC FontName")               ? "Free 3 of 9"
                     : record.key == "Color Name Top" ? "77"
                                                      : record.value);
    }
  return records;
}

TEST_F(LadderTest, BringsEveryLayoutOfAnOldLabelFileUpToDate) {
  GivenVersion("1", "1", {{"LabelLayoutList", "Default Label|Drum|"}});
  files.label.Write(FirstLabelFile());
  RunLadder(files, &dataFile);
  Expect({{"LabelTemplate_Version", "4"}});
  std::map<std::string, int> counts;
  for (const SupportRecord& record : files.label.Read().Records()) ++counts[record.layout + "/" + record.key];
  for (const std::string layout : {"Default Label", "Drum"})
    for (const SupportRecord& record : DefaultLabel(layout)) {
      EXPECT_EQ(counts[layout + "/" + record.key], 1) << layout << ": " << record.key;
      const std::string value = record.key == "Color Name Top" ? "77" : record.value;
      EXPECT_EQ(files.label.GetSupportValue(layout, record.key), value) << record.key;
    }
  EXPECT_EQ(counts.size(), 2 * DefaultLabel("x").size());
  const SupportRecords label = files.label.Read();
  for (std::size_t i = 0; i + 1 < label.Records().size(); ++i) {
    if (label.Records()[i].key == "Pantone Trademark FontBold") {
      EXPECT_EQ(label.Records()[i + 1].key, "Misc Bar Code Data 1 Visible");
    }
  }
}

TEST_F(LadderTest, HazardAndFormulaLabelsGetWhatTheyLack) {
  GivenVersion("32", "4", {{"GH_LabelTemplate_Version", "1"}});
  files.hazardLabel.Write(SupportRecords(RecordShape::LayoutKeyValue, {{"Vat", "Product Top", "5"},
                                                                       {"Vat", "Product FontSize", "14"},
                                                                       {"Vat", "Signal Word FontSize", "20"},
                                                                       {"Vat", "Signal Word FontBold", "False"}}));
  files.formulaLabel.Write(
      SupportRecords(RecordShape::LayoutKeyValue,
                     {{"A", "Formula FontBold", "True"}, {"A", "Label Width", "1"}, {"B", "Date Top", "9"}}));
  RunLadder(files, &dataFile);
  Expect({{"GH_LabelTemplate_Version", "2"}, {"Formula_LabelTemplate_Version", "2"}});
  EXPECT_EQ(files.hazardLabel.GetSupportValue("Vat", "Product Enabled"), "1");
  EXPECT_EQ(files.hazardLabel.GetSupportValue("Vat", "Product FontBold"), "True");
  EXPECT_EQ(files.hazardLabel.GetSupportValue("Vat", "Signal Word FontBold"), "False");
  EXPECT_EQ(files.hazardLabel.GetSupportValue("Vat", "Misc Text 4 Enabled"), "1");
  EXPECT_EQ(files.formulaLabel.Read().Records()[1].key, "Date Enabled");
  EXPECT_EQ(files.formulaLabel.GetSupportValue("B", "Date Top"), "9");
  EXPECT_EQ(files.formulaLabel.GetSupportValue("B", "Date FontName"), "Arial");
}

TEST_F(LadderTest, BackupsHoldTheFilesAsTheyWereAtThatVersion) {
  GivenVersion("16", "4", {});
  const fs::path backups = DataFolders(files.folder).backups;
  fs::create_directories(backups);
  SupportFile kept(backups / "vk50labeldf.dat", RecordShape::LayoutKeyValue);
  kept.Write(SupportRecords(RecordShape::LayoutKeyValue, {{"Mine", "Top", "1"}}));
  const std::string hazard = ReadFileBytes(files.hazardLabel.Path());
  RunLadder(files, &dataFile);
  const SupportFile copy(backups / "vk50suvdf.dat", RecordShape::KeyValue);
  EXPECT_EQ(copy.GetSupportValue("StartupVar_FileVersion"), "17");
  EXPECT_EQ(copy.GetSupportValue("CloudInvDetSelectedShowMixes"), "1");
  EXPECT_FALSE(copy.Read().Contains("BatchUDTxtValue0"));
  EXPECT_EQ(ReadFileBytes(backups / "vk50_GH_labeldf.dat"), hazard);
  EXPECT_EQ(kept.GetSupportValue("Mine", "Top"), "1") << "a copy that is there stays";
  EXPECT_FALSE(fs::exists(backups / "vk50scaledf.dat")) << "there was no scale file to copy";
  EXPECT_FALSE(fs::exists(backups / "vk50_Formula_labeldf.dat"));
}

TEST_F(LadderTest, ARunCutShortIsMadeAgainWithTheSameEnd) {
  // What an undisturbed run gives.
  GivenVersion("1", "1", {{"LabelLayoutList", "Default Label|Drum|"}});
  files.label.Write(FirstLabelFile());
  const std::string settingsBefore = ReadFileBytes(files.settings.Path());
  const std::string labelBefore = ReadFileBytes(files.label.Path());
  RunLadder(files, &dataFile);
  const std::string settingsAfter = ReadFileBytes(files.settings.Path());
  const std::string labelAfter = ReadFileBytes(files.label.Path());
  EXPECT_NE(labelBefore, labelAfter);

  // The same with the settings' last step barred: the versions must not move ahead of the work.
  ASSERT_GT(settingsAfter.size(), labelAfter.size());
  ::signal(SIGXFSZ, SIG_IGN);
  for (const auto& [barred, room] :
       {std::pair{"vk50labeldf.dat", 1000UL}, {"vk50suvdf.dat", settingsAfter.size() - 1}}) {
    ReplaceFile(files.settings.Path(), settingsBefore);
    ReplaceFile(files.label.Path(), labelBefore);
    const rlimit little{room, RLIM_INFINITY};
    ::setrlimit(RLIMIT_FSIZE, &little);
    EXPECT_THROW(RunLadder(files, &dataFile), Failure) << barred;
    const rlimit enough{RLIM_INFINITY, RLIM_INFINITY};
    ::setrlimit(RLIMIT_FSIZE, &enough);
    EXPECT_EQ(ReadFileBytes(files.settings.Path()), settingsBefore) << barred;
    EXPECT_TRUE(RunLadder(files, &dataFile));
    EXPECT_EQ(ReadFileBytes(files.settings.Path()), settingsAfter) << barred;
    EXPECT_EQ(ReadFileBytes(files.label.Path()), labelAfter) << barred;
  }
}

TEST_F(LadderTest, AMissingLabelFileStopsItBeforeAnythingIsWritten) {
  GivenVersion("1", "1", {});
  fs::remove(files.label.Path());
  const auto before = StateOf(scratch.Path());
  try {
    RunLadder(files, &dataFile);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.subject, files.label.Path().string());
  }
  EXPECT_EQ(StateOf(scratch.Path()), before);
  EXPECT_EQ(dataFile.days, -1);
}

TEST_F(LadderTest, WithoutADataFileTheOtherStepsAreMade) {
  WriteMissingSupportFiles(files);
  EXPECT_TRUE(RunLadder(files, nullptr));
  Expect({{"StartupVar_FileVersion", "47"}, {"RemindBackup", "1"}});
  WriteFreshSupportFiles(files);
  EXPECT_FALSE(files.scale.Exists());
  RunLadder(files, nullptr);
  EXPECT_EQ(files.scale.GetSupportValue("Handshaking"), "comXOnXoff") << "made again with new Support Files";
}

}  // namespace
}  // namespace vellumark
