#pragma once

#include <QList>

class QAction;
class QString;
class QWidget;

namespace vellumark::desktop {

/// Gives each entry of a menu or of a menu bar its letter: the one that it is written with where that is free, else the
/// first of one of its words, else any in it. None is given twice.
void LetterActions(const QList<QAction*>& actions);
/// The text of an entry before it got its letter; one that stays as it is keeps that.
void SetWritten(QAction& action, const QString& text);

/// The same for the buttons, the labels of fields and the check boxes of a window, beside the letters of the menu bar
/// over it; pages that are never seen together may share one. Does nothing where no text has changed since.
void LetterControls(QWidget& window);

}  // namespace vellumark::desktop
