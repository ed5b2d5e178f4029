#pragma once

#include <span>

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// A button of a menu, and the window that it opens. Texts are translated under the name of the menu.
struct MenuEntry {
  const char* button;
  const char* caption;
  const char* window;
  const char* icon = nullptr;
  const char* heading = nullptr;  ///< of the group that the entry begins
  bool isDialog = false;
  bool besideTheOthers = false;  ///< a column begins with it, where one would reach out of a small screen
};

struct MenuTable {
  const char* name;
  const char* title;
  int buttonWidth;
  std::span<const MenuEntry> entries;
  /// Whether the window may be opened now; says why not.
  bool (*mayOpen)(Window& menu, std::string_view window) = nullptr;
};

/// The small menu of a button of the toolbar: the entries whose windows this program has. Up and Down go through them,
/// the underlined letter alone presses one. It closes before the window opens.
class ToolbarMenu : public Window {
  Q_OBJECT

 public:
  ToolbarMenu(WindowList& windowList, const MenuTable& menu);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void AddEntry(Form& form, const MenuEntry& entry, int width);
  void Choose(const MenuEntry& entry);
  bool TakeKey(const QKeyEvent& event);

  bool (*mayOpen_)(Window& menu, std::string_view window);
};

/// What is told lives as long as the program.
void RegisterMenu(WindowList& windows, const MenuTable& menu);

}  // namespace vellumark::desktop
