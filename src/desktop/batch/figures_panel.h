#pragma once

#include <QWidget>

#include "core/batch/record.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// What the Batch costs and emits, with the ways to the windows in which that is chosen.
class FiguresPanel : public QWidget {
  Q_OBJECT

 public:
  explicit FiguresPanel(FormHost& host);
  void Show(const BatchRecord& record);

 Q_SIGNALS:
  void CostsClicked();
  void EmissionsClicked();

 private:
  FormHost& host_;
  struct Figure {
    QLabel* caption = nullptr;
    ValueField* value = nullptr;
  };
  Figure AddFigure(Form& form, const char* name, const QString& caption, double scale);

  Figure basics_;
  Figure mixes_;
  Figure markup_;
  Figure total_;
  Figure unitCost_;
  Figure voc_;
  Figure hap_;
  QLabel* blocked_;
  CommandButton* costs_;
  CommandButton* emissions_;
};

}  // namespace vellumark::desktop
