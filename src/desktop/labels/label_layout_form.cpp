#include "desktop/labels/label_layout_form.h"

#include <QEvent>
#include <QGridLayout>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>

#include "core/base/text.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/labels/design_surface.h"
#include "paper/label_print.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kPicture = "Picture Image";
constexpr std::array kKeyPieces{"Color Name", "Color Code", "Database", "Job Number", "Lot Number"};

// A name of a control made of an item: "Batch ID#" as "BatchID".
QString Squeezed(std::string_view item) {
  QString name;
  for (const QChar c : Q(item))
    if (c.isLetterOrNumber()) name += c;
  return name;
}

QString RunKey(int number) {
  return QString("Misc Bar Code Data %1 Combined").arg(number);
}

}  // namespace

LabelLayoutForm::LabelLayoutForm(WindowList& windowList, PrintDevices devices)
    : LayoutWindow(windowList, WindowsOf(LabelKind::Label), tr("Label Layout"), std::move(devices)) {
  Build();
}

TextField* LabelLayoutForm::AddSample(Form& form) {
  color_ = form.Name("cmbColor", NamesOnFile(session, NameKind::Formulas));
  connect(color_, &TextField::Left, this, [this](QWidget* to) {
    if (GoesOnWithin(*this, to)) ReadSample();
  });
  connect(color_, &NameBox::Picked, this, [this] { ReadSample(); });
  return color_;
}

void LabelLayoutForm::ReadSample() {
  const std::string name = color_->Name();
  if (!name.empty() && !DataOfColor(session, Design(), name)) {
    ShowRefusal({"Valid Data", "Enter a valid Color / Database name.", "cmbColor"});
    return;
  }
  RefreshSurface();
}

// ---- What is drawn

LabelDrawing LabelLayoutForm::DrawData() {
  const std::string name = color_->Name();
  data_ = DataOfDesign(Design());
  if (!name.empty() && session.DataFileDB) data_ = DataOfColor(session, Design(), name).value_or(data_);
  const auto combined = CombineMiscBarCodes(Design(), data_);
  combined_ = combined ? QString() : Q(combined.error().text).replace("\n\n", " ");
  return DrawLabel(session, Design(), data_, OptionsOfLabels(session));
}

// Its own name stands for what the data does not say.
LabelDrawing LabelLayoutForm::DrawSamples() {
  LabelData samples;
  for (std::size_t i = 0; i < kLabelFields; ++i) samples.texts[i] = LabelFields()[i].item;
  samples.Health = samples.Fire = samples.Reactivity = "0";
  LabelDrawing drawing = DrawLabel(session, Design(), samples, OptionsOfLabels(session));
  if (Design().Number("Pantone Trademark Visible") == 1) {
    LabelDesign named = Design();
    for (const char* key : {"Top", "Left", "FontSize", "FontName", "FontBold"})
      named.Set(std::string("Short Note ") + key, Design().Text(std::string("Pantone Trademark ") + key));
    named.Set("Short Note Visible", "1");
    named.Set("Short Note Title", "0");
    LabelData note;
    note["Short Note"] = "Pantone Trademark";
    for (LabelElement element : DrawLabel(session, named, note, OptionsOfLabels(session)).elements)
      if (element.item == "Short Note") {
        element.item = "Pantone Trademark";
        drawing.elements.push_back(element);
      }
  }
  return drawing;
}

QStringList LabelLayoutForm::Notes() const {
  QStringList notes = LayoutWindow::Notes();
  if (!combined_.isEmpty()) notes += combined_;
  if (Design().Number("Orientation") >= 2 && Design().Text("Label BC Type") != SymbologyName(Symbology::NotUsing))
    notes += tr("Barcodes can only be printed with the Portrait and Landscape orientations.");
  return notes;
}

// ---- Items

void LabelLayoutForm::AddRow(QGridLayout& grid, Form& form, const std::string& item) {
  const int row = grid.rowCount();
  const auto place = [&](const char* kind, const QString& column, const QString& text, const std::string& key, int at) {
    CheckField* check = Check(form, QString("chk%1%2").arg(kind, Squeezed(item)), text, Key(key));
    check->setAccessibleName(column + ' ' + Q(item));
    connect(check, &QCheckBox::clicked, this, [this, name = key.substr(0, key.rfind(' '))](bool on) {
      if (on) Surface().Select({name});
    });
    grid.addWidget(check, row, at);
  };
  const auto fields = LabelFields();
  const auto field = std::ranges::find(fields, item, &LabelField::item);
  if (field != fields.end() && field->title) place("Title", tr("Print Title:"), {}, item + " Title", 0);
  const bool onlyCode = item.starts_with("Misc Bar Code Data");
  if (onlyCode)
    grid.addWidget(new QLabel(Q(item)), row, 1);
  else
    place("Data", tr("Print Data:"), Q(item), item + " Visible", 1);
  if (onlyCode)
    place("BC", tr("Bar Code:"), {}, item + " Visible", 2);
  else if (field != fields.end())
    place("BC", tr("Bar Code:"), {}, item + " BC Visible", 2);
}

