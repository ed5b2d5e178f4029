#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

// Many colours renamed by one rule.

enum class NameChange { Prefix, Suffix, Replace };

/// The rule as it stands in the fields: `text` is the prefix, the suffix or what is to be found; `replacement` may be
/// empty.
struct BulkRename {
  ColorKind kind = ColorKind::Mix;
  NameChange change = NameChange::Prefix;
  std::string text;
  std::string replacement;
};

/// What opening the tool for a kind of colour asks for: that there are some.
Result<void> RequireColorsToRename(const Session& session, ColorKind kind);

/// One colour of the preview: its new name, or the reason for which it is excluded.
struct RenamePreviewRow {
  std::string Color_Name;
  std::string newName;
  std::string reason;
  bool renames = false;
};

/// What the rule makes of the colours, in the order given. A new name is upper case, without blanks at its ends, and
/// never one that is on file or that two colours of the selection would share.
Result<std::vector<RenamePreviewRow>> PreviewRename(Session& session, const BulkRename& rule,
                                                    const std::vector<std::string>& colors);

/// Asks, and renames the colours everywhere they are named; nothing is merged. The preview of exactly these colours
/// must exclude none, else it is refused. False when the operator declined.
Result<bool> ApplyRename(Session& session, const BulkRename& rule, const std::vector<std::string>& colors);

}  // namespace vellumark
