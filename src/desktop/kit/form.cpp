#include "desktop/kit/form.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <utility>

#include "desktop/kit/look.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

constexpr int kWidestSheet = 640;
constexpr int kWidestText = 480;

/// The sheet with the lines, and what is left of the page to its right and below.
QWidget* LayOut(QWidget* page, bool margins) {
  auto* sheet = new QWidget;
  sheet->setMaximumWidth(kWidestSheet);
  // One layout: one inside another keeps the least size that it had before something was hidden.
  auto* around = new QGridLayout(page);
  around->setContentsMargins(0, 0, 0, 0);
  around->setSpacing(0);
  around->addWidget(sheet, 0, 0);
  around->setColumnStretch(0, 1000);
  around->setColumnStretch(1, 1);
  around->setRowStretch(1, 1);
  auto* grid = new QGridLayout(sheet);
  const int edge = margins ? space::kGroup : 0;
  // A part that stands beside others of its page begins where they do.
  const int top = page->property("flush").toBool() ? 0 : space::kGap;
  grid->setContentsMargins(edge, top, edge, margins ? space::kGap : 0);
  grid->setHorizontalSpacing(space::kGap);
  grid->setVerticalSpacing(space::kUnit);
  grid->setColumnStretch(1, 1);
  return sheet;
}

/// Asks for the room that a page with a list needs while it has no controls of its own, so that a window which opens by
/// itself is large enough for them.
class LateSheet : public QWidget {
 public:
  QSize sizeHint() const override { return layout() == nullptr ? QSize(880, 520) : QWidget::sizeHint(); }
};

QString Plain(QString label) {
  static const QString twice = "&&";
  const QChar hold(0x1);
  label.replace(twice, QString(hold)).remove('&');
  return label.replace(hold, '&').trimmed();
}

}  // namespace

Form::Form(FormHost& host) : Form(host, &host.Self(), true) {}

Form::Form(FormHost& host, QWidget& part) : Form(host, &part, false) {}

Form::Form(FormHost& host, QWidget* page, bool margins)
    : host_(&host), sheet_(LayOut(page, margins)), grid_(qobject_cast<QGridLayout*>(sheet_->layout())) {}

void Form::Fill() {
  sheet_->setMaximumWidth(QWIDGETSIZE_MAX);
  auto* around = qobject_cast<QGridLayout*>(sheet_->parentWidget()->layout());
  around->setColumnStretch(1, 0);
  around->setRowStretch(0, 1);
  around->setRowStretch(1, 0);
}

int Form::NextRow() const {
  return grid_->rowCount();
}

void Form::Heading(const QString& text) {
  auto* heading = new QLabel(text);
  heading->setFont(Look::Heading());
  heading->setProperty("role", "heading");
  const int row = NextRow();
  const bool first = grid_->count() == 0;
  heading->setContentsMargins(0, first ? 0 : space::kGap, 0, 0);
  grid_->addWidget(heading, row, 0, 1, 2);
}

QLabel* Form::Row(const QString& label, QWidget* field) {
  return Row(label, {field});
}

QLabel* Form::Row(const QString& label, std::initializer_list<QWidget*> fields) {
  auto* caption = new QLabel(label);
  caption->setProperty("role", "label");
  QWidget* first = *fields.begin();
  caption->setBuddy(first);
  const int row = NextRow();
  const bool tall =
      qobject_cast<QPlainTextEdit*>(first) != nullptr || qobject_cast<QAbstractItemView*>(first) != nullptr;
  auto* radio = qobject_cast<RadioField*>(first);
  if (tall || radio != nullptr) {
    caption->setContentsMargins(0, radio != nullptr ? 3 : space::kUnit, 0, 0);
    grid_->addWidget(caption, row, 0, Qt::AlignTop | Qt::AlignLeft);
    if (tall) {
      grid_->setRowStretch(row, 1);
      Fill();
    }
  } else {
    grid_->addWidget(caption, row, 0, Qt::AlignVCenter | Qt::AlignLeft);
  }
  grid_->addWidget(Side(fields), row, 1);
  for (QWidget* field : fields) {
    if (field->accessibleName().isEmpty() && qobject_cast<QLabel*>(field) == nullptr) {
      field->setAccessibleName(Plain(label));
    }
  }
  return caption;
}

void Form::Row(std::initializer_list<QWidget*> fields) {
  grid_->addWidget(Side(fields), NextRow(), 1);
}

QWidget* Form::Side(std::initializer_list<QWidget*> widgets) {
  auto* box = new QWidget(sheet_);  // a box that moves once it is filled is styled twice
  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(space::kUnit);
  bool fills = false;
  for (QWidget* widget : widgets) {
    const bool grows = widget->minimumWidth() != widget->maximumWidth() &&
                       (widget->sizePolicy().expandingDirections() & Qt::Horizontal) != 0;
    layout->addWidget(widget, grows ? 1000 : 0);
    fills = fills || (grows && widget->maximumWidth() == QWIDGETSIZE_MAX);
  }
  if (!fills) layout->addStretch(1);
  return box;
}

void Form::Wide(QWidget* widget, int stretch) {
  const int row = NextRow();
  grid_->addWidget(widget, row, 0, 1, 2);
  if (stretch == 0) return;
  grid_->setRowStretch(row, stretch);
  Fill();
}

QSplitter* Form::Sides(const QString& name) {
  auto* sides = new QSplitter(Qt::Horizontal, grid_->parentWidget());
  Wide(sides, 1);
  sides->setObjectName(name);
  sides->setChildrenCollapsible(false);
  return sides;
}

