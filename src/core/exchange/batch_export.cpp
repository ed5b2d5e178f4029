#include <fmt/format.h>

#include <array>
#include <cmath>
#include <limits>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/batch_options.h"
#include "core/batch/cost_model.h"
#include "core/batch/more_data.h"
#include "core/batch/open.h"
#include "core/batch/print_options.h"
#include "core/batch/prior_batches.h"
#include "core/batch/quick_info.h"
#include "core/batch/rows.h"
#include "core/batch/ticket.h"
#include "core/colors/formulas.h"
#include "core/exchange/record_file.h"
#include "core/exchange/text_file.h"
#include "core/session/rights.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Export Batch Records";
constexpr std::string_view kBlockEnd = "**************************************************************";
constexpr std::string_view kNoteRule = "--------------------------------------------------------------";
constexpr double kMostBatchNo = 999999;

std::string DateOf(const std::optional<DateTime>& date) {
  return date ? date->DateText() : "";
}

// The caption of a cost line as the record names it; empty for one that it leaves out.
std::string CostCaption(const CostLine& line, const BatchCostModel& model) {
  const std::string_view name = line.name;
  if (name == "lblCostOfBasics") return "Cost of Basics";
  if (name == "lblCostOfMixes")
    return model.MixCostOption == 0   ? "Cost of Mixes (Basic Cost)"
           : model.MixCostOption == 1 ? "Cost of Mixes (Purchase Cost)"
                                      : "Cost of Mixes (Prepaid)";
  if (name == "lblIngredientCost")
    return model.CostModelType == 0 ? "Cost of Ingredients" : "Master Formula's Purchase Cost";
  return name == "lblAdditionalCost" ? "" : line.caption;
}

/// One Batch as rows of the grid.
class BatchBlock {
 public:
  BatchBlock(Session& session, RecordGathering& gathering, const BatchRecord& record)
      : session_(session),
        gathering_(gathering),
        record_(record),
        options_(ReadBatchPrintOptions(session)),
        mix_(ReadMix(session, record.work.Color_Name)) {}

  void Write() {
    Identity();
    Recipe();
    if (options_.quickInfo) QuickInformation();
    Production();
    if (options_.cost && session_.Perm_Costs != 0) Costs();
    if (options_.extraDetails)
      for (const DataLine& line : UserDataLines(session_, record_.fields)) Row(line.caption, line.value);
    if (options_.lab) Lab();
    Notes();
    gathering_.Row({std::string(kBlockEnd)});
  }

 private:
  void Row(std::string label, std::string value) { gathering_.Row({std::move(label), std::move(value)}); }
  std::string InUnit(std::string_view caption) const {
    return fmt::format("{} ({})", caption, UnitName(record_.work.UMF));
  }

  void Identity() {
    Row("Color Name", record_.work.Color_Name);
    if (!record_.work.formula.Color_Code.empty()) Row("Color Code", record_.work.formula.Color_Code);
    Row("Batch ID #", BatchNoText(record_.BatchNo));
    Row("Date Entered", DateOf(record_.Date_Entered));
    if (!record_.Username.empty()) Row("Username", record_.Username);
  }

  // The amounts carry the round-off where it fell: they add up to the total.
  void Recipe() {
    const BatchWork& work = record_.work;
    gathering_.Row({"Batch Recipe Data", "ColorCode", InUnit("IngQty")});
    const std::vector<TicketRow> rows = TicketRows(work);
    for (std::size_t i = 0; i < rows.size(); ++i) gathering_.Row({rows[i].name, CodeOf(i), Fixed(rows[i].amount, 3)});
    gathering_.Row({"Total Weight", "", Fixed(work.ShownTotal, 3)});
    if (session_.InvLotTracking == 1) Lots();
  }

  std::string CodeOf(std::size_t row) const {
    const BatchWork& work = record_.work;
    const std::size_t mixes = work.RecycledColors.size();
    if (row < mixes) return work.RecycledColors[row].Color_Code;
    const std::size_t at = row - mixes;
    if (at < work.Ingredients.size()) return work.Ingredients[at].Color_Code;
    return work.Additions.at(at - work.Ingredients.size()).Color_Code;
  }

