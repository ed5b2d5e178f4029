#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/template_file.h"
#include "core/session/session.h"

namespace vellumark {

/// The guides of a new file's first Database.
inline constexpr std::array<std::string_view, 3> kFirstGuides{"F_Guide_A", "Metallics", "Pastels_Neons"};

/// The template in use: the site's own in the program's folder, else the one that came with the program. Empty when
/// there is neither.
std::filesystem::path TemplatePath(const Session& session);
/// How a site comes by a template, for those who have none.
std::string HowToGetTemplate(const Session& session);

/// The guides of which the template holds formulas, in list order. Throws Failure for a template that cannot be read.
std::vector<const Guide*> GuidesInTemplate(const Session& session);

/// The template in use, opened to be read; null when there is none.
std::unique_ptr<Database> OpenTemplate(const Session& session);
/// The guides of these codes in list order. Refused with that title: a code that is none, no guide (in those words), both
/// Formula Guides, one that the template does not hold, no template.
Result<std::vector<const Guide*>> ChosenGuides(const Session& session, const std::vector<std::string>& codes,
                                               std::string_view title, std::string_view whenNone);
/// The texts that go with the guides into the `_Info` row of a Database, within the caller's transaction.
void CopyTemplateInfo(Session& session, Database& templateFile, const std::string& database);

/// Makes a Database from guides of the template, in one transaction. Guides are copied in list order whatever the order
/// of `codes`; a name that an earlier one brought is skipped; costs and emissions are rolled up from the Database's own
/// Basic Colors. Refused: a name that NewDatabaseName refuses, no guide, both Formula Guides, a guide that the template
/// does not hold. The name as stored.
Result<std::string> CreateGuideDatabase(Session& session, std::string_view typedName,
                                        const std::vector<std::string>& codes);

}  // namespace vellumark
