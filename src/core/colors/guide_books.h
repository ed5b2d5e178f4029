#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

#include "core/colors/guides.h"

namespace vellumark {

/// Guide, page and swatch of every colour of some tables of a template, by their names in capitals; of a name that stands
/// in several, those of the first.
using GuideBooks = std::map<std::string, BookData>;
GuideBooks ReadGuideBooks(Database& guides, std::span<const std::string_view> tables);

}  // namespace vellumark
