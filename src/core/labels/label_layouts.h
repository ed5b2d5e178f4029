#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/session/session.h"
#include "core/settings/support_file.h"

namespace vellumark {

/// What a label is for. Each kind has a file of layouts and a list of their names of its own.
enum class LabelKind { Label, Hazard, Formula };

/// The values of one layout, in memory: nothing is written by it. Texts as in the file; a key that is missing is empty.
class LabelDesign {
 public:
  LabelDesign(LabelKind kind, std::string layout, std::vector<SupportRecord> records)
      : kind_(kind), layout_(std::move(layout)), records_(RecordShape::LayoutKeyValue, std::move(records)) {}

  LabelKind Kind() const { return kind_; }
  const std::string& Layout() const { return layout_; }
  const std::string& Text(std::string_view key) const { return records_.Get(layout_, key); }
  int Number(std::string_view key) const;
  void Set(std::string_view key, std::string_view value) { records_.Set(layout_, key, value); }
  void SetNumber(std::string_view key, int value) { Set(key, std::to_string(value)); }
  const std::vector<SupportRecord>& Records() const { return records_.Records(); }
  bool operator==(const LabelDesign& other) const { return Records() == other.Records(); }

 private:
  LabelKind kind_;
  std::string layout_;
  SupportRecords records_;
};
/// All keys of a layout as its file has them.
LabelDesign ReadLabelDesign(const Session& session, LabelKind kind, std::string_view layout);
/// What a new layout begins with.
LabelDesign NewLabelDesign(LabelKind kind);

/// The least and the most of a key that is a whole number; of places and sizes in twips.
struct LabelBounds {
  int least = 0;
  int most = 0;
};
std::optional<LabelBounds> BoundsOfLabelKey(std::string_view key);
/// Refused, naming the key, for what the key cannot be.
Result<void> CheckLabelValue(std::string_view key, std::string_view value);

inline constexpr std::size_t kLargestLabelPicture = 8U << 20U;  ///< bytes

/// The names of the layouts in the order of their list.
std::vector<std::string> LabelLayouts(const Session& session, LabelKind kind);
/// The name as the list has it, or the refusal that there is no such layout.
Result<std::string> FindLabelLayout(const Session& session, LabelKind kind, std::string_view name);

/// The value of a layout's key; empty when it has none.
std::string LabelSetting(const Session& session, LabelKind kind, std::string_view layout, std::string_view key);
/// The same as a whole number, 0 where it is none.
int LabelNumber(const Session& session, LabelKind kind, std::string_view layout, std::string_view key);
/// Writes a value. Refused where a layout of the kind has no such key, and for what the key cannot be. A picture is
/// kept as by SaveLabelLayout.
Result<void> SaveLabelSetting(Session& session, LabelKind kind, std::string_view layout, std::string_view key,
                              std::string_view value);

/// All records of a layout, in the order of a new one; keys that it lacks are told as empty.
std::vector<SupportRecord> LabelRecords(const Session& session, LabelKind kind, std::string_view layout);
/// Puts the records in the place of those of a layout that is there, after a question. A picture that they name by its
/// whole path is copied to the pictures of labels, under a name that no other has; the layout stores that name.
Result<void> SaveLabelLayout(Session& session, LabelKind kind, std::string_view layout,
                             const std::vector<SupportRecord>& design);
/// Adds a layout with every key, as the design has it and else as in a new layout. A name that is there is asked about
/// and then gets the design.
Result<void> AddLabelLayout(Session& session, LabelKind kind, std::string_view name,
                            const std::vector<SupportRecord>& design);
Result<void> CopyLabelLayout(Session& session, LabelKind kind, std::string_view layout, std::string_view name);
/// The folder of the pictures, beside the Support Files.
std::filesystem::path PicturesOfLabels(const Session& session);
/// After a question; the last one stays.
Result<void> DeleteLabelLayout(Session& session, LabelKind kind, std::string_view layout);

}  // namespace vellumark
