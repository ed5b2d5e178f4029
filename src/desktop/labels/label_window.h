#pragma once

#include <QTimer>
#include <QVariant>
#include <functional>
#include <optional>

#include "core/labels/label_printing.h"
#include "desktop/kit/window.h"
#include "desktop/labels/label_windows.h"
#include "desktop/reports/print_devices.h"
#include "paper/label_print.h"

class QScrollArea;

namespace vellumark::desktop {

class LabelPreview;

/// What the windows that print labels have in common: the layout, how many from which place on, the preview with what
/// does not read in red, and the ways onto paper.
class LabelWindow : public Window {
  Q_OBJECT

 public:
  void UpdateEnabled() override;
  void OnChanges(const std::vector<Change>& changes) override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdPrint_Click() override;
  void cmdPDF_Click();
  void cmdLastLabels_Click();
  void cmdLabelDesign_Click();
  void cmdClear_Click();
  void cmdPreviousPage_Click();
  void cmdNextPage_Click();

 protected:
  LabelWindow(WindowList& windowList, const LabelWindows& kind, const QString& title, PrintDevices devices);
  struct Command {
    const char* button;
    QString text;
    QKeySequence key;
  };
  /// The inside; `fields` makes those of the kind, `own` is a command beside the common ones. Called by the constructor
  /// of the window itself.
  void Build(const std::function<void(Form)>& fields, const std::optional<Command>& own = {});

  /// The labels as the fields have them, one after the other.
  virtual Result<std::vector<LabelDrawing>> Draw(const std::string& layout) = 0;
  /// Asked before anything is printed.
  virtual Result<void> MayPrint() { return {}; }
  /// Another layout: what it says itself goes into the fields.
  virtual void LayoutChosen(const std::string& layout) = 0;
  virtual void ClearFields() = 0;
  /// All that the fields hold, to print the same labels once more.
  virtual QVariantMap Filled() const = 0;
  virtual void Fill(const QVariantMap& filled) = 0;

  /// A field of a label: no part of a record.
  template <class F>
  F* Loose(F* field) {
    field->DoNotTrack();
    return field;
  }
  std::string Layout() const { return layout_->Text(); }
  void SetCount(int count);

 private:
  void BuildHead(Form& form);
  void BuildPreview(Form form);
  void FillLayouts();
  void ChooseLayout();
  /// The preview anew, at once; its codes are read when nothing has changed for a moment.
  void Redraw();
  void CheckNext();
  void ShowFaults();
  void ShowPlace();
  LabelPaper Paper() const;
  enum Telling { Aloud, Quietly };
  /// Null when it is gone.
  std::unique_ptr<QPrinter> OpenPrinter(const std::string& device, Telling telling);
  int DotsOf(const std::string& printer);
  /// The labels to be printed, after all questions; nothing when one of them was answered with No.
  std::optional<paper::LabelJob> Checked(int dots);
  void Run(const std::function<void(const paper::LabelJob&)>& print, int dots);
  QString LastKey() const;
  void Remember(const paper::LabelJob& job);

  const LabelWindows& kind_;
  PrintDevices devices_;
  QTimer redraw_;
  QTimer check_;
  std::size_t checked_ = 0;
  std::vector<std::vector<paper::CodeCheck>> faults_;
  QString refused_;  ///< why there are no labels
  std::string dotsPrinter_;
  int dots_ = paper::kLabelDots;

  ComboField* layout_ = nullptr;
  NumberField* count_ = nullptr;
  NumberField* start_ = nullptr;
  QLabel* capacity_ = nullptr;
  LabelPreview* preview_ = nullptr;
  CommandButton* back_ = nullptr;
  CommandButton* forth_ = nullptr;
  QLabel* place_ = nullptr;
  ComboField* zoom_ = nullptr;
  QLabel* told_ = nullptr;
  CommandButton* print_ = nullptr;
  CommandButton* pdf_ = nullptr;
  CommandButton* last_ = nullptr;
  CommandButton* design_ = nullptr;
};

}  // namespace vellumark::desktop
