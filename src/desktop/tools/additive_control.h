#pragma once

#include <QShortcut>
#include <vector>

#include "desktop/kit/window.h"

class QTabWidget;

namespace vellumark::desktop {

class AdditiveApplyTab;
class AdditiveCreateTab;

/// Additive Sets in bulk: a tab that makes and changes them with every formula that uses them, and one that gives them
/// to many formulas or takes them off.
class DBAdditiveControl : public Window {
  Q_OBJECT

 public:
  explicit DBAdditiveControl(WindowList& windowList);
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;

 public Q_SLOTS:
  void cmdPrint_Click() override;

 private:
  void PageChanged(int page);

  CommandButton* print_;
  AdditiveCreateTab* create_;
  AdditiveApplyTab* apply_;
  std::vector<QShortcut*> keys_[2];  // of the pages
};

}  // namespace vellumark::desktop
