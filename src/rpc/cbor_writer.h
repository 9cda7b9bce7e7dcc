// Writes CBOR items (RFC 8949, definite lengths only) to a growing byte string.
#pragma once

#include <QByteArray>
#include <QStringView>

namespace kalvor::cbor {

enum Major : quint8 { Unsigned = 0, Negative = 1, Bytes = 2, Text = 3, Array = 4, Map = 5, Tag = 6, Simple = 7 };

class Writer {
 public:
  void head(Major major, quint64 value);
  void integer(qint64 value);
  void real(double value);
  void boolean(bool value) { put(value ? 0xf5 : 0xf4); }
  void null() { put(0xf6); }
  void undefined() { put(0xf7); }
  void text(QStringView value);
  void key(const char* ascii);
  void bytes(QByteArrayView value);
  void array(qsizetype count) { head(Array, quint64(count)); }
  void map(qsizetype count) { head(Map, quint64(count)); }
  void tag(quint64 number) { head(Tag, number); }

  // Appends room for so many bytes and gives its position: at(position) is good until the next write.
  qsizetype room(qsizetype size);
  char* at(qsizetype position) { return out_.data() + position; }
  // A byte string whose length is not known yet, at most 4 GiB: begin, write into the room, end.
  qsizetype beginBytes(qsizetype atMost);
  void endBytes(qsizetype position, qsizetype size);

  qsizetype size() const { return out_.size(); }
  void reserve(qsizetype more) { out_.reserve(out_.size() + more); }
  QByteArray take() { return std::move(out_); }

 private:
  void put(quint8 byte) { out_.append(char(byte)); }

  QByteArray out_;
};

}  // namespace kalvor::cbor
