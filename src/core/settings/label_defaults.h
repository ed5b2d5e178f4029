#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/settings/support_records.h"

namespace vellumark {

inline constexpr std::string_view DefaultLayoutName = "Default Label";

/// The full record set of a new layout, each key once: the paper, the items with their bar code twins, the two free bar
/// codes and the picture. Positions and sizes are twips, font sizes points.
std::vector<SupportRecord> DefaultLabel(std::string_view layout);
/// The same for a hazard label: the paper, the text items, the nine pictograms.
std::vector<SupportRecord> DefaultHazardLabel(std::string_view layout);
/// The same for a formula label: the paper and the four items.
std::vector<SupportRecord> DefaultFormulaLabel(std::string_view layout);

}  // namespace vellumark
