#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/labels/label_arrange.h"
#include "core/labels/label_drawing.h"

namespace vellumark {

/// Something that a layout places on a label, and shows or hides.
struct DesignItem {
  std::string name;  ///< "Color Name", "Color Name BC", "Picto_Image 3"
  LabelElement::What what = LabelElement::What::Text;
  std::string shown;  ///< the key that shows it

  std::string Key(std::string_view key) const { return name + " " + std::string(key); }
};
/// In the order in which they are painted.
std::span<const DesignItem> ItemsOfDesign(LabelKind kind);
/// Null for a name that the kind does not have.
const DesignItem* FindDesignItem(LabelKind kind, std::string_view name);

/// The lengths in which a layout is worked on.
struct LabelUnit {
  std::string_view text;  ///< "in." or " mm.", as it stands behind a number
  double twips = kTwipsPerInch;
  int decimals = 3;
  double nudge = 0;  ///< twips of one step of an arrow
  double grid = 0;   ///< twips between the lines that boxes snap to
};
LabelUnit UnitOfDesign(const LabelDesign& design);
std::string LengthText(const LabelUnit& unit, double twips);
/// Whole twips; nothing for what is no number.
std::optional<int> ReadLength(const LabelUnit& unit, std::string_view typed);
/// The next line of the nudge's own grid, `steps` away.
double Nudged(const LabelUnit& unit, double twips, int steps);

/// A layout that is being worked on, with the steps that led there. Nothing is written before it is saved.
class LabelWork {
 public:
  explicit LabelWork(LabelKind kind) : design_(NewLabelDesign(kind)), saved_(design_) {}

  /// Reads the layout afresh; the steps are forgotten.
  void Open(const Session& session, std::string_view layout);
  /// A new layout, which is not on file.
  void Begin() { *this = LabelWork(Kind()); }

  /// Its name; empty for one that is not on file.
  std::string Layout() const { return onFile_ ? design_.Layout() : std::string(); }
  /// Whether the file has other records than those that were read.
  bool IsStale(const Session& session) const;
  const LabelDesign& Design() const { return design_; }
  LabelKind Kind() const { return design_.Kind(); }
  bool IsChanged() const { return !(design_ == saved_); }

  /// One step. Steps of the same `gesture` that follow each other are taken back as one. Refused for what the key
  /// cannot be, and then nothing was changed.
  Result<void> Set(std::string_view key, std::string_view value, std::string_view gesture = {});
  /// Top and Left of the items, kept within what they can be.
  void Place(const std::vector<PlacedItem>& items, std::string_view gesture);
  void EndGesture() { gesture_.clear(); }

  bool CanUndo() const { return !undo_.empty(); }
  bool CanRedo() const { return !redo_.empty(); }
  void Undo();
  void Redo();

  /// Writes all records of the layout, after a question.
  Result<void> Save(Session& session);

 private:
  void Step(LabelDesign changed, std::string_view gesture);

  LabelDesign design_;
  LabelDesign saved_;
  bool onFile_ = false;
  std::vector<LabelDesign> undo_;
  std::vector<LabelDesign> redo_;
  std::string gesture_;
};

}  // namespace vellumark
