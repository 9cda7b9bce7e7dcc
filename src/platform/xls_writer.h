// Spreadsheet files of the older kind: a BIFF8 workbook in a compound file. The sheets are kept in memory, packed as
// they are written, until the file is complete.
#pragma once

#include <QHash>
#include <QSaveFile>
#include <vector>

#include "platform/spreadsheet_writer.h"

namespace kalvor {

class XlsWriter final : public SpreadsheetWriter {
 public:
  explicit XlsWriter(const QString& fileName);

 protected:
  void writeSheet(const QString& name, const QList<SheetColumn>& columns) override;
  void writeText(int row, int column, QStringView value, SheetRowLook look) override;
  void writeNumber(int row, int column, double value, CellFormat format, SheetRowLook look) override;
  void writeBoolean(int row, int column, bool value, SheetRowLook look) override;
  void finish() override;

 private:
  struct Sheet {
    QString name;
    QList<SheetColumn> columns;
    QByteArray cells;
    int rows = 0;
  };
  struct CellLook {
    quint16 font;
    quint16 picture;  // number of the number format
    bool operator==(const CellLook&) const = default;
  };
  quint16 formatOf(int column, CellFormat format, SheetRowLook look) const;
  quint16 cellLook(CellLook wanted);
  quint16 pictureNumber(const QString& picture);
  quint32 sharedText(QStringView text);
  void putCell(quint16 kind, int row, int column, quint16 look, const void* body, qsizetype size);
  QByteArray globals(QList<qsizetype>& offsetPlaces) const;
  static QByteArray sheetHead(const Sheet& sheet);
  static QByteArray sheetEnd(bool first);

  QSaveFile file_;
  std::vector<Sheet> sheets_;
  std::vector<CellLook> looks_;
  std::vector<quint16> columnLooks_;
  QStringList pictures_;
  QStringList texts_;
  QHash<QString, quint32> textNumbers_;
  QString key_;
  quint32 textUses_ = 0;
};

}  // namespace kalvor
