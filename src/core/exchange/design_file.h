#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/jobs/design_work.h"

namespace vellumark {

// Designs between Data Files: a tab text file, a Design in a row below the names of the fields, with the folder
// DesignPhotos beside it. In its texts a line end is \n, a tab \t and a backslash \\. A row tells the units of its
// lengths and of its quantities.

/// "Job_Design_Export_2026_03_10.txt".
std::string DesignFileName(const Session& session);

/// Writes the Designs of these IDs, all when there are none, and copies their photos. An existing file is asked about.
/// Refused: without Designs, without a name, and when a photo's name stands for another picture in that folder already.
/// The number written.
Result<int> ExportDesigns(Session& session, const std::vector<std::string>& ids, const std::filesystem::path& path);

/// A Design of a file.
struct IncomingDesign {
  enum class Mod { New, Modified, Same };
  Design design;  ///< in this Data File's units
  Mod mod = Mod::New;
  std::string presentDescription;  ///< of the one that is here
};
/// "New", "Modified" or "Same".
std::string_view ModText(IncomingDesign::Mod mod);

/// All Designs of a file. Refused as a whole when it is another kind of file or a row is no Design, with every bad row.
Result<std::vector<IncomingDesign>> ReadDesignFile(const Session& session, const std::filesystem::path& path);

struct DesignImport {
  int added = 0;
  int changed = 0;
  int same = 0;
  int photos = 0;         ///< brought in
  int photosMatched = 0;  ///< left out, since the library has another picture of that name
  int photosMissing = 0;  ///< not in the folder beside the file
  int photosKept = 0;     ///< of Designs that are here: not in the file
};
/// Brings in the Designs of these IDs, all when there are none: all of them or nothing. Asks before it changes one that
/// is here. A photo whose name the library has is shared when it is the same picture, else the Design does without it.
/// Photos that a Design has here and not in the file stay.
Result<DesignImport> ImportDesigns(Session& session, const PhotoMaker& maker, const std::filesystem::path& path,
                                   const std::vector<std::string>& ids);
/// The messages about photos, with the title "Design Photo Import Error"; empty when all came.
std::string PhotoImportText(const DesignImport& report);

}  // namespace vellumark
