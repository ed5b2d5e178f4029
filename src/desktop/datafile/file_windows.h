#pragma once

#include <QLabel>
#include <functional>
#include <initializer_list>

#include "core/base/refusal.h"
#include "core/session/session.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Does something with a Data File. A failure of the world is told under `title` with the file and the cause, and
/// nothing else happens; false then. An operator who ends the program on the way (at the login of the file) closes the
/// dialog with {"exit", true}; false as well.
bool WithFiles(Dialog& dialog, const QString& title, const std::function<void()>& act);

/// Text over several lines across the window.
QLabel* Paragraph(Form& form, const QString& text, const QString& name = {});
/// The same in quiet letters.
QLabel* QuietParagraph(Form& form, const QString& text, const QString& name = {});

/// Buttons that belong to what stands above them, at the left.
void ButtonLine(Form& form, std::initializer_list<QWidget*> buttons);

/// As high as the paragraphs of a window need at its width.
void FitHeight(QWidget& window);

}  // namespace vellumark::desktop
