// text_to_sheet TEXT SHEET: lines of ";" columns into a workbook; days are dates, what has the form of a number in the
// last two columns is a number.
#include <QFile>

#include "platform/spreadsheet_writer.h"
#include "platform/text_encoding.h"

int main(int argc, char** argv)
{
  QFile source(argc > 2 ? QString::fromLocal8Bit(argv[1]) : QString());
  if (argc < 3 || !source.open(QIODevice::ReadOnly))
    return 2;
  const auto sheet = kalvor::SpreadsheetWriter::create(QString::fromLocal8Bit(argv[2]));
  sheet->startSheet(QStringLiteral("Данни"), QList<kalvor::SheetColumn>(7));
  const QStringList lines = kalvor::decodeTextFile(source.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
  for (const QString& line : lines) {
    sheet->beginRow();
    const QStringList cells = line.split(u';');
    for (qsizetype i = 0; i < cells.size(); ++i) {
      bool isNumber = false;
      const double number = QString(cells[i]).replace(u',', u'.').toDouble(&isNumber);
      const QDate day = QDate::fromString(cells[i], QStringLiteral("dd.MM.yyyy"));
      if (day.isValid())
        sheet->date(day);
      else if (isNumber && i >= cells.size() - 2)
        sheet->number(number);
      else
        sheet->text(cells[i]);
    }
  }
  sheet->commit();
  return 0;
}
