#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/backup/backup_days.h"
#include "core/backup/proof.h"
#include "core/session/session.h"

namespace vellumark {

/// Where a Data File is restored from.
enum class RestoreFrom {
  Location,  ///< a file or set that was chosen; its folder is remembered
  Automatic,
  Cloud,  ///< photos lie beside under the backup's name and "_DP_"
};

struct RestoredFiles {
  std::filesystem::path kept;       ///< the folder in which what was there before is kept; empty when nothing was
  std::vector<std::string> photos;  ///< names that came with the source, in the order of their names
  std::vector<MadeSince> since;     ///< told when the restored file is open
  bool hadPhotoFolder = false;      ///< of the source: without one the photos that are there stay
};

/// Puts a copy of the closed file `source`, and of the photos in `sourcePhotos`, in the place of `current`, which
/// nobody has open: a Failure says that another process works in it. What stands there (the Data File, a journal of a
/// killed program, all photos) is copied before into a folder "Before Restore" with the time beside it; a file that cannot
/// be read any more is moved there. The Data File changes in one step, the last one; after a Failure everything is as it
/// was, but when the disk failed right behind that step: then the new file stands, and the folder stays. A version that
/// marks an archive copy becomes a plain one, and counters go on from the one of both files that is further on. `known`
/// tells what photos are that were read before.
RestoredFiles PutDataFileBack(Session& session, const std::filesystem::path& source,
                              const std::filesystem::path& sourcePhotos, const std::filesystem::path& current,
                              const std::vector<FileProof>& known = {});

/// Removes photos that came with nobody: no Data File of the folder names them, and they are kept in `restored.kept`.
/// With the restored file open.
void RemovePhotosOfNobody(Session& session, const RestoredFiles& restored);

}  // namespace vellumark
