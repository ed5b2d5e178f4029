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

/// A document of that kind to be written, beginning where the operator keeps documents. One that is there is asked about,
/// as the file dialog does not. Empty when it is not to be written.
QString ChooseDocument(const FileChooser& choose, Prompt& prompt, FileChoice choice, QWidget* owner);
/// A PDF, of what is printed.
FileChoice ChoiceOfPdf();

/// The questions for a Data File to open and for the name of a new one; they begin where the current file lies.
FileChoice ChoiceToOpen(const Session& session);
FileChoice ChoiceToMake(const Session& session);

}  // namespace vellumark::desktop
