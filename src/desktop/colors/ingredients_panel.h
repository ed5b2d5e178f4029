#pragma once

#include <QObject>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/live_totals.h"
#include "desktop/kit/form.h"

class QGridLayout;

namespace vellumark::desktop {

class SwatchView;

/// The fifteen lines of a formula and the totals under them, which follow every key. It writes nothing but the Basic
/// Colors that the operator adds while naming them.
class IngredientsPanel : public QObject {
  Q_OBJECT

 public:
  IngredientsPanel(FormHost& host, Form form);

  /// The lines of a formula; `keepTyped` leaves them as they stand and reads only the ingredients' figures anew.
  void Show(const FormulaWork& work, bool keepTyped);
  /// The totals of the formula as they are stored, until something of it changes.
  void ShowStored(const LiveTotals& totals);
  /// The Additive Set beside the lines, whose share is in the totals; its figures are read anew.
  void UseSet(const std::string& setName);
  void Clear();
  /// The lines as they stand.
  void ReadInto(FormulaWork& work) const;
  bool IsChanged() const;
  /// The unit has changed.
  void Relabel();
  /// Only then can lines be typed into.
  void SetEditable(bool editable);

  /// Another name for an ingredient that the lines hold.
  void RenameIngredient(std::string_view oldName, std::string_view newName);
  /// A figure of an ingredient, "Cost", "VOC" or "HAP", that was changed elsewhere.
  void TakeFigure(std::string_view name, std::string_view kind, float value);
  /// Reads all of them again.
  void RefreshFigures();
  const LiveTotals& Totals() const { return totals_; }

 Q_SIGNALS:
  /// A name or an amount, and with it the totals.
  void Changed();

 private:
  struct Line {
    SwatchView* ink = nullptr;
    NameBox* name = nullptr;
    NumberField* amount = nullptr;
    std::string entered;  ///< the name that was accepted last
  };

  void BuildLine(Form& form, QGridLayout& grid, std::size_t row);
  void BuildTotals(Form& form, QGridLayout& grid);
  void NameLeft(std::size_t row, QWidget* to);
  void AmountLeft(std::size_t row, QWidget* to);
  void TakeName(std::size_t row, const std::string& name);
  void LineChanged(std::size_t row);
  void ShowInk();
  void ShowTotals();
  void PutTotals();
  FormulaWork Work() const;

  FormHost& host_;
  std::array<Line, schema::kIngredientSlots> lines_;
  GridFigures figures_{};
  LiveTotals totals_;
  std::string setName_;
  bool editable_ = false;
  bool showing_ = false;
  ValueField* parts_ = nullptr;
  QLabel* costCaption_ = nullptr;
  ValueField* cost_ = nullptr;
  ValueField* voc_ = nullptr;
  ValueField* hap_ = nullptr;
};

}  // namespace vellumark::desktop
