#include "registry/windows/help_topics.h"

#include <QDesktopServices>
#include <QFile>
#include <QUrl>

#include "platform/ports.h"
#include "platform/system.h"

namespace kalvor {

namespace {

HelpViewer& installedHelpViewer()
{
  static HelpViewer viewer;
  return viewer;
}

bool openLocalFile(const QString& path)
{
  return QFile::exists(path) && QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

}  // namespace

QString helpFileName()
{
  return hostProgramFolder() + QStringLiteral("KalvorHelp.chm");
}

void installHelpViewer(HelpViewer viewer)
{
  installedHelpViewer() = std::move(viewer);
}

void showHelpTopic(int formId)
{
  const QString file = helpFileName();
  if (const HelpViewer& viewer = installedHelpViewer(); viewer && viewer(file, formId)) {
    return;
  }
  const QString page = hostProgramFolder() + QStringLiteral("KalvorHelp/%1.html").arg(formId);
  if (!openLocalFile(page) && !openLocalFile(file)) {
    showInformation(QStringLiteral("Няма файл с помощ: ") + file);
  }
}

}  // namespace kalvor
