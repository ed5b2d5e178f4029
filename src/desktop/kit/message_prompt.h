#pragma once

#include <QDialog>
#include <functional>
#include <optional>

#include "core/base/seams.h"

class QPushButton;

namespace vellumark::desktop {

/// The window of one message. Title and text stand as they are, padding blanks included; a long text scrolls. Y and N
/// answer without Alt, Escape takes the answer that does nothing, Ctrl+C copies title and text.
class MessageDialog : public QDialog {
  Q_OBJECT

 public:
  MessageDialog(const Message& message, QWidget* owner);
  Answer Chosen() const { return chosen_; }
  void reject() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void AddButtons();
  void Choose(Answer answer);

  Message message_;
  QPushButton* standard_ = nullptr;
  Answer chosen_;
};

/// How the core asks and tells on the desktop: in front of the active window.
class MessagePrompt final : public Prompt {
 public:
  using Hook = std::function<std::optional<Answer>(const Message&)>;

  Answer Show(const Message& message) override;
  /// Asked first; when it gives an answer no window is shown. For tests that drive the whole program.
  void SetHook(Hook hook) { hook_ = std::move(hook); }
  /// A message has gone and the platform has not given the focus back yet: until it has, keys and clicks wait.
  bool GivesFocusBack() const;

 private:
  Hook hook_;
  int givesFocusBackIn_ = -1;  ///< the depth of event loops in which it waits for that; a dialog begins one of its own
};

}  // namespace vellumark::desktop
