#include "core/base/number.h"
#include "core/colors/basic_work.h"
#include "core/inventory/posting.h"
#include "core/shell/database_menu.h"
#include "support/ink_room.h"
#include "support/stock_lines.h"

namespace vellumark {
namespace {

// The change and the reason of each line of RED.
std::vector<std::string> History(const Session& session, const std::string& database) {
  std::vector<std::string> lines;
  for (const StockLine& line : test::ListStockHistory(session, {.name = "RED", .database = database}))
    lines.push_back(ShortestText(line.change) + " " + line.reason);
  return lines;
}

TEST(StockTrace, FollowsDatabasesThatAreRenamedCopiedAndDeleted) {
  using Lines = std::vector<std::string>;
  test::InkRoom room;
  Session& session = room.session;
  room.Setting("AllowNegInv", "1");
  BasicWork work = NewBasicWork(session, "RED");
  ASSERT_TRUE(SaveBasic(session, work));
  PostStock(session, {PostingSource::ManualAdjust, ColorKind::Basic, "RED", {}, 5, {}});
  ASSERT_TRUE(NewDatabase(session, "COPY", {NewDatabaseContent::Kind::Copy, {}, "INK"}));
  EXPECT_EQ(History(session, "COPY"), (Lines{"5 Copy of INK"}));

  ASSERT_TRUE(RenameDatabase(session, "INK", "PAINT"));
  PostStock(session, {PostingSource::ManualAdjust, ColorKind::Basic, "RED", {}, 1, {}});
  EXPECT_EQ(History(session, "PAINT"), (Lines{"5 ", "1 "}));

  room.prompt.Expect("Delete Databases?", Answer::Yes).Expect("Databases Deleted");
  ASSERT_TRUE(DeleteDatabases(session, {"COPY"}));
  ASSERT_TRUE(NewDatabase(session, "COPY", {NewDatabaseContent::Kind::Copy, {}, "PAINT"}));
  EXPECT_EQ(History(session, "COPY"), (Lines{"6 Copy of PAINT"}));
}

}  // namespace
}  // namespace vellumark
