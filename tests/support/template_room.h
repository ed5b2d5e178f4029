#pragma once

#include <filesystem>
#include <string>

#include "core/base/files.h"
#include "core/colors/template_file.h"
#include "support/places.h"
#include "support/scratch.h"

namespace vellumark::test {

/// A folder of template texts: a small Formula Guide A, which a test changes to its liking.
struct TemplateTexts {
  TemplateTexts() {
    Write("Info_Table", "FullName\tDisclaimer\nTest Guides\tInvented.\\nAll of it.\n");
    Write("FGuide_BColors_GP1601A",
          "Color_Name\tRed\tGreen\tBlue\nPANTONE EMBER\t250\t90\t20\nPANTONE CLEAR\t250\t250\t250\n");
    Formulas("PANTONE 90001\tPANTONE EMBER=12.5; PANTONE CLEAR=87.5\t3\n");
  }
  void Write(const std::string& table, const std::string& text) { ReplaceFile(folder / (table + ".tsv"), text); }
  void Formulas(const std::string& rows) { Write("FGuide_MColors_GP1601A", "Color_Name\tIngredients\tPage\n" + rows); }
  Result<std::vector<TemplateTable>> Build() const { return BuildTemplate(folder.Path(), out); }

  ScratchFolder folder;
  std::filesystem::path out = folder / "pdbt.vkt";
};

/// The template that comes with the program.
inline void BuildSampleTemplate(const std::filesystem::path& out) {
  const auto built = BuildTemplate(SourceFolder() / "data" / "guides", out);
  if (!built) throw std::runtime_error(built.error().text);
}

}  // namespace vellumark::test
