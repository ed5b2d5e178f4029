#pragma once

#include <QChar>
#include <QString>
#include <optional>

namespace vellumark::desktop {

/// What a field of text lets in: a key that does not fit is dropped with a beep, pasted text loses what does not fit.
/// What the program itself puts into a field is never changed.
class TextRule {
 public:
  static TextRule Any(int maxLength = 0) { return {Kind::Any, maxLength}; }
  /// Small letters become capitals.
  static TextRule Upper(int maxLength) { return {Kind::Upper, maxLength}; }
  /// The characters of names: capitals, digits, blank and . / -
  static TextRule UpperName(int maxLength) { return {Kind::Name, maxLength}; }
  /// The same and the marks of a scanned tag: < > !
  static TextRule ScannedName(int maxLength) { return {Kind::ScannedName, maxLength}; }
  /// The characters of a Database's name: those of names without the full stop.
  static TextRule DatabaseName(int maxLength) { return {Kind::DatabaseName, maxLength}; }
  static TextRule Digits(int maxLength) { return {Kind::Digits, maxLength}; }
  /// Digits, a sign and the decimal separator of the locale (a point is taken as one).
  static TextRule Number(int maxLength) { return {Kind::Number, maxLength}; }

  /// The character that a typed one becomes; nothing for one that is dropped.
  std::optional<QChar> Key(QChar typed) const;
  int MaxLength() const { return maxLength_; }  ///< 0: no limit

 private:
  enum class Kind { Any, Upper, Name, ScannedName, DatabaseName, Digits, Number };
  TextRule(Kind kind, int maxLength) : kind_(kind), maxLength_(maxLength) {}

  Kind kind_;
  int maxLength_;
};

}  // namespace vellumark::desktop
