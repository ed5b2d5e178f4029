#pragma once

#include <QObject>
#include <array>
#include <memory>
#include <string>

#include "core/colors/additive_sets.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The sets of the Database, the fields of the one that is chosen or of a new one, and the formulas that use it.
class AdditiveCreateTab : public QObject {
  Q_OBJECT

 public:
  AdditiveCreateTab(FormHost& host, Form form);

  /// Sets and formulas as they are on file now. What was typed stays.
  void Reload();
  void Renamed(const std::string& oldName, const std::string& newName);
  void UpdateEnabled();
  /// Asks about a set that is not finished; false when the operator goes on with it.
  bool MayLeave();
  void TakeFocus();

 private:
  struct RowFields {
    NameBox* ingredient;
    NumberField* percent;
  };
  void BuildFields(Form form);
  void BuildRow(Form& form, int number);
  void LoadList();
  void RowChosen(int row);
  void ShowSet(const std::string& name);
  void ShowFormulas(bool withoutSet);
  void ShowTotal();
  /// The fields of a new set.
  void Empty();
  AdditiveSetWork Work() const;

  void NameLeft(QWidget* to);
  void IngredientLeft(std::size_t number, QWidget* to);
  void PercentLeft(std::size_t number, QWidget* to);
  void New();
  void Save();
  void Rename();
  void Delete();

  FormHost& host_;
  std::shared_ptr<TableSource> sets_;
  std::shared_ptr<TableSource> formulas_;
  std::string shown_;  ///< the set on file that the fields show; empty for a new one
  bool withoutSet_ = false;
  bool loading_ = false;
  Grid* list_;
  Grid* users_;
  TextField* name_ = nullptr;
  std::array<RowFields, schema::kSetSlots> rows_{};
  QLabel* total_ = nullptr;
  CommandButton* rename_ = nullptr;
  CommandButton* delete_ = nullptr;
};

}  // namespace vellumark::desktop
