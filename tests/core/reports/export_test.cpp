#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "core/base/files.h"
#include "core/datafile/jet/jet_file.h"
#include "core/reports/chart.h"
#include "core/reports/export.h"
#include "core/reports/saved_reports.h"
#include "report_room.h"
#include "support/jet_room.h"

namespace vellumark {
namespace {

using test::ReportRoom;

constexpr DateTime kMade{2026, 3, 10, 12, 0, 0};

struct ExportRoom : ReportRoom {
  ExportRoom() {
    Color(ColorKind::Mix, "PINK", 0);
    Batch(7, "PINK", {2026, 3, 1}, 12.5F, {{"RED", 12.5F}},
          {{"Notes", "one\ttwo\r\nthree <&>"}, {"PercentRec", 0.125F}, {"CostOfBasics", 4.0F}});
    Batch(3, "PINK", {2026, 2, 27}, 1.25F, {{"RED", 1}}, {{"PercentRec", 0.0F}});
    Batch(9, "PINK", {2026, 3, 2}, 2, {{"RED", 1}}, {{"PercentRec", 0.5F}});
  }
  BuiltReport Shown(const std::vector<std::string>& keys) {
    BuiltReport report = Run("ProductionForm", {.color = "PINK"});
    report.shown.clear();
    for (const std::string& key : keys) report.shown.push_back(test::Place(report, key));
    return report;
  }
};

// What another program reads in a spreadsheet: a line for each cell, "B2 n 12.5 #,##0.000".
std::string ReadSpreadsheet(const std::filesystem::path& file) {
  const std::filesystem::path script = file.string() + ".py";
  std::ofstream(script) << R"(import sys, zipfile, xml.etree.ElementTree as E
n = '{http://schemas.openxmlformats.org/spreadsheetml/2006/main}'
z = zipfile.ZipFile(sys.argv[1])
assert z.testzip() is None
styles = E.fromstring(z.read('xl/styles.xml'))
formats = {f.get('numFmtId'): f.get('formatCode') for f in styles.iter(n + 'numFmt')}
fonts = [f.find(n + 'b') is not None for f in styles.find(n + 'fonts')]
cells = [(formats.get(x.get('numFmtId'), x.get('numFmtId')), fonts[int(x.get('fontId'))]) for x in styles.find(n + 'cellXfs')]
sheet = E.fromstring(z.read('xl/worksheets/sheet1.xml'))
for row in sheet.iter(n + 'row'):
    for c in row:
        style, bold = cells[int(c.get('s', '0'))]
        value = c.find(n + 'v').text if c.find(n + 'v') is not None else ''.join(t.text for t in c.iter(n + 't'))
        formula = c.find(n + 'f')
        print(c.get('r'), c.get('t', 'n'), repr(value), '' if formula is None else '=' + formula.text, style, 'bold' if bold else '')
pane = sheet.find('.//' + n + 'pane')
print('pane', pane.get('ySplit') if pane is not None else None, pane.get('state') if pane is not None else None)
print('filter', [f.get('ref') for f in sheet.iter(n + 'autoFilter')])
print('widths', [round(float(c.get('width'))) for c in sheet.iter(n + 'col')])
print('sheet', [s.get('name') for s in E.fromstring(z.read('xl/workbook.xml')).iter(n + 'sheet')])
print(z.read('docProps/core.xml').decode().split('<dc:title>')[1].split('</dc:title>')[0])
)";
  std::FILE* pipe = ::popen(("python3 " + script.string() + " " + file.string() + " 2>&1").c_str(), "r");
  std::string text;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) text += static_cast<char>(c);
  ::pclose(pipe);
  return text;
}

