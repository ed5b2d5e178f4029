#pragma once

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "core/labels/label_work.h"
#include "desktop/kit/window.h"
#include "desktop/labels/label_windows.h"
#include "desktop/reports/print_devices.h"

class QLabel;
class QTimer;

namespace vellumark::desktop {

class DesignSurface;
struct SurfaceBox;

/// The editor of layouts, as far as the kinds of labels have it in common: the list of layouts, the design surface, the
/// selected box, the sheet, the commands. A kind adds its pages and says what its label shows. Opened with
/// {"LayoutName", name}, or nothing.
class LayoutWindow : public Window {
  Q_OBJECT

 public:
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return work_.IsChanged() || !bad_.empty(); }
  bool MayClose() override;

 public Q_SLOTS:
  void cmdSave_Click() override;
  void cmdSaveAs_Click();
  void cmdRevert_Click();
  void cmdDelete_Click() override;
  void cmdUndo_Click();
  void cmdRedo_Click();

 protected:
  LayoutWindow(WindowList& windowList, const LabelWindows& names, const QString& title, PrintDevices devices);

  /// Builds the window; a kind calls it at the end of its constructor.
  void Build();
  /// The pages of the kind, between those of the items and of the sheet.
  virtual void AddPages(TabSet& /*tabs*/) {}
  /// The items that can be shown and hidden, with their columns.
  virtual void AddItems(Form& form) = 0;
  /// A field for the colour whose data the label shows; nothing for a kind without one.
  virtual TextField* AddSample(Form& /*form*/) { return nullptr; }
  /// What is printed, and what stands in for data that is not there.
  virtual LabelDrawing DrawData() = 0;
  virtual LabelDrawing DrawSamples() = 0;
  /// A box was opened.
  virtual void Activate(const std::string& /*item*/) { FocusField("txtX"); }
  /// What is to be told below the surface, beside the faults of boxes.
  virtual QStringList Notes() const;
  /// Check boxes that show and hide texts, for the kinds that have no other columns.
  void AddShown(Form& form, std::span<const std::string_view> items);

  const LabelWork& Work() const { return work_; }
  const LabelDesign& Design() const { return work_.Design(); }
  const PrintDevices& Devices() const { return devices_; }
  DesignSurface& Surface() { return *surface_; }

  // Controls of the values of a layout. What is typed is taken at once; what cannot be is marked, and saved is nothing
  // before it is mended.
  using Keys = std::function<std::vector<std::string>()>;
  static Keys Key(const std::string& key) {
    return [key] { return std::vector<std::string>{key}; };
  }
  CheckField* Check(Form& form, const QString& name, const QString& text, const Keys& keys, const std::string& on = "1",
                    const std::string& off = "0");
  TextField* Text(Form& form, const QString& name, const Keys& keys, int longest);
  NumberField* Whole(Form& form, const QString& name, const Keys& keys, int chars);
  NumberField* Length(Form& form, const QString& name, const Keys& keys);
  /// The value is the data of an entry, or its text where it has none. A value that is no entry is added as one.
  ComboField* Choice(Form& form, const QString& name, const Keys& keys);
  /// The unit behind a length.
  QLabel* Unit(Form& form);
  /// A page that scrolls.
  static Form Scrolled(FormHost& host, Form page);
  /// Changes values as one step and shows the layout again.
  bool Set(const std::vector<std::string>& keys, const std::string& value, const std::string& gesture = {});
  void Shown(std::function<void()> show) { shows_.push_back(std::move(show)); }
  void Refresh();
  void RefreshSurface();

 private:
  struct Bound {
    Field* field;
    Keys keys;
    std::function<void(const std::string& value)> show;
  };
  void Bind(Field* field, Keys keys, std::function<void(const std::string&)> show);
  void Take(Field* field, const Keys& keys, const std::optional<std::string>& value, const QString& should);

  void BuildTop(Form& form);
  void BuildSelected(Form form);
  void BuildArrows(Form& form);
  void BuildSheet(Form form);
  void FillPapers();
  void FillLayouts();
  void OpenLayout(const std::string& name);
  void ChooseLayout();
  bool MayLeaveLayout();
  Keys SelectedKeys(const std::string& key) const;
  void FillItems();
  void ShowPointed(const QString& name);
  void CheckCodes();
  bool NothingBad();
  SurfaceBox BoxOf(const DesignItem& item, const LabelDrawing& data, const LabelDrawing& samples) const;

  LabelWindows names_;
  PrintDevices devices_;
  LabelWork work_;
  std::vector<Bound> bound_;
  std::vector<std::function<void()>> shows_;
  /// What is typed and cannot be: what it should be, and of which keys.
  struct Bad {
    QString should;
    std::vector<std::string> keys;
  };
  std::map<Field*, Bad> bad_;
  std::map<std::string, QString> faults_;
  bool showing_ = false;
  Field* typed_ = nullptr;

  ComboField* layouts_ = nullptr;
  TextField* sample_ = nullptr;
  ComboField* zoom_ = nullptr;
  CheckField* snap_ = nullptr;
  DesignSurface* surface_ = nullptr;
  ComboField* item_ = nullptr;
  ComboField* papers_ = nullptr;
  ComboField* printers_ = nullptr;
  QLabel* x_ = nullptr;
  QLabel* y_ = nullptr;
  QLabel* note_ = nullptr;
  QTimer* check_ = nullptr;
  std::vector<QWidget*> forOne_;  ///< used while one box is selected
  std::vector<QWidget*> forAny_;
  std::vector<QWidget*> forText_;
  std::vector<QWidget*> forTwo_;
  std::vector<QWidget*> forThree_;
  CommandButton* save_ = nullptr;
  CommandButton* revert_ = nullptr;
  CommandButton* delete_ = nullptr;
  CommandButton* undo_ = nullptr;
  CommandButton* redo_ = nullptr;
};

}  // namespace vellumark::desktop
