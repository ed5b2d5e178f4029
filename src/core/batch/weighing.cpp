#include "core/batch/weighing.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/additions.h"
#include "core/batch/bench.h"

namespace vellumark {
namespace {

constexpr double kRounding = 0.002;
constexpr const char* kTitle = "Weigh Ingredient";

bool Is(const WeighedLine& line, LineKind kind, std::string_view name) {
  return line.kind == kind && EqualNoCase(line.name, name);
}

double Weighed(const BatchRecord& record, LineKind kind, std::string_view name) {
  const auto found = std::ranges::find_if(record.weighed, [&](const WeighedLine& line) { return Is(line, kind, name); });
  return found == record.weighed.end() ? 0 : RoundTo(found->EndingWeight, 3);
}

// What the rows of that kind and name hold.
double AmountOf(const BatchRecord& record, LineKind kind, std::string_view name) {
  double amount = 0;
  for (const BatchRow& row : record.work.Rows)
    if (row.kind == kind && EqualNoCase(row.name, name)) amount += row.amount;
  return RoundTo(amount, 3);
}

// What the row wants altogether.
double Wanted(const BatchRecord& record, const BatchRow& row) {
  double wanted = row.amount;
  if (row.kind == LineKind::Basic)
    for (const BatchIngredient& addition : record.work.Additions)
      if (addition.Amount < 0 && EqualNoCase(addition.IngName, row.name)) wanted += RoundTo(addition.Amount, 3);
  return RoundTo(std::max(wanted, 0.0), 3);
}

// What was poured of the Basic Color beyond its own row.
double Surplus(const BatchRecord& record, std::string_view basic) {
  const double weighed = Weighed(record, LineKind::Basic, basic);
  for (const BatchRow& row : record.work.Rows)
    if (row.kind == LineKind::Basic && EqualNoCase(row.name, basic))
      return std::max(0.0, weighed - Wanted(record, row));
  return weighed;
}

// What was poured of the addition beyond what it is by now: too little of the Basic Color's own row was taken off it.
double SurplusOfAddition(const BatchRecord& record, std::string_view basic) {
  return std::max(0.0, Weighed(record, LineKind::Addition, basic) - std::max(0.0, AmountOf(record, LineKind::Addition, basic)));
}

double Had(const BatchRecord& record, const BatchRow& row) {
  const double own = Weighed(record, row.kind, row.name);
  if (row.kind == LineKind::Addition) return own + Surplus(record, row.name);
  return row.kind == LineKind::Basic ? own + SurplusOfAddition(record, row.name) : own;
}

WeighTicket TicketOf(const BatchRecord& record, std::size_t place) {
  const BatchRow& row = record.work.Rows.at(place);
  const double had = RoundTo(Had(record, row), 3);
  return {.BatchNo = record.BatchNo,
          .row = place,
          .kind = row.kind,
          .name = row.name,
          .amount = row.amount,
          .before = had,
          .target = RoundTo(Wanted(record, row) - had, 3),
          .UMF = record.work.UMF};
}

// How much more of a Basic Color is in the pot than its row and its addition say; below 0 while some is to be poured.
double Excess(const BatchRecord& record, std::string_view basic) {
  double excess = 0;
  for (const LineKind kind : {LineKind::Basic, LineKind::Addition})
    excess += Weighed(record, kind, basic) - AmountOf(record, kind, basic);
  return RoundTo(excess, 3);
}

void Note(BatchRecord& record, const WeighTicket& ticket, double poured, double difference) {
  auto found = std::ranges::find_if(record.weighed,
                                    [&](const WeighedLine& line) { return Is(line, ticket.kind, ticket.name); });
  if (found == record.weighed.end())
    found = record.weighed.insert(record.weighed.end(), {.kind = ticket.kind, .name = ticket.name});
  found->BeginningWeight = RoundSingle(RoundTo(found->EndingWeight, 3) + ticket.target, 3);
  found->EndingWeight = RoundSingle(RoundTo(found->EndingWeight, 3) + poured, 3);
  found->difference = RoundSingle(RoundTo(found->difference, 3) + difference, 3);
}

std::optional<std::size_t> PlaceOf(const BatchRecord& record, LineKind kind, std::string_view name) {
  const auto& rows = record.work.Rows;
  const auto found = std::ranges::find_if(
      rows, [&](const BatchRow& row) { return row.kind == kind && EqualNoCase(row.name, name); });
  if (found == rows.end()) return std::nullopt;
  return static_cast<std::size_t>(found - rows.begin());
}

// The Basic Color's difference becomes an addition, or goes into the one that stands.
Result<void> AddDifference(Session& session, BatchRecord& record, const std::string& name, double difference) {
  const auto addition = PlaceOf(record, LineKind::Addition, name);
  if (!addition) return AddBatchAdditions(session, record, {{name, Fixed(difference, 3)}});
  const double amount = RoundTo(record.work.Rows[*addition].amount + difference, 3);
  return ApplyAdditionRow(session, record, *addition, Fixed(amount, 3));
}

Result<void> RecordAsWeighed(Session& session, BatchRecord& record, const WeighTicket& ticket, double difference) {
  switch (ticket.kind) {
    case LineKind::Basic:
      return AddDifference(session, record, ticket.name, difference);
    case LineKind::Addition:
      return ApplyAdditionRow(session, record, ticket.row, Fixed(RoundTo(ticket.amount + difference, 3), 3));
    case LineKind::Mix:
      break;
  }
  return SetMixRowAsPoured(session, record, ticket.row, RoundTo(ticket.amount + difference, 3));
}

// The question of an over-pour, and what follows a Yes.
Result<Overpour> AskToReformulate(Session& session, BatchRecord& record, const WeighTicket& ticket, double difference) {
  const double amount = RoundTo(ticket.amount + difference, 3);
  if (ticket.kind == LineKind::Mix) return PourMixRow(session, record, ticket.row, amount);
  if (ticket.kind != LineKind::Basic) return Overpour{};
  // Weighing asks whatever the setting says of amounts that are typed.
  const bool setting = std::exchange(record.work.settings.Overpour, true);
  auto poured = PourBasicRow(session, record, ticket.row, Fixed(amount, 3));
  record.work.settings.Overpour = setting;
  for (BatchRow& row : record.work.Rows)
    if (row.kind == LineKind::Basic) row.adjustable = setting;
  return poured;
}

// Rows may have given way to a pour. What was poured of them before is in the pot all the same.
Result<void> PutDownExcess(Session& session, BatchRecord& record, const BatchRecord& before,
                           const WeighTicket& ticket) {
  for (std::size_t i = 0; i < record.weighed.size(); ++i) {
    const WeighedLine line = record.weighed[i];
    // The colour on the scale itself was dealt with: on target it stays as it is.
    if (line.kind != LineKind::Basic || (ticket.kind != LineKind::Mix && EqualNoCase(line.name, ticket.name))) continue;
    const double more = RoundTo(Excess(record, line.name) - std::max(0.0, Excess(before, line.name)), 3);
    if (more <= kRounding + 1e-9) continue;
    if (auto put = AddDifference(session, record, line.name, more); !put) return put;
    record.weighed[i].difference = RoundSingle(RoundTo(line.difference, 3) + more, 3);
  }
  return {};
}

// The pour on the scale, of which the Batch is as it was `before`.
Result<PouredRow> Pour(Session& session, BatchRecord& record, const BatchRecord& before, const WeighTicket& ticket,
                       double poured, const WeighTolerance& tolerance) {
  const PourEnd end = ComparePour(poured, ticket.target, tolerance.Of(ticket.target, ticket.UMF));
  PouredRow done{.row = ticket.row, .overpour = {}};
  double difference = 0;
  if (end != PourEnd::OnTarget) {
    difference = RoundTo(poured - ticket.target, 3);
    if (end == PourEnd::Over) {
      auto asked = AskToReformulate(session, record, ticket, difference);
      if (!asked) return std::unexpected(asked.error());
      done.overpour = *std::move(asked);
    }
    if (done.overpour.reformulated) {
      difference = 0;
    } else if (auto recorded = RecordAsWeighed(session, record, ticket, difference); !recorded) {
      return std::unexpected(recorded.error());
    }
  }
  Note(record, ticket, poured, ticket.kind == LineKind::Basic ? difference : 0);
  if (auto put = PutDownExcess(session, record, before, ticket); !put) return std::unexpected(put.error());
  done.row = PlaceOf(record, ticket.kind, ticket.name).value_or(ticket.row);
  return done;
}

}  // namespace

double WeighTolerance::Of(double target, int unit) const {
  if (!(amount > 0)) return 0;
  if (inPercent) return RoundTo(target * amount / 100, 6);
  return static_cast<double>(amount) * static_cast<double>(UnitFactor(UnitGram, unit));
}

std::vector<WeighTicket> RowsToWeigh(const BatchRecord& record, const WeighTolerance& tolerance, bool heaviestFirst) {
  std::vector<WeighTicket> tickets;
  for (std::size_t i = 0; i < record.work.Rows.size(); ++i) {
    WeighTicket ticket = TicketOf(record, i);
    const double left =
        ticket.before > 0 ? std::max(kRounding, tolerance.Of(ticket.before + ticket.target, ticket.UMF)) : 0;
    if (ticket.target > left + 1e-9) tickets.push_back(std::move(ticket));
  }
  if (heaviestFirst) std::ranges::stable_sort(tickets, std::ranges::greater{}, &WeighTicket::target);
  return tickets;
}

Result<WeighTicket> OpenWeighing(Session& session, BatchRecord& record, std::size_t row) {
  if (record.state == BatchState::None || row >= record.work.Rows.size())
    return Refuse(kTitle, "There is no such row to weigh.", "fgRecList");
  if (auto editable = CheckEditable(session, record); !editable) return std::unexpected(editable.error());
  if (auto adjustable = CheckAdjustable(record.work); !adjustable) return std::unexpected(adjustable.error());
  WeighTicket ticket = TicketOf(record, row);
  if (ticket.target > 0) return ticket;
  return Refuse(kTitle, fmt::format("{} needs no more to be weighed.", ticket.name), "fgRecList");
}

Result<WeighTicket> NextWeighing(Session& session, BatchRecord& record, std::optional<std::size_t> wanted,
                                 const WeighTolerance& tolerance, bool heaviestFirst) {
  const std::vector<WeighTicket> rows = RowsToWeigh(record, tolerance, heaviestFirst);
  const auto is = [&](const WeighTicket& ticket) { return ticket.row == wanted; };
  if (wanted && std::ranges::any_of(rows, is)) return OpenWeighing(session, record, *wanted);
  if (!rows.empty()) return OpenWeighing(session, record, rows.front().row);
  if (record.work.Rows.empty()) return OpenWeighing(session, record, 0);
  return Refuse(kTitle, "All rows of this Batch are weighed.", "fgRecList");
}

bool StillStands(const BatchRecord& record, const WeighTicket& ticket) {
  const auto place = PlaceOf(record, ticket.kind, ticket.name);
  return record.state != BatchState::None && record.BatchNo == ticket.BatchNo && place &&
         record.work.Rows[*place].amount == ticket.amount;
}

double NextDraft(double rest, double capacity) {
  if (!(capacity > 0) || rest <= capacity) return rest;
  return RoundTo(rest / std::ceil(rest / capacity), 3);
}

WeighProgress FollowPour(double poured, double target, double tolerance) {
  using enum WeighColor;
  const std::int64_t reading = WholeUnits(poured, 3);
  const std::int64_t wanted = std::max<std::int64_t>(WholeUnits(target, 3), 1);
  if (reading < 0) return {.p = -1, .bar = 0, .percent = "0%", .color = Red};
  WeighProgress progress;
  progress.percent = Fixed(static_cast<double>(reading) * 100 / static_cast<double>(wanted), 0) + "%";
  const bool onTarget = ComparePour(poured, target, tolerance) == PourEnd::OnTarget;
  if (reading > wanted) {
    progress.p = 101;
    progress.bar = 100;
    progress.color = onTarget ? FullGreen : Red;
    return progress;
  }
  // Whole numbers, of which no quotient falls just under its percent.
  progress.p = progress.bar = static_cast<int>(reading * 100 / wanted);
  progress.color = onTarget || progress.p >= 95 ? FullGreen
                   : progress.p >= 90           ? Green
                   : progress.p >= 75           ? LightGreen
                                                : White;
  return progress;
}

PourEnd ComparePour(double poured, double target, double tolerance) {
  const std::int64_t over = WholeUnits(poured, 3) - WholeUnits(target, 3);
  if (over == 0 || std::abs(OfWholeUnits(over, 3)) <= tolerance + 1e-9) return PourEnd::OnTarget;
  return over > 0 ? PourEnd::Over : PourEnd::Under;
}

bool AcceptPour(Prompt& prompt, double poured, double target, double tolerance) {
  switch (ComparePour(poured, target, tolerance)) {
    case PourEnd::Over:
      return prompt.Ask("Scale weight is over desired amount", "OK to use overweight value?");
    case PourEnd::Under:
      return prompt.Ask("Scale weight is under desired amount", "OK to use underweight value?");
    case PourEnd::OnTarget:
      break;
  }
  return true;
}

Result<PouredRow> TakePour(Session& session, BatchRecord& record, const WeighTicket& ticket, double weight,
                           const WeighTolerance& tolerance) {
  if (!StillStands(record, ticket))
    return Refuse(kTitle,
                  fmt::format("The Batch was changed while {} was on the scale.\nIts row is not what it was; "
                              "the weight was not taken.",
                              ticket.name),
                  "fgRecList");
  WeighTicket here = ticket;
  here.row = PlaceOf(record, ticket.kind, ticket.name).value();
  const double poured = RoundTo(weight, 3);
  if (!(poured > 0)) return Refuse(kTitle, "Nothing was poured.", "cmdSave");
  if (auto editable = CheckEditable(session, record); !editable) return std::unexpected(editable.error());
  if (auto adjustable = CheckAdjustable(record.work); !adjustable) return std::unexpected(adjustable.error());
  BatchRecord before = record;
  auto done = Pour(session, record, before, here, poured, tolerance);
  if (!done) record = std::move(before);
  return done;
}

float WeighedDifference(const BatchRecord& record, std::string_view basic) {
  for (const WeighedLine& line : record.weighed)
    if (Is(line, LineKind::Basic, basic)) return line.difference;
  return 0;
}

void FindDifferences(BatchRecord& record) {
  for (WeighedLine& line : record.weighed) {
    if (line.kind != LineKind::Basic) continue;
    const double beyond = RoundTo(line.EndingWeight, 3) - AmountOf(record, LineKind::Basic, line.name);
    const double added = AmountOf(record, LineKind::Addition, line.name);
    line.difference = RoundSingle(std::clamp(beyond, std::min(added, 0.0), std::max(added, 0.0)), 3);
  }
}

void TakeUpDifferences(const Session& session, BatchRecord& record) {
  for (WeighedLine& line : record.weighed) {
    if (line.kind != LineKind::Basic || !(line.difference > 0)) continue;
    // An addition that the operator lowered since says what was meant.
    const double added = std::max(0.0, AmountOf(record, LineKind::Addition, line.name));
    const double difference = std::min(RoundTo(line.difference, 3), added);
    const double stays = RoundTo(std::min(difference, Surplus(record, line.name)), 3);
    line.difference = RoundSingle(stays, 3);
    if (const double less = RoundTo(difference - stays, 3); less > 0)
      LowerAddition(session, record.work, line.name, less);
  }
}

std::vector<double> InThePot(const BatchRecord& record) {
  std::vector<double> amounts;
  for (const BatchRow& row : record.work.Rows) {
    const double weighed = Weighed(record, row.kind, row.name);
    const double open = std::max(0.0, Wanted(record, row) - weighed);
    amounts.push_back(weighed > 0 ? RoundTo(row.amount - open, 3) : 0);
  }
  return amounts;
}

double InBatchUnit(double reading, int scaleUnit, int unit) {
  if (scaleUnit == 0 || scaleUnit == unit) return RoundTo(reading, 3);
  return RoundTo(reading * static_cast<double>(UnitFactor(scaleUnit, unit)), 3);
}

}  // namespace vellumark