  void Lots() {
    const std::vector<BatchLotRow> lots = ReadBatchLots(session_, record_.BatchNo);
    if (lots.empty()) return;
    gathering_.Row({"Ingredient", "LotNumber", fmt::format("LotQty ({})", UnitName(session_.UMI)), "LotContID",
                    "LotLoc", "LotDate"});
    for (const BatchLotRow& lot : lots) {
      const bool unlotted = lot.LotRefID == 0;
      gathering_.Row({lot.IngName, unlotted ? std::string(kUnlottedInv) : lot.LotNumber, Fixed(lot.LotQty, 3),
                      lot.LotContID, lot.LotLoc, unlotted ? "" : DateOf(lot.LotDate)});
    }
  }

  // What is known of the formula, then of each row, as far as the settings choose.
  void QuickInformation() {
    const auto wanted = ReadBatchOptions(session_).QuickInfoField;
    if (mix_) FormulaData(wanted);
    for (std::size_t row = 0; row < record_.work.Rows.size(); ++row) {
      const auto lines = QuickInfo(session_, record_.work, row, wanted);
      if (lines.empty()) continue;
      Row("Quick Info", record_.work.Rows[row].name);
      for (const auto& [caption, value] : lines) Row(caption, value);
    }
  }

  void FormulaData(const std::array<bool, kQuickInfoFields>& wanted) {
    const auto add = [&](std::size_t field, const char* caption, std::string value) {
      if (wanted.at(field)) Row(caption, std::move(value));
    };
    const auto price = [&](float figure) { return Fixed(figure, session_.DecimalPlaces); };
    Row("Master Formula Data", "");
    Row("Color Name", mix_->Color_Name);
    add(0, "Color Code", mix_->Color_Code);
    add(1, "Inventory", Fixed(mix_->Inventory, 3));
    add(2, "Reorder", Fixed(mix_->Reorder, 3));
    add(3, "Inventory Note", mix_->Inv_Note);
    if (session_.Perm_Costs != 0) {
      add(4, "Purchase Cost", price(mix_->PurchaseCost));
      add(4, "Basic Cost", price(mix_->BasicCost));
    }
    add(6, "VOC", Fixed(mix_->VOC, 3));
    add(7, "HAP", Fixed(mix_->HAP, 3));
    add(8, "VOC Basics", Fixed(mix_->BasicVOC, 3));
    add(9, "HAP Basics", Fixed(mix_->BasicHAP, 3));
    if (!wanted.at(5)) return;
    Row("Ing. / Part", "");
    for (const Ingredient& part : mix_->Ingredients()) Row(part.name, Fixed(part.amount, 3));
  }

  void Production() {
    const BatchWork& work = record_.work;
    if (mix_ && mix_->LastProduced) Row("Last Produced", DateOf(mix_->LastProduced));
    Row("Qty Produced ", fmt::format("{} {}", Fixed(work.ShownTotal, 3), UnitName(work.UMF)));
    if (options_.cost && session_.Perm_Costs != 0)
      Row("Cost of Batch", work.figures.TotalCost.Fixed(session_.DecimalPlaces));
    Row("Percent Recycled", PercentRecycledText(work));
    if (options_.cost) {
      Row("Batch VOCs", Fixed(work.figures.VOC, 3));
      Row("Batch HAPs", Fixed(work.figures.HAP, 3));
    }
    if (options_.batchInfo) {
      if (!record_.fields.LotNumber.empty()) Row("Lot Number", record_.fields.LotNumber);
      for (const BatchJobLine& line : record_.jobs) {
        Row("Job Number", line.JobNumber);
        Row(InUnit("Qty Used"), Fixed(line.QtyUsed, 3));
      }
      if (!record_.fields.ShortNote.empty()) Row("Short Note", record_.fields.ShortNote);
    }
    Row("Modified Formula", record_.modifiedFormula ? "Yes" : "No");
  }

  void Costs() {
    for (const CostLine& line : CostDetail(session_, record_.work))
      if (std::string caption = CostCaption(line, record_.work.cost); !caption.empty())
        Row(std::move(caption), line.amount.Fixed(session_.DecimalPlaces));
  }

