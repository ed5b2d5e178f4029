#include "core/labels/label_work.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/number.h"

namespace vellumark {
namespace {

using What = LabelElement::What;

constexpr std::size_t kMostSteps = 200;
constexpr double kTwipsPerMillimetre = kTwipsPerInch / 25.4;

std::vector<DesignItem> MakeItems(LabelKind kind) {
  std::vector<DesignItem> items;
  const auto add = [&](std::string name, What what, std::string_view shown) {
    std::string key = fmt::format("{} {}", name, shown);
    items.push_back({std::move(name), what, std::move(key)});
  };
  if (kind != LabelKind::Label) {
    for (const std::string_view item : kind == LabelKind::Hazard ? HazardItems() : FormulaItems())
      add(std::string(item), What::Text, "Enabled");
    for (int i = 1; i <= 9 && kind == LabelKind::Hazard; ++i)
      add(fmt::format("Picto_Image {}", i), What::Pictogram, "Visible");
    return items;
  }
  const auto fields = LabelFields();
  const auto texts = fields.first<kLabelFields - 2>();
  for (const LabelField& field : texts) add(std::string(field.item), What::Text, "Visible");
  for (const char* name : {"Health - Fire - Reactivity", "Pantone Trademark"}) add(name, What::Text, "Visible");
  for (const LabelField& field : texts) add(std::string(field.item) + " BC", What::Code, "Visible");
  for (const LabelField& field : fields.last<2>()) add(std::string(field.item), What::Code, "Visible");
  add("Picture Image", What::Picture, "Visible");
  return items;
}

}  // namespace

std::span<const DesignItem> ItemsOfDesign(LabelKind kind) {
  static const std::array<std::vector<DesignItem>, 3> items{MakeItems(LabelKind::Label), MakeItems(LabelKind::Hazard),
                                                            MakeItems(LabelKind::Formula)};
  return items.at(static_cast<std::size_t>(kind));
}

const DesignItem* FindDesignItem(LabelKind kind, std::string_view name) {
  const auto items = ItemsOfDesign(kind);
  const auto found = std::ranges::find(items, name, &DesignItem::name);
  return found == items.end() ? nullptr : &*found;
}

LabelUnit UnitOfDesign(const LabelDesign& design) {
  if (design.Text("Label_UOM") == " mm.")
    return {" mm.", kTwipsPerMillimetre, 2, kTwipsPerMillimetre / 4, kTwipsPerMillimetre};
  return {"in.", kTwipsPerInch, 3, kTwipsPerInch / 100, kTwipsPerInch / 16};
}

std::string LengthText(const LabelUnit& unit, double twips) {
  return Fixed(twips / unit.twips, unit.decimals);
}

std::optional<int> ReadLength(const LabelUnit& unit, std::string_view typed) {
  constexpr double kMostTwips = 1e8;
  const auto number = ParseNumber(typed);
  if (!number || std::abs(*number * unit.twips) > kMostTwips) return std::nullopt;
  return static_cast<int>(std::lround(*number * unit.twips));
}

double Nudged(const LabelUnit& unit, double twips, int steps) {
  // A place is whole twips, so that it stands up to half of one beside its line.
  const double lines = twips / unit.nudge;
  const double line = std::abs(std::round(lines) * unit.nudge - twips) <= 0.5 ? std::round(lines)
                      : steps > 0                                             ? std::floor(lines)
                                                                              : std::ceil(lines);
  return std::round((line + steps) * unit.nudge);
}

void LabelWork::Open(const Session& session, std::string_view layout) {
  design_ = saved_ = ReadLabelDesign(session, Kind(), layout);
  onFile_ = true;
  undo_.clear();
  redo_.clear();
  EndGesture();
}

bool LabelWork::IsStale(const Session& session) const {
  return onFile_ && !(ReadLabelDesign(session, Kind(), design_.Layout()) == saved_);
}

void LabelWork::Step(LabelDesign changed, std::string_view gesture) {
  if (changed == design_) return;
  if (gesture.empty() || gesture != gesture_) {
    undo_.push_back(std::move(design_));
    if (undo_.size() > kMostSteps) undo_.erase(undo_.begin());
  }
  design_ = std::move(changed);
  redo_.clear();
  gesture_ = gesture;
}

Result<void> LabelWork::Set(std::string_view key, std::string_view value, std::string_view gesture) {
  if (auto checked = CheckLabelValue(key, value); !checked) return checked;
  LabelDesign changed = design_;
  changed.Set(key, value);
  Step(std::move(changed), gesture);
  return {};
}

void LabelWork::Place(const std::vector<PlacedItem>& items, std::string_view gesture) {
  LabelDesign changed = design_;
  const auto put = [&](const std::string& key, double twips) {
    const auto bounds = BoundsOfLabelKey(key);
    changed.SetNumber(key, std::clamp(static_cast<int>(std::lround(twips)), bounds->least, bounds->most));
  };
  for (const PlacedItem& item : items) {
    put(item.name + " Top", item.top);
    put(item.name + " Left", item.left);
  }
  Step(std::move(changed), gesture);
}

void LabelWork::Undo() {
  if (undo_.empty()) return;
  redo_.push_back(std::move(design_));
  design_ = std::move(undo_.back());
  undo_.pop_back();
  EndGesture();
}

void LabelWork::Redo() {
  if (redo_.empty()) return;
  undo_.push_back(std::move(design_));
  design_ = std::move(redo_.back());
  redo_.pop_back();
  EndGesture();
}

Result<void> LabelWork::Save(Session& session) {
  if (auto saved = SaveLabelLayout(session, Kind(), design_.Layout(), design_.Records()); !saved) return saved;
  // As it stands in the file: every key, and the name that a picture has got.
  design_ = saved_ = ReadLabelDesign(session, Kind(), design_.Layout());
  EndGesture();
  return {};
}

}  // namespace vellumark
