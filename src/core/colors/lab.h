#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/references.h"
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

/// The measurement fields as typed. Numbers are refused in the order L, a, b, Delta, Density.
struct LabEntry {
  std::string L;
  std::string a;
  std::string b;
  std::string D;
  std::string density;
  std::string lightSource;
  std::string substrate;
  std::string note;
};
Result<LabReading> ReadLabEntry(const Session& session, const LabEntry& entry);

std::vector<LabReading> ReadLabReadings(const Session& session, ColorKind kind, std::string_view name);
/// Writes the list back: what was removed from it goes, what was added comes.
void WriteLabReadings(Session& session, ColorKind kind, std::string_view name, const std::vector<LabReading>& readings);

/// Light sources and substrates already on file for this Database, for the drop-downs.
std::vector<std::string> KnownLightSources(const Session& session, ColorKind kind);
std::vector<std::string> KnownSubstrates(const Session& session, ColorKind kind);

}  // namespace vellumark
