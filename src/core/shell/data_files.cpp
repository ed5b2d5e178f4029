#include "core/shell/data_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include "core/base/files.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/datafile/lifecycle.h"
#include "core/session/rights.h"
#include "core/session/settings.h"
#include "core/shell/previous_file.h"
#include "core/shell/startup.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kExtension = ".vkd";
constexpr std::string_view kFileNameTitle = "File Name";

// Folders that stand beside Data Files, wherever those are.
constexpr std::array<std::string_view, 2> kFoldersBeside{"Auto Backup", "DesignPhotos"};

fs::path Absolute(const fs::path& path) {
  return fs::absolute(path).lexically_normal();
}

bool IsInside(const fs::path& path, const fs::path& folder) {
  if (folder.empty()) return false;
  const fs::path outer = Absolute(folder / "");
  const fs::path inner = Absolute(path / "");
  return inner.string().starts_with(outer.string());
}

bool IsSameFile(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return !a.empty() && fs::equivalent(a, b, ignored);
}

void TakeAsDefault(Session& session, const std::string& name) {
  session.DataFileName = name;
  StoreDefaultDataFile(session, name);
}

// What can be known of the other file is known before the open one is closed.
void TryToOpen(const fs::path& path) {
  const bool archive = IsArchiveCopy(ReadFileVersion(path), path);
  Database::Open(path, archive ? OpenMode::ReadOnly : OpenMode::Exclusive);
}

void ChangeToFile(Session& session, const fs::path& path, OpeningWindows& windows) {
  if (!(session.DataFileOpen && IsSameFile(path, session.DataFileName))) TryToOpen(path);
  PreviousFile previous(session, windows);
  try {
    previous.Leave();
    TakeAsDefault(session, path.string());
    OpenDataFile(session, windows);
  } catch (const std::exception&) {
    previous.Return();
    throw;
  }
}

// Photos of Designs lie beside the file; a copy that may only be looked at gets no new ones.
void MakePhotoFolder(const Session& session) {
  const fs::path folder = fs::path(session.DataFileName).parent_path() / "DesignPhotos";
  if (session.ArchiveView) return;
  MakeFolder(folder);
}

bool CheckAndOpen(Session& session, const fs::path& path, OpeningWindows& windows) {
  // The check compares names to know the open file.
  const bool same = session.DataFileOpen && IsSameFile(path, session.DataFileName);
  const fs::path file = same ? fs::path(session.DataFileName) : path;
  const auto checked = CheckDataFile(session, file.string(), windows);
  if (!checked) return false;
  ChangeToFile(session, *checked, windows);
  MakePhotoFolder(session);
  return true;
}

void MakeAndOpen(Session& session, const fs::path& path, OpeningWindows& windows) {
  PreviousFile previous(session, windows);
  bool made = false;
  try {
    CreateDataFile(session, path, windows);
    made = true;
    OpenDataFile(session, windows);
  } catch (const std::exception&) {
    previous.Return();
    std::error_code ignored;
    if (made) fs::remove(path, ignored);
    throw;
  }
  MakePhotoFolder(session);
}

fs::path WithExtension(fs::path path) {
  if (!EqualNoCase(path.extension().string(), kExtension)) path += kExtension;
  return path;
}

void CopyIntoPlace(const fs::path& from, const fs::path& to) {
  FileBeside place(to, Readers::Group);
  std::error_code error;
  fs::copy_file(from, place.Path(), fs::copy_options::overwrite_existing, error);
  if (error) throw Failure(from.string(), "cannot be copied: " + error.message());
  place.TakeFreePlace();
}

// Those that Designs of the file may name. One that is there already belongs to another file.
void CopyPhotos(const fs::path& from, const fs::path& to) {
  std::error_code error;
  if (!fs::is_directory(from / "DesignPhotos", error)) return;
  MakeFolder(to / "DesignPhotos");
  for (const fs::directory_entry& photo : fs::directory_iterator(from / "DesignPhotos", error))
    if (const fs::path copy = to / "DesignPhotos" / photo.path().filename(); photo.is_regular_file() && !Stands(copy))
      CopyIntoPlace(photo.path(), copy);
  if (error) throw Failure((from / "DesignPhotos").string(), "cannot be read: " + error.message());
}

Result<fs::path> PathForRename(const Session& session, std::string_view typedName) {
  const fs::path current(session.DataFileName);
  const std::string name = Trim(typedName);
  const auto refuse = [](std::string text) {
    return Refuse(std::string(kFileNameTitle), std::move(text), "txtFileName");
  };
  if (name.empty()) return refuse("Enter a file name         ");
  if (EqualNoCase(name, current.stem().string())) return refuse("New file name is the same as the current name");
  if (name.find('/') != std::string::npos || name.find('\0') != std::string::npos)
    return refuse("A file name cannot hold the character /");
  fs::path renamed = current.parent_path() / (name + std::string(kExtension));
  if (Stands(renamed)) return refuse("A file with name already exist, choose another name");
  return renamed;
}

}  // namespace

bool OpenRecentDataFile(Session& session, OpeningWindows& windows) {
  try {
    if (const auto checked = CheckDataFile(session, session.DataFileName, windows)) {
      if (*checked != session.DataFileName) TakeAsDefault(session, *checked);
      OpenDataFile(session, windows);
    }
  } catch (const Failure& failure) {
    CloseDataFile(session, windows);
    session.StartupMessage = failure.subject + "\n" + failure.cause + ".";
    windows.ShowNewDataFile(session.StartupMessage);
  }
  return session.DataFileOpen;
}