TEST(ReportExport, WritesASpreadsheetThatAnotherProgramReads) {
  ExportRoom room;
  BuiltReport report =
      room.Shown({"Color_Name", "BatchNo", "Date_Entered", "Quantity", "QtyRec", "PercentRec", "CostOfBatch", "Notes"});
  const std::filesystem::path file = room.session.DataFolder / "made.xlsx";
  const ExportOptions options{.format = ExportFormat::Spreadsheet};
  ExportReport(report, options, kMade, file);
  EXPECT_EQ(ReadSpreadsheet(file),
            "A1 inlineStr 'Color Name'  0 bold\nB1 inlineStr 'Batch Number'  0 bold\n"
            "C1 inlineStr 'Date Entered'  0 bold\nD1 inlineStr 'Quantity'  0 bold\n"
            "E1 inlineStr 'Qty Recycled'  0 bold\nF1 inlineStr '% Recycled'  0 bold\n"
            "G1 inlineStr 'Cost of Batch'  0 bold\nH1 inlineStr 'Notes'  0 bold\n"
            "A2 inlineStr 'PINK'  0 \nB2 n '3'  000000 \nC2 n '46080'  yyyy-mm-dd \nD2 n '1.25'  #,##0.000 \n"
            "E2 n '0'  #,##0.000 \nF2 n '0'  0.00% \nG2 n '0'  #,##0.00 \n"
            "A3 inlineStr 'PINK'  0 \nB3 n '7'  000000 \nC3 n '46082'  yyyy-mm-dd \nD3 n '12.5'  #,##0.000 \n"
            "E3 n '1.563'  #,##0.000 \nF3 n '0.125'  0.00% \nG3 n '4'  #,##0.00 \n"
            "H3 inlineStr 'one\\ttwo\\nthree <&>'  0 \n"
            "A4 inlineStr 'PINK'  0 \nB4 n '9'  000000 \nC4 n '46083'  yyyy-mm-dd \nD4 n '2'  #,##0.000 \n"
            "E4 n '1'  #,##0.000 \nF4 n '0.5'  0.00% \nG4 n '0'  #,##0.00 \n"
            "A5 inlineStr 'Totals'  0 bold\nD5 n '15.75' =SUBTOTAL(109,D2:D4) #,##0.000 bold\n"
            "E5 n '2.563' =SUBTOTAL(109,E2:E4) #,##0.000 bold\n"
            "F5 n '0.1627' =IF(SUBTOTAL(109,D2:D4)=0,0,ROUND(SUBTOTAL(109,E2:E4)/SUBTOTAL(109,D2:D4),4)) 0.00% bold\n"
            "G5 n '4' =SUBTOTAL(109,G2:G4) #,##0.00 bold\n"
            "pane 1 frozen\nfilter ['A1:H4']\nwidths [28, 15, 15, 15, 15, 15, 15, 15]\nsheet ['Report']\n" +
                report.title + "\n");
  // Cut, in another order and without a heading; what a ratio needs is not there.
  report.complete = false;
  ExportReport(report,
               {.headings = false, .order = {"% Recycled", "Batch Number"}, .format = ExportFormat::Spreadsheet}, kMade,
               file);
  EXPECT_EQ(ReadSpreadsheet(file),
            "A1 n '0'  0.00% \nB1 n '3'  000000 \nA2 n '0.125'  0.00% \nB2 n '7'  000000 \nA3 n '0.5'  0.00% \n"
            "B3 n '9'  000000 \nA4 n '0.1627'  0.00% bold\nA5 inlineStr 'INCOMPLETE'  0 bold\n"
            "pane None None\nfilter []\nwidths [15, 15]\nsheet ['INCOMPLETE']\n" +
                report.title + "  -  INCOMPLETE\n");
}

TEST(ReportExport, WritesADatabaseThatAnotherProgramReads) {
  ExportRoom room;
  BuiltReport report =
      room.Shown({"Color_Name", "BatchNo", "Date_Entered", "Quantity", "QtyRec", "PercentRec", "CostOfBatch", "Notes"});
  const std::filesystem::path file = room.session.DataFolder / "made.mdb";
  const ExportOptions options{.headings = false, .data = false, .totals = false, .format = ExportFormat::Jet};
  ExportReport(report, options, kMade, file);
  EXPECT_EQ(test::SaidBy("mdb-tables -1 " + file.string()), "Vellumark Data\n");
  const std::string schema = test::SaidBy("mdb-schema --no-not-null " + file.string());
  for (const char* field :
       {"[Color Name]\t\t\tText (30)", "[Batch Number]\t\t\tText (30)", "[Date Entered]\t\t\tDateTime",
        "[Quantity]\t\t\tSingle", "[% Recycled]\t\t\tSingle", "[Cost of Batch]\t\t\tSingle", "[Notes]\t\t\tMemo"})
    EXPECT_NE(schema.find(field), std::string::npos) << field << "\n" << schema;
  const std::string notes = "one\ttwo\r\nthree <&>";
  EXPECT_EQ(test::Exported(file, "Vellumark Data"),
            "PINK\x1F"
            "000003\x1F"
            "2026-02-27 00:00:00\x1F"
            "1.25\x1F"
            "0\x1F"
            "0\x1F"
            "0\x1F<null>\x1E"
            "PINK\x1F"
            "000007\x1F"
            "2026-03-01 00:00:00\x1F"
            "12.5\x1F"
            "1.563\x1F"
            "12.5\x1F"
            "4\x1F" +
                notes +
                "\x1E"
                "PINK\x1F"
                "000009\x1F"
                "2026-03-02 00:00:00\x1F"
                "2\x1F"
                "1\x1F"
                "50\x1F"
                "0\x1F<null>\x1E");
  report.complete = false;
  ExportReport(report, {.order = {"% Recycled", "Batch Number"}, .format = ExportFormat::Jet}, kMade, file);
  EXPECT_EQ(test::Exported(file, "Vellumark Data INCOMPLETE"),
            "0\x1F"
            "000003\x1E"
            "12.5\x1F"
            "000007\x1E"
            "50\x1F"
            "000009\x1E");
}

