// The values of records as the bytes of a text file.
#pragma once

#include <QByteArray>
#include <unordered_map>

#include "common/delimiter.h"
#include "common/export_columns.h"

namespace kalvor {

struct ExportTextFormat {
  TDelimiter delimiter = dtFixedLen;
  QString symbol;      // of dtChar
  int decimals = 2;    // of floating values
  bool dos = false;
};

// Builds lines of values in one code page.
class ExportTextLines {
 public:
  explicit ExportTextLines(const ExportTextFormat& format);

  // The line that is being built; the next cell of a line is separated from the one before.
  void beginLine() { firstCell_ = true; }
  void addCaption(const ExportColumn& column);
  void addValue(const ExportColumns& columns, qsizetype index, ExportRow row);
  void endLine();
  QByteArray& bytes() { return bytes_; }

 private:
  void beginCell();
  void endCell(const TField* field);
  void encode(QStringView text);
  void appendReal(double value);
  void appendDisplayText(const ExportColumn& column, ExportRow row);
  int widthOf(const TField* field);

  ExportTextFormat format_;
  std::vector<char> codes_;  // of every character
  QByteArray separator_;
  char decimalPoint_;
  QByteArray bytes_;
  qsizetype cellStart_ = 0;
  bool firstCell_ = true;
  std::unordered_map<const TField*, int> widths_;
  std::unordered_map<const TField*, std::unordered_map<qint64, QString>> days_;  // display texts of dates
};

}  // namespace kalvor
