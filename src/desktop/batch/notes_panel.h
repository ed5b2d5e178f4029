#pragma once

#include <QWidget>

#include "core/batch/record.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The notes of the Batch, of its ingredients and of its formula, and the way to its user-defined fields.
class NotesPanel : public QWidget {
  Q_OBJECT

 public:
  NotesPanel(FormHost& host, BatchRecord& record);
  void Show();

 Q_SIGNALS:
  void MoreDataClicked();

 private:
  void Keep(const char* column, std::string text);

  FormHost& host_;
  BatchRecord& record_;
  bool showing_ = false;
  TextField* shortNote_;
  NoteField* notes_;
  NoteField* ingNotes_;
  NoteField* formulaNotes_;
  CommandButton* moreData_;
};

}  // namespace vellumark::desktop