// Captions that Jet does not take, texts of all lengths, numbers beyond their type, and rows wider than a page.
TEST(ReportExport, FitsAnyReportIntoADatabase) {
  BuiltReport report;
  const std::string longer(40, 'x');
  const std::string longest(300, 'y');
  const auto add = [&](const std::string& caption, Format format, TableValue first, TableValue second = {}) {
    report.columns.push_back({.key = caption, .caption = caption, .format = format});
    report.shown.push_back(report.shown.size());
    report.cells.push_back(std::move(first));
    report.cells.push_back(std::move(second));
  };
  add("No.", Format::Text, longer);
  add("no", Format::Text, longest);
  add("`Left! ", Format::Whole, std::int64_t{3000000000}, std::int64_t{-1});
  add("...", Format::Date, DateTime{2026, 1, 2, 3, 4, 5});
  add(std::string(70, 'n'), Format::YesNo, true, false);
  add(std::string(71, 'n'), Format::Amount, std::string("12.5"), std::string("none"));
  for (int i = 0; i < 40; ++i) add("Wide " + std::to_string(i), Format::Text, std::string(200, 'w'), std::string("é€"));
  // They were told column by column.
  std::vector<TableValue> rows;
  for (std::size_t row = 0; row < 2; ++row)
    for (std::size_t i = 0; i < report.columns.size(); ++i) rows.push_back(report.cells[i * 2 + row]);
  report.cells = std::move(rows);
  report.order = {0, 1};
  report.targets.resize(2);

  const test::ScratchFolder folder;
  ExportReport(report, {.format = ExportFormat::Jet}, kMade, folder / "wide.mdb");
  const JetFile file = JetFile::Open(folder / "wide.mdb");
  const JetTable& table = *file.Find("Vellumark Data");
  std::vector<std::vector<Value>> read;
  file.Read(table, [&](const JetRow& row) {
    read.push_back(row.values);
    return true;
  });
  ASSERT_EQ(read.size(), 2U);
  const std::vector<std::pair<std::string, JetType>> fields{{"No", JetType::Text},
                                                            {"no 2", JetType::Memo},
                                                            {"'Left", JetType::Double},
                                                            {"Field", JetType::Date},
                                                            {std::string(64, 'n'), JetType::Text},
                                                            {std::string(62, 'n') + " 2", JetType::Single}};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    EXPECT_EQ(table.columns[i].name, fields[i].first);
    EXPECT_EQ(table.columns[i].type, fields[i].second) << fields[i].first;
  }
  EXPECT_EQ(table.columns[0].size, 40);
  EXPECT_EQ(table.columns[4].size, 30);
  const std::vector<Value> first(read[0].begin(), read[0].begin() + 6);
  EXPECT_EQ(first, (std::vector<Value>{longer, longest, 3e9, JetDays({2026, 1, 2}), "Yes", 12.5}));
  const std::vector<Value> second(read[1].begin(), read[1].begin() + 6);
  EXPECT_EQ(second, (std::vector<Value>{{}, {}, -1.0, {}, "No", {}}));
  EXPECT_EQ(read[0].back(), std::string(200, 'w'));
  EXPECT_EQ(read[1].back(), "é€");
}

