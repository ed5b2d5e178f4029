#pragma once

#include <string>

#include "core/session/session.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/name_source.h"

class QCompleter;
class QStringListModel;

namespace vellumark::desktop {

/// A field for the name of a colour. Capitals, the characters of names and of scan tags, the configured length; while
/// AutoFillText is on, the first name that begins with the typed text fills in the rest, selected, so that typing on
/// replaces it and Delete, Backspace, Left and Right only take it back. A PANTONE colour is found by its number alone.
/// Down or F4 opens the list of names that begin so.
class NameBox : public TextField {
  Q_OBJECT

 public:
  NameBox(const QString& name, const Session& session, NameSource source);

  /// The name as it would be left now: the completion taken, without scan tag, "<" and ">", trimmed and cut.
  std::string Name() const;
  void SetSource(NameSource source) { source_ = std::move(source); }

 Q_SIGNALS:
  /// The word PANTONE was typed out; once in the life of the box.
  void PantoneTyped();
  /// A name was taken from the list.
  void Picked(const QString& name);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void Complete();
  /// Takes the completion back; true when there was one.
  bool UndoCompletion();
  void ShowList();

  const Session& session_;
  NameSource source_;
  QCompleter* completer_;
  QStringListModel* names_;
  QString typed_;      ///< without what was filled in
  QString completed_;  ///< the whole name that the typed text stands for; empty without a completion
  bool hinted_ = false;
};

}  // namespace vellumark::desktop
