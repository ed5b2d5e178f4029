#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/datafile/field_map.h"
#include "core/session/session.h"

namespace vellumark {

/// One colour measurement of a Basic Color or a Master Formula.
struct LabReading {
  float Lab_L = 0;
  float Lab_a = 0;
  float Lab_b = 0;
  float Lab_D = 0;  ///< shown as Delta
  float Lab_Density = 0;
  std::string Lab_LS;  ///< light source
  std::string Lab_PT;  ///< paper type or substrate
  std::string Lab_Note;
  bool operator==(const LabReading&) const = default;
};

/// Its fields: five numbers, then three texts.
const FieldMap<LabReading>& LabFields();
constexpr std::size_t kLabNumbers = 5;

/// The fields of a measurement as typed, in their order. Numbers are refused in the order L, a, b, Delta, Density.
using LabEntry = std::array<std::string, 8>;
LabEntry LabTexts(const Session& session, const LabReading& reading);
Result<LabReading> ReadLabEntry(const Session& session, const LabEntry& entry);

std::vector<LabReading> ReadLabReadings(const Session& session, ColorKind kind, std::string_view name);
/// Writes the list back: what was removed from it goes, what was added comes.
void WriteLabReadings(Session& session, ColorKind kind, std::string_view name, const std::vector<LabReading>& readings);

/// Light sources and substrates already on file for this Database, for the drop-downs.
std::vector<std::string> KnownLightSources(const Session& session, ColorKind kind);
std::vector<std::string> KnownSubstrates(const Session& session, ColorKind kind);

}  // namespace vellumark