void Form::Space() {
  grid_->addItem(new QSpacerItem(0, space::kUnit), NextRow(), 0);
}

void Form::Stretch() {
  const int row = NextRow();
  grid_->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), row, 0);
  grid_->setRowStretch(row, 1);
  Fill();
}

std::vector<Form> Form::Columns(int count) {
  auto* box = new QWidget(sheet_);  // a box that moves once it is filled is styled twice
  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2 * space::kGroup);
  std::vector<Form> forms;
  for (int i = 0; i < count; ++i) {
    auto* column = new QWidget(box);
    Form form(*host_, column, false);
    form.grid_->setContentsMargins(0, 0, 0, 0);
    form.sheet_->setMaximumWidth(QWIDGETSIZE_MAX);
    layout->addWidget(column, 1);
    forms.push_back(form);
  }
  sheet_->setMaximumWidth(QWIDGETSIZE_MAX);
  Wide(box);
  return forms;
}

TabSet Form::Tabs(const QString& name) {
  auto* tabs = new QTabWidget;
  tabs->setObjectName(name);
  tabs->setDocumentMode(true);
  tabs->tabBar()->setDrawBase(false);
  Wide(tabs, 1);
  return {*host_, tabs};
}

Form TabSet::Page(const QString& title, const QString& name) {
  auto* page = new QWidget;
  page->setObjectName(name);
  tabs_->addTab(page, title);
  return {*host_, page, false};
}

void TabSet::LatePage(const QString& title, const QString& name, std::function<void(Form)> build) {
  auto* page = new LateSheet;
  page->setObjectName(name);
  tabs_->addTab(page, title);
  host_->AddLate(*page, *tabs_->tabBar(),
                 [host = host_, page, build = std::move(build)] { build(Form(*host, page, false)); });
  QObject::connect(tabs_, &QTabWidget::currentChanged, page, [host = host_, tabs = tabs_, page] {
    if (tabs->currentWidget() == page) host->BuildLate(*page);
  });
}

void Form::Buttons(std::initializer_list<QPushButton*> buttons) {
  ButtonsWithoutDefault(buttons);
  host_->SetDefaultButton(*buttons.begin());
}

void Form::ButtonsWithoutDefault(std::initializer_list<QPushButton*> buttons) {
  auto* box = new QWidget(sheet_);  // a box that moves once it is filled is styled twice
  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, space::kGap, 0, 0);
  layout->setSpacing(space::kUnit);
  layout->addStretch(1);
  for (QPushButton* button : buttons) layout->addWidget(button);
  Wide(box);
}

TextField* Form::Text(const QString& name, TextRule rule) {
  auto* field = new TextField(name, rule);
  field->setMaximumWidth(std::min(field->maximumWidth(), kWidestText));
  return Add(field);
}

TextField* Form::Password(const QString& name, int maxLength) {
  auto* field = Text(name, TextRule::Any(maxLength));
  field->setEchoMode(QLineEdit::Password);
  return field;
}

NumberField* Form::Number(const QString& name, int decimals, const QString& range, int chars) {
  auto* field = new NumberField(name, decimals, chars);
  if (!range.isEmpty()) {
    field->setToolTip(range);
    field->setAccessibleDescription(range);
  }
  return Add(field);
}

CheckField* Form::Check(const QString& name, const QString& text) {
  return Add(new CheckField(name, text));
}

RadioField* Form::Radio(const QString& name, const std::vector<RadioField::Option>& options,
                        Qt::Orientation direction) {
  return Add(new RadioField(name, options, direction));
}

ComboField* Form::Combo(const QString& name, const QStringList& items) {
  return Add(new ComboField(name, items));
}

CheckListField* Form::CheckList(const QString& name) {
  return Add(new CheckListField(name));
}

NoteField* Form::Note(const QString& name, int lines) {
  return Add(new NoteField(name, lines));
}

DateField* Form::Date(const QString& name) {
  return Add(new DateField(name));
}

ValueField* Form::Value(const QString& name, double scale) {
  return new ValueField(name, scale);
}

QLabel* Form::Label(const QString& name, const QString& text) {
  auto* label = new QLabel(text);
  label->setObjectName(name);
  return label;
}

QLabel* Form::Hint(const QString& text, const QString& name) {
  QLabel* label = Label(name, text);
  label->setProperty("role", "hint");
  return label;
}

NameBox* Form::Name(const QString& name, NameSource source) {
  return Add(new NameBox(name, host_->session, std::move(source)));
}

Grid* Form::Table(const QString& name) {
  auto* grid = new Grid(name);
  FormHost* host = host_;
  QObject::connect(grid, &Grid::EditRefused, grid, [host](const Refusal& refusal) { host->ShowRefusal(refusal); });
  new RowMenu(*grid, host->windows, host);
  return grid;
}

// The common commands have the same key in every window that has them.
static QKeySequence CommonKey(const QString& name) {
  if (name == QLatin1String("cmdSave")) return QKeySequence::Save;
  if (name == QLatin1String("cmdDelete")) return Qt::CTRL | Qt::Key_D;
  if (name == QLatin1String("cmdPrint")) return QKeySequence::Print;
  return {};
}

CommandButton* Form::Button(const QString& name, const QString& text, const QKeySequence& key,
                            std::function<void()> click) {
  auto* button = new CommandButton(name, text, key.isEmpty() ? CommonKey(name) : key);
  host_->AdoptButton(*button, std::move(click));
  return button;
}

CommandButton* Form::Link(const QString& name, const QString& text, std::function<void()> click) {
  CommandButton* button = Button(name, text, {}, std::move(click));
  button->setProperty("link", true);
  return button;
}

}  // namespace vellumark::desktop
