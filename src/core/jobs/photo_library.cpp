#include "core/jobs/photo_library.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <system_error>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/datafile/photo_steps.h"
#include "core/datafile/references.h"
#include "core/jobs/designs.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEnd = ".jpg";
constexpr std::size_t kLongestName = 100;
constexpr std::string_view kForbidden = "<>\"/\\|?*:";

bool IsPhoto(const fs::directory_entry& entry) {
  std::error_code ignored;
  return EqualNoCase(entry.path().extension().string(), kEnd) && !entry.path().filename().string().starts_with('.') &&
         entry.is_regular_file(ignored);
}

std::vector<std::string> DesignsOf(Database& file, std::string_view name) {
  std::vector<std::string> designs;
  if (!file.TableExists("Designs")) return designs;
  Statement row =
      file.Prepare("SELECT DesignID FROM Designs WHERE PhotoSet LIKE ? ESCAPE '\\' ORDER BY DesignID, RowKey");
  row.Bind(1, NameSetPattern(name));
  while (row.Step()) designs.push_back(row.Text(0));
  return designs;
}

fs::path PlaceOf(const Session& session, const std::string& name) {
  return PhotoFile(session, name).value_or(PhotoFolder(session) / name);
}

void Run(const Session& session, const PhotoStep& step) {
  const fs::path place = PlaceOf(session, step.name);
  if (step.kind == PhotoStep::Kind::Remove) {
    // Whoever links it by now, here or in another Data File of the folder, keeps it.
    if (!DesignsWithPhoto(session, step.name).empty() || !DataFilesWithPhoto(session, step.name).empty()) return;
    std::error_code error;
    if (!fs::remove(place, error) && error) throw Failure(place.string(), error.message());
    SyncFolder(PhotoFolder(session));
    return;
  }
  MakeFolder(PhotoFolder(session));
  if (step.kind == PhotoStep::Kind::Put) {
    ReplaceFile(place, step.bytes, Readers::Group);
  } else if (const auto source = PhotoFile(session, step.source)) {
    ReplaceFile(place, ReadFileBytes(*source), Readers::Group);
  }
}

}  // namespace

fs::path PhotoFolder(const Session& session) {
  return fs::path(session.DataFileName).parent_path() / "DesignPhotos";
}

std::vector<std::string> LibraryPhotos(const Session& session) {
  std::vector<std::string> names;
  std::error_code missing;
  for (fs::directory_iterator entry(PhotoFolder(session), missing), end; !missing && entry != end;
       entry.increment(missing))
    if (IsPhoto(*entry)) names.push_back(entry->path().filename().string());
  std::ranges::sort(names, [](const auto& a, const auto& b) { return CompareNoCase(a, b) < 0; });
  return names;
}

std::optional<fs::path> PhotoFile(const Session& session, std::string_view name) {
  std::error_code error;
  fs::path exact = PhotoFolder(session) / std::string(name);
  if (name.empty()) return std::nullopt;
  if (fs::is_regular_file(exact, error)) return exact;
  for (const std::string& photo : LibraryPhotos(session))
    if (EqualNoCase(photo, name)) return PhotoFolder(session) / photo;
  return std::nullopt;
}

Result<std::string> ReadPhotoName(std::string_view typed) {
  std::string name = Trim(typed);
  for (const std::string_view end : {".jpg", ".jpeg", ".png"})
    if (name.size() > end.size() && EqualNoCase(std::string_view(name).substr(name.size() - end.size()), end)) {
      name.resize(name.size() - end.size());
      break;
    }
  name = Trim(name);
  if (name.empty()) return Refuse("Photo Name Needed", "Please enter a name for the photo.", "PhotoName");
  const bool usable =
      IsUtf8(name) && name.front() != '.' && name.back() != '.' &&
      std::ranges::none_of(name, [](char c) { return static_cast<unsigned char>(c) < ' ' || kForbidden.contains(c); });
  if (!usable)
    return Refuse(
        "Photo Name",
        fmt::format("{} cannot be the name of a photo.\n\nIt may not hold {} and not begin or end with a full "
                    "stop.",
                    name, kForbidden),
        "PhotoName");
  if (CharCount(name) > kLongestName)
    return Refuse("Photo Name", fmt::format("The name of a photo has {} characters at most.", kLongestName),
                  "PhotoName");
  return name.append(kEnd);
}

bool ContainsPhoto(const std::vector<std::string>& names, std::string_view name) {
  return std::ranges::any_of(names, [&](const std::string& other) { return EqualNoCase(other, name); });
}

std::vector<std::string> DesignsWithPhoto(const Session& session, std::string_view name) {
  return DesignsOf(session.File(), name);
}

std::vector<std::string> DataFilesWithPhoto(const Session& session, std::string_view name) {
  std::vector<std::string> files;
  const fs::path own = RealPath(session.DataFileName);
  std::error_code error;
  for (fs::directory_iterator entry(own.parent_path(), error), end; !error && entry != end; entry.increment(error)) {
    const fs::path& path = entry->path();
    std::error_code ignored;
    if (!EqualNoCase(path.extension().string(), ".vkd") || !fs::is_regular_file(path, ignored)) continue;
    if (fs::equivalent(path, own, ignored)) continue;
    bool uses = true;
    try {
      // What is no Data File of ours links nothing.
      uses = Database::IsDatabaseFile(path) && !DesignsOf(*Database::Open(path, OpenMode::ReadOnly), name).empty();
    } catch (const Failure&) {
      uses = true;  // somebody works in it: his photos must not go
    }
    if (uses) files.push_back(path.filename().string());
  }
  std::ranges::sort(files);
  return files;
}

std::string PhotoUsersText(const Session& session, std::string_view name, std::string_view exceptDesign) {
  std::string text;
  const auto add = [&](const std::string& user) { text += (text.empty() ? "" : ", ") + user; };
  for (const std::string& design : DesignsWithPhoto(session, name))
    if (!EqualNoCase(design, exceptDesign)) add(design);
  for (const std::string& file : DataFilesWithPhoto(session, name)) add("the Data File " + file);
  return text;
}

void RunPhotoSteps(Session& session) {
  while (const auto step = NextPhotoStep(session.File())) {
    Run(session, *step);
    PhotoStepDone(session.File(), *step);
  }
}

std::vector<LibraryPhoto> ListLibrary(const Session& session) {
  const auto less = [](const std::string& a, const std::string& b) { return CompareNoCase(a, b) < 0; };
  std::map<std::string, LibraryPhoto, decltype(less)> photos(less);
  for (const std::string& name : LibraryPhotos(session)) {
    std::error_code error;
    const auto size = fs::file_size(PhotoFolder(session) / name, error);
    photos.emplace(name, LibraryPhoto{name, error ? 0 : static_cast<std::int64_t>(size), false, {}});
  }
  Statement row =
      session.File().Prepare("SELECT DesignID, PhotoSet FROM Designs WHERE PhotoSet <> '' ORDER BY DesignID");
  while (row.Step())
    for (const std::string& name : NamesInSet(row.TextView(1)))
      photos.try_emplace(name, LibraryPhoto{name, 0, true, {}}).first->second.designs.push_back(row.Text(0));
  std::vector<LibraryPhoto> lines;
  for (auto& [name, photo] : photos) lines.push_back(std::move(photo));
  return lines;
}

}  // namespace vellumark
