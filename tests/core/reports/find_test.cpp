#include "core/reports/find.h"

#include <gtest/gtest.h>

#include "report_room.h"

namespace vellumark {
namespace {

struct FindRoom : test::ReportRoom {
  FindRoom() {
    Color(ColorKind::Basic, "RED", 5, {{"PurchaseCost", 4.125F}, {"Notes", "50%_a'b"}});
    Color(ColorKind::Basic, "GLOSS", 0, {{"Additive", true}});
    Lot(ColorKind::Basic, "RED", 1, 2.5F);
    Color(ColorKind::Mix, "PANTONE 123 C", 1, {{"BC0", "RED"}, {"BQ0", 100.0F}, {"Color_Set", "<RED>"}});
    Batch(1, "PANTONE 123 C", {2026, 3, 1, 17, 0, 0}, 10, {{"RED", 10, 1}},
          {{"UMF", 2}, {"PercentRec", 0.12344F}, {"ShortNote", "it's 5*"}, {"UD_Numeric1", 1.5F}});
    Batch(2, "VIOLET", {2026, 3, 2}, 3, {{"RED", 1, 1}, {"O'NEIL BLUE", 2, 1}});
    BatchLot(2, "RED", 1, "L-77", 1, 1);
    AddDatabase("WEB");
    Use("WEB");
    Batch(3, "VIOLET", {2026, 3, 3}, 4, {{"RED", 4, 1}});
    Use("INK");
    InsertRow(session.File(), schema::Designs, schema::Designs.name,
              {{"DesignID", "D1"}, {"IngName0", "RED"}, {"IngSet", "<RED>"}, {"Impressions", 5000}, {"Width", 2.5F}});
    Job("J1", "INK", "RED", 1, 1000001, 2, 1.5F, 4, {2026, 3, 4});
    Breaks("JobBatches");
  }
  std::string Found(FindSubject subject, std::vector<FindTerm> terms, bool any = false,
                    std::vector<std::string> databases = {}) {
    const auto answer = Find(session, {subject, std::move(terms), any, std::move(databases)});
    if (!answer) return answer.error().title;
    std::string text;
    answer->table.read([&](const TableRow& row) {
      const std::size_t place = subject == FindSubject::Batch ? 1 : 0;
      text += CellText(answer->table.columns[place], row.Cell(place)) + " ";
      return true;
    });
    return text;
  }
};

TEST(Find, ComparesWhatIsDisplayed) {
  FindRoom room;
  struct Case {
    std::vector<FindTerm> terms;
    const char* numbers;
    bool any = false;
    std::vector<std::string> databases{};
  };
  const std::vector<Case> cases{{{}, "000001 000002 "},
                                {{{"Color Name", "is equal to", "123 c"}}, "000001 "},
                                {{{"Color Name", "is equal to", "123"}}, "No Matching Records"},
                                {{{"Color Name", "contains", "o"}}, "000001 000002 "},
                                {{{"Ingredients", "is equal to", "o'neil blue"}}, "000002 "},
                                {{{"Ing Lot Num.", "contains", "-7"}}, "000002 "},
                                {{{"Short Note", "contains", "'s 5*"}}, "000001 "},
                                {{{"Short Note", "contains", "*"}}, "000001 "},
                                {{{"Short Note", "contains", "%"}}, "No Matching Records"},
                                {{{"Quantity", "=", "22.046"}}, "000001 "},
                                {{{"Quantity", ">=", "22.0461"}}, "000001 "},
                                {{{"Quantity", "<=", "3"}}, "000002 "},
                                {{{"% Recycled", "=", "12.34"}}, "000001 "},
                                {{{"Date Entered", "=", "2026-03-01"}}, "000001 "},
                                {{{"Date Entered", "<=", "2026-03-01"}}, "000001 "},
                                {{{"Num Lbl2", "=", "1.5"}}, "000001 "},
                                {{{"Batch ID #", ">=", "2"}, {"Short Note", "contains", "it"}}, "No Matching Records"},
                                {{{"Batch ID #", ">=", "2"}, {"Short Note", "contains", "it"}}, "000001 000002 ", true},
                                {{{"Batch ID #", ">=", "2"}, {"Notes", "contains", ""}}, "000002 "},
                                {{{"Ingredients", "contains", "red"}}, "000001 000002 000003 ", false, {"all"}},
                                {{{"Quantity", "<=", "99999999999999999999"}}, "000001 000002 "},
                                {{{"Quantity", ">=", "99999999999999999999"}}, "No Matching Records"},
                                {{{"Batch ID #", ">=", "-99999999999999999999"}}, "000001 000002 "},
                                {{{"Quantity", "=", "x"}}, "Invalid Numeric Value"},
                                {{{"Date Entered", "=", "2026-02-30"}}, "Invalid Date Value"},
                                {{{"Quantity", "contains", "1"}}, "Find"},
                                {{{"No Such", "=", "1"}}, "Find"}};
  for (const Case& one : cases)
    EXPECT_EQ(room.Found(FindSubject::Batch, one.terms, one.any, one.databases), one.numbers)
        << (one.terms.empty() ? "" : one.terms[0].field + " " + one.terms[0].comparison + " " + one.terms[0].value);
}

// Captions are the user's own: older files have some that other fields have too.
TEST(Find, TellsFieldsOfOneCaptionApart) {
  FindRoom room;
  room.Setting("BatchCustomTextLabelCaption0", "Short Note");
  room.session.File().Execute("UPDATE INK_Batch SET UD_Text0 = 'rush' WHERE BatchNo = 2");
  const auto found = [&](const char* field, std::optional<std::vector<std::string>> columns) {
    return room.Found(FindSubject::Batch, {{field, "is equal to", "rush", std::move(columns)}});
  };
  EXPECT_EQ(found("Short Note", {}), "No Matching Records");
  EXPECT_EQ(found("Short Note", std::vector<std::string>{"UD_Text0"}), "000002 ");
  EXPECT_EQ(found("ud_text0", {}), "000002 ");
}

TEST(Find, FindsColorsJobsAndDesigns) {
  FindRoom room;
  EXPECT_EQ(room.Found(FindSubject::Basic, {{"Inventory", "=", "7.5"}}), "RED ") << "with its lot";
  EXPECT_EQ(room.Found(FindSubject::Basic, {{"Lot Number", "is equal to", "l1"}}), "RED ");
  EXPECT_EQ(room.Found(FindSubject::Basic, {{"Purchase Cost", "=", "4.13"}}), "RED ") << "as it is shown";
  EXPECT_EQ(room.Found(FindSubject::Basic, {{"Additive", "=", "yes"}}), "GLOSS ");
  EXPECT_EQ(room.Found(FindSubject::Basic, {{"Notes", "contains", "%_a'"}}), "RED ");
  EXPECT_EQ(room.Found(FindSubject::Mix, {{"Ingredients", "is equal to", "red"}}), "PANTONE 123 C ");
  EXPECT_EQ(room.Found(FindSubject::Job, {{"Qty Used", "<=", "1.5"}}), "J1 ");
  EXPECT_EQ(room.Found(FindSubject::Design, {{"Ingredients", "contains", "RE"}, {"Impressions", "=", "5000"}}), "D1 ");
  room.session.Perm_Costs = 0;
  EXPECT_EQ(room.Found(FindSubject::Basic, {{"Purchase Cost", "=", "4.13"}}), "Find");
}

}  // namespace
}  // namespace vellumark
