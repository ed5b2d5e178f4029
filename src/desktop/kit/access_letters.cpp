#include "desktop/kit/access_letters.h"

#include <QAction>
#include <QCheckBox>
#include <QKeySequence>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTabBar>
#include <algorithm>
#include <utility>
#include <vector>

#include "desktop/kit/fields.h"

namespace vellumark::desktop {
namespace {

// The text as its window wrote it, and as it stands with the letter of ours.
constexpr const char* kWritten = "writtenText";
constexpr const char* kLettered = "letteredText";

/// Pages on which something stands: of each stack, which of its pages.
using Pages = std::vector<std::pair<const QObject*, const QObject*>>;

Pages PagesOf(const QObject& control) {
  Pages pages;
  for (const QObject* at = &control; at->parent() != nullptr; at = at->parent())
    if (qobject_cast<const QStackedWidget*>(at->parent()) != nullptr) pages.emplace_back(at->parent(), at);
  return pages;
}

bool SeenTogether(const Pages& a, const Pages& b) {
  return std::ranges::none_of(a, [&](const auto& mine) {
    return std::ranges::any_of(
        b, [&](const auto& other) { return mine.first == other.first && mine.second != other.second; });
  });
}

/// Where in the text its letter stands; -1 for none. Two of the sign are one to be read.
qsizetype LetterAt(const QString& text) {
  for (qsizetype at = text.indexOf('&'); at >= 0 && at + 1 < text.size(); at = text.indexOf('&', at + 2))
    if (text[at + 1] != '&') return at + 1;
  return -1;
}

struct Lettered {
  QObject* owner = nullptr;
  QString written{};
  Pages pages{};
  bool asks = true;     ///< gets a letter also where it was written without one
  QChar letter{};
  QString text{};
};

class Letters {
 public:
  void Take(QChar letter) { taken_.emplace_back(letter, Pages()); }
  void TakeOf(const QString& text) {
    if (const qsizetype at = LetterAt(text); at >= 0) Take(text[at].toUpper());
  }

  void GiveTo(std::vector<Lettered>& all) {
    for (Lettered& one : all) {
      one.text = one.written;
      const qsizetype wish = LetterAt(one.written);
      if (wish < 0) continue;
      if (Free(one.written[wish], one.pages)) {
        Note(one, wish);
      } else {
        one.text.remove(wish - 1, 1);
        one.asks = true;
      }
    }
    for (Lettered& one : all)
      if (one.letter.isNull() && one.asks) GiveAnew(one);
  }

 private:
  bool Free(QChar letter, const Pages& pages) const {
    return letter.isLetterOrNumber() && std::ranges::none_of(taken_, [&](const auto& taken) {
             return taken.first == letter.toUpper() && SeenTogether(taken.second, pages);
           });
  }
  void Note(Lettered& one, qsizetype at) {
    one.letter = one.text[at].toUpper();
    taken_.emplace_back(one.letter, one.pages);
  }
  void GiveAnew(Lettered& one) {
    for (const bool beginning : {true, false}) {
      for (qsizetype at = 0; at < one.text.size(); ++at) {
        // No digit: the toolbar counts by them.
        if (!one.text[at].isLetter() || !Free(one.text[at], one.pages)) continue;
        if (beginning && at > 0 && one.text[at - 1].isLetterOrNumber()) continue;
        Note(one, at);
        one.text.insert(at, '&');
        return;
      }
    }
  }

