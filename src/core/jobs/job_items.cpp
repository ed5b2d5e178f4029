#include "core/jobs/job_items.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_options.h"
#include "core/jobs/job_records.h"
#include "core/jobs/job_stock.h"
#include "core/session/settings.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr const char* kTitle = "Add Job Item";

// A Basic Color as a formula that costs and emits what it does itself.
std::optional<MixColor> ReadColorOf(const Session& session, std::string_view database, const std::string& name,
                                    ColorKind kind) {
  if (kind == ColorKind::Mix) return ReadMix(session, name, database);
  const auto basic = ReadBasic(session, name, database);
  if (!basic) return std::nullopt;
  MixColor color;
  color.Color_Name = basic->Color_Name;
  color.Color_Code = basic->Color_Code;
  color.PurchaseCost = basic->PurchaseCost;
  color.VOC = basic->VOC;
  color.HAP = basic->HAP;
  return color;
}

float Emission(ColorKind kind, int option, float own, float ofBasics) {
  if (kind != ColorKind::Mix || option == 0) return own;
  return option == 1 ? ofBasics : 0;
}

float UnitCostOf(const Session& session, const MixColor& color, ColorKind kind, int option, const LotRow* lot) {
  float cost = color.PurchaseCost;
  if (kind == ColorKind::Mix) {
    if (option == 0) cost = lot != nullptr ? lot->LotPrice : color.BasicCost;
    if (option == 2) cost = color.BasicCost;
    if (option == 3) cost = 0;
  }
  return RoundSingle(cost, session.DecimalPlaces);
}

struct NamedDesign {
  std::string DesignID;
  std::string Description;
};

Result<NamedDesign> DesignOf(const Session& session, const std::string& id) {
  if (id.empty()) return NamedDesign{};
  Statement row = session.File().Prepare("SELECT DesignID, Description FROM Designs WHERE DesignID = ?1 LIMIT 1");
  if (!row.Bind(1, id).Step())
    return Refuse("Design Not Found", fmt::format("There is no Design {} in this Data File.", id), "DesignID");
  return NamedDesign{row.Text(0), row.Text(1)};
}

// The rows as they would be stored, before anything is taken.
class Adding {
 public:
  Adding(Session& session, const JobItemEntry& entry) : session_(session), entry_(entry) {}

  Result<void> Check() {
    const auto number = JobNumberToBook(session_, entry_.JobNumber);
    if (!number) return std::unexpected(number.error());
    number_ = *number;
    const std::string* database = session_.FindDatabase(entry_.Database);
    if (database == nullptr)
      return Refuse("Color Not Found", fmt::format("There is no Database {}.", entry_.Database), "Database");
    database_ = *database;
    const auto color = ReadColorOf(session_, database_, entry_.Color_Name, entry_.kind);
    if (!color) return Refuse("Color Not Found", "This Color was not found in the selected Database.", "Color_Name");
    color_ = *color;
    const auto design = DesignOf(session_, Trim(entry_.DesignID));
    if (!design) return std::unexpected(design.error());
    design_ = *design;
    if (auto complete = CheckRequiredJobTexts(session_, entry_.UD_Text); !complete) return complete;
    return CheckTakes();
  }

  // Before the transaction.
  Result<void> AskForMissing() {
    for (const auto& [record, there] : Planned())
      if (!RequireStock(session_, record, there, true))
        return RequireStock(session_, record, there, true);
      else if (record.QtyUsed > there)
        insists_ = true;
    if (insists_ && !AskForMore(session_)) return Decline("Exceeds UnLotted", "QtyIssued");
    return {};
  }

  Result<std::vector<JobRecord>> Store() {
    std::vector<JobRecord> stored;
    for (auto& [record, there] : Planned()) {
      if (auto fits = RequireStock(session_, record, there, insists_); !fits) return std::unexpected(fits.error());
      AddJobRecord(session_, record);
      if (auto issued = IssueFromStock(session_, record); !issued) return std::unexpected(issued.error());
      stored.push_back(std::move(record));
    }
    return stored;
  }

 private:
  struct Plan {
    JobRecord record;
    float there = 0;
  };

