#include "desktop/kit/record_fields.h"

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <QMetaMethod>
#include <algorithm>
#include <array>
#include <utility>

#include "core/inventory/color_stock.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

template <class F>
void PutText(F& field, std::string_view text, bool keepTyped) {
  if (keepTyped && field.Field::IsDirty()) return;
  if (field.Text() != text) field.SetText(text);
  field.Field::MarkClean();
}

}  // namespace

void Put(TextField& field, std::string_view text, bool keepTyped) {
  PutText(field, text, keepTyped);
}

void Put(NumberField& field, std::string_view text, bool keepTyped) {
  PutText(field, text, keepTyped);
}

void Put(NoteField& field, std::string_view text, bool keepTyped) {
  PutText(field, text, keepTyped);
}

void Put(CheckField& field, bool checked, bool keepTyped) {
  if (keepTyped && field.IsDirty()) return;
  field.setChecked(checked);
  field.MarkClean();
}

QString DateText(const std::optional<DateTime>& date) {
  if (!date) return QString::fromUtf8("–");
  return QLocale().toString(QDate(date->year, date->month, date->day), QLocale::ShortFormat);
}

QString MomentText(const std::optional<DateTime>& date) {
  if (!date) return QString::fromUtf8("–");
  return QLocale().toString(
      QDateTime(QDate(date->year, date->month, date->day), QTime(date->hour, date->minute, date->second)),
      QLocale::ShortFormat);
}

NameSource NamesOnFile(const Session& session, NameKind kind) {
  return {
      [&session, kind](std::string_view typed) { return CompleteName(session, kind, typed); },
      [&session, kind](std::string_view typed, std::size_t limit) { return NamesFrom(session, kind, typed, limit); }};
}

NameSource ColorsOnFile(const Session& session) {
  return {
      [&session](std::string_view typed) { return CompleteColorName(session, typed); },
      [&session](std::string_view typed, std::size_t limit) { return ColorNamesFrom(session, typed, limit); }};
}

NameBox* ColorNameBox(Form& form, const NameSource& names) {
  NameBox* box = form.Name("cmbColorName", names);
  box->Means("Color_Name");
  box->DoNotTrack();
  return box;
}

CommandButton* LowStockLink(Form& form) {
  CommandButton* link = form.Link("ImgInvLow", NameBox::tr("Low inventory"));
  link->setIcon(Icon("low-stock"));
  link->hide();
  return link;
}

void HintAtPantone(NameBox& name, Session& session) {
  QObject::connect(&name, &NameBox::PantoneTyped, &name, [&session] {
    session.prompt.Tell(U8(NameBox::tr("Hint")),
                        U8(NameBox::tr("No need to type the word 'PANTONE' for a Pantone Color.\n"
                                       "Just type the color number and press the Enter key.\n"
                                       "Vellumark automatically adds the 'PANTONE' prefix.")));
  });
}

bool GoesOnWithin(const FormHost& host, const QWidget* to) {
  return to != nullptr && host.Self().isAncestorOf(to) && qobject_cast<const QPushButton*>(to) == nullptr;
}

bool LeavesNameAlone(const QWidget& to) {
  static constexpr std::array<const char*, 4> commands{"cmdCancel", "cmdPrevious", "cmdNext", "cmdPrintMultiple"};
  return std::ranges::any_of(commands, [&](const char* name) { return to.objectName() == QLatin1String(name); });
}

void OnActivation(Window& window, std::function<void()> activated) {
  QObject::connect(qApp, &QApplication::focusChanged, &window,
                   [&window, activated = std::move(activated)](QWidget* from, QWidget* to) {
                     const auto inside = [&](QWidget* widget) {
                       return widget != nullptr && window.isAncestorOf(widget);
                     };
                     if (!inside(to) || inside(from)) return;
                     // Once the focus has settled; by then it may have gone on.
                     QMetaObject::invokeMethod(
                         &window,
                         [inside, activated] {
                           if (inside(QApplication::focusWidget())) activated();
                         },
                         Qt::QueuedConnection);
                   });
}

bool StandBackForBatch(Window& window, const QString& warning) {
  if (!window.windows.IsInEdit("BatchForm")) return false;
  window.session.prompt.Tell(
      U8(Window::tr("Batch Window - Formula in State of Edit.")),
      U8(Window::tr("The Batch Window is open and has a recipe on screen.\n%1\n"
                    "Save && Clear the information on the Batch Window before using this Window.")
             .arg(warning)),
      vellumark::Icon::Exclamation);
  window.windows.OpenForm("BatchForm");
  return true;
}

}  // namespace vellumark::desktop
