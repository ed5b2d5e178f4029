#include "core/base/seams.h"

#include <ctime>
#include <utility>

#include "core/base/platform.h"

namespace vellumark {

void Prompt::Tell(std::string title, std::string text, Icon icon) {
  Show(Message{std::move(title), std::move(text), Buttons::Ok, icon, Answer::Ok});
}

bool Prompt::Ask(std::string title, std::string text, Answer defaultAnswer) {
  return Show(Message{std::move(title), std::move(text), Buttons::YesNo, Icon::Question, defaultAnswer}) == Answer::Yes;
}

DateTime SystemClock::Now() const {
  const std::tm local = platform::LocalTime(std::time(nullptr));
  return DateTime{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

}  // namespace vellumark
