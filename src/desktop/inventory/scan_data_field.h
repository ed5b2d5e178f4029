#pragma once

#include <QTimer>

#include "desktop/kit/fields.h"

namespace vellumark::desktop {

/// The field that a scanner fills, a code or a quantity on each line. CR, LF and Tab end a line; a Tab on an empty line
/// goes on, as does Ctrl+Enter.
class ScanDataField : public NoteField {
  Q_OBJECT

 public:
  explicit ScanDataField(const QString& name);
  /// How many lines have ended.
  int EndedLines() const { return blockCount() - 1; }
  /// The last line that has something in it, of those that have ended.
  QString LastLine() const;

 Q_SIGNALS:
  /// A line has ended, or nothing has come for a moment.
  void Read();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  void EndLine();
  QTimer quiet_;
  int lines_ = 1;
};

}  // namespace vellumark::desktop