TEST(ReportExport, NamesItsFileAndRefusesWhatItCannotWrite) {
  ExportRoom room;
  const BuiltReport report = room.Shown({"Color_Name", "Quantity"});
  const std::filesystem::path folder = room.session.DataFolder;
  const auto path = [&](const char* name, ExportFormat format) {
    const auto made = ExportPath(room.session, folder, name, format);
    return made ? made->filename().string() : made.error().declined ? "declined" : made.error().title;
  };
  EXPECT_EQ(path("  ", ExportFormat::Text), "Bad File Name");
  EXPECT_EQ(path("a/b\\c", ExportFormat::Text), "a-b-c.txt");
  EXPECT_EQ(path("month.TXT", ExportFormat::Text), "month.TXT");
  EXPECT_EQ(path("month.txt", ExportFormat::Spreadsheet), "month.txt.xlsx");
  ReplaceFile(folder / "month.txt", "old");
  room.prompt.Expect("Overwrite File", Answer::No, "Overwrite existing file?");
  EXPECT_EQ(path("month", ExportFormat::Text), "declined");
  room.prompt.Expect("Overwrite File", Answer::Yes, "Overwrite existing file?");
  EXPECT_EQ(path("month", ExportFormat::Text), "month.txt");
  EXPECT_EQ(ReadFileBytes(folder / "month.txt"), "old") << "tried by its neighbour";
  EXPECT_THROW(static_cast<void>(ExportPath(room.session, folder / "none", "x", ExportFormat::Text)), Failure);

  for (const ExportFormat format : {ExportFormat::Text, ExportFormat::Spreadsheet, ExportFormat::Jet})
    EXPECT_THROW(ExportReport(report, {.format = format}, kMade, folder / "none" / "x"), Failure);
  // A table without a field is none: nothing of the file stays.
  BuiltReport none = report;
  none.shown.clear();
  EXPECT_THROW(ExportReport(none, {.format = ExportFormat::Jet}, kMade, folder / "x.mdb"), BadValue);
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    EXPECT_EQ(entry.path().filename().string().find("x.mdb"), std::string::npos) << entry.path();
  EXPECT_EQ(ExportDoneText("/tmp/out/month.txt"), "Saved To:  /tmp/out\nFile:  month.txt");
}

TEST(ReportExport, KeepsTheUsersOrderUntilOtherColumnsAreShown) {
  ExportRoom room;
  const ReportDefinition& report = *FindReport("ProductionForm");
  const BuiltReport built = room.Shown({"Color_Name", "Quantity", "Notes"});
  const auto order = [&](const char* window) {
    return JoinColumnSet(ReadExportOrder(room.session, *FindReport(window)));
  };
  KeepExportOrder(room.session, report, built.columns, built.shown);
  EXPECT_EQ(order("ProductionForm"), "|Color Name||Quantity||Notes|");
  SaveExportOrder(room.session, report, {"Notes", "Color Name", "Quantity"});
  KeepExportOrder(room.session, report, built.columns, built.shown);
  EXPECT_EQ(order("ProductionForm"), "|Notes||Color Name||Quantity|") << "the same columns";
  EXPECT_TRUE(ReadExportOptions(room.session, report).order.empty());
  SaveExportOptions(room.session, report, {.totals = false, .format = ExportFormat::Spreadsheet, .fileName = "m"},
                    true);
  const ExportOptions kept = ReadExportOptions(room.session, report);
  EXPECT_EQ(kept.order.size(), 3U);
  EXPECT_EQ(kept.format, ExportFormat::Spreadsheet);
  EXPECT_FALSE(kept.totals);
  EXPECT_EQ(ReportText(built, kept).substr(0, 27), "Notes\tColor Name\tQuantity\r\n");
  SaveExportOrder(room.session, report, {"Notes", "Color Name", "No Such"});
  KeepExportOrder(room.session, report, built.columns, built.shown);
  EXPECT_EQ(order("ProductionForm"), "|Color Name||Quantity||Notes|");
  SaveExportOrder(room.session, *FindReport("ProductionSummaryForm"), {"Database"});
  EXPECT_EQ(order("ProductionColorNameSummaryForm"), "|Database|");
}

