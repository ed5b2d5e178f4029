#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/ink_room.h"
#include "support/listed.h"

namespace vellumark::test {

/// A room whose Database is made from guides, of which the site has three: two of them have a formula 185, each its
/// own.
struct GuideRoom : InkRoom {
  GuideRoom() {
    session.ProgramFolder = folder.Path();
    session.templateDB = Database::Create(folder / "pdbt.vkt");
    for (const char* table : {"FGuide_BColors_GP1601A", "Metallics_BColors"})
      session.templateDB->CreateTable(table, schema::Basic);
    for (const char* table : {"FGuide_MColors_GP1601A", "FGuide_MColors_GP1601B", "Goe_MColors"})
      session.templateDB->CreateTable(table, schema::Mix);
    Published("FGuide_BColors_GP1601A", "PANTONE RUBINE", 7);
    Published("Metallics_BColors", "PANTONE SILVER", 9);
    Published("Metallics_BColors", "PANTONE RUBINE", 99);
    PublishedMix("Goe_MColors", "PANTONE 185", "12", 60);
    BeOfGuides("INK");
    session.TemplateFile = "pdbt.vkt";
  }

  /// A Database of the file as one that is made from guides.
  void BeOfGuides(const std::string& database) {
    session.File().Execute("UPDATE " + database + "_Info SET TemplateFile = 'pdbt.vkt'");
  }
  void Published(const char* table, const char* name, int row) {
    InsertRow(*session.templateDB, schema::Basic, table,
              {{"Color_Name", name}, {"Color_Guide", table}, {"Page", "3"}, {"Row", row}, {"Red", 200}});
  }
  /// Of Rubine, and Silver for the rest.
  void PublishedMix(const char* table, const char* name, const char* page, float rubine) {
    InsertRow(*session.templateDB, schema::Mix, table,
              {{"Color_Name", name},
               {"Color_Guide", table},
               {"Page", page},
               {"Color_Set", "<PANTONE RUBINE><PANTONE SILVER>"},
               {"BC0", "PANTONE RUBINE"},
               {"BQ0", rubine},
               {"BC1", "PANTONE SILVER"},
               {"BQ1", 100 - rubine}});
  }
  std::string Names(const std::string& table) {
    return Listed(session.File(), "SELECT Color_Name FROM " + table + " ORDER BY RowKey", ", ");
  }
};

}  // namespace vellumark::test
