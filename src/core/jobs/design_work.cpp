#include "core/jobs/design_work.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/datafile/photo_steps.h"
#include "core/datafile/references.h"
#include "core/jobs/design_uses.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kMostLength = 99999;
constexpr double kMostImpressions = 2147483647;
constexpr float kMostQuantity = 99999;

Refusal InvalidData(std::string_view what) {
  return {fmt::format("{} - Invalid Data", what), fmt::format("Bad Value for {}.", what), std::string(what), false};
}

int LengthDecimals(LengthUnit unit) {
  return unit == LengthUnit::Inch ? 3 : 2;
}

Result<void> EnterText(std::string& member, std::string_view typed, std::string_view field, std::size_t longest) {
  std::string text = Trim(typed);
  if (CharCount(text) > longest)
    return Refuse("Design", fmt::format("{} has {} characters at most.", field, longest), std::string(field));
  member = std::move(text);
  return {};
}

// Which of the two a name is in a Database; one that is both is asked about.
Result<ColorKind> KindOf(Session& session, const std::string& name, const std::string& database) {
  const bool mix = MixColorExists(session, name, database);
  const bool basic = BasicColorExists(session, name, database);
  if (!mix && !basic) return Refuse("Color Not Found", "This Color was not found in the selected Database.", "IngName");
  if (mix && basic)
    return session.prompt.Ask("Color Type Selection",
                              fmt::format("{} was found in Database {}\nas a Formula & Basic color.\n\nYes - use "
                                          "Formula\nNo  - use Basic.",
                                          name, database))
               ? ColorKind::Mix
               : ColorKind::Basic;
  return mix ? ColorKind::Mix : ColorKind::Basic;
}

Result<float> ReadQuantity(const DesignColorEntry& entry) {
  if (entry.exactQuantity) return *entry.exactQuantity;
  if (TrimView(entry.quantity).empty()) return 0.0F;
  const auto number = ParseNumber(entry.quantity);
  if (!number || *number < 0 || *number > kMostQuantity)
    return Refuse("Design", "Enter a quantity from 0 to 99999.", "Quantity");
  return RoundSingle(*number, 3);
}

Result<std::int32_t> ReadPercent(const std::string& typed) {
  if (TrimView(typed).empty()) return 0;
  const auto number = ParseNumber(typed);
  if (number && *number > 100) return Refuse("Percentage Error", "Percent value exceeds 100", "PercentCoverage");
  if (!number || *number < 0 || std::floor(*number) != *number)
    return Refuse("Percentage Error", "Enter a percentage from 0 to 100.", "PercentCoverage");
  return static_cast<std::int32_t>(*number);
}

Result<void> CheckFits(const std::string& database) {
  const Field& field = schema::Designs.fields[static_cast<std::size_t>(schema::Designs.Find("IngDB0"))];
  if (CharCount(database) <= static_cast<std::size_t>(field.size)) return {};
  return Refuse("Design",
                fmt::format("The name of the Database {} is too long for a Design: it may have {} characters.",
                            database, field.size),
                "IngDB");
}

LinkedPhoto* Find(DesignWork& work, std::string_view name) {
  const auto found =
      std::ranges::find_if(work.photos, [&](const LinkedPhoto& photo) { return EqualNoCase(photo.name, name); });
  return found == work.photos.end() ? nullptr : &*found;
}

bool IsSamePicture(const Session& session, const LinkedPhoto& photo) {
  const auto file = PhotoFile(session, photo.name);
  return file && ReadFileBytes(*file) == photo.jpeg;
}

Refusal PhotoNotLinked(std::string_view name) {
  return {std::string(kPhotoTitle), fmt::format("The photo {} is not linked to this Design.", name), "PhotoName",
          false};
}

// Somebody may have put a file there since it was asked about.
Result<void> CheckPlaces(const Session& session, const DesignWork& work) {
  for (const LinkedPhoto& photo : work.photos) {
    if (!photo.jpeg.empty() && !photo.copyOver && PhotoFile(session, photo.name) && !IsSamePicture(session, photo))
      return Refuse("Duplicate Library Photo", "A photo with this name exists in the Designs Photo Library.",
                    photo.name);
    if (!photo.from.empty() && !EqualNoCase(photo.from, photo.name) && PhotoFile(session, photo.name))
      return Refuse("Photo Rename", fmt::format("A photo named {} exists in the Designs Photo Library.", photo.name),
                    photo.name);
    if (!photo.from.empty() && !PhotoFile(session, photo.from)) return std::unexpected(MissingPhoto(photo.from));
  }
  return {};
}

