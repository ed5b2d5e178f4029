#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/session/session.h"

namespace vellumark {

/// A machine that doses ink by files which its software finds in a folder.
struct DispenserRow {
  std::string Name;
  std::string Manufacturer;  ///< the code of the format
  std::string Drive;
  std::string Pathway;   ///< the folder
  std::string FileType;  ///< ".txt"
  bool Additives = false;
  bool Recycles = false;
};

struct DispenserFormat {
  std::string_view code;
  std::string_view extension;
};
/// "FGI", "SPK", "JSON txt", "JSON", "NFL", "XNI".
std::span<const DispenserFormat> DispenserFormats();

/// All of them by name.
std::vector<DispenserRow> ReadDispensers(const Session& session);
std::optional<DispenserRow> ReadDispenser(const Session& session, std::string_view name);
ListTable ListDispensers(const Session& session);

/// Refuses an empty name ("No Dispenser Name"), one that stands already ("Duplicate Name"), an unknown format and a
/// folder that is not there or whose path is too long to be kept. Tells that it was saved.
Result<void> AddDispenser(Session& session, std::string_view name, std::string_view format, std::string_view folder);
/// Tells that they were removed. Refuses a name that no dispenser has.
Result<void> RemoveDispensers(Session& session, const std::vector<std::string>& names);
/// The choice of a send, kept for the next.
void StoreDispenserChoice(Session& session, std::string_view name, bool additives, bool recycles);

/// That the folder of a dispenser that was chosen is there.
Result<void> CheckDispenserFolder(const DispenserRow& dispenser);
/// That there is any: "Add a Dispenser".
Result<void> CheckAnyDispenser(const Session& session);

}  // namespace vellumark
