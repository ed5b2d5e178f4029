#include "desktop/kit/amount_field.h"

#include <QKeyEvent>
#include <utility>

#include "core/base/text.h"

namespace vellumark::desktop {
namespace {

// Hears the keys of a field that the user may not change.
class RightKeys : public QObject {
 public:
  RightKeys(FormHost& host, NumberField& field, AmountKey key) : QObject(&field), host_(host), key_(key) {
    field.installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
    const auto& key = *static_cast<QKeyEvent*>(event);
    const bool changes = (!key.text().isEmpty() && key.text().front().isPrint() &&
                          (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0) ||
                         key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete ||
                         key.matches(QKeySequence::Paste) || key.matches(QKeySequence::Cut);
    if (!changes) return false;
    const auto right = RequireRight(host_.session, key_, {});
    if (right) return false;
    host_.ShowRefusal(right.error());
    return true;
  }

 private:
  FormHost& host_;
  AmountKey key_;
};

}  // namespace

bool KeepToRight(FormHost& host, NumberField& field, AmountKey key, const std::string& column) {
  if (RequireRight(host.session, key, column)) return true;
  field.setReadOnly(true);
  new RightKeys(host, field, key);
  return false;
}

void MakeAmountField(FormHost& host, NumberField& field, AmountKey key, const std::string& column,
                     std::function<bool()> shown) {
  field.Means(column);
  field.SetDecimals(DecimalsOf(host.session, key));
  if (!KeepToRight(host, field, key, column)) return;
  QObject::connect(&field, &TextField::Left, &field,
                   [&host, &field, key, column, shown = std::move(shown)](QWidget* to) {
                     if (to == nullptr || !host.Self().isAncestorOf(to) || qobject_cast<QPushButton*>(to) != nullptr)
                       return;
                     const std::string typed = field.Text();
                     // A measurement that was not taken is no fault until it is entered into the list.
                     if (!shown() || (key == AmountKey::Lab && Trim(typed).empty())) return;
                     const Result<float> amount = ReadAmount(host.session, key, typed, column);
                     if (!host.Accepted(amount)) return;
                     const std::string text = AmountText(host.session, key, *amount);
                     if (text != typed) field.SetText(text);
                   });
}

}  // namespace vellumark::desktop