void FollowNewName(Session& session, Transaction& transaction, const LinkedPhoto& photo) {
  for (const std::string& id : DesignsWithPhoto(session, photo.from)) {
    const auto other = ReadDesign(session, id);
    if (!other) continue;
    std::vector<std::string> names = other->Photos();
    for (std::string& name : names)
      if (EqualNoCase(name, photo.from)) name = photo.name;
    WritePhotoSet(session, other->key, NameSet(names));
    transaction.Note({Change::Kind::Design, "", id, Change::What::Updated, {}});
  }
}

// Files that nobody needs any more: what the Design linked and no longer does.
void RemoveUnlinked(Session& session, const std::vector<std::string>& before) {
  for (const std::string& name : before)
    if (DesignsWithPhoto(session, name).empty())
      AddPhotoStep(session.File(), {0, PhotoStep::Kind::Remove, name, {}, {}});
}

void PlanPhotos(Session& session, Transaction& transaction, const DesignWork& work) {
  // What is copied from the library comes before what may be put over it.
  for (const LinkedPhoto& photo : work.photos) {
    if (photo.from.empty()) continue;
    AddPhotoStep(session.File(), {0, PhotoStep::Kind::Copy, photo.name, photo.from, {}});
    if (photo.othersFollow) FollowNewName(session, transaction, photo);
  }
  for (const LinkedPhoto& photo : work.photos)
    if (!photo.jpeg.empty() && !IsSamePicture(session, photo))
      AddPhotoStep(session.File(), {0, PhotoStep::Kind::Put, photo.name, {}, photo.jpeg});
  RemoveUnlinked(session, work.loaded.Photos());
}

bool UpdatesJobDescription(Session& session, const DesignWork& work) {
  if (work.IsNew() || work.design.Description == work.loaded.Description ||
      !JobsBearDesign(session, work.loaded.DesignID))
    return false;
  return session.prompt.Ask("Update Job Record Design Description",
                            "Design Description has changed.\n\nYes - Update saved Job Records with new Description\n"
                            "No - Keep the Description used on saved Jobs Records");
}

}  // namespace

bool DesignWork::Changed() const {
  const auto fields = [](const Design& of) {
    return DesignFields().Cells(of, {FieldUse::Key, FieldUse::Typed, FieldUse::Derived});
  };
  if (fields(design) != fields(loaded)) return true;
  return PhotoNames() != loaded.Photos() ||
         std::ranges::any_of(photos, [](const LinkedPhoto& p) { return !p.jpeg.empty() || !p.from.empty(); });
}

std::vector<std::string> DesignWork::PhotoNames() const {
  std::vector<std::string> names;
  for (const LinkedPhoto& photo : photos) names.push_back(photo.name);
  return names;
}

Result<DesignWork> BeginDesign(const Session& session, std::string_view typed) {
  DesignWork work;
  work.design.DesignID = ReadDesignID(typed);
  if (auto free = CheckNewDesignID(session, work.design.DesignID); !free) return std::unexpected(free.error());
  return work;
}

std::optional<DesignWork> ReadDesignWork(const Session& session, std::string_view id) {
  const auto design = ReadDesign(session, id);
  if (!design) return std::nullopt;
  DesignWork work{*design, *design, {}};
  for (const std::string& name : design->Photos()) work.photos.push_back({.name = name});
  return work;
}

Result<DesignWork> OpenDesign(const Session& session, std::string_view typed) {
  if (const auto design = FindDesign(session, typed); !design) return std::unexpected(design.error());
  return *ReadDesignWork(session, ReadDesignID(typed));
}

std::string_view LengthUnitName(LengthUnit unit) {
  return unit == LengthUnit::Inch ? "in." : "mm.";
}

std::optional<LengthUnit> ParseLengthUnit(std::string_view text) {
  std::string_view name = TrimView(text);
  if (name.ends_with('.')) name.remove_suffix(1);
  if (EqualNoCase(name, "in")) return LengthUnit::Inch;
  if (EqualNoCase(name, "mm")) return LengthUnit::Millimetre;
  return std::nullopt;
}