  Result<void> CheckTakes() {
    if (entry_.takes.empty()) return Refuse(kTitle, "Enter an amount to take from inventory.", "QtyIssued");
    for (const JobItemEntry::Take& take : entry_.takes) {
      if (!(RoundSingle(take.quantity, 3) > 0) || take.quantity > kLargestAmount)
        return Refuse(kTitle, fmt::format("You must enter an amount above 0, up to {}.", kLargestAmount), "QtyIssued");
      const StockPlace place{.LotRefID = take.LotRefID, .LotNumber = take.LotNumber};
      if (place.IsUnlotted()) continue;
      if (session_.InvLotTracking != 1)
        return Refuse("Lotted Inventory", "Lotted Inventory is turned off; no lot can be named.", "LotNumber");
      if (auto named = CheckOneLot(place); !named) return named;
      const auto lot = FindLot(session_, entry_.kind, color_.Color_Name, database_, place);
      if (!lot)
        return Refuse("Lot Not Found", fmt::format("{} has no lot {}.", color_.Color_Name, take.LotNumber),
                      "LotNumber");
      if (lot->LotConsignment)
        return Refuse("Lot on Consignment",
                      fmt::format("The lot {} of {} is held on consignment.", lot->LotNumber, color_.Color_Name),
                      "LotNumber");
    }
    return {};
  }

  // The operator names the lot that pays; a number that several lots bear names none.
  Result<void> CheckOneLot(const StockPlace& place) const {
    if (place.LotRefID != 0) return {};
    const std::vector<LotRow> lots = LotsNumbered(session_, entry_.kind, color_.Color_Name, database_, place.LotNumber);
    if (lots.size() < 2) return {};
    std::string text =
        fmt::format("{} has several lots {}. Name one by its LotRefID:", color_.Color_Name, lots.front().LotNumber);
    for (const LotRow& lot : lots)
      text += fmt::format("\n{}: {} {} {}", lot.LotRefID, Fixed(lot.LotQty, 3), lot.LotLoc, lot.LotContID);
    return Refuse("Multiple Lots", text, "LotRefID");
  }

  JobRecord Row(const JobItemEntry::Take& take, const std::optional<DateTime>& completed) const {
    JobRecord record;
    record.JobNumber = number_;
    record.DesignID = design_.DesignID;
    record.DesignDesc = design_.Description;
    record.Color_Name = color_.Color_Name;
    record.Color_Code = color_.Color_Code;
    record.Database = database_;
    record.ItemType = static_cast<std::uint8_t>(entry_.kind);
    record.VOC = RoundSingle(Emission(entry_.kind, entry_.costing.VOC, color_.VOC, color_.BasicVOC), 3);
    record.HAP = RoundSingle(Emission(entry_.kind, entry_.costing.HAP, color_.HAP, color_.BasicHAP), 3);
    record.LotNumber = kUnlottedInv;
    const auto lot = FindLot(session_, entry_.kind, color_.Color_Name, database_,
                             StockPlace{.LotRefID = take.LotRefID, .LotNumber = take.LotNumber});
    if (lot) {
      record.LotRefID = lot->LotRefID;
      record.LotNumber = lot->LotNumber;
      record.LotLoc = lot->LotLoc;
      record.LotContID = lot->LotContID;
      record.LotDate = lot->LotDate;
    }
    record.UnitCost = UnitCostOf(session_, color_, entry_.kind, entry_.costing.cost, lot ? &*lot : nullptr);
    record.QtyIssued = record.QtyUsed = RoundSingle(take.quantity, 3);
    record.Date_Entered = session_.clock.Now();
    record.Date_Returned = record.Date_Entered;
    record.Date_Completed = completed;
    record.UD_Text = entry_.UD_Text;
    record.UD_Numeric = entry_.UD_Numeric;
    return record;
  }

  // What stands in a place that is taken from twice is there once.
  std::vector<Plan> Planned() const {
    const auto completed = LoadJob(session_, number_).Date_Completed;
    std::vector<Plan> plans;
    for (const JobItemEntry::Take& take : entry_.takes) {
      JobRecord record = Row(take, completed);
      double there = RoundTo(StandsInPlace(session_, record), 3);
      for (const Plan& plan : plans)
        if (plan.record.LotRefID == record.LotRefID) there -= RoundTo(plan.record.QtyUsed, 3);
      plans.push_back({std::move(record), std::max(0.0F, RoundSingle(there, 3))});
    }
    return plans;
  }

  Session& session_;
  const JobItemEntry& entry_;
  std::string number_;
  std::string database_;
  MixColor color_;
  NamedDesign design_;
  bool insists_ = false;
};

}  // namespace

