#include "desktop/datafile/file_windows.h"

#include <QHBoxLayout>
#include <algorithm>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

bool WithFiles(Dialog& dialog, const QString& title, const std::function<void()>& act) {
  try {
    act();
    return true;
  } catch (const Failure& failure) {
    dialog.session.prompt.Tell(U8(title), failure.subject + "\n\n" + failure.cause, vellumark::Icon::Critical);
    return false;
  } catch (const std::exception&) {
    throw;
  } catch (...) {
    // What is thrown to end the program is no failure, and must not pass through the event loop of a dialog.
    dialog.result.Set("exit", true);
    dialog.accept();
    return false;
  }
}

QLabel* Paragraph(Form& form, const QString& text, const QString& name) {
  QLabel* label = form.Label(name, text);
  label->setWordWrap(true);
  label->setTextFormat(Qt::PlainText);
  form.Wide(label);
  return label;
}

QLabel* QuietParagraph(Form& form, const QString& text, const QString& name) {
  QLabel* label = Paragraph(form, text, name);
  label->setProperty("role", "hint");
  return label;
}

void ButtonLine(Form& form, std::initializer_list<QWidget*> buttons) {
  auto* line = new QWidget;
  auto* layout = new QHBoxLayout(line);
  layout->setContentsMargins(0, space::kUnit, 0, 0);
  layout->setSpacing(space::kUnit);
  for (QWidget* button : buttons) layout->addWidget(button);
  layout->addStretch(1);
  form.Wide(line);
}

void FitHeight(QWidget& window) {
  const int width = std::max(window.minimumWidth(), window.sizeHint().width());
  // The content gets a pixel less where it is held to a width of its own, and a text may take one line more by that.
  const int height =
      std::max(window.layout()->totalHeightForWidth(width), window.layout()->totalHeightForWidth(width - 1));
  window.resize(width, height);
}

}  // namespace vellumark::desktop
