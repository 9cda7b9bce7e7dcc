// A zip archive written part by part, deflated as the bytes come; nothing of a part is kept in memory.
#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <vector>

class QIODevice;
struct z_stream_s;

namespace kalvor {

// False from a call: the device refused, or the archive or a part exceeds 4 GB; failure() says why, every later call
// is false too, and what stands in the device is no archive.
class ZipWriter {
 public:
  static constexpr quint64 mostBytes = 0xFFFFFFFE;

  // The device is open for writing, empty, and can seek; it outlives the writer.
  explicit ZipWriter(QIODevice& device);
  ~ZipWriter();
  ZipWriter(const ZipWriter&) = delete;
  ZipWriter& operator=(const ZipWriter&) = delete;

  // One part at a time. Names are ASCII, folders divided by "/".
  bool beginPart(const QByteArray& name);
  bool write(const char* data, qsizetype size);
  bool endPart();
  bool addPart(const QByteArray& name, const QByteArray& content);

  // The directory of the parts, without which no reader takes the archive.
  bool finish();

  const QString& failure() const { return failure_; }

 private:
  struct Part {
    QByteArray name;
    quint64 offset = 0;
    quint64 size = 0;
    quint64 packedSize = 0;
    quint32 checksum = 0;
  };
  static QByteArray facts(const Part& part);
  bool deflateInput(int flush);
  bool put(const char* data, qsizetype size);
  bool put(const QByteArray& bytes) { return put(bytes.constData(), bytes.size()); }
  bool fail(const QString& reason);

  QIODevice& device_;
  std::unique_ptr<z_stream_s> stream_;
  std::vector<char> packed_;
  std::vector<Part> parts_;
  quint64 offset_ = 0;
  QString failure_;
};

}  // namespace kalvor
