#pragma once

#include <memory>
#include <vector>

#include "core/reports/find.h"
#include "desktop/kit/window.h"

class QScrollArea;

namespace vellumark::desktop {

/// A search window: fields, each with a comparison and a value, and the records that match. `name` is the system's name
/// of the window.
class FindForm : public Window {
  Q_OBJECT

 public:
  FindForm(WindowList& windowList, const QString& name, FindSubject subject);
  ~FindForm() override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdFind_Click();
  void cmdClear_Click();
  void cmdPrint_Click() override;

 private:
  class Source;
  struct Row {
    vellumark::FindField field;
    ComboField* comparison = nullptr;
    Field* value = nullptr;
  };
  void BuildFields(QWidget& part);
  void BuildRow(Form& form, int number, const vellumark::FindField& field);
  std::string ValueOf(const Row& row) const;
  FindRequest Request() const;
  void Show(const FindAnswer& answer);
  void Empty();

  FindSubject subject_;
  std::vector<Row> rows_;
  QScrollArea* area_ = nullptr;
  ComboField* operator_ = nullptr;
  ComboField* databases_ = nullptr;
  Grid* grid_ = nullptr;
  QLabel* count_ = nullptr;
  CommandButton* print_ = nullptr;
  std::shared_ptr<Source> source_;
  bool complete_ = true;
};

}  // namespace vellumark::desktop
