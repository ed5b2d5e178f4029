#pragma once

#include <string>
#include <string_view>

#include "core/datafile/job_links.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/writer.h"
#include "support/notices.h"

namespace vellumark::test {

/// A Batch of ten pounds of PINK, all of it RED.
inline std::vector<Cell> PinkBatch(int number, const Value& entered, const std::string& job) {
  return {{"BatchNo", number},
          {"Color_Name", "PINK"},
          {"Date_Entered", entered},
          {"Quantity", 10},
          {"ActualQuantity", 10},
          {"IngName0", "RED"},
          {"IngType0", 1},
          {"JobNumber", job}};
}

/// Ten years of an ink room in the Databases of an open file, up to the end of `lastYear`, `perYear` Batches a year in all:
/// each with what it took and weighed; every third for a Job, of which some come back years later to what is left of the
/// ink; two Designs; a Batch whose date was lost.
inline void AddTenYears(Database& file, int lastYear, int perYear) {
  const Arranging arranging;
  Transaction transaction(file);
  const std::vector<std::string> databases = ReadFileInfo(file).dbList;
  for (const char* design : {"LABEL", "BOX"}) InsertRow(file, schema::Designs, schema::Designs.name, {{"DesignID", design}});
  const int days = 10 * 365;
  const int batches = 10 * perYear;
  const std::int64_t first = DateTime{lastYear - 9, 1, 1}.DayNumber();
  const auto job = [&](const std::string& number, int batch, const std::string& database, const Value& entered) {
    InsertRow(file, schema::JobRecords, schema::JobRecords.name,
              {{"JobNumber", number},
               {"Color_Name", "PINK"},
               {"Database", database},
               {"BatchNo", batch},
               {"ItemType", 2},
               {"QtyUsed", 2},
               {"Date_Entered", entered},
               {"DesignID", batch % 2 == 0 ? "LABEL" : "BOX"}});
  };
  for (int number = 1; number <= batches; ++number) {
    const std::string& database = databases[static_cast<std::size_t>(number) % databases.size()];
    DateTime day = DateTime::FromDayNumber(first + std::int64_t{number} * days / batches);
    day.hour = 7 + number % 10;
    const Value entered = number == batches / 2 ? Value() : Value(day);
    const std::string of = number % 3 == 0 ? "J" + std::to_string(number / 9) : "";
    const bool comesBack = number % 9 == 0;
    std::vector<Cell> batch = PinkBatch(number, entered, comesBack ? std::string(kSplitJobs) : of);
    batch.insert(batch.end(), {{"IngQty0", 10}, {"Notes", std::string(static_cast<std::size_t>(number % 40), 'n')}});
    InsertRow(file, schema::Batch, TableName(database, schema::Batch), batch);
    InsertRow(file, schema::BatchLotInv, TableName(database, schema::BatchLotInv),
              {{"BatchNo", number}, {"DateEntered", entered}, {"IngName", "RED"}, {"IngType", 1}, {"LotQty", 10}});
    InsertRow(file, schema::BatchScaleResults, TableName(database, schema::BatchScaleResults),
              {{"BatchID", number}, {"ColorName", "RED"}, {"IngType", 1}, {"EndingWeight", 10}});
    if (!of.empty()) job(of, number, database, entered);
    if (comesBack) job(of + "-2", number, database, DateTime::FromDayNumber(std::min(day.DayNumber() + 900, first + days)));
  }
  file.Prepare("UPDATE FileInfo SET BatchNumber = ?").Bind(1, batches + 1).Run();
  file.Execute("UPDATE Designs SET LastUsed = (SELECT MAX(Date_Entered) FROM JobRecords WHERE JobRecords.DesignID = Designs.DesignID)");
  transaction.Commit();
}

}  // namespace vellumark::test
