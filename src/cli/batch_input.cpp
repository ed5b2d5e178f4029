#include "cli/batch_input.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "cli/color_fields.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/bench.h"
#include "core/batch/cost_model.h"
#include "core/batch/cover.h"
#include "core/batch/jobs.h"
#include "core/batch/modified.h"
#include "core/batch/recycle_list.h"
#include "core/batch/row_lots.h"
#include "core/colors/names.h"
#include "core/jobs/job_numbers.h"

namespace vellumark::cli {
namespace {

std::string NotAPair(const std::string& text) {
  const auto pair = SplitPair(text, true);
  return pair && !pair->first.empty() ? "" : fmt::format("{}: expected NAME=AMOUNT", text);
}

std::string NotAField(const std::string& text) {
  return SplitPair(text) ? "" : fmt::format("{}: expected FIELD=VALUE", text);
}

std::string NotALot(const std::string& text) {
  const auto pair = SplitPair(text);
  return pair && !pair->first.empty() && pair->second.find(':') != std::string::npos
             ? ""
             : fmt::format("{}: expected NAME=LOTNUMBER:QTY", text);
}

std::string NotAUnit(const std::string& text) {
  return ParseUnit(text) ? "" : fmt::format("{}: expected lb., kg., g. or oz.", text);
}

// ---- Calculation

Result<void> Take(Session& session, BatchRecord& record, const std::string& option) {
  const auto [typed, amount] = SplitPair(option, true).value();
  const auto read = TypedName(session, typed);
  if (!read) return std::unexpected(read.error());
  std::string name = *read;
  for (const RecycleListRow& row : RecycleListRows(record.work, {}))
    if (SameColorName(row.Color_Name, name)) name = row.Color_Name;
  const auto taken = TakeRecycled(session, record, name, Trim(amount));
  if (!taken) return std::unexpected(taken.error());
  if (*taken) return {};
  if (record.work.Rows.size() >= static_cast<std::size_t>(kMostBatchLines))
    return Refuse("Recycle List", fmt::format("A Batch holds at most {} lines.", kMostBatchLines), "fgRecList");
  return Refuse("Recycle List", fmt::format("{} is not in the Recycle List of this Batch.", name), "fgRecList");
}

Result<void> TakeAndAdd(Session& session, BatchRecord& record, const BatchInput& input) {
  for (const std::string& option : input.take)
    if (auto taken = Take(session, record, option); !taken) return taken;
  std::vector<AdditionLine> additions;
  for (const std::string& option : input.add) {
    const auto [name, amount] = SplitPair(option, true).value();
    if (auto valid = TypedName(session, name); !valid) return std::unexpected(valid.error());
    additions.push_back({name, Trim(amount)});
  }
  if (additions.empty()) return {};
  return AddBatchAdditions(session, record, additions);
}

Result<void> Calculate(Session& session, BatchRecord& record, bool recycle) {
  const auto done = recycle ? RecycleBatch(session, record) : MixBatch(session, record);
  if (!done) return std::unexpected(done.error());
  if (!*done) return Refuse("Recalculate Batch", "The Batch was not calculated anew.", "txtQuantity");
  return {};
}

// ---- Fields

std::unexpected<Refusal> NoNumber(std::string_view field, std::string_view value) {
  return Refuse("Invalid Value", fmt::format("{} is not a number: \"{}\"", field, value), std::string(field));
}

// What --set gives, the models collected: one change of them, whatever their order.
class FieldSetter {
 public:
  FieldSetter(Session& session, BatchRecord& record) : session_(session), record_(record), model_(record.work.cost) {}

  Result<void> Set(std::string_view field, const std::string& value) {
    if (const RecordField* model = CostModelFields().Find(field)) return SetModel(*model, value);
    if (BatchRowFields().FindSettable(field, false) != nullptr) return EnterBatchField(session_, record_, field, value);
    return Refuse("Invalid Field", fmt::format("{} is no field of a Batch that can be set.", field),
                  std::string(field));
  }

  Result<void> Finish() {
    if (costs_)
      if (auto set = SetBatchCostModel(session_, record_, model_, false); !set) return set;
    if (emissions_)
      if (auto set = SetBatchEmissionModel(session_, record_, model_, false); !set) return set;
    return {};
  }

 private:
  Result<void> SetModel(const RecordField& field, const std::string& value) {
    const auto read = ParseNumber(value);
    if (!read) return NoNumber(field.column, value);
    if (field.type == RecordField::Type::Single) {
      field.Single(&model_) = static_cast<float>(*read);
    } else {
      const int last = LastChoice(field);
      if (*read < 0 || *read > last || *read != static_cast<int>(*read))
        return Refuse("Invalid Value", fmt::format("{} is a number from 0 to {}.", field.column, last), field.column);
      ChoiceIn(model_, field) = static_cast<int>(*read);
    }
    (field.price ? costs_ : emissions_) = true;
    return {};
  }

