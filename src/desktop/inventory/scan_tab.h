#pragma once

#include <QObject>

#include "desktop/kit/form.h"

class QStackedWidget;

namespace vellumark::desktop {

class ScanCapture;
class ScanReview;

/// The tab on which containers are scanned: first the lines and what they will do, then what became of them.
class ScanTab : public QObject {
  Q_OBJECT

 public:
  ScanTab(FormHost& host, Form form);

  /// Lines are there, or results.
  bool InProcess() const;
  /// Something of it is not booked and would be lost.
  bool HasUnbooked() const;
  void Focus();
  void FileChanged();
  void UpdateEnabled();
  /// What Save means here: processes the lines, or the record on screen again.
  void Process();

 Q_SIGNALS:
  void Changed();

 private:
  bool InReview() const;

  QStackedWidget* steps_;
  ScanCapture* capture_;
  ScanReview* review_;
};

}  // namespace vellumark::desktop
