#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"

namespace vellumark {

/// The template that a site supplies: the published recipes of the colour guides, a file of the Data File's kind with
/// tables of its own.
inline constexpr std::string_view kTemplateFileName = "pdbt.vkt";

/// One guide of the template.
struct Guide {
  std::string_view code;        ///< the name under which it is chosen: "F_Guide_A"
  std::string_view title;       ///< as lists show it
  std::string_view basicTable;  ///< its Basic Colors, rows of the shape of `<DB>_Basic`
  std::string_view mixTable;    ///< its formulas, rows of the shape of `<DB>_Mix`
};

/// In the order in which they are listed, searched and copied.
inline constexpr std::array<Guide, 5> kGuides{
    {{"F_Guide_A", "Formula Guide GP1601A", "FGuide_BColors_GP1601A", "FGuide_MColors_GP1601A"},
     {"F_Guide_B", "Formula Guide GP1601B", "FGuide_BColors_GP1601B", "FGuide_MColors_GP1601B"},
     {"Metallics", "Metallics", "Metallics_BColors", "Metallics_MColors"},
     {"Pastels_Neons", "Pastels and Neons", "PastelNeons_BColors", "PastelNeons_MColors"},
     {"Goe", "Goe", "Goe_BColors", "Goe_MColors"}}};

/// The texts that go with the guides: one row of the shape of `<DB>_Info`.
inline constexpr std::string_view kTemplateInfoTable = "Info_Table";

/// The guide of that code, in any case; null when there is none.
const Guide* FindGuide(std::string_view code);

struct TemplateTable {
  std::string name;
  std::int64_t rows = 0;
};

/// Makes a template of a folder of tab text files, one for each table ("Goe_MColors.tsv"), as docs/guides.md tells. A
/// guide without its two files gets empty tables. Refused, with every bad line by file, number and content, unless all
/// is in order. The file is built beside `out` and takes its name, and the place of an older one, when it is whole.
Result<std::vector<TemplateTable>> BuildTemplate(const std::filesystem::path& folder, const std::filesystem::path& out);

struct TemplateReport {
  std::vector<TemplateTable> tables;
  std::vector<std::string> faults;  ///< empty when the template is sound
};

/// What is wrong with a template: tables and fields that are missing, and rows against the rules of docs/guides.md.
/// Throws Failure for a file that cannot be opened or is not of the Data File's kind.
TemplateReport CheckTemplate(const std::filesystem::path& path);

}  // namespace vellumark
