#include "desktop/labels/layout_window.h"

#include <QLabel>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "desktop/kit/discard.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/labels/design_surface.h"
#include "desktop/labels/sheet_view.h"
#include "paper/label_painter.h"

namespace vellumark::desktop {
namespace {

constexpr int kCheckAfter = 400;   // ms of rest after which the codes are read back
constexpr int kCheckedDots = 300;  // of an inch, as most printers of labels have them
constexpr double kZooms[] = {0, 0.1, 0.25, 0.5, 0.75, 1, 1.5, 2, 3, 4, 6, 8};

}  // namespace

LayoutWindow::LayoutWindow(WindowList& windowList, const LabelWindows& names, const QString& title,
                           PrintDevices devices)
    : Window(windowList, names.layout, title), names_(names), devices_(std::move(devices)), work_(names.kind) {
  setWindowIcon(Icon("Label"));
}

void LayoutWindow::Build() {
  Form form(*this);
  BuildTop(form);
  QSplitter* halves = form.Sides("Halves");
  auto* left = new QWidget(halves);
  auto* column = new QVBoxLayout(left);
  column->setContentsMargins(0, 0, space::kUnit, 0);
  column->addWidget(surface_ = form.Add(new DesignSurface("Surface")), 1);
  auto* line = new QHBoxLayout;
  line->addWidget(x_ = form.Hint({}, "lblX"));
  line->addWidget(y_ = form.Hint({}, "lblY"));
  line->addWidget(note_ = form.Label("lblNote"), 1);
  note_->setProperty("role", "fault");
  note_->setWordWrap(true);
  for (QLabel* place : {x_, y_}) place->setMinimumWidth(place->fontMetrics().horizontalAdvance("X = 000.00 mm."));
  column->addLayout(line);
  auto* right = new QWidget(halves);
  auto* page = new QWidget(right);
  page->setProperty("flush", true);
  auto* room = new QHBoxLayout(right);
  room->setContentsMargins(space::kUnit, 0, 0, 0);
  room->addWidget(page);
  Form side(*this, *page);
  TabSet tabs = side.Tabs("Pages");
  Form items = Scrolled(*this, tabs.Page(tr("&Items"), "TabItems"));
  AddItems(items);
  BuildSelected(Scrolled(*this, tabs.Page(tr("Se&lected"), "TabSelected")));
  BuildSheet(Scrolled(*this, tabs.Page(tr("S&heet"), "TabSheet")));
  AddPages(tabs);
  halves->setStretchFactor(0, 3);
  halves->setStretchFactor(1, 2);
  halves->setSizes({720, 440});
  right->setMinimumWidth(416);
  form.ButtonsWithoutDefault(
      {form.Button("cmdClose", tr("Close")), delete_ = form.Button("cmdDelete", tr("&Delete")),
       revert_ = form.Button("cmdRevert", tr("&Revert")),
       form.Button("cmdSaveAs", tr("Save &As ..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)),
       save_ = form.Button("cmdSave", tr("&Save"))});
  SetDefaultButton(save_);

  check_ = new QTimer(this);
  check_->setSingleShot(true);
  check_->setInterval(kCheckAfter);
  connect(check_, &QTimer::timeout, this, &LayoutWindow::CheckCodes);
  connect(surface_, &DesignSurface::MovedTo, this, [this](const auto& moved, const QString& gesture) {
    work_.Place(moved, U8(gesture));
    Refresh();
  });
  connect(surface_, &DesignSurface::GestureEnded, this, [this] { work_.EndGesture(); });
  connect(surface_, &DesignSurface::SelectionChanged, this, [this] {
    work_.EndGesture();
    Refresh();
  });
  connect(surface_, &DesignSurface::ZoomWanted, this, [this](double zoom) {
    zoom_->setCurrentIndex(zoom_->findData(zoom));
    surface_->SetZoom(zoom);
  });
  connect(surface_, &DesignSurface::Pointed, this, &LayoutWindow::ShowPointed);
  connect(surface_, &DesignSurface::Activated, this, [this](const QString& item) { Activate(U8(item)); });
  connect(surface_, &DesignSurface::HideWanted, this, [this] {
    std::vector<std::string> keys;
    for (const std::string& name : surface_->Selected()) keys.push_back(FindDesignItem(work_.Kind(), name)->shown);
    Set(keys, "0");
  });
  FillLayouts();
  OpenLayout({});
}

void LayoutWindow::BuildTop(Form& form) {
  layouts_ = form.Combo("cmbLabelName");
  layouts_->DoNotTrack();
  layouts_->setMinimumWidth(200);
  layouts_->OnChosen([this](int) { ChooseLayout(); });
  sample_ = AddSample(form);
  if (sample_ != nullptr) {
    sample_->DoNotTrack();
    auto* caption = form.Hint(tr("Shown with the data &of"));
    caption->setBuddy(sample_);
    sample_->setAccessibleName(tr("Shown with the data of"));
    form.Row(tr("Label La&yout"), {layouts_, caption, sample_});
  } else {
    form.Row(tr("Label La&yout"), layouts_);
  }
  zoom_ = form.Combo("cmbZoom");
  zoom_->DoNotTrack();
  for (const double zoom : kZooms)
    zoom_->addItem(zoom == 0 ? tr("Whole label") : zoom == 1 ? tr("True size") : tr("%1 %").arg(zoom * 100), zoom);
  zoom_->OnChosen([this](int) { surface_->SetZoom(zoom_->currentData().toDouble()); });
  zoom_->setToolTip(tr("+ and - on the label, or the wheel with Ctrl"));
  snap_ = form.Check("chkSnap", tr("S&nap to grid and edges"));
  snap_->DoNotTrack();
  snap_->setChecked(true);
  form.Row(tr("&Zoom"), {zoom_, snap_, undo_ = form.Button("cmdUndo", tr("Undo"), QKeySequence::Undo),
                         redo_ = form.Button("cmdRedo", tr("Redo"), QKeySequence(Qt::CTRL | Qt::Key_Y))});
}

// ---- Layouts

void LayoutWindow::FillLayouts() {
  layouts_->SetItems(LabelLayouts(session, work_.Kind()));
  layouts_->setPlaceholderText(tr("Not saved yet"));
  layouts_->SetText(work_.Layout());
}

void LayoutWindow::OpenLayout(const std::string& name) {
  const std::vector<std::string> known = LabelLayouts(session, work_.Kind());
  const auto found = FindLabelLayout(session, work_.Kind(), name);
  if (found || !known.empty())
    work_.Open(session, found ? *found : known.front());
  else
    work_.Begin();
  bad_.clear();
  faults_.clear();
  layouts_->SetText(work_.Layout());
  surface_->Select({});
  Refresh();
}

void LayoutWindow::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("LayoutName")) return;
  const std::string name = arguments.Text("LayoutName");
  if (!EqualNoCase(name, work_.Layout()) && MayLeaveLayout()) OpenLayout(name);
}

void LayoutWindow::ChooseLayout() {
  const std::string name = layouts_->Text();
  if (name == work_.Layout()) return;
  if (MayLeaveLayout())
    OpenLayout(name);
  else
    layouts_->SetText(work_.Layout());
}

void LayoutWindow::OnChanges(const std::vector<Change>&) {
  FillLayouts();
  // Another window or program wrote this layout; what is being worked on here stays.
  if (!InEdit() && work_.IsStale(session))
    OpenLayout(work_.Layout());
  else
    RefreshSurface();
}

bool LayoutWindow::MayClose() {
  if (!InEdit()) return true;
  const Answer answer =
      session.prompt.Show({U8(tr("Label Layout - Save Information?")), U8(tr("Save changes before closing?")),
                           Buttons::YesNoCancel, vellumark::Icon::Question, Answer::Yes});
  if (answer != Answer::Yes) return answer == Answer::No;
  if (work_.Layout().empty())
    cmdSaveAs_Click();
  else
    cmdSave_Click();
  return !InEdit();
}

bool LayoutWindow::MayLeaveLayout() {
  return !InEdit() || MayDiscard(session);
}

bool LayoutWindow::NothingBad() {
  if (bad_.empty()) return true;
  const auto& [field, bad] = *bad_.begin();
  ShowRefusal({U8(tr("Label Layout")), U8(bad.should), U8(field->Control().objectName())});
  return false;
}

void LayoutWindow::cmdSave_Click() {
  if (!save_->isEnabled() || !NothingBad()) return;
  if (Accepted(work_.Save(session))) Refresh();
}

void LayoutWindow::cmdSaveAs_Click() {
  if (!NothingBad()) return;
  const auto saved = windows.RunDialog(names_.save, {{"Design", Design().Records()}, {"LayoutName", work_.Layout()}});
  if (!saved) return;
  FillLayouts();
  OpenLayout(saved->Text("LayoutName"));
}

void LayoutWindow::cmdRevert_Click() {
  if (MayLeaveLayout()) OpenLayout(work_.Layout());
}

void LayoutWindow::cmdDelete_Click() {
  if (work_.Layout().empty() || !Accepted(DeleteLabelLayout(session, work_.Kind(), work_.Layout()))) return;
  FillLayouts();
  OpenLayout({});
}

void LayoutWindow::cmdUndo_Click() {
  bad_.clear();
  work_.Undo();
  Refresh();
}

void LayoutWindow::cmdRedo_Click() {
  bad_.clear();
  work_.Redo();
  Refresh();
}

void LayoutWindow::UpdateEnabled() {
  if (save_ == nullptr) return;
  const bool named = !work_.Layout().empty();
  save_->setEnabled(named && InEdit());
  revert_->setEnabled(named && InEdit());
  delete_->setEnabled(named);
  undo_->setEnabled(work_.CanUndo());
  redo_->setEnabled(work_.CanRedo());
  surface_->SetSnap(snap_->isChecked());
  const std::size_t selected = surface_->Selected().size();
  const auto enable = [](const std::vector<QWidget*>& parts, bool on) {
    for (QWidget* part : parts) part->setEnabled(on);
  };
  enable(forOne_, selected == 1);
  enable(forAny_, selected > 0);
  enable(forTwo_, selected > 1);
  enable(forThree_, selected > 2);
  enable(forText_, !SelectedKeys("FontSize")().empty());
}

// ---- Controls of values

bool LayoutWindow::Set(const std::vector<std::string>& keys, const std::string& value, const std::string& gesture) {
  const std::string step = gesture.empty() ? "set " + (keys.empty() ? std::string() : keys.front()) : gesture;
  if (gesture.empty()) work_.EndGesture();
  for (const std::string& key : keys)
    if (!Accepted(work_.Set(key, value, step))) return false;
  if (gesture.empty()) work_.EndGesture();
  Refresh();
  return true;
}

void LayoutWindow::Bind(Field* field, Keys keys, std::function<void(const std::string&)> show) {
  field->DoNotTrack();
  bound_.push_back({field, std::move(keys), std::move(show)});
}

void LayoutWindow::Take(Field* field, const Keys& keys, const std::optional<std::string>& value,
                        const QString& should) {
  if (showing_) return;
  const std::vector<std::string> its = keys();
  if (its.empty()) return;
  Result<void> taken;
  if (value)
    for (const std::string& key : its)
      if (taken = work_.Set(key, *value, "type " + its.front()); !taken) break;
  if (!value || !taken) {
    const QString reason = should.isEmpty() && !taken ? Q(taken.error().text) : should;
    bad_[field] = {reason, its};
    field->SetFault(reason);
    Changed();
    return;
  }
  bad_.erase(field);
  typed_ = field;
  Refresh();
  typed_ = nullptr;
}

CheckField* LayoutWindow::Check(Form& form, const QString& name, const QString& text, const Keys& keys,
                                const std::string& on, const std::string& off) {
  CheckField* check = form.Check(name, text);
  Bind(check, keys, [check, on](const std::string& value) { check->setChecked(value == on); });
  connect(check, &QCheckBox::clicked, this, [this, check, keys, on, off](bool checked) {
    work_.EndGesture();
    Take(check, keys, checked ? on : off, {});
    work_.EndGesture();
  });
  return check;
}

TextField* LayoutWindow::Text(Form& form, const QString& name, const Keys& keys, int longest) {
  TextField* field = form.Text(name, TextRule::Any(longest));
  Bind(field, keys, [field](const std::string& value) { field->SetText(value); });
  connect(field, &QLineEdit::textEdited, this, [this, field, keys] { Take(field, keys, field->Text(), {}); });
  return field;
}

NumberField* LayoutWindow::Whole(Form& form, const QString& name, const Keys& keys, int chars) {
  NumberField* field = form.Number(name, 0, {}, chars);
  Bind(field, keys, [field](const std::string& value) { field->SetText(value); });
  connect(field, &QLineEdit::textEdited, this, [this, field, keys] {
    const std::vector<std::string> its = keys();
    const auto bounds = BoundsOfLabelKey(its.empty() ? std::string() : its.front());
    Take(field, keys, Trim(field->Text()),
         bounds ? tr("%1 is a whole number from %2 to %3.").arg(Q(its.front())).arg(bounds->least).arg(bounds->most)
                : QString());
  });
  return field;
}

NumberField* LayoutWindow::Length(Form& form, const QString& name, const Keys& keys) {
  NumberField* field = form.Number(name, 3, {}, 9);
  Bind(field, keys, [this, field](const std::string& value) {
    const LabelUnit unit = UnitOfDesign(Design());
    field->SetDecimals(unit.decimals);
    field->SetText(value.empty() ? std::string() : LengthText(unit, LeadingNumber(value)));
  });
  connect(field, &QLineEdit::textEdited, this, [this, field, keys] {
    const LabelUnit unit = UnitOfDesign(Design());
    const std::vector<std::string> its = keys();
    if (its.empty()) return;
    const auto twips = ReadLength(unit, field->Text());
    const LabelBounds bounds = BoundsOfLabelKey(its.front()).value();
    Take(field, keys, twips ? std::optional(std::to_string(*twips)) : std::nullopt,
         tr("%1 is a number from %2 to %3 %4")
             .arg(Q(its.front()), Q(LengthText(unit, bounds.least)), Q(LengthText(unit, bounds.most)),
                  Q(unit.text).trimmed()));
  });
  connect(field, &QLineEdit::editingFinished, this, [this, field, keys] {
    const std::vector<std::string> its = keys();
    if (!its.empty() && !bad_.contains(field))
      field->SetText(LengthText(UnitOfDesign(Design()), Design().Number(its.front())));
  });
  return field;
}

ComboField* LayoutWindow::Choice(Form& form, const QString& name, const Keys& keys) {
  ComboField* combo = form.Combo(name);
  Bind(combo, keys, [combo](const std::string& value) {
    int at = combo->findData(Q(value));
    if (at < 0) at = combo->findText(Q(value));
    if (at < 0 && !value.empty()) {
      combo->addItem(Q(value), Q(value));
      at = combo->count() - 1;
    }
    combo->setCurrentIndex(at);
  });
  combo->OnChosen([this, combo, keys](int) {
    const QVariant data = combo->currentData();
    work_.EndGesture();
    Take(combo, keys, data.isValid() ? U8(data.toString()) : combo->Text(), {});
    work_.EndGesture();
  });
  return combo;
}

QLabel* LayoutWindow::Unit(Form& form) {
  QLabel* label = form.Hint("mm.");
  Shown([this, label] { label->setText(Q(UnitOfDesign(Design()).text).trimmed()); });
  return label;
}

// ---- What is shown

void LayoutWindow::Refresh() {
  showing_ = true;
  for (const Bound& bound : bound_) {
    if (bound.field == typed_) continue;
    const std::vector<std::string> keys = bound.keys();
    // What is typed and cannot be stays until it is mended, as long as it is about the same thing.
    if (const auto bad = bad_.find(bound.field); bad != bad_.end()) {
      if (bad->second.keys == keys) continue;
      bad_.erase(bad);
      bound.field->ClearFault();
    }
    bound.show(keys.empty() ? std::string() : Design().Text(keys.front()));
  }
  for (const auto& show : shows_) show();
  showing_ = false;
  RefreshSurface();
  Changed();
}

SurfaceBox LayoutWindow::BoxOf(const DesignItem& item, const LabelDrawing& data, const LabelDrawing& samples) const {
  constexpr double kEmptyPicture = 1440;
  SurfaceBox box{.item = {item.name, static_cast<double>(Design().Number(item.Key("Left"))),
                          static_cast<double>(Design().Number(item.Key("Top"))), 0, 0},
                 .caption = Q(item.name)};
  std::optional<QRectF> extent;
  for (const LabelDrawing* drawing : {&data, &samples})
    for (const LabelElement& element : drawing->elements)
      if (element.item == item.name && !extent)
        extent = paper::ExtentOf(*drawing, element, paper::kLabelDots, PicturesOfLabels(session));
  if (!extent) {
    box.empty = true;
    if (item.what == LabelElement::What::Picture) box.caption = tr("Double click this image to choose a picture.");
    box.item.width = kEmptyPicture;
    box.item.height = item.what == LabelElement::What::Picture ? kEmptyPicture : 360;
  } else {
    // A code stands further right than its place says where its quiet zone asks for it; the box is what can be seen.
    box.item.width = std::max(extent->right() - box.item.left, 1.0);
    box.item.height = std::max(extent->height(), 1.0);
  }
  if (const auto fault = faults_.find(item.name); fault != faults_.end()) box.fault = fault->second;
  if (box.fault.isEmpty() && (box.item.left >= data.width || box.item.top >= data.length))
    box.fault = tr("%1 lies outside of the label.").arg(Q(item.name));
  return box;
}

QStringList LayoutWindow::Notes() const {
  if (LabelsLeaveThePaper(PaperOfDesign(Design()))) return {tr("The labels of a sheet do not fit on its paper.")};
  return {};
}

void LayoutWindow::RefreshSurface() {
  SurfaceContent content{.unit = UnitOfDesign(Design()), .pictures = PicturesOfLabels(session)};
  content.width = Design().Number("Label Width");
  content.length = Design().Number("Label Length");
  content.note = tr("This label has no size: give it a width and a length on the page Sheet.");
  content.data = DrawData();
  content.samples = DrawSamples();
  // What is printed needs nothing in its place.
  std::erase_if(content.samples.elements, [&](const LabelElement& sample) {
    return std::ranges::any_of(content.data.elements,
                               [&](const LabelElement& printed) { return printed.item == sample.item; });
  });
  const bool codes = content.data.symbology != Symbology::NotUsing;
  for (const DesignItem& item : ItemsOfDesign(work_.Kind()))
    if (Design().Number(item.shown) == 1 && (item.what != LabelElement::What::Code || codes))
      content.boxes.push_back(BoxOf(item, content.data, content.samples));
  QStringList notes = Notes();
  for (const SurfaceBox& box : content.boxes)
    if (!box.fault.isEmpty()) notes += box.fault;
  note_->setText(notes.size() > 2 ? tr("%1 (and %n more)", "", static_cast<int>(notes.size()) - 1).arg(notes.front())
                                  : notes.join(" "));
  note_->setToolTip(notes.join("\n"));
  surface_->Show(std::move(content));
  FillItems();
  ShowPointed({});
  check_->start();
}

// As a printer of labels would have them, once nothing moves.
void LayoutWindow::CheckCodes() {
  std::map<std::string, QString> faults;
  if (Design().Number("Label Width") > 0 && Design().Number("Label Length") > 0)
    for (const paper::CodeCheck& check : paper::CheckCodes(session, surface_->Shown().data, kCheckedDots))
      if (!check.Reads) faults[check.Field] = Q(check.Field + ": " + check.Reason);
  if (faults == faults_) return;
  faults_ = std::move(faults);
  RefreshSurface();
  check_->stop();
}

void LayoutWindow::ShowPointed(const QString& name) {
  const LabelUnit unit = UnitOfDesign(Design());
  std::vector<PlacedItem> items = surface_->SelectedItems();
  for (const SurfaceBox& box : surface_->Shown().boxes)
    if (Q(box.item.name) == name) items = {box.item};
  const auto place = [&](const char* axis, double PlacedItem::*of) {
    return items.empty() ? QString() : axis + Q(LengthText(unit, items.front().*of)) + ' ' + Q(unit.text).trimmed();
  };
  x_->setText(place("X = ", &PlacedItem::left));
  y_->setText(place("Y = ", &PlacedItem::top));
}

}  // namespace vellumark::desktop
