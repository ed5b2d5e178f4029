#pragma once

#include <QTimer>
#include <memory>

#include "core/datafile/color_kind.h"
#include "desktop/kit/piece_source.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

enum class BrowseSubject { Basics, Formulas, Batches, Jobs };

/// A list of all colours, formulas, Batches or Jobs of the Database, to be searched, sorted, filtered and opened from.
/// Four windows are this one. A file of any size is read in the background; the first rows are there at once.
class BrowseForm : public Window {
  Q_OBJECT

 public:
  BrowseForm(WindowList& windowList, const char* name, BrowseSubject subject);
  ~BrowseForm() override;

  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOpen_Click();

 private:
  void MakeSource();
  void BeginReading();
  void ReadOn();
  void ShowCount();

  BrowseSubject subject_;
  std::shared_ptr<GridSource> source_;
  ReadInPieces* pieces_ = nullptr;  ///< the same one
  QTimer reading_;
  Grid* list_;
  QLineEdit* filter_;
  QLabel* count_;
  CommandButton* open_;
};

}  // namespace vellumark::desktop
