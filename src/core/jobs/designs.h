#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/datafile/field_map.h"
#include "core/datafile/schema.h"
#include "core/session/session.h"

namespace vellumark {

/// A colour of a Design; the quantity in the inventory unit, for the impressions of the Design.
struct DesignColor {
  std::string IngName;
  std::string IngCCode;
  std::uint8_t IngType = 0;
  float IngQty = 0;
  std::int32_t IngPercent = 0;  ///< of the area that it covers
  std::string IngDB;

  ColorKind Kind() const { return IngType == static_cast<int>(ColorKind::Mix) ? ColorKind::Mix : ColorKind::Basic; }
  bool operator==(const DesignColor&) const = default;
};

/// A row of `Designs`: a print job that repeats. Lengths in inches, whatever is shown.
struct Design {
  std::int64_t key = 0;
  std::string DesignID;
  std::string Description;
  std::optional<DateTime> Created;
  std::optional<DateTime> LastModified;
  std::optional<DateTime> LastUsed;
  std::int32_t Impressions = 0;
  float Length = 0;
  float Width = 0;
  std::string Notes;
  std::string IngSet;
  std::array<DesignColor, schema::kDesignSlots> slots;
  std::string PhotoSet;

  /// The filled slots, up to the first empty one.
  std::vector<DesignColor> Colors() const;
  void SetColors(const std::vector<DesignColor>& colors);  ///< `IngSet` too
  std::vector<std::string> Photos() const;
};

inline constexpr std::size_t kDesignIDLength = 30;
inline constexpr std::size_t kDescriptionLength = 80;

/// Its fields, told once.
const FieldMap<Design>& DesignFields();

/// The names in a text that NameSet made.
std::vector<std::string> NamesInSet(std::string_view set);

/// An ID as its field leaves it: trimmed, in capitals.
std::string ReadDesignID(std::string_view typed);
/// Whether a Design may get that ID: not empty, of 30 characters at most, no control characters, not what stands for
/// several jobs, and free.
Result<void> CheckNewDesignID(const Session& session, const std::string& id);

bool DesignExists(const Session& session, std::string_view id);
std::optional<Design> ReadDesign(const Session& session, std::string_view id);
/// The Design of that ID, or the refusal that it is not on file.
Result<Design> FindDesign(const Session& session, std::string_view typed);
/// All in the order of their IDs, one at a time, until `take` answers false.
void ForEachDesign(const Session& session, const std::function<bool(const Design&)>& take);
std::vector<std::string> DesignIDs(const Session& session);

/// Writes a new row or an existing one; the row's number. For the procedures of Designs, in their transaction.
std::int64_t WriteDesign(Session& session, const Design& design);
void WritePhotoSet(Session& session, std::int64_t key, const std::string& photoSet);
void DeleteDesignRow(Session& session, const Design& design);

/// Gives a Design another name, on its Job Records too. Refused without a name, with the same, and onto one that is
/// there.
Result<std::string> RenameDesign(Session& session, std::string_view id, std::string_view typed);
/// A new Design with everything of this one; it shares the photos, and no job has used it.
Result<std::string> CopyDesign(Session& session, std::string_view id, std::string_view typed);

}  // namespace vellumark