// "Formula" stands for all of it, in the order that is delivered as well.
TEST(ReportExport, AnOrderNamesTheRecipeAsAWhole) {
  ReportRoom room;
  room.Basic("RED");
  room.Basic("WHITE");
  room.Mix("PINK", {{"RED", 25}, {"WHITE", 75}});
  const ReportDefinition& report = *FindReport("ColorListForm");
  BuiltReport built = room.Run("ColorListForm", {.options = {{"ShowBasics", "0"}}});
  built.shown = {0};
  for (const char* key : {"BC0", "BQ0", "BC1", "BQ1"}) built.shown.push_back(test::Place(built, key));
  SaveExportOrder(room.session, report, {"Formula", "Color Name"});
  SaveExportOptions(room.session, report, {.totals = false}, true);
  EXPECT_EQ(ReportText(built, ReadExportOptions(room.session, report)),
            "Ingredient 1\tParts 1\tIngredient 2\tParts 2\tColor Name\r\nRED\t25.000\tWHITE\t75.000\tPINK\r\n");
  for (std::size_t i = 0; i < built.columns.size(); ++i)
    if (built.columns[i].key.starts_with("BC") || built.columns[i].key.starts_with("BQ")) built.shown.push_back(i);
  KeepExportOrder(room.session, report, built.columns, built.shown);
  EXPECT_EQ(ReadExportOrder(room.session, report).front(), "Formula") << "the same columns";
}

TEST(SavedReports, KeepWhatWasAskedAndShown) {
  ExportRoom room;
  const ReportDefinition& definition = *FindReport("ProductionForm");
  BuiltReport report = room.Shown({"Color_Name", "Quantity", "BatchNo"});
  report.columns[test::Place(report, "Quantity")].width = 777;
  report.filter = "00 pink";
  SortReport(report, {.column = test::Place(report, "Quantity"), .descending = true, .second = 1U});
  ReportRequest request{.range = 11, .color = "PINK", .kind = ColorKind::Mix, .options = {{"A", "1|2=\"%"}}};
  ASSERT_TRUE(SaveReport(room.session, SavedFrom(" Month's end | \xC3\xA9\xE2\x82\xAC ", definition, request, report)));
  ASSERT_TRUE(SaveReport(room.session, {.name = "Other", .key = "InventoryForm"}));
  ASSERT_EQ(ReadSavedReports(room.session).size(), 2U);
  const auto saved = FindSavedReport(room.session, "MONTH'S END | \xC3\xA9\xE2\x82\xAC");
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->request.rangeName, "Last Month");
  EXPECT_EQ(saved->request.options, request.options);
  EXPECT_EQ(saved->request.kind, ColorKind::Mix);
  BuiltReport again = room.Run("ProductionForm", {.color = "PINK"});
  Arrange(again, *saved);
  EXPECT_EQ(again.shown, report.shown);
  EXPECT_EQ(again.sort, report.sort);
  EXPECT_EQ(again.columns[again.shown[1]].width, 777);
  EXPECT_EQ(again.order, report.order);
  // What is filtered away is in no total.
  again.filter = "000007 pink";
  SortReport(again, again.sort);
  EXPECT_EQ(test::TotalText(again, "Quantity"), "12.500");
  EXPECT_EQ(ReportText(again, {.headings = false, .totals = false}), "PINK\t12.500\t000007\r\n");

  SavedReport lost = *saved;
  lost.columns.push_back("Gone");
  EXPECT_EQ(LostColumns(lost, again.columns), std::vector<std::string>{"Gone"});
  room.Setting("DetProductionColumns", "|Gone||Notes|");
  EXPECT_EQ(room.Run("ProductionForm", {.color = "PINK"}).notice,
            "The columns that are saved for Specific Color - this Database name what it does not have: Gone.");
  EXPECT_FALSE(SaveReport(room.session, {.name = " ", .key = "InventoryForm"}));
  EXPECT_FALSE(SaveReport(room.session, {.name = "X", .key = "NoSuch"}));
  EXPECT_FALSE(DeleteSavedReport(room.session, "No Such"));
  EXPECT_TRUE(DeleteSavedReport(room.session, "other"));
  EXPECT_FALSE(FindSavedReport(room.session, "Other"));
}