Result<bool> OpenOtherDataFile(Session& session, const fs::path& path, OpeningWindows& windows) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Advanced); !allowed)
    return std::unexpected(allowed.error());
  const fs::path file = Absolute(path);
  if (IsOwnFolder(session, file.parent_path()) &&
      !session.prompt.Ask("Open Data File",
                          "Continue opening this file?\nCertain Vellumark features may rely upon this file.",
                          Answer::No))
    return false;
  return CheckAndOpen(session, file, windows);
}

Result<fs::path> NewDataFile(Session& session, const fs::path& path, OpeningWindows& windows) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Advanced); !allowed)
    return std::unexpected(allowed.error());
  fs::path file = WithExtension(Absolute(path));
  if (auto free = CheckNewPlace(session, file); !free) return std::unexpected(free.error());
  if (Stands(file)) file = NextFreeName(file);
  MakeAndOpen(session, file, windows);
  return file;
}

std::optional<fs::path> BringOlderFileOver(Session& session, const fs::path& old, std::string_view found) {
  const Message offer{"Data File",
                      fmt::format("{}\n\n{}\n\nThat database will now be copied for use with The Vellumark 5.0.", found,
                                  old.string()),
                      Buttons::OkCancel, Icon::Information, Answer::Ok};
  if (session.prompt.Show(offer) != Answer::Ok) return std::nullopt;
  try {
    const ProgressRun progress(session.progress, "Copying File ...");
    MakeFolder(session.ProgramFolder);
    fs::path copy = WithExtension(session.ProgramFolder / old.stem());
    if (Stands(copy)) copy = NextFreeName(copy);
    CopyIntoPlace(old, copy);
    CopyPhotos(old.parent_path(), session.ProgramFolder);
    return copy;
  } catch (const Failure& failure) {
    session.prompt.Tell("Data File", fmt::format("{}\n{}.", failure.subject, failure.cause), Icon::Exclamation);
    return std::nullopt;
  }
}

Result<bool> CreateDefaultDataFile(Session& session, OpeningWindows& windows) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Advanced); !allowed)
    return std::unexpected(allowed.error());
  fs::path file = session.ProgramFolder / kDefaultDataFile;
  if (Stands(file)) {
    if (session.prompt.Ask("Found existing Vellumark Data File",
                           "'Yes' -  Use the found data file.\n'No' - Create a new data file."))
      return CheckAndOpen(session, file, windows);
    file = NextFreeName(file);
  }
  MakeFolder(session.ProgramFolder);
  MakeAndOpen(session, file, windows);
  return true;
}

Result<void> CheckRenameDataFile(const Session& session) {
  if (auto allowed = RequireCommandRight(session, CommandRight::Advanced); !allowed) return allowed;
  for (const std::string_view word : {"admin", "backup"})
    if (FindNoCase(session.DataFileName, word) != std::string::npos)
      return Refuse("Data File Rename", "Cannot Rename Data Files that contain\nkey words Admin or Backup");
  return {};
}

Result<void> RenameDataFile(Session& session, std::string_view typedName, OpeningWindows& windows) {
  if (auto allowed = CheckRenameDataFile(session); !allowed) return allowed;
  const auto renamed = PathForRename(session, typedName);
  if (!renamed) return std::unexpected(renamed.error());
  const fs::path before(session.DataFileName);
  PreviousFile previous(session, windows);
  CloseDataFile(session, windows);
  try {
    {
      const ProgressRun progress(session.progress, "Renaming File ...");
      RenameToFree(before, *renamed);
    }
    TakeAsDefault(session, renamed->string());
    OpenDataFile(session, windows);
  } catch (const std::exception&) {
    if (!Stands(before) && Stands(*renamed)) RenameToFree(*renamed, before);
    previous.Return();
    throw;
  }
  return {};
}

Result<void> CheckNewPlace(const Session& session, const fs::path& file) {
  const fs::path folder = Absolute(file).parent_path();
  if (IsOwnFolder(session, folder))
    return Refuse("New Data File",
                  fmt::format("{}\nSelected folder for the new Data file is dedicated to Vellumark use only.\n"
                              "Choose another folder to create a new Data file in.",
                              folder.string()),
                  "PATH");
  if (IsArchiveCopy(kFileVersion, file))
    return Refuse("New Data File",
                  fmt::format("{}\nA Data File of this name or in this folder counts as an archive or backup copy, which can be "
                              "viewed, but cannot be modified.\nChoose another name or folder.",
                              file.string()),
                  "PATH");
  return {};
}

bool IsOwnFolder(const Session& session, const fs::path& folder) {
  if (IsInside(folder, session.DataFolder) || IsInside(folder, session.BackupsFolder)) return true;
  if (!session.ProgramFolder.empty() && IsInside(folder, session.ProgramFolder / "Converted")) return true;
  return std::ranges::any_of(folder, [](const fs::path& part) {
    return std::ranges::any_of(kFoldersBeside, [&](std::string_view own) { return EqualNoCase(part.string(), own); });
  });
}

}  // namespace vellumark
