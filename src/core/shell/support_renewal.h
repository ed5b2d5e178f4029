#pragma once

#include "core/shell/startup.h"

namespace vellumark {

/// The Data File that new settings name: the one that is known. One that is gone gives way to the default one; where none
/// was known, none is.
std::string DataFileToKeep(const Session& session);

/// Puts fresh default files in the place of all Support Files, after asking: child windows close, the setup window
/// comes, the Data File stays the stored one, the settings are read again and the ladder runs. False when the operator
/// declined. Refused to a user without the right to the Advanced menu.
Result<bool> CreateNewSupportFiles(Session& session, StartupWindows& windows);

}  // namespace vellumark
