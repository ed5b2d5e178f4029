#include <algorithm>
#include <memory>

#include "core/base/text.h"
#include "core/batch/record.h"
#include "core/colors/color_set.h"
#include "core/datafile/references.h"

namespace vellumark {
namespace {

using Kind = Change::Kind;

// The new names of one commit. Every place is renamed once, also where a new name is another's old one.
class NewNames {
 public:
  NewNames(const Session& session, const std::vector<Change>& changes) {
    for (const Change& change : changes)
      if (change.what == Change::What::Renamed && EqualNoCase(change.database, session.CurrentDatabase) &&
          (change.kind == Kind::Basic || change.kind == Kind::Mix))
        renamed_.push_back(&change);
  }

  void GiveTo(BatchWork& work) const {
    if (renamed_.empty()) return;
    Name(Kind::Mix, work.Color_Name);
    for (auto* list : {&work.Ingredients, &work.FormulaIngredients, &work.Additions})
      for (BatchIngredient& ingredient : *list) Name(Kind::Basic, ingredient.IngName);
    std::vector<std::string> set = SplitColorSet(work.formula.Color_Set);
    for (std::string& name : set) Name(Kind::Basic, name);
    work.formula.Color_Set = NameSet(set);
    for (auto* list : {&work.RecycleList, &work.RecycledColors, &work.FormulaRecycleList})
      for (RecycleColor& color : *list) {
        Name(Kind::Mix, color.Color_Name);
        Slots(color);
      }
    for (BatchRow& row : work.Rows) Name(row.kind, row.name);
  }

  void Name(LineKind kind, std::string& name) const { Name(kind == LineKind::Mix ? Kind::Mix : Kind::Basic, name); }

 private:
  const Change* Find(Kind kind, std::string_view name) const {
    const auto found = std::ranges::find_if(
        renamed_, [&](const Change* change) { return change->kind == kind && EqualNoCase(change->name, name); });
    return found == renamed_.end() ? nullptr : *found;
  }
  void Name(Kind kind, std::string& name) const {
    if (const Change* change = Find(kind, name)) name = change->newName;
  }
  void Slots(RecycleColor& color) const {
    const auto renamed = [&](const RecycleSlot& slot) { return Find(Kind::Basic, slot.BC) != nullptr; };
    if (std::ranges::none_of(*color.slots, renamed)) return;
    std::vector<RecycleSlot> slots = *color.slots;
    for (RecycleSlot& slot : slots) Name(Kind::Basic, slot.BC);
    color.slots = std::make_shared<const std::vector<RecycleSlot>>(std::move(slots));
  }

  std::vector<const Change*> renamed_;
};

}  // namespace

void FollowRenames(const Session& session, BatchRecord& record, const std::vector<Change>& changes) {
  if (record.state == BatchState::Edit) return;
  const NewNames names(session, changes);
  names.GiveTo(record.work);
  for (WeighedLine& line : record.weighed) names.Name(line.kind, line.name);
}

}  // namespace vellumark
