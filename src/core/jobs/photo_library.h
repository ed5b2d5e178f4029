#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"

namespace vellumark {

// The pictures of Designs: JPEG files in the folder DesignPhotos beside the Data File, which all Data Files of the
// folder share. A Design names its files in `PhotoSet`. Names are compared without regard to case, as they are on some
// disks.

/// Makes of a picture what the library keeps. A seam: decoding needs more than the core has.
class PhotoMaker {
 public:
  virtual ~PhotoMaker() = default;
  /// The bytes of a JPEG or PNG file as those of a JPEG file of at most kMostPhotoPixels a side, turned as its EXIF
  /// data say; one that is that already stays as it is. Refused, with the reason, what is no picture, cut short or
  /// larger than any camera makes.
  virtual Result<std::string> Jpeg(const std::string& bytes, const std::string& name) const = 0;
};
inline constexpr int kMostPhotoPixels = 2000;
inline constexpr std::size_t kMostPhotoBytes = 200'000'000;

inline constexpr std::string_view kPhotoTitle = "Design Photo";

std::filesystem::path PhotoFolder(const Session& session);
/// The photos of the library in the order of their names.
std::vector<std::string> LibraryPhotos(const Session& session);
/// The file of that name; nothing when it is not in the library.
std::optional<std::filesystem::path> PhotoFile(const Session& session, std::string_view name);
/// A photo's name as it will be stored: with ".jpg" behind it. Refused when it is none of a file, longer than 100
/// characters, or holds one of the signs that file names or `PhotoSet` cannot.
Result<std::string> ReadPhotoName(std::string_view typed);
bool ContainsPhoto(const std::vector<std::string>& names, std::string_view name);

/// The Designs of this Data File that link the photo, in their order.
std::vector<std::string> DesignsWithPhoto(const Session& session, std::string_view name);
/// The other Data Files of the folder of which a Design links the photo. One that cannot be read now may.
std::vector<std::string> DataFilesWithPhoto(const Session& session, std::string_view name);
/// Both, for a message: "GLOSS, MATTE, the Data File of.vkd"; empty when nobody does.
std::string PhotoUsersText(const Session& session, std::string_view name, std::string_view exceptDesign = {});

/// Does to the files what the rows that were written ask for, in their order; what is done is done for good, and what
/// is not yet a later call does. Throws Failure naming the file.
void RunPhotoSteps(Session& session);

/// A line of the library.
struct LibraryPhoto {
  std::string name;
  std::int64_t bytes = 0;  ///< 0 of one that is missing
  bool missing = false;    ///< a Design links it and no file is there
  std::vector<std::string> designs;
};
/// All files and all names that Designs of this Data File link, by name.
std::vector<LibraryPhoto> ListLibrary(const Session& session);

}  // namespace vellumark
