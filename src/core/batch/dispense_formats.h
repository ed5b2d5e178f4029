#pragma once

#include <string>
#include <string_view>

#include "core/batch/dispense.h"

namespace vellumark {

// The formats of dispenser files. Lines end with CR LF; line ends inside texts are blanks in all of them. For the
// procedures of this room.

/// Keys and values by tabs.
std::string ExportDataTo_GFI_SPEC(const Session& session, const BatchRecord& record, const DispenseJob& job);
/// The same as nested objects; the keys "M_Cond=" and "Remission=" have their equal signs here too, which the reader of
/// these files wants.
std::string ExportDataTo_JSON(const Session& session, const BatchRecord& record, const DispenseJob& job);

}  // namespace vellumark
