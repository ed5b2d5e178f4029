#pragma once

#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The line at the bottom of every tool: make a backup first, the command that makes one, and the tool's own commands.
void ToolButtons(FormHost& host, Form& form, std::initializer_list<QPushButton*> buttons);

/// What is chosen at the left, what is done with it at the right.
struct TwoSides {
  Form left;
  Form right;
};
TwoSides Sides(FormHost& host, Form& form, int leftWidth = 328);

}  // namespace vellumark::desktop
