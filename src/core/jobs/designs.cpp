#include "core/jobs/designs.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/datafile/references.h"
#include "core/jobs/design_uses.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kSplit = "- SPLIT -";

Design ReadRow(const Statement& row) {
  Design design;
  design.key = row.Whole(0);
  DesignFields().Read(row, 1, design);
  return design;
}

std::string Select(std::string_view rest) {
  return fmt::format("SELECT RowKey, {} FROM Designs {}", DesignFields().Columns(), rest);
}

}  // namespace

std::vector<DesignColor> Design::Colors() const {
  std::vector<DesignColor> colors;
  for (const DesignColor& slot : slots) {
    if (slot.IngName.empty()) break;
    colors.push_back(slot);
  }
  return colors;
}

void Design::SetColors(const std::vector<DesignColor>& colors) {
  slots = {};
  std::vector<std::string> names;
  for (std::size_t n = 0; n < colors.size(); ++n) {
    slots.at(n) = colors[n];
    names.push_back(colors[n].IngName);
  }
  IngSet = NameSet(names);
}

std::vector<std::string> Design::Photos() const {
  return NamesInSet(PhotoSet);
}

const FieldMap<Design>& DesignFields() {
  using D = Design;
  static const FieldMap<D> fields = [] {
    const FieldTraits typed{.use = FieldUse::Typed};
    const FieldTraits derived{.use = FieldUse::Derived};
    FieldMap<D> map;
    map.Add("DesignID", &D::DesignID, {.use = FieldUse::Key, .caption = "Design ID"})
        .Add("Description", &D::Description, typed)
        .Add("Created", &D::Created)
        .Add("LastModified", &D::LastModified)
        .Add("LastUsed", &D::LastUsed)
        .Add("Impressions", &D::Impressions, typed)
        .Add("Length", &D::Length, typed)
        .Add("Width", &D::Width, typed)
        .Add("Notes", &D::Notes, {.use = FieldUse::Typed, .shape = TextShape::Note})
        .Add("IngSet", &D::IngSet, derived);
    for (std::size_t n = 0; n < schema::kDesignSlots; ++n) {
      const auto add = [&](std::string_view word, auto member) {
        map.Add(
            schema::Numbered(word, static_cast<int>(n)), [ n, member ](D & d) -> auto& { return d.slots[n].*member; },
            derived);
      };
      add("IngName", &DesignColor::IngName);
      add("IngCCode", &DesignColor::IngCCode);
      add("IngType", &DesignColor::IngType);
      add("IngQty", &DesignColor::IngQty);
      add("IngPercent", &DesignColor::IngPercent);
      add("IngDB", &DesignColor::IngDB);
    }
    map.Add("PhotoSet", &D::PhotoSet, derived);
    return map;
  }();
  return fields;
}

std::vector<std::string> NamesInSet(std::string_view set) {
  std::vector<std::string> names;
  for (std::size_t at = 0; (at = set.find('<', at)) != std::string_view::npos;) {
    const std::size_t end = set.find('>', at);
    if (end == std::string_view::npos) break;
    if (end > at + 1) names.emplace_back(set.substr(at + 1, end - at - 1));
    at = end + 1;
  }
  return names;
}

std::string ReadDesignID(std::string_view typed) {
  return Upper(TrimView(typed));
}

Result<void> CheckNewDesignID(const Session& session, const std::string& id) {
  if (id.empty()) return Refuse("Design Name Needed", "Please enter a Design name.", "DesignID");
  if (CharCount(id) > kDesignIDLength)
    return Refuse("Invalid Name",
                  fmt::format("The name {} has {} characters, the limit is {}.", id, CharCount(id), kDesignIDLength),
                  "DesignID");
  if (!IsUtf8(id) || std::ranges::any_of(id, [](char c) { return static_cast<unsigned char>(c) < ' '; }))
    return Refuse("Invalid Name", "The name of a Design is one line of letters and signs.", "DesignID");
  if (id == kSplit || DesignExists(session, id))
    return Refuse("Choose Another Name",
                  (id == kSplit ? fmt::format("{} stands for several jobs.", kSplit)
                                : "A Design with this name already exists.") +
                      std::string("\n\nPlease enter a different name."),
                  "DesignID");
  return {};
}