TEST(SavedReports, AndRangesOfDates) {
  ExportRoom room;
  const NamedRange spring{" Spring ", {{2026, 5, 31, 12, 0, 0}, {2026, 3, 1}}};
  ASSERT_TRUE(SaveCustomRange(room.session, {"Year-end", {{2025, 12, 1}, {2025, 12, 31}}}));
  ASSERT_TRUE(SaveCustomRange(room.session, spring));
  EXPECT_EQ(StoredText(room.session, "CustomDateRanges"),
            "|Spring=2026-03-01..2026-05-31||Year-end=2025-12-01..2025-12-31|");
  EXPECT_EQ(*RangeNamed(room.session, "SPRING"), (DateRange{{2026, 3, 1}, {2026, 5, 31}}));
  ReportRequest request{.rangeName = "spring", .color = "PINK"};
  EXPECT_EQ(room.Try("ProductionForm", request)->Rows(), 2U);
  request.rangeName = "Someday";
  EXPECT_EQ(room.Try("ProductionForm", request).error().text,
            "Someday is no range of dates, which are All Dates, Month To Date, Quarter To Date, Year To Date, Today, "
            "Last 7 Days, Last 30 Days, Last 90 Days, Last 180 Days, Last 365 Days, Custom, Last Month, Last Quarter, "
            "Last Year, Spring, Year-end.");
  EXPECT_FALSE(SaveCustomRange(room.session, {"today", spring.dates}));
  EXPECT_FALSE(SaveCustomRange(room.session, {"A|B", spring.dates}));
  EXPECT_FALSE(RangeNamed(room.session, "Custom"));
  EXPECT_TRUE(DeleteCustomRange(room.session, "spring"));
  EXPECT_EQ(ReadCustomRanges(room.session).size(), 1U);
}

std::string Drawn(const ReportChart& chart) {
  std::string text;
  for (const ChartSlice& slice : chart.slices)
    text += (text.empty() ? "" : "|") + slice.name + " " + CellText(chart.column, slice.value);
  return text;
}

TEST(ReportCharts, GroupByDatesAndNames) {
  ExportRoom room;
  const BuiltReport report = room.Run("ProductionForm", {.color = "PINK"});
  const std::size_t quantity = test::Place(report, "Quantity");
  const std::size_t share = test::Place(report, "PercentRec");
  EXPECT_EQ(Drawn(ChartOf(report, ChartGroup::Day, quantity)),
            "2026-02-27 1.250|2026-02-28 0.000|2026-03-01 12.500|2026-03-02 2.000");
  EXPECT_EQ(Drawn(ChartOf(report, ChartGroup::Week, quantity)), "2026-02-23 13.750|2026-03-02 2.000")
      << "1 March is a Sunday";
  EXPECT_EQ(Drawn(ChartOf(report, ChartGroup::Month, share)), "2026-02 0.00%|2026-03 17.68%");
  EXPECT_EQ(Drawn(ChartOf(report, ChartGroup::Quarter, quantity)), "2026 Q1 15.750");
  EXPECT_EQ(Drawn(ChartOf(report, ChartGroup::Color, quantity)), "PINK 15.750");
  EXPECT_FALSE(std::ranges::count(ChartGroupsOf(report), ChartGroup::Database));
  EXPECT_TRUE(std::ranges::count(ChartFiguresOf(report), share));
  EXPECT_TRUE(ChartGroupsOf(room.Run("ProductionSummaryForm")).size() == 1);

  for (int i = 0; i < 20; ++i) {
    const std::string name = "C" + std::to_string(10 + i);
    room.Color(ColorKind::Mix, name, 0);
    room.Batch(100 + i, name, {2026, 3, 1}, static_cast<float>(1 + i), {{"RED", 1}}, {{"PercentRec", 0.25F}});
  }
  const BuiltReport colors = room.Run("SummarizedProductionForm");
  const ReportChart chart = ChartOf(colors, ChartGroup::Color, test::Place(colors, "Quantity"));
  ASSERT_EQ(chart.slices.size(), 12U);
  EXPECT_EQ(ChartGroupsOf(colors), std::vector{ChartGroup::Color}) << "not when they were produced last";
  EXPECT_EQ(colors.columns[ChartFiguresOf(colors)[UsualChartFigure(colors, ChartFiguresOf(colors))]].key, "Quantity");
  EXPECT_EQ(chart.slices[0].name, "C29");
  EXPECT_EQ(chart.slices[11].name, "All others");
  EXPECT_EQ(chart.slices[11].value, 1 + 2 + 3 + 4 + 5 + 6 + 7 + 8 + 9 + 10);
  EXPECT_EQ(ChartOf(colors, ChartGroup::Color, test::Place(colors, "PercentRec")).slices[11].value, 0.2414)
      << "38.563 of 159.750, with PINK";
  room.session.Perm_Costs = 0;
  const BuiltReport hidden = room.Run("SummarizedProductionForm");
  EXPECT_FALSE(std::ranges::count(ChartFiguresOf(hidden), test::Place(hidden, "CostOfBatch")));
}

}  // namespace
}  // namespace vellumark