  Session& session_;
  BatchRecord& record_;
  BatchCostModel model_;
  bool costs_ = false;
  bool emissions_ = false;
};

Result<void> SetFields(Session& session, BatchRecord& record, const BatchInput& input) {
  FieldSetter setter(session, record);
  for (const std::string& option : input.set) {
    const auto [field, value] = SplitPair(option).value();
    if (EqualNoCase(field, "Complete")) continue;
    if (auto set = setter.Set(field, value); !set) return set;
  }
  return setter.Finish();
}

// The mark is taken away before anything else is changed, and set when all is.
Result<void> SetComplete(BatchRecord& record, const BatchInput& input, bool wanted) {
  for (const std::string& option : input.set) {
    const auto [field, value] = SplitPair(option).value();
    if (!EqualNoCase(field, "Complete")) continue;
    const auto complete = ReadYesNo("Complete", value);
    if (!complete) return std::unexpected(complete.error());
    if (*complete == wanted) record.Complete = wanted;
  }
  return {};
}

// ---- Lots

// The rows that an option of this command has given lots, and that therefore have none but those of the options.
using NamedRows = std::vector<std::size_t>;

bool IsPlaced(const Session& session, const BatchRecord& record, std::size_t row) {
  return RowLots(record, row).CompleteFor(LotNeed(session, record, row));
}

// The first row of that name that is not placed yet, else the first that no option has named, else the first of all.
std::optional<std::size_t> RowNamed(const Session& session, const BatchRecord& record, const std::string& name,
                                    const NamedRows& named) {
  std::optional<std::size_t> first;
  std::optional<std::size_t> unnamed;
  const auto& rows = record.work.Rows;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!rows[i].lotLink || !SameColorName(rows[i].name, name)) continue;
    if (!first) first = i;
    if (!IsPlaced(session, record, i)) return i;
    if (!unnamed && std::ranges::find(named, i) == named.end()) unnamed = i;
  }
  return unnamed ? unnamed : first;
}

// Several containers may share a lot number; they are emptied one after the other.
Result<void> TakeFromLots(LotSelectionWork& work, const std::string& number, double quantity) {
  double left = quantity;
  std::optional<std::size_t> last;
  for (std::size_t i = 0; i < work.rows.size(); ++i) {
    LotSelectionRow& row = work.rows[i];
    if (!EqualNoCase(row.lot.LotNumber, number)) continue;
    const double takes = std::min(left, RoundTo(row.Holds(), 3) - RoundTo(row.lot.LotQty, 3));
    if (takes > 0) {
      if (auto taken = work.UpdateRow(i, Fixed(takes, 3)); !taken) return taken;
      left = RoundTo(left - takes, 3);
    }
    last = i;
  }
  if (!last)
    return Refuse("Lot Selections", fmt::format("{} has no lot {} that a Batch can use.", work.IngName, number),
                  "cmbLotNum");
  // What no container holds is refused in the words of the last one.
  if (left > 0) return work.UpdateRow(*last, Fixed(left, 3));
  return {};
}

// The lots of an earlier save stay beside what the line still needs; where it needs no more, the options say it anew.
LotSelection KeptLots(const Session& session, const BatchRecord& record, std::size_t row, double quantity,
                      NamedRows& named) {
  const LotSelection& lots = RowLots(record, row);
  const bool again = std::ranges::find(named, row) != named.end();
  if (!again) named.push_back(row);
  const double left = RoundTo(LotNeed(session, record, row), 3) - RoundTo(lots.Used(), 3);
  return again || RoundTo(quantity, 3) <= RoundTo(left, 3) ? lots : LotSelection{};
}

// Names and lot numbers may hold "=" too: the longest beginning that names a line is the name. Where none does, the
// text before the last mark is told.
Result<std::pair<std::size_t, std::string>> LineAndLot(const Session& session, const BatchRecord& record,
                                                       const std::string& option, const NamedRows& named) {
  for (std::size_t mark = option.rfind('='); mark != std::string::npos && mark > 0;
       mark = option.rfind('=', mark - 1)) {
    const auto name = TypedName(session, option.substr(0, mark));
    if (!name) continue;
    if (const auto row = RowNamed(session, record, *name, named)) return std::pair{*row, option.substr(mark + 1)};
  }
  const auto name = TypedName(session, SplitPair(option, true)->first);
  if (!name) return std::unexpected(name.error());
  return Refuse("Lot Selections", fmt::format("{} is no line of this Batch.", *name), "IngName");
}

