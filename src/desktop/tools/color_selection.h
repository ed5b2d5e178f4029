#pragma once

#include <QObject>
#include <memory>
#include <string>
#include <vector>

#include "core/datafile/color_kind.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

class CheckedList;

/// The colours of a Database from which some are chosen: a list with check boxes and swatches, a filter, and the
/// commands that choose all and none. It holds any number of colours; only what is on screen is read in full.
class ColorSelection : public QObject {
  Q_OBJECT

 public:
  /// `listName` is the system's name of the list.
  ColorSelection(FormHost& host, Form form, const QString& listName);
  ~ColorSelection() override;

  /// The colours as they are on file; those chosen before stay chosen. `database` empty means the current one.
  void Load(ColorKind kind, const std::string& database = {});
  void ChooseNone();
  std::vector<std::string> Chosen() const;
  /// The name in the row with the frame; empty when there is none.
  std::string Current() const;
  void TakeFocus();

 Q_SIGNALS:
  void ChosenChanged();
  void CurrentChanged();

 private:
  class Source;
  void ShowCount();

  FormHost& host_;
  std::shared_ptr<Source> source_;
  CheckedList* list_;
  QLabel* count_;
};

}  // namespace vellumark::desktop
