// Record identifiers of bulk inserts: unique like any other, and ascending, so that an index grows at its end.
#pragma once

#include <QRandomGenerator>
#include <QString>

namespace kalvor::server {

class IdSequence {
 public:
  explicit IdSequence(quint64 prefix = QRandomGenerator::system()->generate64()) : prefix_(prefix) {}

  // 32 upper-case hex digits.
  QString next()
  {
    static constexpr char16_t digits[] = u"0123456789ABCDEF";
    ++counter_;
    QString id(32, Qt::Uninitialized);
    for (int i = 0; i < 16; ++i) {
      id[i] = digits[(prefix_ >> (60 - 4 * i)) & 15];
      id[16 + i] = digits[(counter_ >> (60 - 4 * i)) & 15];
    }
    return id;
  }

 private:
  quint64 prefix_;
  quint64 counter_ = 0;
};

}  // namespace kalvor::server