Result<void> TakeLots(Session& session, BatchRecord& record, const std::string& option, NamedRows& named) {
  if (session.InvLotTracking != 1)
    return Refuse("Lotted Inventory", "Lotted Inventory is turned off; no lot can be named.", "cmbLotNum");
  const std::size_t colon = option.rfind(':');
  const auto quantity = ParseNumber(option.substr(colon + 1));
  if (!quantity || !(*quantity > 0)) return NoNumber("QTY", option.substr(colon + 1));
  const auto found = LineAndLot(session, record, option.substr(0, colon), named);
  if (!found) return std::unexpected(found.error());
  const std::size_t row = found->first;
  if (auto open = OpenRowLots(session, record, row); !open) return open;
  const BatchRow& shown = record.work.Rows[row];
  const LotSelection kept = KeptLots(session, record, row, *quantity, named);
  auto work = LoadLotSelection(session, shown.name, shown.kind, LotNeed(session, record, row), record.work.UMF, kept,
                               WithheldFrom(session, record, row));
  if (!work) return std::unexpected(work.error());
  if (auto taken = TakeFromLots(*work, Trim(found->second), RoundTo(*quantity, 3)); !taken) return taken;
  return SetRowLots(session, record, row, work->Selection());
}

Result<void> TakeJobs(Session& session, BatchRecord& record, const BatchInput& input) {
  if (input.noJob)
    if (auto cleared = SaveJobItems(session, record, {}); !cleared) return cleared;
  if (input.jobs.empty()) return {};
  std::vector<JobItem> items;
  for (const std::string& option : input.jobs) {
    const auto [number, used] = SplitPair(option, true).value();
    // Cut, it would be another Job's number.
    if (CharCount(Trim(StripScanTag(Trim(number)))) > kJobNumberLength)
      return Refuse("Job Number Too Long",
                    fmt::format("The Job Number {} has more than {} characters.", number, kJobNumberLength),
                    "JobNumber");
    items.push_back({number, Trim(used)});
  }
  if (items.size() > 1) return SaveJobItems(session, record, items);
  record.jobs.clear();
  if (auto entered = EnterJobNumber(session, record, items.front().JobNumber); !entered) return entered;
  if (items.front().QtyUsed.empty()) return {};
  return EnterQtyUsed(session, record, items.front().QtyUsed);
}

}  // namespace

void AddCalcOptions(CLI::App& verb, BatchInput& input, bool formulaRequired) {
  if (formulaRequired)
    verb.add_option("--formula", input.formula, "The Master Formula: its name, number or code")->required();
  auto* quantity = verb.add_option("--quantity", input.quantity, "How much, up to 99999");
  if (formulaRequired) {
    quantity->required();
    verb.add_option("--unit", input.unit, "lb., kg., g. or oz.; default as set")->check(NotAUnit);
  }
  auto* recycle = verb.add_flag("--recycle", input.recycle, "Use inks from stock as far as the recipe permits");
  auto* mix = verb.add_flag("--mix", input.mix, "Straight from the recipe");
  recycle->excludes(mix);
  OneEachTime(verb.add_option("--take", input.take, "Put a colour of the Recycle List in by hand: NAME=AMOUNT"))
      ->check(NotAPair);
  OneEachTime(verb.add_option("--add", input.add, "A batch addition: NAME=AMOUNT"))->check(NotAPair);
  OneEachTime(verb.add_option("--set", input.set,
                              "A field: FIELD=VALUE, as MarkupPercent=10, MixCostOption=1, UD_Text0=Press 2"))
      ->check(NotAField);
}

void AddLotOption(CLI::App& verb, BatchInput& input) {
  OneEachTime(verb.add_option("--lot", input.lots, "Where a line takes its ink from: NAME=LOTNUMBER:QTY"))
      ->check(NotALot);
}

void AddSaveOptions(CLI::App& verb, BatchInput& input) {
  AddLotOption(verb, input);
  verb.add_option("--lot-number", input.lotNumber, "Lot number of the ink that is made");
  verb.add_option("--lot-loc", input.lotLoc, "Its location");
  verb.add_option("--lot-cont", input.lotCont, "Its container");
  auto* job = OneEachTime(
      verb.add_option("--job", input.jobs, "What a job uses: NUMBER=QTYUSED; several times to split the Batch"));
  job->check(NotAPair);
  verb.add_flag("--no-job", input.noJob, "Take the jobs away")->excludes(job);
  verb.add_flag("--no-return", input.noReturn, "The ink that is made does not go to inventory");
  verb.add_option("--notes", input.notes, "Notes");
  verb.add_option("--short-note", input.shortNote, "Short note, 30 characters");
  auto* update = verb.add_flag_callback(
      "--fold", [&input] { input.fold = "update"; }, "Fold the additions into the Master Formula");
  verb.add_option_function<std::string>(
          "--fold-new",
          [&input](const std::string& name) {
            input.fold = name;
            input.foldNew = true;
          },
          "Make a new Master Formula of the Batch under this name")
      ->check(NotEmpty)
      ->excludes(update);
}

