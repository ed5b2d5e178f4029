#include "core/reports/record_view.h"

#include <fmt/format.h>

#include "core/base/units.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/reports/batch_rows.h"

namespace vellumark {
namespace {

constexpr int kUnitColumn = 4;  // of FigureColumns

struct ViewLine {
  std::string kind;
  std::string name;
  double quantity = 0;
};

SheetBlock LinesBlock(const Session& session, std::vector<ViewLine> lines) {
  SheetBlock block{.heading = "Ingredients"};
  block.table = TableOf<ViewLine>()
                    .Add("Kind", &ViewLine::kind)
                    .Add("Ing Name", &ViewLine::name)
                    .Add("Ing Qty", &ViewLine::quantity, fmt::format("Ing Qty ({})", UnitName(session.UMI)))
                    .Of(std::move(lines));
  return block;
}

// The fields of a record's map that say something; a cost only to whoever may see it.
SheetBlock FieldsBlock(const Session& session, const FieldList& fields, const void* record) {
  SheetBlock block;
  for (const RecordField& field : fields) {
    if ((field.price && session.Perm_Costs == 0) || field.use == FieldUse::Beside) continue;
    const TableColumn column{.key = field.column,
                             .caption = {},
                             .format = field.ShownAs(),
                             .decimals = field.price ? session.DecimalPlaces : 3};
    if (std::string text = CellText(column, field.CellOf(record)); !text.empty())
      block.fields.push_back({*field.caption == 0 ? field.column : field.caption, std::move(text)});
  }
  return block;
}

std::unexpected<Refusal> Gone(const std::string& what, const std::string& database) {
  return Refuse("Record Not Found", fmt::format("{} is no longer in the Database {}.", what, database));
}

std::optional<Sheet> BatchOf(Session& session, const std::string& database, std::int32_t number) {
  Statement row = session.File().Prepare(fmt::format("SELECT {}, {}, {} FROM {} WHERE BatchNo = ?1", FigureColumns(),
                                                     DetailColumns(), LineColumns(),
                                                     Quoted(session.Table(schema::Batch, database))));
  row.Bind(1, static_cast<std::int64_t>(number));
  if (!row.Step()) return std::nullopt;
  const FigureReader reader(session);
  const BatchFiguresSum sum = reader.Read(row);
  const BatchDetail batch = ReadBatchDetail(row, kFigureColumns);
  SheetBlock head;
  const auto add = [&](std::string caption, std::string value) {
    if (!value.empty()) head.fields.push_back({std::move(caption), std::move(value)});
  };
  const auto amount = [](std::int64_t thousandths) { return Fixed(OfWholeUnits(thousandths, 3), 3); };
  const auto money = [&](const Currency& cost) { return Fixed(cost.ToDouble(), session.DecimalPlaces); };
  add("Color Name", batch.Color_Name);
  add("Date Entered", batch.Date_Entered ? batch.Date_Entered->DateText() : "");
  add("Username", batch.Username);
  add("Short Note", batch.ShortNote);
  add("Lot Number", batch.LotNumber);
  add("Job Number", batch.JobNumber);
  add(fmt::format("Quantity ({})", UnitName(session.UMI)), amount(sum.Quantity));
  add(fmt::format("Qty Recycled ({})", UnitName(session.UMI)), amount(sum.Recycled));
  if (session.Perm_Costs != 0) {
    add("Cost of Mixes", money(sum.CostOfMixes));
    add("Cost of Basics", money(sum.CostOfBasics));
    add("Fixed Costs", money(sum.FixedCosts));
    add("Markup Costs", money(sum.MarkupCosts));
    add("Cost of Batch", money(sum.CostOfBatch));
  }
  add("Batch VOCs", amount(sum.VOC));
  add("Batch HAPs", amount(sum.HAP));
  add("Notes", batch.Notes);
  std::vector<ReportLine> read;
  ReadReportLines(row, kFigureColumns + kDetailColumns, row.Whole(kUnitColumn), reader.ToUnit(), read);
  std::vector<ViewLine> lines;
  for (const ReportLine& line : read)
    lines.push_back({line.type == 2   ? "Recycled"
                     : line.type == 3 ? "Addition"
                                      : "Basic",
                     std::string(line.name), OfWholeUnits(line.quantity, 3)});
  Sheet sheet{.title = fmt::format("Batch {:06}  -  {}", number, database)};
  sheet.blocks.push_back(std::move(head));
  sheet.blocks.push_back(LinesBlock(session, std::move(lines)));
  return sheet;
}

}  // namespace

Result<Sheet> RecordSheet(Session& session, const RowTarget& target) {
  const std::string* database = session.FindDatabase(target.database);
  const bool batch = target.kind == RowTarget::Kind::Batch;
  const std::string what = batch ? fmt::format("Batch {:06}", target.BatchNo) : target.name;
  if (database == nullptr) return Gone(what, target.database);
  Sheet sheet{.title = fmt::format("{}  -  {}", target.name, *database)};
  if (batch) {
    if (auto found = BatchOf(session, *database, target.BatchNo)) return *std::move(found);
  } else if (target.kind == RowTarget::Kind::Basic) {
    if (const auto color = ReadBasic(session, target.name, *database)) {
      sheet.blocks.push_back(FieldsBlock(session, BasicFields(), &*color));
      return sheet;
    }
  } else if (target.kind == RowTarget::Kind::Mix) {
    if (const auto color = ReadMix(session, target.name, *database)) {
      sheet.blocks.push_back(FieldsBlock(session, MixFields(), &*color));
      return sheet;
    }
  }
  return Gone(what, *database);
}

}  // namespace vellumark
