#pragma once

#include <QWidget>
#include <memory>

#include "core/batch/recycle_list.h"
#include "desktop/kit/form.h"

class QTabWidget;

namespace vellumark::desktop {

class RecycleGraphic;

/// The Recycle List: the colours of which the recipe can take something. A click on a colour or Enter takes it.
class RecyclePanel : public QWidget {
  Q_OBJECT

 public:
  RecyclePanel(FormHost& host, Form& form);

  void Show(const BatchWork& work);
  /// Colours were just recycled: the graphic moves, where it is wanted.
  void ShowRecycled();
  /// The first colour is the current one.
  void GoToTop();
  const RecycleListView& View() const { return view_; }
  /// What stands above the list: beside the titles of the pages that it is one of, or with the list.
  void PutHead(QTabWidget& pages, bool besideTitles);

 Q_SIGNALS:
  void Taken(const std::string& name);
  void ViewChanged();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QString EmptyText(const BatchWork& work) const;
  class Source;
  void ShowCaptions(int unit);
  void Take(int row);

  RecycleListView view_;
  std::shared_ptr<Source> source_;
  QWidget* head_;
  RecycleGraphic* graphic_;
  Grid* list_;
  int unit_ = 1;
};

}  // namespace vellumark::desktop