Result<BatchRecord> NewBatch(Session& session, const BatchInput& input) {
  const auto named = TypedName(session, input.formula);
  if (!named) return std::unexpected(named.error());
  BatchRecord record = NewBatchRecord(session);
  if (const auto entered = EnterBatchColor(session, record, *named); !entered) return std::unexpected(entered.error());
  if (!input.unit.empty())
    if (const auto unit = EnterBatchUnit(session, record, ParseUnit(input.unit).value_or(record.work.UMF)); !unit)
      return std::unexpected(unit.error());
  SetQuantityText(record.work, input.quantity);
  const bool recycle = input.recycle || (!input.mix && input.take.empty() && !record.work.settings.mixByDefault);
  if (const auto done = Calculate(session, record, recycle); !done) return std::unexpected(done.error());
  if (const auto done = TakeAndAdd(session, record, input); !done) return std::unexpected(done.error());
  if (const auto done = SetFields(session, record, input); !done) return std::unexpected(done.error());
  return record;
}

Result<void> ChangeBatch(Session& session, BatchRecord& record, const BatchInput& input) {
  if (auto unmarked = SetComplete(record, input, false); !unmarked) return unmarked;
  if (!input.quantity.empty() || input.recycle || input.mix) {
    if (!input.quantity.empty()) SetQuantityText(record.work, input.quantity);
    const bool recycle = input.recycle || (!input.mix && !record.work.RecycledColors.empty());
    if (auto done = Calculate(session, record, recycle); !done) return done;
  }
  if (auto done = TakeAndAdd(session, record, input); !done) return done;
  if (auto kept = TakeSavedLots(session, record); !kept) return kept;
  return SetFields(session, record, input);
}

Result<void> TakeSaveOptions(Session& session, BatchRecord& record, const BatchInput& input) {
  using Given = std::pair<const std::optional<std::string>*, std::string_view>;
  for (const auto& [text, column] :
       {Given{&input.lotNumber, "LotNumber"}, Given{&input.lotLoc, "LotLoc"}, Given{&input.lotCont, "LotContID"},
        Given{&input.notes, "Notes"}, Given{&input.shortNote, "ShortNote"}}) {
    if (!*text) continue;
    if (auto done = EnterBatchField(session, record, column, column == "Notes" ? **text : Trim(**text)); !done)
      return done;
  }
  if (auto done = TakeJobs(session, record, input); !done) return done;
  if (input.noReturn)
    if (auto done = SetReturnToInventory(session, record, false); !done) return done;
  NamedRows named;
  for (const std::string& lot : input.lots)
    if (auto done = TakeLots(session, record, lot, named); !done) return done;
  return SetComplete(record, input, true);
}

std::optional<ModifiedBatchChoice> OptionDialogs::ShowSaveModifiedBatch(Session& session, const BatchRecord& record) {
  ModifiedBatchChoice choice;
  if (!input_.fold.empty()) choice.change = input_.foldNew ? FormulaChange::Create : FormulaChange::Update;
  if (input_.foldNew) {
    const auto name = NewTypedName(session, input_.fold, "txtColorName");
    if (!name) {
      refused = name.error();
      return std::nullopt;
    }
    choice.newName = *name;
  }
  auto checked = CheckModifiedBatch(session, record, choice);
  if (checked) return *checked;
  refused = checked.error();
  return std::nullopt;
}

bool OptionDialogs::KnowsComplete() {
  return std::ranges::any_of(
      input_.set, [](const std::string& option) { return EqualNoCase(SplitPair(option).value().first, "Complete"); });
}

bool OptionDialogs::ShowShortStock(Session& session, const std::vector<ShortStock>& lines) {
  std::string text = ShortStockText(session, lines);
  if (std::ranges::any_of(lines, [](const ShortStock& line) { return line.inLots > 0; }))
    text += "\nChoose lots with --lot NAME=LOTNUMBER:QTY.";
  session.prompt.Tell(std::string(kShortStockTitle), text);
  return true;
}

}  // namespace vellumark::cli
