#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/changes.h"
#include "core/base/refusal.h"
#include "core/base/seams.h"
#include "core/datafile/engine.h"
#include "core/datafile/schema.h"

namespace vellumark {

struct SupportFiles;

/// What every rule works on: the open Data File, the current Database, the settings in force, the user and the rights,
/// and the seams to ask, show and tell through. One per process; passed as the first argument, never global.
struct Session {
  Session(Prompt& promptSeam, Progress& progressSeam, const Clock& clockSeam);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Prompt& prompt;
  Progress& progress;
  const Clock& clock;
  Changes changes;

  std::filesystem::path DataFolder;     ///< folder of the Support Files
  std::filesystem::path BackupsFolder;  ///< DataFolder/Backups
  std::filesystem::path ProgramFolder;  ///< templates and the default Data File
  std::filesystem::path ShippedFolder;  ///< what came with the program, to read only; may be empty
  std::unique_ptr<SupportFiles> support;

  std::string DataFileName;               ///< full path of the current Data File; empty when none is known
  std::unique_ptr<Database> DataFileDB;   ///< the open Data File
  std::string CurrentDatabase;            ///< the table prefix
  std::vector<std::string> databaseList;  ///< the Databases of the open file in menu order
  bool DataFileOpen = false;
  bool RecordsetsOpen = false;
  bool LoadingDatabase = false;
  bool ArchiveView = false;    ///< an archive or backup copy: every writing command refuses
  std::string StartupMessage;  ///< why no Data File is open

  std::string CurrentUser;  ///< empty when the login feature is off
  bool IsAdminUser = true;  ///< true when the login feature is off
  std::uint8_t Perm_MasterFormula = 1;
  std::uint8_t Perm_Costs = 2;  ///< 0 hides prices, 1 shows them, 2 lets them be edited
  std::uint8_t Perm_VOCHAP = 1;
  std::uint8_t Perm_BackupRestore = 1;
  std::uint8_t Perm_Export = 1;
  std::uint8_t Perm_Advanced = 1;
  std::uint8_t Perm_Options = 1;
  std::uint8_t Perm_Databases = 1;
  std::uint8_t Perm_DBTools = 1;

  std::int32_t BatchNumber = 1;  ///< the next Batch number
  std::int32_t ItemNumber = 1;

  std::string FullName;    ///< long name of the current Database
  std::string Disclaimer;  ///< of a Database made from guides, while its template is there
  std::string TradeMark;
  std::string TemplateFile;  ///< empty for a plain Database, or when the template is not there
  std::unique_ptr<Database> templateDB;

  int UMI = 1;             ///< inventory unit, 1 to 4
  int UMF = 1;             ///< Batch unit, 1 to 4
  int InvLotTracking = 1;  ///< 1 when Lotted Inventory is in use
  int AutoFillText = 1;
  int DecimalPlaces = 2;  ///< decimals of unit costs and prices: 2, 3 or 4
  int NameLength = 30;    ///< longest name and code, 10 to 30
  std::string PrinterFont;

  bool CostChanged = false;  ///< a Basic cost changed since the roll-ups were last rebuilt
  bool VOCChanged = false;
  bool HAPChanged = false;

  std::uint8_t ScalePowered = 0;

  /// The open file; throws std::logic_error when none is open.
  Database& File() const;
  /// The Database of the file by that name, as the file spells it, the current one for an empty name; null when there
  /// is none.
  const std::string* FindDatabase(std::string_view name) const;
  /// The name of one of the current Database's tables, or of `database`'s when that is not empty.
  std::string Table(const vellumark::Table& table, std::string_view database = {}) const;
  /// That name as it stands in a statement.
  std::string QuotedTable(const vellumark::Table& table, std::string_view database = {}) const;
};

/// Settings into session state: UMI, UMF, InvLotTracking, AutoFillText, DecimalPlaces, UDCNameCCodeLen, PrinterFont.
void ReadSettings(Session& session);

/// The refusal of every writing command while an archive or backup copy is open.
Result<void> RequireWritable(const Session& session);

}  // namespace vellumark
