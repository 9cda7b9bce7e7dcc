#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "session/error_log.h"
#include "visits.h"

namespace kalvor::tour {

namespace {

QString exportedFile(const QString& extension)
{
  return QDir(clientDocumentFolder()).filePath(QStringLiteral("contractors.") + extension);
}

void chooseFields(TourDriver& driver)
{
  driver.step("the first three fields", dialogIs("TfExportOptions"), [&driver] {
    for (int i = 0; i < 3; ++i)
      driver.key(Qt::Key_Return);
  });
  driver.picture("export-fields");
}

void exportTo(TourDriver& driver, const QString& extension)
{
  tabTo(driver, QStringLiteral("ebxPath"));
  driver.step("path", dialogIs("TfExportOptions"),
              [&driver, extension] { driver.type(exportedFile(extension)); });
  driver.picture("export-" + extension);
  driver.step("export", dialogIs("TfExportOptions"), [&driver] { driver.key(Qt::Key_Return); });
  driver.expect("the user is told of the end", dialogIs("QMessageBox"));
  driver.picture("exported-" + extension);
  driver.step("understood", {}, [&driver] { driver.key(Qt::Key_Return); });
  driver.expect("the file is there", [extension] {
    return !TourDriver::dialog() && QFileInfo(exportedFile(extension)).size() > 1000;
  });
}

}  // namespace

void exportContractors(TourDriver& driver)
{
  driver.step("export", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_E, Qt::ControlModifier); });
  chooseFields(driver);
  exportTo(driver, QStringLiteral("xls"));
  driver.step("export again", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_E, Qt::ControlModifier); });
  tabTo(driver, QStringLiteral("cbxAll"));
  driver.step("all fields", dialogIs("TfExportOptions"), [&driver] {
    driver.key(Qt::Key_Space);
    driver.key(Qt::Key_Right, Qt::AltModifier);
  });
  tabTo(driver, QStringLiteral("cbType"));
  driver.step("as text", dialogIs("TfExportOptions"), [&driver] { driver.key(Qt::Key_Down); });
  exportTo(driver, QStringLiteral("txt"));
  driver.step("clear up", {}, [] {
    QFile::remove(exportedFile(QStringLiteral("xls")));
    QFile::remove(exportedFile(QStringLiteral("txt")));
  });
}

}  // namespace kalvor::tour