void LabelLayoutForm::AddItems(Form& form) {
  const auto group = [&](const QString& hint, const std::vector<std::string>& items, bool heads) {
    auto* box = new QWidget;
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(space::kGap);
    grid->setVerticalSpacing(0);
    grid->setColumnStretch(1, 1);
    if (heads) {
      int column = 0;
      for (const QString& head : {tr("Print Title:"), tr("Print Data:"), tr("Bar Code:")})
        grid->addWidget(form.Hint(head), 0, column++);
    }
    // Both groups stand in the same columns.
    grid->setColumnMinimumWidth(0, fontMetrics().horizontalAdvance(tr("Print Title:")));
    grid->setColumnMinimumWidth(2, fontMetrics().horizontalAdvance(tr("Bar Code:")));
    for (const std::string& item : items) AddRow(*grid, form, item);
    QLabel* text = form.Hint(hint);
    text->setWordWrap(true);
    form.Wide(text);
    form.Wide(box);
  };
  std::vector<std::string> keys(kKeyPieces.begin(), kKeyPieces.end());
  std::vector<std::string> others;
  for (const DesignItem& item : ItemsOfDesign(LabelKind::Label))
    if (!item.name.ends_with(" BC") && std::ranges::find(keys, item.name) == keys.end()) others.push_back(item.name);
  group(tr("These are the five key pieces of data to bar code on a label for Inventory or Job updating."), keys, true);
  group(tr("The remaining items to bar code can be used for purposes outside of Vellumark."), others, false);
  QLabel* off = form.Hint(tr("No bar codes are printed: choose their type on the page Bar Codes."), "lblNoCodes");
  off->setWordWrap(true);
  form.Wide(off);
  Shown([this, off] { off->setVisible(Design().Text("Label BC Type") == SymbologyName(Symbology::NotUsing)); });
}

// ---- Bar codes

void LabelLayoutForm::AddPages(TabSet& tabs) {
  AddCodes(Scrolled(*this, tabs.Page(tr("&Bar Codes"), "TabBarCodes")));
  AddTexts(Scrolled(*this, tabs.Page(tr("Te&xts"), "TabTexts")));
}

void LabelLayoutForm::AddCodes(Form form) {
  ComboField* type = Choice(form, "cmbBC_Type", Key("Label BC Type"));
  for (const Symbology symbology : {Symbology::NotUsing, Symbology::Code39, Symbology::Code39Check, Symbology::Code128})
    type->addItem(Q(SymbologyName(symbology)));
  form.Row(tr("Bar code t&ype"), type);
  form.Row(form.Hint(tr("Select Code 128 for Vellumark use.")));
  for (const QString& text :
       {tr("Combined data from selected fields cannot exceed 30 characters."),
        tr("Grouping of fields is not required, data can be entered manually into these fields.")}) {
    QLabel* hint = form.Hint(text);
    hint->setWordWrap(true);
    form.Wide(hint);
  }
  for (const int number : {1, 2}) AddRun(form, number);
}

void LabelLayoutForm::AddRun(Form& form, int number) {
  const std::string key = U8(RunKey(number));
  form.Heading(tr("Misc Bar Code Data %1 - Field Grouping").arg(number));
  auto* frame = new QWidget;
  frame->setObjectName(QString("FrameMBCD%1").arg(number));
  auto* grid = new QGridLayout(frame);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setVerticalSpacing(0);
  int at = 0;
  const auto fields = LabelFields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].run.empty()) continue;
    CheckField* check = form.Check(QString("chkMBCD%1%2").arg(number).arg(Q(fields[i].run)), Q(fields[i].item));
    check->DoNotTrack();
    Shown([this, check, key, i] { check->setChecked(std::ranges::count(FieldsOfRun(Design().Text(key)), i) > 0); });
    connect(check, &QCheckBox::clicked, this, [this, key, i](bool on) { ToggleRun(key, i, on); });
    grid->addWidget(check, at / 3, at % 3);
    ++at;
  }
  form.Wide(frame);
  QLabel* sum = form.Hint({}, QString("lblMBCD%1").arg(number));
  CommandButton* clear = form.Button(QString("cmdClearMBCD%1").arg(number), tr("Clear"));
  form.Row({clear, sum});
  Shown([this, sum, key, clear] {
    const std::vector<std::size_t> run = FieldsOfRun(Design().Text(key));
    QStringList names;
    for (const std::size_t field : run) names += Q(LabelFields()[field].item);
    sum->setText(run.empty() ? tr("Typed by hand") : names.join(" + "));
    clear->setEnabled(!Design().Text(key).empty());
  });
}

