#pragma once

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/date.h"
#include "desktop/kit/text_rule.h"

namespace vellumark::desktop {

/// What every control of a form has beside being a widget. Its objectName is the system's name of the control.
class Field {
 public:
  virtual ~Field() = default;
  virtual QWidget& Control() = 0;
  /// What it holds, to be compared with what it held when it was last marked clean.
  virtual QVariant Content() const = 0;

  bool IsDirty() const { return tracked_ && Content() != clean_; }
  void MarkClean() { clean_ = Content(); }
  /// A field that is no part of the record (a search text, a choice of view) never makes its window dirty.
  void DoNotTrack() { tracked_ = false; }

  /// A further name under which a refusal may point at this field, such as the column's.
  void Means(std::string name) { alias_ = std::move(name); }
  bool IsCalled(std::string_view name) const;

  /// A red edge and the reason for screen readers and as tooltip, until the content changes.
  void SetFault(const QString& reason);
  void ClearFault();
  bool HasFault() const { return fault_; }
  /// The focus, with the text selected.
  void TakeFocus();

 private:
  QVariant clean_;
  QString toolTip_;
  QPointer<QAction> mark_;
  std::string alias_;
  bool tracked_ = true;
  bool fault_ = false;
};

/// One line of text under a rule.
class TextField : public QLineEdit, public Field {
  Q_OBJECT

 public:
  TextField(const QString& name, TextRule rule);
  QWidget& Control() override { return *this; }
  QVariant Content() const override { return text(); }

  std::string Text() const { return text().toStdString(); }
  /// The program's own texts are shown as they are, also where the rule would not let them be typed.
  void SetText(std::string_view text);
  const TextRule& Rule() const { return rule_; }
  /// Room for so many figures or capitals.
  void SetWidthInChars(int count);

 Q_SIGNALS:
  /// The focus went on to another control of the program (never for a menu, a message or another program), which may be
  /// null; by Tab to a button or tabs: the field itself. Asked here, before that control does anything.
  void Left(QWidget* receiver);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

  void SetRule(TextRule rule) { rule_ = rule; }
  /// A key was dropped: beeps.
  void Refused();

 private:
  friend class RuleValidator;
  TextRule rule_;
  bool byProgram_ = false;
  QString before_;
};

/// A number, right-aligned in tabular figures. What it gives and takes is a text with a point; on the screen it has the
/// locale's separator. Whether the number is in range is the core's to say.
class NumberField : public TextField {
  Q_OBJECT

 public:
  NumberField(const QString& name, int decimals, int chars = 10);
  std::string Text() const;  ///< as typed, with a point
  void SetText(std::string_view text);
  void SetNumber(double value);
  void SetNumber(float value);
  void SetDecimals(int decimals) { decimals_ = decimals; }
  int Decimals() const { return decimals_; }

 private:
  int decimals_;
};

class CheckField : public QCheckBox, public Field {
  Q_OBJECT

 public:
  CheckField(const QString& name, const QString& text);
  QWidget& Control() override { return *this; }
  QVariant Content() const override { return isChecked(); }
};

/// Radio buttons of which one is chosen, each with its own objectName; numbered from 0 in their order.
class RadioField : public QWidget, public Field {
  Q_OBJECT

 public:
  struct Option {
    QString name;
    QString text;
  };
  RadioField(const QString& name, const std::vector<Option>& options, Qt::Orientation direction = Qt::Vertical);
  QWidget& Control() override { return *this; }
  QVariant Content() const override { return Chosen(); }
  int Chosen() const;
  void Choose(int index);
  QRadioButton* Button(int index) const { return buttons_.at(static_cast<std::size_t>(index)); }

 Q_SIGNALS:
  void ChosenChanged(int index);

 private:
  std::vector<QRadioButton*> buttons_;
};

class ComboField : public QComboBox, public Field {
  Q_OBJECT

 public:
  ComboField(const QString& name, const QStringList& items = {});
  QWidget& Control() override { return *this; }
  QVariant Content() const override { return isEditable() ? QVariant(currentText()) : QVariant(currentIndex()); }
  std::string Text() const { return currentText().toStdString(); }
  /// Chooses the entry of that text; none when there is no such entry.
  void SetText(std::string_view text);
  void SetItems(const std::vector<std::string>& items);
  /// The operator chose an entry (the program's own choices are not told).
  void OnChosen(std::function<void(int)> heard);
};

/// A list with check boxes.
class CheckListField : public QListWidget, public Field {
  Q_OBJECT

 public:
  explicit CheckListField(const QString& name);
  QWidget& Control() override { return *this; }
  QVariant Content() const override;
  void SetItems(const QStringList& items, bool checked = false);
  bool IsChecked(int row) const;
  void SetChecked(int row, bool checked);
  QStringList Checked() const;
};

/// Text of many lines. Enter makes a new line; Tab and Ctrl+Enter go on.
class NoteField : public QPlainTextEdit, public Field {
  Q_OBJECT

 public:
  explicit NoteField(const QString& name, int lines = 4);
  QWidget& Control() override { return *this; }
  QVariant Content() const override { return toPlainText(); }
  std::string Text() const { return toPlainText().toStdString(); }
  void SetText(std::string_view text);
};

/// A value to be read, across the bench if need be: figures of 1.4 times the base size unless told otherwise.
class ValueField : public QLabel {
  Q_OBJECT

 public:
  ValueField(const QString& name, double scale);
  std::string Text() const { return text().toStdString(); }
  void SetText(std::string_view text);
};

/// A date, with a calendar to choose from; it can be empty.
class DateField : public QDateEdit, public Field {
  Q_OBJECT

 public:
  explicit DateField(const QString& name);
  QWidget& Control() override { return *this; }
  QVariant Content() const override { return date(); }
  std::optional<DateTime> Date() const;  ///< nothing when empty
  void SetDate(const std::optional<DateTime>& date);
};

/// A command, its shortcut shown beside the word.
class CommandButton : public QPushButton {
  Q_OBJECT

 public:
  CommandButton(const QString& name, const QString& text, const QKeySequence& key = {});
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }
  const QKeySequence& Key() const { return key_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QKeySequence key_;
};

}  // namespace vellumark::desktop
