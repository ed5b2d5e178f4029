#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"

namespace vellumark {

/// One entry of the menu bar, as it stands at this moment. Whoever shows a menu asks anew each time it opens.
struct MenuItem {
  std::string_view name;
  std::string_view parent;  ///< name of the menu it stands in; empty for a menu of the bar
  std::string caption;
  bool enabled = true;
  bool visible = true;
  bool checked = false;
};

/// The whole tree in the order of the menus, each parent before its entries. What keeps a parent off keeps its entries
/// off with it; an entry's own state is told as if its parent were on.
std::vector<MenuItem> MenuItems(const Session& session);
/// One of them; throws std::logic_error for a name that the tree does not have.
MenuItem MenuItemNow(const Session& session, std::string_view name);

/// A button of the toolbar and the window that it opens or brings forward.
struct ToolbarButton {
  std::string_view key;
  std::string_view target;
  bool enabled = true;
  bool visible = true;
};
/// The ten buttons in order.
std::vector<ToolbarButton> ToolbarButtons(const Session& session);

/// Which windows are open, and whether their record set is being edited or added to.
class OpenWindows {
 public:
  virtual ~OpenWindows() = default;
  virtual bool IsFormOpen(std::string_view name) const = 0;
  /// Asked of open windows only.
  virtual bool IsInEdit(std::string_view name) const = 0;
};

/// Whether the window of a toolbar button may come up now: refused while another window holds unsaved work that it
/// would disturb, and to a user who has no right to it. Throws std::logic_error for an unknown key.
Result<void> CheckToolbarButton(const Session& session, const OpenWindows& windows, std::string_view key);

/// The interlocks alone, for whoever opens a window or changes its record past the toolbar: `way` is the key of a toolbar
/// button, or "JobForm".
Result<void> CheckInterlocks(const OpenWindows& windows, std::string_view way);

/// The scale's settings can be changed only with the scale off.
Result<void> CheckScaleSetup(const Session& session);

}  // namespace vellumark
