#include "desktop/shell/web_links.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTextDocument>
#include <QUrl>
#include <algorithm>
#include <array>

#include "core/base/files.h"
#include "core/base/platform.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

struct WebLink {
  std::string_view item;
  const char* variable;  // of the environment, for a shop with pages of its own
  const char* page;      // of the manual
};

constexpr std::array kLinks{
    WebLink{"menu_Updates", "VELLUMARK_UPDATES_PAGE", "updates"},
    WebLink{"menuHelp_Updates", "VELLUMARK_UPDATES_PAGE", "updates"},
    WebLink{"menuHelp_Tutorials", "VELLUMARK_TUTORIALS_PAGE", "index"},
    WebLink{"menuHelp_Excel", "VELLUMARK_EXPORTS_PAGE", "reports"},
};

const WebLink* Find(std::string_view item) {
  const auto* found = std::ranges::find(kLinks, item, &WebLink::item);
  return found == kLinks.end() ? nullptr : found;
}

std::string BytesOf(const QString& resource) {
  QFile file(resource);
  if (!file.open(QIODevice::ReadOnly)) throw Failure(U8(resource), U8(file.errorString()));
  return file.readAll().toStdString();
}

// All of the manual, since its pages lead to each other, where the browser finds it. No browser reads the program's own
// copy.
QString WriteManual() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + "/manual";
  for (const char* part : {"manual", "pictures"}) {
    const QString from = QString(":/docs/%1").arg(part);
    const QString to = folder + "/" + part;
    MakeFolder(U8(to));
    for (const QString& name : QDir(from).entryList(QDir::Files)) {
      std::string bytes = BytesOf(from + "/" + name);
      if (!name.endsWith(".md")) {
        ReplaceFile(U8(to + "/" + name), bytes);
        continue;
      }
      QTextDocument page;
      page.setMarkdown(Q(bytes));
      ReplaceFile(U8(to + "/" + QString(name).replace(".md", ".html")), U8(page.toHtml().replace(".md\"", ".html\"")));
    }
  }
  return folder + "/manual/";
}

}  // namespace

bool IsWebLink(std::string_view menuItem) {
  return Find(menuItem) != nullptr;
}

void OpenWebLink(const Session& session, std::string_view menuItem) {
  const WebLink& link = *Find(menuItem);
  try {
    const std::string own = platform::Environment(link.variable);
    const QUrl address =
        own.empty() ? QUrl::fromLocalFile(WriteManual() + link.page + ".html") : QUrl::fromUserInput(Q(own));
    if (QDesktopServices::openUrl(address)) return;
  } catch (const Failure& failure) {
    session.prompt.Tell(failure.subject, failure.cause, Icon::Exclamation);
    return;
  }
  session.prompt.Tell("The Vellumark - Web Browser Error", "Couldn't open your default web browser.", Icon::Exclamation);
}

}  // namespace vellumark::desktop