  void Lab() {
    constexpr std::array<const char*, 8> captions{"Lab - L",         "Lab - a",       "Lab - b",
                                                  "Lab - Delta",     "Lab - Density", "Lab - Light Source",
                                                  "Lab - Substrate", "Lab - Note"};
    const LabReading& reading = record_.fields;
    const LabEntry shown = LabTexts(session_, reading);
    for (std::size_t place = 0; const RecordField& field : LabFields()) {
      const bool filled = field.amount ? field.ValueIn(&reading).Single() != 0 : !shown.at(place).empty();
      if (filled) Row(captions.at(place), shown.at(place));
      ++place;
    }
  }

  void Notes() {
    const auto add = [&](bool wanted, const char* caption, const std::string& text) {
      if (wanted && !text.empty()) Row(caption, text);
    };
    add(options_.notes[0], "Notes - this Batch", record_.fields.Notes);
    add(options_.notes[3], "Master Formula Notes", record_.work.formula.Notes);
    add(options_.notes[2], "Ingredient Notes", record_.fields.IngNotes);
    if (!options_.notes[1]) return;
    const auto notes =
        OtherBatchNotes(session_, record_.work.Color_Name, record_.BatchNo, std::numeric_limits<int>::max());
    if (!notes.empty()) Row("Prior Batch Notes", "");
    for (std::size_t i = 0; i < notes.size(); ++i) {
      if (i > 0) gathering_.Row({std::string(kNoteRule)});
      Row(fmt::format("Batch Number {}   Date {}", BatchNoText(notes[i].BatchNo), DateOf(notes[i].Date_Entered)),
          notes[i].Notes);
    }
  }

  Session& session_;
  RecordGathering& gathering_;
  const BatchRecord& record_;
  BatchPrintOptions options_;
  std::optional<MixColor> mix_;
};

Result<std::int64_t> ReadBatchNo(std::string_view typed, const char* field) {
  const auto number = ParseNumber(typed);
  if (number && *number >= 0 && *number <= kMostBatchNo && std::floor(*number) == *number)
    return static_cast<std::int64_t>(*number);
  return Refuse("Invalid Batch Number", "Please enter a valid Batch Number.", field);
}

Result<std::vector<std::int32_t>> FindBatches(Session& session, const RecordRange& range) {
  const std::string table = Quoted(session.Table(schema::Batch));
  const auto read = [&](std::string_view where, const Value& first, const Value& last) {
    Statement rows = session.File().Prepare(
        fmt::format("SELECT BatchNo FROM {} WHERE {} ORDER BY Date_Entered, BatchNo", table, where));
    rows.Bind(1, first).Bind(2, last);
    std::vector<std::int32_t> found;
    while (rows.Step()) found.push_back(static_cast<std::int32_t>(rows.Whole(0)));
    return found;
  };
  if (!range.ByNumber()) {
    const auto days = DaysOf(range);
    if (!days) return std::unexpected(days.error());
    return read("Date_Entered >= ?1 AND Date_Entered < ?2", days->from, days->before);
  }
  const auto first = ReadBatchNo(range.first, "First");
  if (!first) return std::unexpected(first.error());
  const auto last = ReadBatchNo(range.last, "Last");
  if (!last) return std::unexpected(last.error());
  return read("BatchNo >= ?1 AND BatchNo <= ?2", *first, *last);
}

}  // namespace

Result<RecordGrid> GatherBatchRecords(Session& session, const RecordRange& range) {
  const auto found = FindBatches(session, range);
  if (!found) return std::unexpected(found.error());
  if (found->empty())
    return range.ByNumber() ? Refuse(std::string(kTitle), "No Batch Records were collected for export.")
                            : Refuse("No Batch records", "No Batch records found in this date range.");
  session.prompt.Tell(
      std::string(kTitle),
      range.ByNumber()
          ? fmt::format("{} Batch records were found. Click OK to continue.", found->size())
          : fmt::format("{} Batch record(s) found in this date range. Click OK to continue.", found->size()));
  RecordGathering gathering(session, "Preparing Batch Records ...", found->size());
  for (const std::int32_t number : *found) {
    if (const auto record = ReadBatch(session, number)) BatchBlock(session, gathering, *record).Write();
    if (!gathering.GoOn()) break;
  }
  return gathering.Finish(kTitle);
}

std::string BatchExportName(const RecordRange& range) {
  return (range.ByNumber() ? "Batch ID Export " : "Batch Date Export ") + RangeText(range) + ".txt";
}

}  // namespace vellumark
