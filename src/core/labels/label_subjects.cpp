#include "core/labels/label_subjects.h"

#include <algorithm>

#include "core/base/text.h"
#include "core/batch/open.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/guides.h"

namespace vellumark {

std::optional<LabelData> LabelOfColor(const Session& session, ColorKind kind, std::string_view name,
                                      std::string_view database) {
  LabelData data;
  const auto take = [&](const auto& color) {
    if (!color) return false;
    data["Color Name"] = color->Color_Name;
    data["Color Code"] = color->Color_Code;
    return true;
  };
  const bool found =
      kind == ColorKind::Mix ? take(ReadMix(session, name, database)) : take(ReadBasic(session, name, database));
  if (!found) return std::nullopt;
  data.kind = kind;
  data["Database"] = database.empty() ? session.CurrentDatabase : std::string(database);
  data["Date"] = session.clock.Today().DateText();
  data["Username"] = session.CurrentUser;
  return data;
}

std::optional<LabelData> LabelOfLot(const Session& session, ColorKind kind, std::string_view name, const LotRow& lot,
                                    std::string_view database) {
  auto data = LabelOfColor(session, kind, name, database);
  if (!data) return data;
  data->LotRefID = lot.LotRefID;
  (*data)["Lot Number"] = lot.LotNumber;
  (*data)["Lot Location"] = lot.LotLoc;
  (*data)["Lot Cont ID"] = lot.LotContID;
  return data;
}

std::optional<LabelData> LabelOfBatch(Session& session, std::int32_t batchNo) {
  const auto batch = ReadBatch(session, batchNo);
  if (!batch) return std::nullopt;
  LabelData data;
  data["Color Name"] = batch->work.Color_Name;
  data["Color Code"] = batch->work.formula.Color_Code;
  data.kind = ColorKind::Mix;
  if (batch->LotRefID > 0) data.LotRefID = batch->LotRefID;
  data["Database"] = session.CurrentDatabase;
  data["Batch ID#"] = BatchNoText(batch->BatchNo);
  if (batch->Date_Entered) data["Date"] = batch->Date_Entered->DateText();
  data["Lot Number"] = batch->fields.LotNumber;
  data["Lot Location"] = batch->fields.LotLoc;
  data["Lot Cont ID"] = batch->fields.LotContID;
  if (batch->jobs.size() == 1) data["Job Number"] = batch->jobs.front().JobNumber;
  data["Username"] = batch->Username;
  data["Short Note"] = batch->fields.ShortNote;
  return data;
}

Result<std::string> FindLabelColor(const Session& session, const LabelChoice& choice) {
  const auto refused = Refuse("Valid Data", "Enter a valid Color / Database name.", "cmbCN");
  const bool known = std::ranges::any_of(session.databaseList,
                                         [&](const std::string& name) { return EqualNoCase(name, choice.database); });
  if (!known) return refused;
  const std::string typed = Trim(choice.name);
  for (const std::string& name : {typed, StoredName(session, choice.kind, typed, choice.database)})
    if (const auto data = LabelOfColor(session, choice.kind, name, choice.database); data && !name.empty())
      return LabelData(*data)["Color Name"];
  return refused;
}

Result<LabelData> LabelOfChoice(const Session& session, const LabelChoice& choice) {
  const auto name = FindLabelColor(session, choice);
  if (!name) return std::unexpected(name.error());
  LabelData data = *LabelOfColor(session, choice.kind, *name, choice.database);
  data["Job Number"] = choice.job;
  data["Lot Number"] = choice.lotNumber;
  if (choice.lotNumber.empty()) return data;
  const std::vector<LotRow> lots = LotsNumbered(session, choice.kind, *name, choice.database, choice.lotNumber);
  for (const LotRow& lot : lots)
    if (lots.size() == 1 || EqualNoCase(lot.LotContID, choice.container)) {
      data.LotRefID = lot.LotRefID;
      data["Lot Location"] = lot.LotLoc;
      data["Lot Cont ID"] = lot.LotContID;
      break;
    }
  return data;
}

Result<void> CheckFormulaLabel(const LabelChoice& choice) {
  if (choice.kind == ColorKind::Mix) return {};
  return Refuse("Non Formula Color", "Color is not a formula.", "optBasic");
}

}  // namespace vellumark
