#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <deque>
#include <filesystem>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

class QFileDialog;

namespace vellumark::test {

/// Presses random keys and clicks at random in whatever window an operator could reach at that moment. The same seed
/// does the same again.
class Monkey : public QObject {
 public:
  /// `words` is what it types; file choosers it answers in `folder`.
  Monkey(unsigned seed, std::vector<std::string> words, std::filesystem::path folder);
  ~Monkey() override;

  /// Begins on the main window; it goes on inside every event loop until Stop.
  void Begin(QWidget& main);
  void Stop() { main_ = nullptr; }
  /// Whether keys and clicks reach nobody at this moment.
  void OnAsking(std::function<bool()> deaf) { deaf_ = std::move(deaf); }
  /// Called between two acts while no message or dialog is open and nothing is going on.
  void OnRest(std::function<void()> rest) { rest_ = std::move(rest); }

  int Acts() const { return acts_; }
  /// The names of the windows in which it did something.
  const std::set<std::string>& Places() const { return places_; }
  /// The last acts, a line for each.
  std::string Story() const;
  /// The newest monkey's seed and story to standard error, also when the process is about to die.
  static void Tell();

 private:
  void Next();
  void Act();
  void PressKey(QWidget& window);
  void TypeWord(QWidget& window);
  void ClickSomewhere(QWidget& window);
  void ClickMenuBar(QWidget& window);
  void AnswerChooser(QFileDialog& chooser);
  void Note(const std::string& what, const QWidget* where);

  int Under(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  template <class T>
  const T& Any(const std::vector<T>& all) {
    return all[static_cast<std::size_t>(Under(static_cast<int>(all.size())))];
  }

  unsigned seed_;
  std::mt19937 random_;
  std::vector<std::string> words_;
  std::filesystem::path folder_;
  QPointer<QWidget> main_;
  std::function<void()> rest_;
  std::function<bool()> deaf_;
  std::deque<std::string> story_;
  std::set<std::string> places_;
  int acts_ = 0;
  std::vector<int> loops_;  ///< the depth of event loops in which each unfinished act began
};

}  // namespace vellumark::test
