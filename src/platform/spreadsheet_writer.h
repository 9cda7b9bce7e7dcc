// Writing a spreadsheet file row by row: ".xlsx" where the file's name ends so, else ".xls" (BIFF8).
//
// The file is written beside its target and takes its place in commit(); without that call, or when it fails,
// the target stays as it was. Texts are text cells whatever they begin with, never formulas. A sheet that is full
// (65,536 rows in .xls, 1,048,576 in .xlsx) is followed by a further one with the same columns and title rows.
#pragma once

#include <QDateTime>
#include <QStringList>
#include <memory>

#include "layer_export.h"

namespace kalvor {

struct SheetColumn {
  double width = 0;      // characters; 0 = the program's own width
  QString numberFormat;  // of its real numbers, "#,##0.00"; empty = general
};

enum class SheetRowLook : quint8 { Plain, Bold, BoldBlue, BoldGreen };

class KALVOR_PLATFORM SpreadsheetWriter {
 public:
  // DataError when the file cannot be created there.
  static std::unique_ptr<SpreadsheetWriter> create(const QString& fileName);
  virtual ~SpreadsheetWriter();

  // A sheet's name holds at most 31 characters and none of []:*?/\ ; what does not fit is left out. DataError for
  // more columns than the format has: 256 in .xls, 16,384 in .xlsx.
  void startSheet(const QString& name, const QList<SheetColumn>& columns);

  // Rows and their cells from left to right. Title rows come before all others and again on every further sheet.
  void beginRow(SheetRowLook look = SheetRowLook::Plain);
  void addTitleRow(const QStringList& texts, SheetRowLook look);

  // DataError for a text of more than 32,767 characters and for cells beyond the columns.
  void text(QStringView value);
  void number(double value);      // what is not finite is an empty cell
  void integer(qint64 value);     // beyond 15 digits a text, so that no digit is lost
  void date(QDate value);         // before 1900-03-01 and after 9999 a text
  void dateTime(const QDateTime& value);
  void time(QTime value);
  void boolean(bool value);
  void empty();

  // Completes the file and puts it in its place; DataError when that fails.
  void commit();

 protected:
  enum class CellFormat : quint8 { General, Column, Date, DateTime, Time };
  struct Limits {
    int rows;
    int columns;
  };
  explicit SpreadsheetWriter(Limits limits) : limits_(limits) {}
  // In writeSheet: the sheet before it is full, and says so even where its last row has no cells.
  bool isFurtherSheet() const { return sheets_ > 1; }

  virtual void writeSheet(const QString& name, const QList<SheetColumn>& columns) = 0;
  virtual void writeText(int row, int column, QStringView value, SheetRowLook look) = 0;
  virtual void writeNumber(int row, int column, double value, CellFormat format, SheetRowLook look) = 0;
  virtual void writeBoolean(int row, int column, bool value, SheetRowLook look) = 0;
  virtual void finish() = 0;

 private:
  struct TitleRow {
    QStringList texts;
    SheetRowLook look;
  };
  int nextColumn();
  void nextRow();
  void openSheet();

  Limits limits_;
  QString name_;
  QList<SheetColumn> columns_;
  QList<TitleRow> titles_;
  int sheets_ = 0;
  int row_ = -1;
  int column_ = 0;
  SheetRowLook look_ = SheetRowLook::Plain;
};

}  // namespace kalvor