double InInches(double length, LengthUnit unit) {
  return unit == LengthUnit::Inch ? length : length / kMillimetresPerInch;
}

std::string LengthText(double inches, LengthUnit unit) {
  return Fixed(unit == LengthUnit::Inch ? inches : inches * kMillimetresPerInch, LengthDecimals(unit));
}

Result<void> EnterDesignField(DesignWork& work, std::string_view field, std::string_view typed, LengthUnit unit) {
  Design& design = work.design;
  if (field == "Description") return EnterText(design.Description, typed, field, kDescriptionLength);
  if (field == "Notes") {
    design.Notes = std::string(typed);
    while (!design.Notes.empty() && std::string_view(" \t\r\n").contains(design.Notes.back())) design.Notes.pop_back();
    return {};
  }
  const auto number = TrimView(typed).empty() ? 0 : ParseNumber(typed);
  if (field == "Impressions") {
    if (!number || *number < 0 || *number > kMostImpressions || std::floor(*number) != *number)
      return std::unexpected(InvalidData("Impressions"));
    design.Impressions = static_cast<std::int32_t>(*number);
    return {};
  }
  if (field != "Length" && field != "Width")
    return Refuse("Design", fmt::format("{} is no field of a Design that can be set.", field), std::string(field));
  if (!number || *number < 0 || *number > kMostLength) return std::unexpected(InvalidData(field));
  float& member = field == "Length" ? design.Length : design.Width;
  if (LengthText(member, unit) != Fixed(*number, LengthDecimals(unit)) || !std::isfinite(member))
    member = static_cast<float>(InInches(*number, unit));
  return {};
}

Result<void> PutDesignColor(Session& session, DesignWork& work, const DesignColorEntry& entry) {
  const std::string* database = session.FindDatabase(entry.database);
  if (database == nullptr) return Refuse("Design", fmt::format("There is no Database {}.", entry.database), "IngDB");
  const std::string name = Upper(TrimView(entry.name));
  if (auto fits = CheckFits(*database); !fits) return fits;
  const auto quantity = ReadQuantity(entry);
  if (!quantity) return std::unexpected(quantity.error());
  const auto percent = ReadPercent(entry.percent);
  if (!percent) return std::unexpected(percent.error());
  std::vector<DesignColor> colors = work.design.Colors();
  const auto line =
      std::ranges::find_if(colors, [&](const DesignColor& color) { return EqualNoCase(color.IngName, name); });
  if (line == colors.end() && colors.size() == schema::kDesignSlots)
    return Refuse("Design", "Maximum Colors for a Design is 10", "IngName");
  ColorKind kind = entry.kind.value_or(ColorKind::Mix);
  const bool known = entry.kind && (kind == ColorKind::Mix ? MixColorExists(session, name, *database)
                                                           : BasicColorExists(session, name, *database));
  if (!known) {
    const auto found = KindOf(session, name, *database);
    if (!found) return std::unexpected(found.error());
    kind = *found;
  }
  DesignColor color;
  if (kind == ColorKind::Mix) {
    const auto mix = ReadMix(session, name, *database);
    color.IngName = mix->Color_Name;
    color.IngCCode = mix->Color_Code;
  } else {
    const auto basic = ReadBasic(session, name, *database);
    color.IngName = basic->Color_Name;
    color.IngCCode = basic->Color_Code;
  }
  color.IngType = static_cast<std::uint8_t>(kind);
  color.IngQty = *quantity;
  color.IngPercent = *percent;
  color.IngDB = *database;
  if (line == colors.end()) {
    colors.push_back(std::move(color));
  } else {
    *line = std::move(color);
  }
  work.design.SetColors(colors);
  return {};
}

std::vector<std::string> DesignColorNames(const Session& session, std::string_view database) {
  std::vector<std::string> names;
  Statement row = session.File().Prepare(
      fmt::format("SELECT Color_Name FROM {} UNION SELECT Color_Name FROM {} ORDER BY 1",
                  Quoted(session.Table(schema::Basic, database)), Quoted(session.Table(schema::Mix, database))));
  while (row.Step()) names.push_back(row.Text(0));
  return names;
}

