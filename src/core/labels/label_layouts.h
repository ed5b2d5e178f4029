#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"
#include "core/settings/support_file.h"

namespace vellumark {

/// What a label is for. Each kind has a file of layouts and a list of their names of its own.
enum class LabelKind { Label, Hazard, Formula };

/// The names of the layouts in the order of their list.
std::vector<std::string> LabelLayouts(const Session& session, LabelKind kind);
/// The name as the list has it, or the refusal that there is no such layout.
Result<std::string> FindLabelLayout(const Session& session, LabelKind kind, std::string_view name);

/// The value of a layout's key; empty when it has none.
std::string LabelSetting(const Session& session, LabelKind kind, std::string_view layout, std::string_view key);
/// The same as a whole number, 0 where it is none.
int LabelNumber(const Session& session, LabelKind kind, std::string_view layout, std::string_view key);
/// Writes a value. Refused where a layout of the kind has no such key, and for what the key cannot be.
Result<void> SaveLabelSetting(Session& session, LabelKind kind, std::string_view layout, std::string_view key,
                              std::string_view value);

/// All records of a layout, in the order of a new one; keys that it lacks are told as empty.
std::vector<SupportRecord> LabelRecords(const Session& session, LabelKind kind, std::string_view layout);
/// Puts the records in the place of those of a layout that is there, after a question.
Result<void> SaveLabelLayout(Session& session, LabelKind kind, std::string_view layout,
                             const std::vector<SupportRecord>& design);
/// Adds a layout with every key, as the design has it and else as in a new layout. A name that is there is asked about
/// and then gets the design.
Result<void> AddLabelLayout(Session& session, LabelKind kind, std::string_view name,
                            const std::vector<SupportRecord>& design);
Result<void> CopyLabelLayout(Session& session, LabelKind kind, std::string_view layout, std::string_view name);
/// After a question.
Result<void> DeleteLabelLayout(Session& session, LabelKind kind, std::string_view layout);

}  // namespace vellumark
