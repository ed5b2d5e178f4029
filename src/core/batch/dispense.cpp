#include "core/batch/dispense.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/batch/dispense_formats.h"
#include "core/batch/sent_files.h"
#include "core/colors/basics.h"

namespace vellumark {
namespace {

// Fractions of five decimals that add up to 1: what rounding left goes to the first and largest.
void ShareOut(DispenseJob& job) {
  constexpr std::int64_t kWhole = 100000;
  std::int64_t rest = kWhole;
  for (DispenseLine& line : job.lines) {
    const std::int64_t part = WholeUnits(line.Amount / job.DispensedTotal, 5);
    line.Part = OfWholeUnits(part, 5);
    rest -= part;
  }
  if (!job.lines.empty()) job.lines.front().Part = OfWholeUnits(WholeUnits(job.lines.front().Part, 5) + rest, 5);
}

void Add(DispenseJob& job, const std::string& name, const std::string& code, double amount) {
  const auto line =
      std::ranges::find_if(job.lines, [&](const DispenseLine& one) { return EqualNoCase(one.ID, name); });
  if (line == job.lines.end()) {
    job.lines.push_back({name, code, amount, 0});
  } else {
    line->Amount = RoundTo(line->Amount + amount, 3);
  }
  job.DispensedTotal = RoundTo(job.DispensedTotal + amount, 3);
}

bool IsJson(const DispenserRow& dispenser) {
  return dispenser.Manufacturer.starts_with("JSON");
}

// By its names the software knows what to pour: they are refused rather than changed. NFL knows no codes.
Result<void> CheckNames(const BatchRecord& record, const DispenseJob& job, const DispenserRow& dispenser) {
  if (IsJson(dispenser)) return {};
  std::vector<std::string> names{record.work.Color_Name};
  for (const DispenseLine& line : job.lines) names.push_back(line.ID);
  if (dispenser.Manufacturer != "NFL") {
    names.push_back(record.work.formula.Color_Code);
    for (const DispenseLine& line : job.lines) names.push_back(line.Info);
  }
  const auto unfit = std::ranges::find_if(names, [](const std::string& name) { return !FitsCp1252(name); });
  if (unfit == names.end()) return {};
  return Refuse("File not Sent",
                fmt::format("{} has a character that the files of this dispenser cannot hold.\n"
                            "Change the name or the code, or use a dispenser that reads JSON.",
                            *unfit),
                "cmbDispSel");
}

// What does not fit into the code page is "?": only notes can hold that, and they are no data for the machine.
std::string InCodePage(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) ++length;
    const std::string_view character = text.substr(0, length);
    bytes += FitsCp1252(character) ? ToCp1252(character) : "?";
    text.remove_prefix(length);
  }
  return bytes;
}

// A file of the name may be another Batch's: numbers of Batches that were never saved come again.
bool MayReplace(Session& session, const BatchRecord& record, const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) return true;
  const auto sender = UnsavedSenderOf(session.File(), path.string());
  const bool isNew = record.state == BatchState::Add;
  if (sender ? sender == record.sender : !isNew) return true;
  const std::string what = sender ? "The file of another Batch, which was not saved, is there already:"
                                  : "This Batch is not saved, and a file of its number is there already:";
  return session.prompt.Ask("Batch File", what + "\n\n" + path.string() + "\n\nReplace it?", Answer::No);
}

}  // namespace

DispenseJob PrepareDispense(const Session& session, const BatchRecord& record, const DispenseChoice& choice) {
  DispenseJob job;
  const BatchWork& work = record.work;
  const std::size_t recycled = work.RecycledColors.size();
  const auto passes = [&](const std::string& name) {
    if (choice.additives) return true;
    const auto basic = ReadBasic(session, name);
    return !basic || !basic->Additive;
  };
  for (std::size_t i = 0; i < work.Rows.size(); ++i) {
    const BatchRow& row = work.Rows[i];
    if (i < recycled) {
      if (choice.recycles) Add(job, row.name, work.RecycledColors[i].Color_Code, row.amount);
    } else if (passes(row.name)) {
      const std::size_t place = i - recycled;
      const auto& code = place < work.Ingredients.size() ? work.Ingredients[place].Color_Code
                                                         : work.Additions.at(place - work.Ingredients.size()).Color_Code;
      Add(job, row.name, code, row.amount);
    }
  }
  job.UseLeftOvers = choice.recycles && recycled > 0;
  std::ranges::stable_sort(job.lines, std::ranges::greater{}, &DispenseLine::Amount);
  if (job.DispensedTotal > 0) ShareOut(job);
  return job;
}

std::filesystem::path DispensePath(const Session& session, const BatchRecord& record, const DispenserRow& dispenser) {
  const DateTime now = session.clock.Now();
  const std::string name =
      dispenser.Manufacturer == "XNI"
          ? fmt::format("COR1-{}-{:02}{:02}{:02}", record.BatchNo, now.day, now.month, now.year % 100)
          : fmt::format("{}-{:02}_{:02}_{:04}", record.BatchNo, now.month, now.day, now.year);
  return std::filesystem::path(dispenser.Pathway) / (name + dispenser.FileType);
}

Result<void> CheckDispense(const BatchRecord& record) {
  if (record.state == BatchState::None || record.work.Rows.empty())
    return Refuse("File not Sent", "Click the Recycle(F2) or Mix(F3) button to calculate the batch first.",
                  "txtQuantity");
  if (!record.work.QuantityChanged) return {};
  return Refuse("Recalculate Batch",
                "You've changed the Quantity of this batch.\n"
                "Click the Recycle(F2) or Mix(F3) button to recalculate\n"
                "the batch before dispensing the batch.",
                "txtQuantity");
}

Result<std::filesystem::path> Dispense(Session& session, BatchRecord& record, const DispenseChoice& choice) {
  if (auto ready = CheckDispense(record); !ready) return std::unexpected(ready.error());
  const auto dispenser = ReadDispenser(session, choice.dispenser);
  if (!dispenser)
    return Refuse("File not Sent", "Batch file could not be sent to:\n\n" + choice.dispenser, "cmbDispSel");
  if (auto folder = CheckDispenserFolder(*dispenser); !folder) return std::unexpected(folder.error());
  const DispenseJob job = PrepareDispense(session, record, choice);
  if (job.lines.empty() || !(job.DispensedTotal > 0))
    return Refuse("File not Sent",
                  "No line of this Batch is left to be dispensed.\n"
                  "Dispense its Additives or its Recycles too.",
                  "chkDispRecycles");
  if (auto names = CheckNames(record, job, *dispenser); !names) return std::unexpected(names.error());
  const std::string text = DispenseText(session, record, job, dispenser->Manufacturer);
  // Software of other makers reads the code page of the system; JSON has one of its own.
  const std::string bytes = IsJson(*dispenser) ? text : InCodePage(text);
  std::filesystem::path path = DispensePath(session, record, *dispenser);
  if (!MayReplace(session, record, path)) return Decline("Batch File", "cmdSave");
  ReplaceFile(path, bytes);
  if (record.state == BatchState::Add) {
    record.sender = NoteUnsavedSender(session.File(), path.string(), record.sender);
  } else if (RequireWritable(session)) {
    ForgetSentFile(session.File(), path.string());
  }
  session.prompt.Tell("File Sent", "Batch file sent to:\n\n" + path.string(), Icon::Information);
  return path;
}

}  // namespace vellumark