void FollowRenames(DesignWork& work, const std::vector<Change>& changes) {
  const auto follow = [](Design& design, const Change& change) {
    if (change.kind == Change::Kind::Design) {
      if (EqualNoCase(design.DesignID, change.name)) design.DesignID = change.newName;
      return;
    }
    std::vector<DesignColor> colors = design.Colors();
    for (DesignColor& color : colors) {
      if (change.kind == Change::Kind::DatabaseList && EqualNoCase(color.IngDB, change.database))
        color.IngDB = change.newName;
      if (change.kind == ChangeKind(color.Kind()) && EqualNoCase(color.IngDB, change.database) &&
          EqualNoCase(color.IngName, change.name))
        color.IngName = change.newName;
    }
    design.SetColors(colors);
  };
  for (const Change& change : changes)
    if (change.what == Change::What::Renamed)
      for (Design* design : {&work.design, &work.loaded}) follow(*design, change);
}

void RemoveDesignColor(DesignWork& work, std::string_view name) {
  std::vector<DesignColor> colors = work.design.Colors();
  std::erase_if(colors, [&](const DesignColor& color) { return EqualNoCase(color.IngName, name); });
  work.design.SetColors(colors);
}

Result<PickedPhoto> PickPhoto(const PhotoMaker& maker, const std::filesystem::path& file) {
  auto name = ReadPhotoName(file.filename().string());
  if (!name) return std::unexpected(name.error());
  const std::string bytes = ReadFileBytes(file, kMostPhotoBytes + 1);
  if (bytes.size() > kMostPhotoBytes)
    return Refuse(std::string(kPhotoTitle), fmt::format("{} is too large for a photo.", file.string()), "PhotoName");
  auto jpeg = maker.Jpeg(bytes, file.filename().string());
  if (!jpeg) return std::unexpected(jpeg.error());
  return PickedPhoto{*std::move(name), *std::move(jpeg)};
}

Result<void> UsePhoto(Session& session, DesignWork& work, const PickedPhoto& picked) {
  const auto name = ReadPhotoName(picked.name);
  if (!name) return std::unexpected(name.error());
  if (Find(work, *name) != nullptr)
    return Refuse("Duplicate Design Photo",
                  "A photo with this name is already linked to this Design.\n\nGET another photo or RENAME it and try "
                  "USE again.",
                  "PhotoName");
  if (work.photos.size() >= kMostDesignPhotos)
    return Refuse(
        "Duplicate Design Photo",
        fmt::format("{} photos are linked to this Design.\n\nREMOVE unwanted photos, select GET && USE to add "
                    "new ones.",
                    kMostDesignPhotos),
        "PhotoName");
  LinkedPhoto photo{.name = *name, .jpeg = picked.jpeg};
  const auto file = PhotoFile(session, *name);
  if (file) photo.name = file->filename().string();
  if (file && IsSamePicture(session, photo)) {
    photo.jpeg.clear();
  } else if (file) {
    const std::string users = PhotoUsersText(session, *name);
    if (!session.prompt.Ask("Duplicate Library Photo",
                            "A photo with this name exists in the Designs Photo Library.\n\n" +
                                (users.empty() ? "" : fmt::format("It is the picture of {}.\n\n", users)) +
                                "Yes - USE this photo and copy over the one in the Library.\n"
                                "No - RENAME this photo and try USE again.",
                            Answer::No))
      return Decline("Duplicate Library Photo", "PhotoName");
    photo.copyOver = true;
  }
  work.photos.push_back(std::move(photo));
  return {};
}

Result<void> RemovePhoto(Session& session, DesignWork& work, std::string_view name) {
  const LinkedPhoto* photo = Find(work, name);
  if (photo == nullptr) return std::unexpected(PhotoNotLinked(name));
  if (!session.prompt.Ask("Remove Design Photo", "Remove picture from this Design", Answer::No))
    return Decline("Remove Design Photo");
  work.photos.erase(work.photos.begin() + (photo - work.photos.data()));
  return {};
}

