#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/jobs/designs.h"
#include "core/jobs/photo_library.h"

namespace vellumark {

inline constexpr std::size_t kMostDesignPhotos = 10;

/// A photo that a Design is to link.
struct LinkedPhoto {
  std::string name;
  std::string jpeg{};         ///< not empty: a new picture, which the save writes
  bool copyOver = false;      ///< the operator wants it in the place of the one in the library
  std::string from{};         ///< not empty: the file of the library that it is made of, under a new name
  bool othersFollow = false;  ///< the other Designs of this Data File take the new name too
};

/// A Design while it is worked on. Nothing is written, neither row nor file, before SaveDesign.
struct DesignWork {
  Design design;
  Design loaded;  ///< as it is on file; empty for a new one
  std::vector<LinkedPhoto> photos;

  bool IsNew() const { return design.key == 0; }
  bool Changed() const;
  std::vector<std::string> PhotoNames() const;
};

/// A new one of that ID.
Result<DesignWork> BeginDesign(const Session& session, std::string_view typed);
Result<DesignWork> OpenDesign(const Session& session, std::string_view typed);
/// The same from the row as it is now; nothing when it is gone.
std::optional<DesignWork> ReadDesignWork(const Session& session, std::string_view id);

/// The unit of the lengths that people type and see.
enum class LengthUnit { Inch, Millimetre };
std::string_view LengthUnitName(LengthUnit unit);  ///< "in." or "mm."
std::optional<LengthUnit> ParseLengthUnit(std::string_view text);
double InInches(double length, LengthUnit unit);
/// A length in inches as its field shows it: three decimals of an inch, two of a millimetre.
std::string LengthText(double inches, LengthUnit unit);

/// A field as typed: Description, Notes, Impressions, Length, Width. A length that reads as the one that stands stays
/// exactly that.
Result<void> EnterDesignField(DesignWork& work, std::string_view field, std::string_view typed,
                              LengthUnit unit = LengthUnit::Inch);

/// A colour as typed. Without a kind the Database tells; one that is a formula and a Basic Color is asked about.
struct DesignColorEntry {
  std::string name;
  std::string database;  ///< empty: the current one
  std::optional<ColorKind> kind;
  std::string quantity;                ///< empty: 0
  std::string percent;                 ///< of coverage, 0 to 100; empty: 0
  std::optional<float> exactQuantity;  ///< what an estimate carries over, in the place of the text
};
/// Adds the colour, or changes the line of its name.
Result<void> PutDesignColor(Session& session, DesignWork& work, const DesignColorEntry& entry);
/// All colours of a Database by name, of both kinds, each once.
std::vector<std::string> DesignColorNames(const Session& session, std::string_view database);
void RemoveDesignColor(DesignWork& work, std::string_view name);

/// Colours, Databases and the Design itself that got another name while it is worked on bear it from now on.
void FollowRenames(DesignWork& work, const std::vector<Change>& changes);

/// A picture that was chosen, and is linked nowhere yet.
struct PickedPhoto {
  std::string name;
  std::string jpeg;
};
Result<PickedPhoto> PickPhoto(const PhotoMaker& maker, const std::filesystem::path& file);
/// Links it. A name that the library has is asked about, unless it is the very same picture.
Result<void> UsePhoto(Session& session, DesignWork& work, const PickedPhoto& photo);
/// After a question; the file goes with the save, unless somebody else links it.
Result<void> RemovePhoto(Session& session, DesignWork& work, std::string_view name);
/// Another name for a linked photo; the other Designs that link it are asked about and keep theirs after a No.
Result<void> RenamePhoto(Session& session, DesignWork& work, std::string_view name, std::string_view typed);
/// Linked, and no longer there.
bool IsPhotoMissing(const Session& session, const LinkedPhoto& photo);
/// The refusal that tells of it.
Refusal MissingPhoto(const std::string& name);

/// Writes row and photos. A changed description is asked about when Job Records bear the old one. Afterwards `work` is
/// what is on file.
Result<void> SaveDesign(Session& session, DesignWork& work);
/// After a question. Its photos go, but for those that somebody else links.
Result<void> DeleteDesign(Session& session, std::string_view typed);

}  // namespace vellumark
