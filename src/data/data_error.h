// Errors of datasets, and of whatever feeds them.
#pragma once

#include <QString>
#include <exception>

#include "layer_export.h"

namespace kalvor {

class KALVOR_DATA DataError : public std::exception {
 public:
  explicit DataError(QString message);
  ~DataError() override;
  const QString& message() const { return message_; }
  const char* what() const noexcept override { return utf8_.constData(); }

 private:
  QString message_;
  QByteArray utf8_;
};

// Stops what is going on without a message: somebody has already told the user.
class KALVOR_DATA SilentAbort : public DataError {
 public:
  SilentAbort();
};

}  // namespace kalvor