  std::vector<std::pair<QChar, Pages>> taken_;
};

/// What was written last, if that is not of ours; whether it is new.
bool Read(const QObject& owner, const QString& text, QString& written) {
  const bool anew = text != owner.property(kLettered).toString();
  written = anew ? text : owner.property(kWritten).toString();
  return anew;
}

void Keep(const Lettered& one) {
  one.owner->setProperty(kWritten, one.written);
  one.owner->setProperty(kLettered, one.text);
}

/// Commands first, then fields, then what is chosen, last what leads elsewhere; what stands on a page comes behind all
/// that is seen beside each of them.
int RankOf(const QWidget& control, const Pages& pages) {
  const int page = pages.empty() ? 0 : 4;
  if (qobject_cast<const QPushButton*>(&control) != nullptr) return page + (control.property("link").toBool() ? 3 : 0);
  return page + (qobject_cast<const QLabel*>(&control) != nullptr ? 1 : 2);
}

QString TextOf(const QWidget& control) {
  if (const auto* label = qobject_cast<const QLabel*>(&control))
    return label->buddy() == nullptr ? QString() : label->text();
  if (qobject_cast<const QPushButton*>(&control) != nullptr || qobject_cast<const QCheckBox*>(&control) != nullptr ||
      qobject_cast<const QRadioButton*>(&control) != nullptr)
    return static_cast<const QAbstractButton&>(control).text();
  return {};
}

void SetTextOf(QObject& control, const QString& text) {
  if (auto* label = qobject_cast<QLabel*>(&control))
    label->setText(text);
  else
    static_cast<QAbstractButton&>(control).setText(text);
}

/// The letter that a button has as its own key, by which it would be reached twice.
QChar OwnLetter(const QWidget& control) {
  const auto* command = dynamic_cast<const CommandButton*>(&control);
  if (command == nullptr || command->Key().isEmpty()) return {};
  const QKeyCombination key = command->Key()[0];
  const bool letter = key.keyboardModifiers() == Qt::AltModifier && key.key() >= Qt::Key_A && key.key() <= Qt::Key_Z;
  return letter ? QChar(static_cast<char16_t>(key.key())) : QChar();
}

}  // namespace

void LetterActions(const QList<QAction*>& actions) {
  std::vector<Lettered> all;
  bool anew = false;
  for (QAction* action : actions) {
    if (action->isSeparator() || action->text().isEmpty()) continue;
    Lettered one{.owner = action};
    anew = Read(*action, action->text(), one.written) || anew;
    all.push_back(std::move(one));
  }
  if (!anew) return;
  Letters().GiveTo(all);
  for (const Lettered& one : all) {
    static_cast<QAction*>(one.owner)->setText(one.text);
    Keep(one);
  }
}

void SetWritten(QAction& action, const QString& text) {
  if (action.property(kWritten).toString() != text) action.setText(text);
}

void LetterControls(QWidget& window) {
  std::vector<QWidget*> controls;
  bool anew = false;
  for (QWidget* control : window.findChildren<QWidget*>()) {
    const QString text = TextOf(*control);
    if (text.isEmpty() || control->window() != window.window()) continue;
    controls.push_back(control);
    anew = anew || text != control->property(kLettered).toString();
  }
  if (!anew) return;
  std::vector<std::pair<int, Lettered>> ranked;
  Letters letters;
  for (QWidget* control : controls) {
    Lettered one{.owner = control, .asks = qobject_cast<QRadioButton*>(control) == nullptr};
    Read(*control, TextOf(*control), one.written);
    const QChar own = OwnLetter(*control);
    if (!own.isNull()) letters.Take(own);
    one.pages = PagesOf(*control);
    const int rank = own.isNull() ? RankOf(*control, one.pages) : -1;
    ranked.emplace_back(rank, std::move(one));
  }
  for (const auto* bar : window.findChildren<QTabBar*>())
    for (int tab = 0; tab < bar->count(); ++tab) letters.TakeOf(bar->tabText(tab));
  if (const auto* main = qobject_cast<QMainWindow*>(window.window()))
    for (const QAction* action : main->menuBar()->actions()) letters.TakeOf(action->text());
  std::ranges::stable_sort(ranked, {}, [](const auto& one) { return one.first; });
  std::vector<Lettered> all;
  for (auto& [rank, one] : ranked) {
    if (rank < 0) {  // reached by its key
      one.text = QString(one.written).remove(LetterAt(one.written) - 1, LetterAt(one.written) > 0 ? 1 : 0);
      SetTextOf(*one.owner, one.text);
      Keep(one);
      continue;
    }
    all.push_back(std::move(one));
  }
  letters.GiveTo(all);
  for (const Lettered& one : all) {
    SetTextOf(*one.owner, one.text);
    Keep(one);
  }
}

}  // namespace vellumark::desktop
