#pragma once

#include <QKeySequence>
#include <QWidget>
#include <functional>
#include <initializer_list>
#include <vector>

#include "desktop/kit/fields.h"
#include "desktop/kit/form_host.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/name_box.h"

class QGridLayout;
class QSplitter;
class QTabWidget;

namespace vellumark::desktop {

class TabSet;

/// Builds the inside of a window from top to bottom in lines that read as the window does. Labels stand in one column,
/// fields in the next; headings and space part the groups. A form is as wide as can be read and as high as its lines;
/// one with a grid, a note or tabs fills its window. A Form is a hand on a layout: copy it freely.
///
///     Form form(*this);
///     form.Heading(tr("Stock"));
///     form.Row(tr("&Reorder point"), {reorder_ = form.Number("txtReorder", 3), form.Hint(unit)});
///     form.Buttons({save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
class Form {
 public:
  /// The inside of a whole window.
  explicit Form(FormHost& host);
  /// The inside of a part of it that has no layout yet.
  Form(FormHost& host, QWidget& part);

  /// A heading and space above it.
  void Heading(const QString& text);
  /// A label and what belongs to it; the label's mnemonic and accessible name go to the first. Returns the label.
  QLabel* Row(const QString& label, QWidget* field);
  QLabel* Row(const QString& label, std::initializer_list<QWidget*> fields);
  /// Fields without a label, in the column of the fields.
  void Row(QWidget* field) { Row({field}); }
  void Row(std::initializer_list<QWidget*> fields);
  /// The whole width; `stretch` takes what is left of the height.
  void Wide(QWidget* widget, int stretch = 0);
  /// Over the whole width and what is left of the height, for parts side by side that the user may make wider. It is in
  /// its place before it is filled: what moves into another parent is styled again with all that it holds.
  QSplitter* Sides(const QString& name);
  void Space();
  /// Pushes what follows to the bottom.
  void Stretch();
  /// Forms side by side, for windows wide enough.
  std::vector<Form> Columns(int count);
  TabSet Tabs(const QString& name);
  /// The row of buttons at the bottom, at the right. The first one is the default: Enter in the last field clicks it.
  void Buttons(std::initializer_list<QPushButton*> buttons);
  void ButtonsWithoutDefault(std::initializer_list<QPushButton*> buttons);

  // The kinds of field. Each is made here and placed by Row or Wide.
  TextField* Text(const QString& name, TextRule rule = TextRule::Any());
  TextField* Password(const QString& name, int maxLength);
  /// The range, if given, is shown to screen readers and as tooltip: tr("0 to 99999").
  NumberField* Number(const QString& name, int decimals, const QString& range = {}, int chars = 10);
  CheckField* Check(const QString& name, const QString& text);
  RadioField* Radio(const QString& name, const std::vector<RadioField::Option>& options,
                    Qt::Orientation direction = Qt::Vertical);
  ComboField* Combo(const QString& name, const QStringList& items = {});
  CheckListField* CheckList(const QString& name);
  NoteField* Note(const QString& name, int lines = 4);
  DateField* Date(const QString& name);
  /// The name of a colour.
  NameBox* Name(const QString& name, NameSource source);
  /// A grid whose refused edits show themselves. Placed with Wide(grid, 1).
  Grid* Table(const QString& name);
  /// A value to be read; `scale` times the base size.
  ValueField* Value(const QString& name, double scale = 1.4);
  QLabel* Label(const QString& name, const QString& text = {});
  /// Quiet text beside or under a field, such as a unit.
  QLabel* Hint(const QString& text, const QString& name = {});
  /// Without `click` the slot NAME_Click of the window is called; a window without it throws at once. The common
  /// commands cmdSave, cmdDelete and cmdPrint have Ctrl+S, Ctrl+D and Ctrl+P unless another key is given.
  CommandButton* Button(const QString& name, const QString& text, const QKeySequence& key = {},
                        std::function<void()> click = {});
  CommandButton* Button(const QString& name, const QString& text, std::function<void()> click) {
    return Button(name, text, {}, std::move(click));
  }
  /// A button that looks like a link, for going elsewhere.
  CommandButton* Link(const QString& name, const QString& text, std::function<void()> click = {});
  /// Any other field.
  template <class F>
  F* Add(F* field) {
    host_->Adopt(*field);
    return field;
  }

 private:
  friend class TabSet;
  Form(FormHost& host, QWidget* page, bool margins);
  int NextRow() const;
  /// Something takes what is left of the window, in height and width.
  void Fill();
  QWidget* Side(std::initializer_list<QWidget*> widgets);

  FormHost* host_;
  QWidget* sheet_;
  QGridLayout* grid_;
};

/// Tab pages, each a form.
class TabSet {
 public:
  Form Page(const QString& title, const QString& name = {});
  /// A page that is built when it is first looked at; no control of it is there before.
  void LatePage(const QString& title, const QString& name, std::function<void(Form)> build);
  QTabWidget* Widget() const { return tabs_; }

 private:
  friend class Form;
  TabSet(FormHost& host, QTabWidget* tabs) : host_(&host), tabs_(tabs) {}
  FormHost* host_;
  QTabWidget* tabs_;
};

}  // namespace vellumark::desktop
