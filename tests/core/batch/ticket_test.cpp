#include "core/batch/ticket.h"

#include <gtest/gtest.h>

#include "core/batch/bench.h"
#include "core/batch/jobs.h"
#include "core/batch/open.h"
#include "core/batch/print_options.h"
#include "life_room.h"

namespace vellumark::test {
namespace {

// A sheet as lines: "# heading", "caption: value", cells parted by bars, texts.
std::vector<std::string> LinesOf(const Sheet& sheet) {
  std::vector<std::string> lines;
  for (const SheetBlock& block : sheet.blocks) {
    if (!block.heading.empty()) lines.push_back("# " + block.heading);
    for (const SheetField& field : block.fields) lines.push_back(field.caption + " " + field.value);
    if (block.table) {
      const ListTable& table = *block.table;
      TableTotals totals(table);
      table.read([&](const TableRow& row) {
        totals.Add(row);
        std::string line;
        for (const std::size_t column : table.Shown()) line += CellText(table.columns[column], row.Cell(column)) + "|";
        lines.push_back(line);
        return true;
      });
      if (!table.totals.empty()) lines.push_back(totals.Texts().at(0) + " " + totals.Texts().at(1));
    }
    lines.insert(lines.end(), block.lines.begin(), block.lines.end());
  }
  return lines;
}

struct TicketRoom : PinkRoom {
  TicketRoom() {
    Setting("InvLotTracking", "1");
    ReadSettings(session);
    Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 8, {{"PurchaseCost", 2.5F}});
    session.File().Execute(
        "UPDATE INK_Mix SET Notes = 'Stir.', Color_Guide = 'Fans', Page = '12', Row = 3 WHERE Color_Name = 'PINK'");
  }
  void All(bool on) {
    BatchPrintOptions options;
    options.batchInfo = options.history = options.cost = options.extraDetails = options.lab = on;
    options.lotConsumption = options.quickInfo = on;
    options.notes.fill(on);
    ASSERT_TRUE(SaveBatchPrintOptions(session, options));
    ASSERT_EQ(ReadBatchPrintOptions(session), options);
  }
  std::vector<std::string> Ticket(std::int32_t number) {
    const auto stored = ReadBatch(session, number);
    const auto sheet = BatchTicket(session, *stored);
    return sheet ? LinesOf(*sheet) : std::vector<std::string>{sheet.error().text};
  }
};

bool Has(const std::vector<std::string>& lines, const std::string& line) {
  return std::ranges::find(lines, line) != lines.end();
}

TEST(Ticket, PrintsItsBlocksInOrder) {
  TicketRoom room;
  for (const char* key : {"PrintLABBatchDetails", "PrintRecListPercent", "PrintRecListPercentValue"})
    if (room.session.support->settings.GetSupportValue(key).empty()) room.LaterSetting(key, "1");
  room.All(true);
  for (int i = 0; i < kQuickInfoFields; ++i)
    room.Setting("QuickInfoField" + std::to_string(i), i == 2 || i == 4 || i == 5 ? "1" : "0");

  room.Mixed("PINK", "20");
  room.record.fields.Notes = "Too red.";
  ASSERT_TRUE(EnterJobNumber(room.session, room.record, "J1"));
  ASSERT_TRUE(EnterQtyUsed(room.session, room.record, "15"));
  ASSERT_TRUE(AddBatchAdditions(room.session, room.record, {{"WHITE", "2"}}));
  room.dialogs.choices.push_back(ModifiedBatchChoice{});
  room.Save();
  room.Mixed("PINK", "40");
  ASSERT_TRUE(TakeRecycled(room.session, room.record, "ROSE", "5"));
  BatchFields& fields = room.record.fields;
  fields.LotNumber = "L9";
  fields.ShortNote = "rush";
  fields.Notes = "Second\nline";
  fields.IngNotes = "RED: new drum";
  fields.UD_Text[0] = "green";
  fields.Lab_L = 33.5F;
  fields.Lab_LS = "D50";
  room.Save();

  const std::vector<std::string> expected{
      "# PINK",
      "Batch ID #: 000002",
      "Date Entered: 2026-03-10",
      "Formula Guide : Fans",
      "Page: 12",
      "Row: 3",
      "Lot Number: L9",
      "Short Note: rush",
      "ROSE|5.000|lb.|(Below Max. Usable)|",
      "WHITE|27.500|lb.||",
      "RED|7.500|lb.||",
      "TOTAL WEIGHT 40.000",
      "Recycled  12.50%",
      "NOTE - A Batch Addition was required for a previous Batch of this color.",
      "# Quick Info - ROSE",
      "Reorder 0.000 lb.",
      "Purchase Cost 2.50 per lb.",
      "Formula RED 50.000%, WHITE 50.000%",
      "# WHITE",
      "Reorder 0.000 lb.",
      "Purchase Cost 1.00 per lb.",
      "# RED",
      "Reorder 0.000 lb.",
      "Purchase Cost 4.00 per lb.",
      "# Cost Detail",
      "Cost of Basics 57.50",
      "Cost of Mixes (Basic Cost) 15.00",
      "Fixed Cost of Batch 0.00",
      "Fixed Cost of 0.00 / lb. 0.00",
      "Markup Ingredients 0.0% 0.00",
      "Cost of Batch 72.50",
      "Cost per lb. 1.81",
      "VOC 0.000",
      "HAP 0.000",
      "# Extra Batch Details",
      "Text Lbl1 green",
      "# Ingredient Inv. Lot Consumption",
      "ROSE|Unlotted Inv.||||5.000|3.00|",
      "WHITE|Unlotted Inv.||||27.500|1.00|",
      "RED|Unlotted Inv.||||7.500|4.00|",
      "# Batch Note",
      "Second\nline",
      "# Batch History",
      "Last Batch 000001  2026-03-10",
      "Qty Produced 22.000 lb.",
      "Last Job J1",
      "Job Qty Used 15.000 lb.",
      "# Master Formula Notes for PINK",
      "Stir.",
      "# Other Batch Notes for PINK",
      "000001  2026-03-10\nToo red.",
      "# Ingredient Notes",
      "RED: new drum",
      "# L-a-b - Delta - Batch Details",
      "L 33.50",
      "Light Source D50",
  };
  EXPECT_EQ(room.Ticket(2), expected);
  // The first one has no history, an addition of its own and a job.
  const auto first = room.Ticket(1);
  EXPECT_TRUE(Has(first, "WHITE|2.000|lb.|(Batch Addition)|"));
  EXPECT_TRUE(Has(first, "Job Number: J1") && Has(first, "Qty Used: 15.000 lb."));
  EXPECT_FALSE(Has(first, "# Batch History") ||
               Has(first, "NOTE - A Batch Addition was required for a previous Batch of this color."));

  // On the bench: what its saving would take.
  room.Open(2);
  const auto open = BatchTicket(room.session, room.record);
  ASSERT_TRUE(open);
  EXPECT_TRUE(Has(LinesOf(*open), "RED|Unlotted Inv.||||7.500|4.00|"));
  SetQuantityText(room.record.work, "41");
  EXPECT_EQ(BatchTicket(room.session, room.record).error().text,
            "The Batch quantity has changed.\n\nClick the Recycle(F2) or Mix(F3) button\nto recalculate the batch "
            "before printing.");
  EXPECT_EQ(RecycleListSheet(room.session, room.record.work).error().title, "Recalculate Batch");

  // Whoever may not see prices reads none.
  room.session.Perm_Costs = 0;
  for (const std::string& line : room.Ticket(2)) {
    EXPECT_EQ(line.find("ost"), std::string::npos) << line;
    EXPECT_FALSE(line.ends_with("4.00|")) << line;
  }
  room.All(false);
  EXPECT_EQ(room.Ticket(2).size(), 12U);
}

TEST(Ticket, ListsWhatIsRecyclableByMoreThanTheSettingSays) {
  TicketRoom room;
  room.LaterSetting("PrintRecListPercent", "0");
  room.LaterSetting("PrintRecListPercentValue", "50");
  room.Mixed("PINK", "20");
  const auto names = [&] { return LinesOf(RecycleListSheet(room.session, room.record.work).value()); };
  // Half of the ROSE is RED, of which PINK has a quarter.
  EXPECT_EQ(names(), (std::vector<std::string>{"PINK|100.00|0.000|Yes|", "ROSE|50.00|8.000|Yes|"}));
  BatchPrintOptions options = ReadBatchPrintOptions(room.session);
  options.recListPercent = true;
  ASSERT_TRUE(SaveBatchPrintOptions(room.session, options));
  EXPECT_EQ(names(), (std::vector<std::string>{"PINK|100.00|0.000|Yes|"}));
  options.recListPercentValue = 101;
  EXPECT_EQ(SaveBatchPrintOptions(room.session, options).error().field, "txtRecListPercent");
}

// Of its own ink what is there now; on the bench what is there for it, without what it made and with what it took.
TEST(Ticket, TellsTheStockOfItsOwnInkThatItRecycled) {
  for (const char* lot : {"", "MADE"}) {
    TicketRoom room;
    room.All(false);
    BatchPrintOptions options = ReadBatchPrintOptions(room.session);
    options.quickInfo = true;
    ASSERT_TRUE(SaveBatchPrintOptions(room.session, options));
    for (int i = 0; i < kQuickInfoFields; ++i) room.Setting("QuickInfoField" + std::to_string(i), i == 1 ? "1" : "0");
    PostStock(room.session, {.kind = ColorKind::Mix, .name = "PINK", .quantity = 12});
    room.Mixed("PINK", "20");
    ASSERT_TRUE(TakeRecycled(room.session, room.record, "PINK", "5"));
    room.record.fields.LotNumber = lot;
    room.Save();
    const auto inventory = [](const std::vector<std::string>& lines) {
      return *std::ranges::find_if(lines, [](const std::string& line) { return line.starts_with("Inventory"); });
    };
    EXPECT_EQ(inventory(room.Ticket(1)), "Inventory 27.000 lb.") << lot;
    room.Open(1);
    EXPECT_EQ(inventory(LinesOf(*BatchTicket(room.session, room.record))), "Inventory 12.000 lb.") << lot;
    ASSERT_TRUE(CancelBatch(room.session, room.record).value());
  }
}

TEST(Ticket, TellsWhatAnOverpourChanged) {
  TicketRoom room;
  room.Setting("Overpour", "1");
  room.Mixed("PINK", "20");
  room.prompt.Expect("Excess Basic Color Weight", Answer::Yes)
      .Expect("Change in Amounts" + std::string(50, ' '), Answer::Yes);
  const auto poured = PourBasicRow(room.session, room.record, 1, "6");
  ASSERT_TRUE(poured && poured->printDetail) << poured.error().text;
  EXPECT_EQ(LinesOf(ChangeSheet(room.record, poured->changes)),
            (std::vector<std::string>{"Batch ID #: 000001", "PINK", "   MODIFIED FORMULA", "# Basic Color Adjustments:",
                                      "WHITE|15.000|18.000|3.000|", "RED|5.000|6.000|1.000|", "Amounts in lb."}));
}

}  // namespace
}  // namespace vellumark::test