bool DesignExists(const Session& session, std::string_view id) {
  return !session.File().Scalar("SELECT 1 FROM Designs WHERE DesignID = ? LIMIT 1", {Value(id)}).IsNull();
}

std::optional<Design> ReadDesign(const Session& session, std::string_view id) {
  if (id.empty()) return std::nullopt;
  Statement row = session.File().Prepare(Select("WHERE DesignID = ? ORDER BY RowKey LIMIT 1"));
  row.Bind(1, id);
  if (!row.Step()) return std::nullopt;
  return ReadRow(row);
}

Result<Design> FindDesign(const Session& session, std::string_view typed) {
  const std::string id = ReadDesignID(typed);
  if (auto design = ReadDesign(session, id)) return *std::move(design);
  return Refuse("Design", fmt::format("Design ID: {} is not on file.", id), "DesignID");
}

void ForEachDesign(const Session& session, const std::function<bool(const Design&)>& take) {
  Statement row = session.File().Prepare(Select("ORDER BY DesignID, RowKey"));
  while (row.Step())
    if (!take(ReadRow(row))) return;
}

std::vector<std::string> DesignIDs(const Session& session) {
  std::vector<std::string> ids;
  Statement row = session.File().Prepare("SELECT DesignID FROM Designs ORDER BY DesignID");
  while (row.Step()) ids.push_back(row.Text(0));
  return ids;
}

std::int64_t WriteDesign(Session& session, const Design& design) {
  const std::vector<Cell> cells =
      DesignFields().Cells(design, {FieldUse::Key, FieldUse::Typed, FieldUse::Kept, FieldUse::Derived});
  if (design.key == 0) return InsertRow(session.File(), schema::Designs, schema::Designs.name, cells);
  UpdateRow(session.File(), schema::Designs, schema::Designs.name, design.key, cells);
  return design.key;
}

void WritePhotoSet(Session& session, std::int64_t key, const std::string& photoSet) {
  UpdateRow(session.File(), schema::Designs, schema::Designs.name, key, {{"PhotoSet", photoSet}});
}

void DeleteDesignRow(Session& session, const Design& design) {
  session.File().Prepare("DELETE FROM Designs WHERE RowKey = ?").Bind(1, design.key).Run();
}

Result<std::string> RenameDesign(Session& session, std::string_view id, std::string_view typed) {
  if (auto allowed = RequireAct(session, Act::Work); !allowed) return std::unexpected(allowed.error());
  auto design = FindDesign(session, id);
  if (!design) return std::unexpected(design.error());
  std::string newID = ReadDesignID(typed);
  if (newID == design->DesignID)
    return Refuse("Choose Another Name", "Cannot rename a Design with the same name.\n\nPlease enter a different name.",
                  "DesignID");
  // In other letters of the same name it is still this Design's own.
  if (!EqualNoCase(newID, design->DesignID))
    if (auto free = CheckNewDesignID(session, newID); !free) return std::unexpected(free.error());
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::RenameDesign, fmt::format("Rename the Design {} to {}", design->DesignID, newID));
  const std::string oldID = std::exchange(design->DesignID, newID);
  WriteDesign(session, *design);
  RenameJobDesign(session, oldID, newID);
  // Rows may have borne the new name of a Design that went.
  FollowLastUsed(session, newID);
  transaction.Note({Change::Kind::Design, "", oldID, Change::What::Renamed, newID});
  step.Keep();
  transaction.Commit();
  return newID;
}

Result<std::string> CopyDesign(Session& session, std::string_view id, std::string_view typed) {
  if (auto allowed = RequireAct(session, Act::Work); !allowed) return std::unexpected(allowed.error());
  auto design = FindDesign(session, id);
  if (!design) return std::unexpected(design.error());
  std::string newID = ReadDesignID(typed);
  if (auto free = CheckNewDesignID(session, newID); !free) return std::unexpected(free.error());
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::CopyDesign, fmt::format("Copy the Design {} as {}", design->DesignID, newID));
  design->key = 0;
  design->DesignID = newID;
  design->Created = design->LastModified = session.clock.Today();
  design->LastUsed.reset();
  WriteDesign(session, *design);
  FollowLastUsed(session, newID);
  transaction.Note({Change::Kind::Design, "", newID, Change::What::Added, {}});
  step.Keep();
  transaction.Commit();
  return newID;
}

}  // namespace vellumark
