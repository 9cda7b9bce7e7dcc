// Parts of a zip archive, read as streams. An archive that would unpack into much more than it is, is refused.
#pragma once

#include <QIODevice>
#include <memory>

struct zip;
struct zip_file;

namespace kalvor {

class ZipArchive;

// One part, from its beginning to its end. Reading stops with failure() set when the part is damaged or too big.
class ZipPart : public QIODevice {
 public:
  ZipPart(zip_file* file, qint64 mostBytes);
  ~ZipPart() override;
  bool isSequential() const override { return true; }
  const QString& failure() const { return failure_; }

 protected:
  qint64 readData(char* data, qint64 size) override;
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  zip_file* file_;
  qint64 left_;
  QString failure_;
};

class ZipArchive {
 public:
  static constexpr qint64 mostParts = 10'000;
  static constexpr qint64 mostPartBytes = 256 << 20;
  // What a part may unpack to whatever its size, and how many times its size above that.
  static constexpr qint64 harmlessBytes = 16 << 20;
  static constexpr qint64 mostRatio = 100;

  // DataError when it is no archive that can be read, or has too many parts.
  explicit ZipArchive(const QString& fileName);
  ~ZipArchive();
  ZipArchive(const ZipArchive&) = delete;
  ZipArchive& operator=(const ZipArchive&) = delete;

  // Null when there is no such part. DataError when it cannot be read or says itself that it is too big.
  std::unique_ptr<ZipPart> open(const QString& name) const;

 private:
  zip* archive_ = nullptr;
  qint64 fileBytes_ = 0;
};

}  // namespace kalvor
