#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/session/session.h"

namespace vellumark {

/// What opening a Data File asks of the windows, or of whatever stands in their place.
class OpeningWindows {
 public:
  virtual ~OpeningWindows() = default;
  /// `NewDataFileForm`, modal, with `StartupMessage`; the program then comes to the front.
  virtual void ShowNewDataFile(const std::string& startupMessage) = 0;
  /// `UpdateDataFileForm` on a file of an older version, or of an earlier program; the file that was brought up to date,
  /// which of a Jet file is another one. Nothing when none was.
  virtual std::optional<std::filesystem::path> ShowUpdateDataFile(const std::filesystem::path& path, int fileVersion) = 0;
  /// The login; only called for a file that has users. Ends with a user in the session or with the process.
  virtual void Login(Session& session) = 0;
  /// The program's and the main window's caption.
  virtual void SetCaption(const std::string& caption) = 0;
  /// The suggestion to archive old records, after a file was opened.
  virtual void SuggestArchive(Session& session) = 0;
  /// The backup of a closed Data File that is about to change hands: `DataFileName` still names it.
  virtual void ShutdownBackup(Session& session, const std::string& label) = 0;
};

/// The file check: the file that may be opened, which is `path` or, of a Jet file that was brought up to date, the new
/// one. Where there is none `StartupMessage` says why and was shown, in `NewDataFileForm` or, when a usable Data File is
/// at hand, in a message. Throws Failure for a file that cannot be read.
std::optional<std::string> CheckDataFile(Session& session, const std::string& path, OpeningWindows& windows);

/// Opens `DataFileName`: the file, its Databases, the login, the current Database and its record sets. A new file gets
/// its first Database here. A link is followed: `DataFileName` names the real file then. When the open fails the state
/// is as before.
void OpenDataFile(Session& session, OpeningWindows& windows);

/// Safe to call on a half-open file.
void CloseDataFile(Session& session, OpeningWindows& windows);

enum class FirstContent { Guides, Empty };

/// Makes a new file with its first Database and the default of it; an open one is closed before. All of it is built
/// beside its place: a kill or a Failure leaves no file of that name. The caller opens it.
void CreateDataFile(Session& session, const std::filesystem::path& path, OpeningWindows& windows,
                    const std::string& database = "PANTONE", FirstContent content = FirstContent::Guides);

/// Makes a Data File the one that the next start opens. That it cannot be stored is told, and ends nothing.
void StoreDefaultDataFile(Session& session, const std::string& name);

/// Opens the session's Data File and current Database again, whatever was done to the file meanwhile: Database and user
/// stay, nobody logs in. After a Failure no file is open.
void ReopenWorkingSets(Session& session);

/// Compacts the open file in place; Database and user stay.
void CompactDataFile(Session& session);
/// What is in force of one Database: its texts, and its template. Made of `CurrentDatabase`
/// beside what the session has, so that a failure changes nothing there.
class OpenedDatabase {
 public:
  explicit OpenedDatabase(Session& session);
  /// Comes into force; what was in force is kept here for the way back.
  void Exchange(Session& session);

 private:
  bool open_ = true;
  std::string fullName_;
  std::string disclaimer_;
  std::string tradeMark_;
  std::string templateFile_;
  std::unique_ptr<Database> template_;
};

/// Opens `CurrentDatabase`. After a failure what was in force before is so still.
void OpenDatabase(Session& session);
/// Makes `name` current and opens it; with `remember` it is written to the file as the current one. Refused when the
/// file has no Database of that name.
Result<void> ChangeDatabase(Session& session, std::string_view name, bool remember = true);

/// The first Database of a new file, "PANTONE" unless named: of the first guides of the template, or empty. Where there
/// is no template that could be used it is made empty, and the operator is told how to get one.
void MakeFirstDatabase(Session& session, const std::string& name = "PANTONE",
                       FirstContent content = FirstContent::Guides);

/// "Version 5.0.0".
std::string VersionCaption();

}  // namespace vellumark