Result<void> RenamePhoto(Session& session, DesignWork& work, std::string_view name, std::string_view typed) {
  LinkedPhoto* photo = Find(work, name);
  if (photo == nullptr) return std::unexpected(PhotoNotLinked(name));
  const auto newName = ReadPhotoName(typed);
  if (!newName) return std::unexpected(newName.error());
  if (EqualNoCase(*newName, photo->name))
    return Refuse("Photo Rename", "Cannot rename a photo with the same name.\n\nPlease enter a different name.",
                  "PhotoName");
  const std::string source = photo->from.empty() ? photo->name : photo->from;
  const bool isNew = !photo->jpeg.empty();
  if (Find(work, *newName) != nullptr || PhotoFile(session, *newName))
    return Refuse("Photo Rename",
                  fmt::format("A photo named {} exists in the Designs Photo Library.\n\nPlease enter a different name.",
                              *newName),
                  "PhotoName");
  if (!isNew && !PhotoFile(session, source)) return std::unexpected(MissingPhoto(source));
  bool follow = false;
  if (!isNew) {
    std::vector<std::string> others = DesignsWithPhoto(session, source);
    std::erase_if(others, [&](const std::string& id) { return EqualNoCase(id, work.loaded.DesignID); });
    if (!others.empty())
      follow = session.prompt.Ask(
          "Photo Rename",
          fmt::format("Other Designs use the Photo named: {}\n\nUpdate those Designs to use: {} ?", source, *newName),
          Answer::No);
  }
  photo->name = *newName;
  photo->copyOver = false;
  if (!isNew) {
    photo->from = source;
    photo->othersFollow = follow;
  }
  return {};
}

bool IsPhotoMissing(const Session& session, const LinkedPhoto& photo) {
  return photo.jpeg.empty() && !PhotoFile(session, photo.from.empty() ? photo.name : photo.from);
}

Refusal MissingPhoto(const std::string& name) {
  return {"Design Photos - Missing",
          fmt::format("Photo\n\n{}\n\ncan't be found.\n\nPress REMOVE then use GET to obtain a new photo.", name),
          "PhotoName", false};
}

Result<void> SaveDesign(Session& session, DesignWork& work) {
  if (auto allowed = RequireAct(session, Act::Work); !allowed) return allowed;
  if (work.IsNew()) {
    if (auto free = CheckNewDesignID(session, work.design.DesignID); !free) return free;
  } else if (!DesignExists(session, work.design.DesignID)) {
    return Refuse("Design", fmt::format("Design ID: {} is not on file.", work.design.DesignID), "DesignID");
  }
  RunPhotoSteps(session);
  if (auto free = CheckPlaces(session, work); !free) return free;
  const bool jobsFollow = UpdatesJobDescription(session, work);
  Design& design = work.design;
  const bool isNew = work.IsNew();
  if (isNew) design.Created = session.clock.Today();
  design.LastModified = session.clock.Today();
  design.PhotoSet = NameSet(work.PhotoNames());
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::SaveDesign,
                fmt::format("{} the Design {}", isNew ? "Add" : "Change", design.DesignID));
  design.key = WriteDesign(session, design);
  PlanPhotos(session, transaction, work);
  if (jobsFollow) RewriteJobDesignDesc(session, design.DesignID, design.Description);
  FollowLastUsed(session, design.DesignID);
  transaction.Note(
      {Change::Kind::Design, "", design.DesignID, isNew ? Change::What::Added : Change::What::Updated, {}});
  if (!NextPhotoStep(session.File())) step.Keep();  // a photo in the library is not put back
  transaction.Commit();
  work = *ReadDesignWork(session, design.DesignID);
  RunPhotoSteps(session);
  return {};
}

Result<void> DeleteDesign(Session& session, std::string_view typed) {
  if (auto allowed = RequireAct(session, Act::Work); !allowed) return allowed;
  const auto design = FindDesign(session, typed);
  if (!design) return std::unexpected(design.error());
  if (!session.prompt.Ask("Delete Design", fmt::format("Delete Design ID: {}", design->DesignID), Answer::No))
    return Decline("Delete Design");
  RunPhotoSteps(session);
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::DeleteDesign, fmt::format("Delete the Design {}", design->DesignID));
  DeleteDesignRow(session, *design);
  RemoveUnlinked(session, design->Photos());
  transaction.Note({Change::Kind::Design, "", design->DesignID, Change::What::Deleted, {}});
  if (!NextPhotoStep(session.File())) step.Keep();
  transaction.Commit();
  RunPhotoSteps(session);
  return {};
}

}  // namespace vellumark