// Fields stand in a run in the order in which they were chosen.
void LabelLayoutForm::ToggleRun(const std::string& key, std::size_t field, bool on) {
  std::vector<std::size_t> run = FieldsOfRun(Design().Text(key));
  std::erase(run, field);
  if (on) run.push_back(field);
  Set({key}, RunOfFields(run));
}

void LabelLayoutForm::ClearRun(int number) {
  Set({U8(RunKey(number))}, {});
}

// ---- Texts and the picture

void LabelLayoutForm::AddTexts(Form form) {
  for (int i = 1; i <= 4; ++i)
    form.Row(tr("Misc Text &%1").arg(i),
             Text(form, QString("txtText%1").arg(i), Key("Misc Text " + std::to_string(i) + " Text"), 30));
  TextField* health = Text(form, "txtHealth", Key("Health Text"), 4);
  TextField* fire = Text(form, "txtFire", Key("Fire Text"), 4);
  TextField* reactivity = Text(form, "txtReactivity", Key("Reactivity Text"), 4);
  for (TextField* field : {health, fire, reactivity}) field->SetWidthInChars(4);
  fire->setAccessibleName(tr("Fire"));
  reactivity->setAccessibleName(tr("Reactivity"));
  form.Row(tr("Health"), {health, form.Hint(tr("Fire")), fire, form.Hint(tr("Reactivity")), reactivity});

  form.Heading(tr("Picture"));
  image_ = form.Label("Image1");
  image_->setMinimumHeight(96);
  image_->setAlignment(Qt::AlignCenter);
  image_->setFrameShape(QFrame::StyledPanel);
  image_->setWordWrap(true);
  image_->setAccessibleName(tr("Picture"));
  image_->installEventFilter(this);
  form.Wide(image_);
  QLabel* file = form.Hint({}, "lblPicture");
  form.Row({form.Button("cmdPicture", tr("Choose ...")), form.Button("cmdNoPicture", tr("Remove")), file});
  QLabel* rules = form.Hint("JPG or BMP, 96 pixels per inch.\n144 pts x 288 pts Max.\n2\" x 4\" Max.");
  form.Wide(rules);
  Shown([this, file] {
    const QString location = Q(Design().Text(std::string(kPicture) + " Location"));
    file->setText(location.section('/', -1));
    findChild<QWidget*>("cmdNoPicture")->setEnabled(!location.isEmpty());
    ShowPicture();
  });
}

void LabelLayoutForm::ShowPicture() {
  const std::string location = Design().Text(std::string(kPicture) + " Location");
  const std::filesystem::path path = PicturesOfLabels(session) / location;
  const bool fits = !location.empty() && paper::CheckLabelPictureFile(path);
  image_->setPixmap({});
  if (fits) {
    const QImage image = QImageReader(Q(path.string())).read();
    image_->setPixmap(
        QPixmap::fromImage(image.height() > 160 ? image.scaledToHeight(160, Qt::SmoothTransformation) : image));
  } else if (location.empty()) {
    image_->setText(tr("Double click this image to choose a picture."));
  } else {
    image_->setText(tr("%1 is not there, or is no picture that fits.").arg(Q(location)));
  }
}

void LabelLayoutForm::cmdPicture_Click() {
  const QString chosen = Devices().chooseFile(
      {tr("Picture Selection"), tr("Picture Files (*.jpg; *.bmp)|*.jpg; *.bmp"), ".jpg", "C:\\"}, this);
  if (chosen.isEmpty()) return;
  if (!Accepted(paper::CheckLabelPictureFile(U8(chosen)))) return;
  Set({std::string(kPicture) + " Location"}, U8(chosen), "picture");
  Set({std::string(kPicture) + " Visible"}, "1", "picture");
  Surface().Select({kPicture});
}

void LabelLayoutForm::cmdNoPicture_Click() {
  Set({std::string(kPicture) + " Location"}, {}, "no picture");
  Set({std::string(kPicture) + " Visible"}, "0", "no picture");
}

void LabelLayoutForm::Activate(const std::string& item) {
  if (item == kPicture) return cmdPicture_Click();
  FocusField("txtX");
}

bool LabelLayoutForm::eventFilter(QObject* watched, QEvent* event) {
  if (watched == image_ && event->type() == QEvent::MouseButtonDblClick) {
    cmdPicture_Click();
    return true;
  }
  return LayoutWindow::eventFilter(watched, event);
}

}  // namespace vellumark::desktop
