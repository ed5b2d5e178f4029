#pragma once

#include "core/jobs/design_work.h"
#include "core/jobs/ink_estimator.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class DesignBox;
class PhotoFrame;
class PictureLoader;

/// A Design: its colours and what they cost, size, notes and photos. Opened with {"DesignID", id} it shows that one. An
/// ID that is not on file begins a new one. Nothing is written before Save.
class JobDesigns : public Window {
  Q_OBJECT

 public:
  JobDesigns(WindowList& windowList, FileChooser choose);
  ~JobDesigns() override;
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  bool InEdit() const override;

 public Q_SLOTS:
  void cmdSave_Click() override;
  void cmdDelete_Click() override;
  void cmdPrint_Click() override;
  void cmdClear_Click();
  void cmdRename_Click();
  void cmdCopy_Click();
  void cmdUsage_Click();
  void cmdBench_Click();
  void cmdHints_Click();
  void cmdExchange_Click();
  void cmdAdd_Click();
  void cmdRemove_Click();
  void cmdEstimate_Click();
  void cmdGetPhoto_Click();
  void cmdUsePhoto_Click();
  void cmdRemovePhoto_Click();
  void cmdRenamePhoto_Click();
  void cmdPrevious_Click() { StepPhoto(-1); }
  void cmdNext_Click() { StepPhoto(1); }

 private:
  void BuildDetails(Form form);
  void BuildColors(Form form);
  void BuildPhotos(Form form);
  bool EnterID();
  void Show();
  void ShowFields();
  void ShowColors();
  void ShowUnit();
  bool TakeFields();
  bool MayLeaveDesign();
  void Load(const std::string& id);
  std::string FieldsText() const;
  LengthUnit Unit() const;
  void PickColor();
  bool PutColor(const DesignColorEntry& entry);
  bool TakeFor(const std::string& color, const InkEstimate& estimate);
  // Photos.
  void Get(const QString& path);
  void ListPhotos();
  void ShowPhoto();
  void StepPhoto(int by);
  int CurrentPhoto() const;

  FileChooser choose_;
  std::optional<DesignWork> work_;
  std::string shown_;  ///< what the fields held when they were filled
  bool showing_ = false;
  DesignBox* id_ = nullptr;
  QLabel* state_ = nullptr;
  TextField* description_ = nullptr;
  TextField* impressions_ = nullptr;
  NumberField* length_ = nullptr;
  NumberField* width_ = nullptr;
  RadioField* unit_ = nullptr;
  QLabel* dates_ = nullptr;
  NoteField* notes_ = nullptr;
  ComboField* database_ = nullptr;
  NameBox* color_ = nullptr;
  NumberField* quantity_ = nullptr;
  NumberField* percent_ = nullptr;
  std::shared_ptr<LeadingTable> rows_;
  Grid* colors_ = nullptr;
  ValueField* total_ = nullptr;
  PhotoFrame* frame_ = nullptr;
  QListWidget* photos_ = nullptr;
  QLabel* imageName_ = nullptr;
  PictureLoader* pictures_ = nullptr;
  PictureLoader* thumbnails_ = nullptr;
  std::optional<PickedPhoto> picked_;
  std::vector<CommandButton*> ofDesign_;  ///< on while there is one
  std::vector<CommandButton*> ofStored_;  ///< on while it is on file and unchanged
  std::vector<CommandButton*> ofPhoto_;
  CommandButton* save_ = nullptr;
  CommandButton* use_ = nullptr;
};

}  // namespace vellumark::desktop
