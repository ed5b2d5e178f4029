#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"
#include "core/settings/settings.h"

namespace vellumark {

// The one door to the settings for whoever has a session: read and written by what the catalogue tells of them.

/// What stands on file, of any key, for whoever shows it as it is; empty when the key is not there.
std::string StoredText(const Session& session, std::string_view key);

/// The value in force: `GetSetting(session, setting::UMI)`, `setting::QuickInfoField[3]`,
/// `setting::SortCol.Of("Reorder")`. Looked up at each call, so that two windows never disagree.
template <class T>
T GetSetting(const Session& session, const NamedSetting<T>& named) {
  return named.Of(StoredText(session, named.key));
}
template <class T>
T GetSetting(const Session& session, const Setting<T>& single) {
  return GetSetting(session, single.Named());
}

/// Writes values in one step, all of them or none, takes them into the session and tells of a change of Settings:
/// `StoreSettings(session, {setting::UMI.To(3), setting::SortCol.Of("Reorder").To(2)})`. A key that is not on file yet
/// is added at its end.
void StoreSettings(Session& session, const std::vector<SettingText>& values);

/// `InvCutoff` in force. What is no number on file counts as half a pound in the inventory unit, and what is below zero
/// as zero.
float InvCutoffInForce(const Session& session);

/// Tells, in one message, of the values on file that mean nothing and so count as their default. Nothing when all do.
void TellUnusableSettings(Session& session);

}  // namespace vellumark