JobCosting ReadJobCosting(const Session& session) {
  return {GetSetting(session, setting::JobMixCostOption), GetSetting(session, setting::JobMixVOC_Option),
          GetSetting(session, setting::JobMixHAP_Option)};
}

void StoreJobCosting(Session& session, const JobCosting& costing) {
  StoreSettings(session, {setting::JobMixCostOption.To(costing.cost), setting::JobMixVOC_Option.To(costing.VOC),
                          setting::JobMixHAP_Option.To(costing.HAP)});
}

Result<ColorKind> ChooseJobColor(const Session& session, std::string_view database, const std::string& name,
                                 std::optional<ColorKind> wanted) {
  const std::string* listed = session.FindDatabase(database);
  const bool basic = listed && wanted != ColorKind::Mix && ColorIsThere(session, ColorKind::Basic, name, *listed);
  const bool mix = listed && wanted != ColorKind::Basic && ColorIsThere(session, ColorKind::Mix, name, *listed);
  if (!basic && !mix)
    return Refuse("Color Not Found", "This Color was not found in the selected Database.", "Color_Name");
  if (!basic || !mix) return mix ? ColorKind::Mix : ColorKind::Basic;
  const bool formula = session.prompt.Ask("Color Type Selection",
                                          name + " was found in Database " + *listed +
                                              "\nas a Formula & Basic color.\n\nYes - use Formula\nNo  - use Basic.");
  return formula ? ColorKind::Mix : ColorKind::Basic;
}

std::vector<JobStock> JobStockOf(const Session& session, std::string_view database, const std::string& name,
                                 ColorKind kind, const JobCosting& costing) {
  const auto color = ReadColorOf(session, database, name, kind);
  if (!color) return {};
  const auto price = [&](const LotRow* lot) { return UnitCostOf(session, *color, kind, costing.cost, lot); };
  std::vector<JobStock> places{{.LotRefID = 0,
                                .LotNumber = std::string(kUnlottedInv),
                                .LotLoc = {},
                                .LotContID = {},
                                .LotDate = {},
                                .quantity = UnlottedQty(session, kind, name, database),
                                .price = price(nullptr)}};
  if (session.InvLotTracking != 1) return places;
  for (LotRow& lot : LotsOf(session, kind, name, database)) {
    if (lot.LotConsignment) continue;
    const float cost = price(&lot);
    places.push_back({lot.LotRefID, std::move(lot.LotNumber), std::move(lot.LotLoc), std::move(lot.LotContID),
                      lot.LotDate, lot.LotQty, cost});
  }
  return places;
}

std::optional<JobFigures> JobFiguresOf(const Session& session, std::string_view database, const std::string& name,
                                       ColorKind kind, const JobCosting& costing) {
  const auto color = ReadColorOf(session, database, name, kind);
  if (!color) return std::nullopt;
  return JobFigures{Emission(kind, costing.VOC, color->VOC, color->BasicVOC),
                    Emission(kind, costing.HAP, color->HAP, color->BasicHAP), color->Color_Code};
}

JobItemEntry NewJobItem(const Session& session) {
  JobItemEntry entry;
  entry.costing = ReadJobCosting(session);
  entry.UD_Text = JobTextDefaults(session);
  return entry;
}

Result<float> ReadTakeQty(std::string_view typed) {
  const auto amount = ParseNumber(typed);
  if (!amount || !(RoundTo(*amount, 3) > 0) || RoundTo(*amount, 3) > kLargestAmount)
    return Refuse(kTitle, fmt::format("You must enter an amount above 0, up to {}.", kLargestAmount), "QtyIssued");
  return RoundSingle(*amount, 3);
}

Result<std::vector<JobRecord>> AddJobItems(Session& session, const JobItemEntry& entry) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  Adding adding(session, entry);
  if (auto valid = adding.Check(); !valid) return std::unexpected(valid.error());
  if (auto asked = adding.AskForMissing(); !asked) return std::unexpected(asked.error());
  Transaction transaction(session.File());
  if (auto valid = adding.Check(); !valid) return std::unexpected(valid.error());
  UndoStep step(session, Undoable::IssueToJob, fmt::format("Issue {} to Job {}", entry.Color_Name, entry.JobNumber));
  auto stored = adding.Store();
  if (!stored) return stored;
  step.Keep();
  transaction.Commit();
  return stored;
}

}  // namespace vellumark
