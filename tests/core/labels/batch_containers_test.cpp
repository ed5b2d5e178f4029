#include "core/labels/batch_containers.h"

#include "core/batch/life_room.h"

namespace vellumark::test {
namespace {

struct BatchContainersTest : testing::Test, PinkRoom {
  BatchContainersTest() {
    Setting("InvLotTracking", "0");
  }
  std::int32_t Batch(const std::vector<JobItem>& jobs, const std::string& lot = "", const std::string& container = "") {
    Mixed("PINK", "12");
    record.fields.LotNumber = lot;
    record.fields.LotContID = container;
    if (!jobs.empty()) {
      const auto split = SaveJobItems(session, record, jobs);
      EXPECT_TRUE(split) << (split ? "" : split.error().text);
    }
    return Save();
  }
  std::vector<std::string> Labels(std::int32_t batch) {
    std::vector<std::string> told;
    for (LabelData& label : LabelsOfContainers(session, batch))
      told.push_back(fmt::format("{} job {} lot {} in {}: {}", label["Batch ID#"], label["Job Number"],
                                 label["Lot Number"], label["Lot Cont ID"], label["Short Note"]));
    return told;
  }
  using Texts = std::vector<std::string>;
};

TEST_F(BatchContainersTest, AreThoseOfItsJobsAndOfItsLot) {
  EXPECT_EQ(Labels(Batch({})), (Texts{"000001 job  lot  in : "})) << "all of it in one";
  EXPECT_EQ(Labels(Batch({{"J1", "12"}})), (Texts{"000002 job J1 lot  in : "}));
  EXPECT_EQ(
      Labels(Batch({{"J1", "4"}, {"J2", "3"}})),
      (Texts{"000003 job J1 lot  in 1: 1 of 3", "000003 job J2 lot  in 2: 2 of 3", "000003 job  lot  in 3: 3 of 3"}));
  EXPECT_EQ(Labels(Batch({{"J1", "4"}, {"J2", "8"}})).size(), 2U) << "nothing went to stock";
  EXPECT_EQ(Labels(99), Texts{});
}

TEST_F(BatchContainersTest, ALotThatWasPouredIntoSeveralHasALabelForEach) {
  Setting("InvLotTracking", "1");
  Lot(ColorKind::Basic, "RED", 1, 50);
  Lot(ColorKind::Basic, "WHITE", 1, 50);
  const auto saved = [&](const std::string& container) {
    Mixed("PINK", "12");
    Select(0, {Use(1, static_cast<float>(record.work.Rows[0].amount))});
    Select(1, {Use(1, static_cast<float>(record.work.Rows[1].amount))});
    record.fields.LotNumber = "A1";
    record.fields.LotContID = container;
    EXPECT_TRUE(SaveJobItems(session, record, {{"J1", "4"}}));
    return Save();
  };
  const std::int32_t batch = saved("B10");
  EXPECT_EQ(Labels(batch), (Texts{"000001 job J1 lot A1 in B10_1: 1 of 2", "000001 job  lot A1 in B10_2: 2 of 2"}));
  const std::int32_t other = saved("B20");  // a Batch of its own in a lot of the same number
  EXPECT_EQ(Labels(batch).size(), 2U);
  Lot(ColorKind::Mix, "PINK", 7, 3, {{"LotNumber", "A1"}, {"LotContID", "B11"}});
  EXPECT_EQ(Labels(batch), (Texts{"000001 job J1 lot A1 in B10_1: 1 of 3", "000001 job  lot A1 in B10_2: 2 of 3",
                                  "000001 job  lot A1 in B11: 3 of 3"}));
  EXPECT_EQ(Labels(other).size(), 3U);
  std::vector<std::int32_t> references;  // what tells two lots of a number apart
  for (const LabelData& label : LabelsOfContainers(session, batch)) references.push_back(label.LotRefID);
  EXPECT_EQ(references, (std::vector<std::int32_t>{1, 1, 7}));
}

}  // namespace
}  // namespace vellumark::test
