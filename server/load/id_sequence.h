// Record identifiers of bulk inserts: unique like any other, and ascending, so that an index grows at its end.
#pragma once

#include <QRandomGenerator>
#include <QString>

namespace kalvor::server {

class IdSequence {
 public:
  explicit IdSequence(quint64 seed = QRandomGenerator::system()->generate64())
      : next_(seed & ~lowBits), suffix_(seed * 0x9E3779B97F4A7C15ull)
  {
  }

  // 32 upper-case hex digits. What differs between neighbours stands in the first half, where comparing begins.
  QString next()
  {
    static constexpr char16_t digits[] = u"0123456789ABCDEF";
    ++next_;
    QString id(32, Qt::Uninitialized);
    for (int i = 0; i < 16; ++i) {
      id[i] = digits[(next_ >> (60 - 4 * i)) & 15];
      id[16 + i] = digits[(suffix_ >> (60 - 4 * i)) & 15];
    }
    return id;
  }

 private:
  static constexpr quint64 lowBits = 0xFF'FFFF'FFFFull;  // count up from 0

  quint64 next_;
  quint64 suffix_;
};

}  // namespace kalvor::server
