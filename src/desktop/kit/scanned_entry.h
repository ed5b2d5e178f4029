#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <vector>

class QKeyEvent;
class QLineEdit;

namespace vellumark::desktop {

/// Hears what a scanner types before anybody else does, in every window. A code is recognised by its tag ("<CN>"), or
/// by the speed of its keys; it is held until it is whole and then stands in the field in which it began, without its
/// tag and instead of what was there, however long the program was busy and whatever came up meanwhile. A code that
/// begins where nothing can be written presses no button: it goes to the field that collects scans, if one is open.
///
/// A label whose code holds all its fields, one a line, gives a field the line of its own tag. The ends CR, LF, CR LF
/// and Tab are all Enter. Keys without a time are those that the program itself makes, and are let through.
class ScannedEntry : public QObject {
  Q_OBJECT

 public:
  explicit ScannedEntry(QObject& application);
  bool eventFilter(QObject* watched, QEvent* event) override;

  /// A field that takes every line as it comes, and what was scanned where nothing can be written.
  static void Collects(QWidget& field);
  /// The tag of the codes that belong into a field ("<JN>"); empty of one that takes any.
  static QString TagOf(const QWidget& field);

 private:
  struct Key {
    int key;
    Qt::KeyboardModifiers modifiers;
    QString text;
  };
  enum class Holds {
    Nothing,
    Tagged,    ///< from "<" on
    Untagged,  ///< where nothing can be written
    Rest,      ///< of a code whose field has lost the focus
    Other,     ///< nothing: a line of another tag waits for the one that belongs into the field
  };

  bool Heard(QWidget& widget, const QKeyEvent& key);
  bool HeardHeld(const QKeyEvent& key, const QString& letter, bool ends);
  void Begin(Holds holds, QWidget& target, const QKeyEvent& key, const QString& letter);
  void Track(QWidget& widget);
  bool TypedEnds(QWidget& widget, const QKeyEvent& key);
  void TimeOut();
  /// Gives the keys to whom they were meant for: no scan.
  void Flush();
  void Complete(bool ended);
  void CompleteTagged(QWidget& target, const QString& line, bool ended);
  void Deliver(QWidget& target, const QString& line, bool ended);
  void Collect(const QString& line);
  void Send(QWidget& target, int key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {});

  Holds holds_ = Holds::Nothing;
  QPointer<QWidget> target_;
  QString held_;
  std::vector<Key> keys_;
  QTimer timer_;
  bool late_ = false;  ///< the timer has given what is on its way one more chance

  quint64 last_ = 0;           ///< when the last key came
  quint64 ended_ = 0;          ///< when the last scan did
  QPointer<QWidget> scanned_;  ///< the field of that scan
  bool delivered_ = false;     ///< and whether it has its line
  QString other_;              ///< the first line, of another tag
  QPointer<QWidget> typed_;    ///< where keys come quickly, and how many did
  int quick_ = 0;
};

}  // namespace vellumark::desktop
