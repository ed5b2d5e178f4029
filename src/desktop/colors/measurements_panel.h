#pragma once

#include <QObject>
#include <array>
#include <memory>
#include <vector>

#include "core/colors/lab.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The colour measurements of one colour: the fields of a new one and the list, whose cells can be edited. It writes
/// nothing; the window saves the list with the colour.
class MeasurementsPanel : public QObject {
  Q_OBJECT

 public:
  /// On a page of its own, whose controls are made when it is first looked at.
  MeasurementsPanel(FormHost& host, TabSet& tabs, ColorKind kind);
  ~MeasurementsPanel() override;

  /// The list as it is on file; the entry is emptied.
  void Load(std::string_view name);
  /// The list as it is on file, unless it has been changed here. The entry stays.
  void Refresh(std::string_view name);
  /// No record.
  void Clear();

  bool IsChanged() const;
  /// Something stands in the fields of a new measurement.
  bool IsEntryFilled() const;
  const std::vector<LabReading>& Readings() const;
  void FocusEntry();

 Q_SIGNALS:
  void Changed();

 private:
  class Source;
  void Build(Form form);
  bool IsBuilt() const { return list_ != nullptr; }
  void BuildEntry(Form& form);
  void ShowList();
  void Add();
  void Remove();
  LabEntry Entry() const;
  void EmptyEntry();
  void FillDropDowns();

  FormHost& host_;
  ColorKind kind_;
  bool shown_ = false;
  std::array<NumberField*, 5> numbers_{};
  ComboField* lightSource_ = nullptr;
  ComboField* substrate_ = nullptr;
  TextField* note_ = nullptr;
  CommandButton* remove_ = nullptr;
  Grid* list_ = nullptr;
  std::shared_ptr<Source> source_;
  std::vector<LabReading> loaded_;
};

}  // namespace vellumark::desktop
