// Reads comma-separated values (RFC 4180) record by record, without copying what need not be copied.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <deque>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "layer_export.h"

namespace kalvor::server {

// The file breaks the format; line is that of the file, from 1. The message is for the user.
class KALVOR_SERVER CsvError : public std::runtime_error {
 public:
  CsvError(qint64 line, const QString& message) : std::runtime_error(message.toStdString()), line_(line) {}
  qint64 line() const { return line_; }

 private:
  qint64 line_;
};

// UTF-8 with or without a byte order mark; records end with CR LF, LF or the end of the text; a field in double quotes
// may hold commas, line breaks and doubled quotes. Lines without any character are skipped.
class KALVOR_SERVER CsvReader {
 public:
  // The text must live as long as the reader and the fields it hands out.
  explicit CsvReader(QByteArrayView text);

  // False at the end. The fields stay valid until the next call. Throws CsvError.
  bool next();
  const std::vector<std::string_view>& fields() const { return fields_; }
  qint64 line() const { return recordLine_; }  // where the record begins

 private:
  std::string_view quotedField();
  std::string_view plainField();

  const char* at_;
  const char* end_;
  qint64 line_ = 1;
  qint64 recordLine_ = 0;
  std::vector<std::string_view> fields_;
  std::deque<std::string> unquoted_;  // fields whose doubled quotes were undone
};

}  // namespace kalvor::server
