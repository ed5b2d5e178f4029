#pragma once

#include <QString>
#include <filesystem>
#include <functional>

#include "core/session/session.h"

class QWidget;

namespace vellumark::desktop {

/// One question for a file.
struct FileChoice {
  QString title;
  QString filter;     ///< "Name of the kind (*.ext) | *.ext"
  QString extension;  ///< added to a name without one: ".ext"
  QString folder;     ///< where to begin
  bool newFile = false;
  bool onlyFolder = false;  ///< a folder is asked for, not a file
};

/// Answers with the full path, or with an empty text when the operator cancelled.
using FileChooser = std::function<QString(const FileChoice&, QWidget* owner)>;

/// The platform's own file dialog.
QString ChooseFile(const FileChoice& choice, QWidget* owner);

/// The questions for a Data File to open and for the name of a new one; they begin where the current file lies.
FileChoice ChoiceToOpen(const Session& session);
FileChoice ChoiceToMake(const Session& session);

}  // namespace vellumark::desktop
