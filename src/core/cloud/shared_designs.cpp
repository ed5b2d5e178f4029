#include "core/cloud/shared_designs.h"

#include <fmt/format.h>

#include <system_error>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "core/cloud/cloud_names.h"
#include "core/datafile/lifecycle.h"
#include "core/exchange/design_file.h"

namespace vellumark {
namespace fs = std::filesystem;

Result<fs::path> SharedDesignFile(Session& session, const ShareRow& share) {
  const fs::path file = SharedDataFile(session, share.AcctNum);
  if (!share.came)
    return Refuse("Design Import", fmt::format("Nothing has been fetched of the account {}.", share.AcctNum), "cmbAccount");
  const fs::path folder = file.parent_path() / "Designs";
  std::error_code error;
  fs::remove_all(folder, error);
  if (error) throw Failure(folder.string(), error.message());
  MakeFolder(folder / kPhotoFolderOfSet);

  // The other shop as it would write its own Designs.
  Session other(session.prompt, session.progress, session.clock);
  other.DataFileDB = Database::Open(file, OpenMode::ReadOnly);
  other.DataFileName = file.string();
  other.databaseList = ReadFileInfo(*other.DataFileDB).dbList;
  other.DataFileOpen = other.RecordsetsOpen = true;
  other.UMI = share.UMI == 0 ? session.UMI : share.UMI;
  fs::path designs = folder / DesignFileName(session);
  if (const auto written = ExportDesigns(other, {}, designs); !written) return std::unexpected(written.error());
  for (const fs::path& photo : PhotosIn(SharedPhotos(session, share.AcctNum)))
    fs::copy_file(photo, folder / kPhotoFolderOfSet / photo.filename());
  return designs;
}

}  // namespace vellumark
