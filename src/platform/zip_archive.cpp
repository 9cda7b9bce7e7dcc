#include "platform/zip_archive.h"

#include <zip.h>

#include <QFileInfo>
#include <algorithm>

#include "data/data_error.h"

namespace kalvor {
namespace {

[[noreturn]] void refuseArchive(const QString& reason)
{
  throw DataError(QStringLiteral("Файлът не може да бъде разархивиран: ") + reason);
}

QString partTooBig() { return QStringLiteral("съдържанието му е твърде голямо."); }

}  // namespace

ZipPart::ZipPart(zip_file* file, qint64 mostBytes) : file_(file), left_(mostBytes)
{
  setOpenMode(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

ZipPart::~ZipPart() { zip_fclose(file_); }

qint64 ZipPart::readData(char* data, qint64 size)
{
  if (!failure_.isEmpty())
    return -1;
  const zip_int64_t got = zip_fread(file_, data, zip_uint64_t(size));
  if (got < 0)
    failure_ = QString::fromUtf8(zip_file_strerror(file_));
  else if ((left_ -= got) < 0)
    failure_ = partTooBig();
  return failure_.isEmpty() ? got : -1;
}

ZipArchive::ZipArchive(const QString& fileName) : fileBytes_(QFileInfo(fileName).size())
{
  int code = 0;
  archive_ = zip_open(QFile::encodeName(fileName).constData(), ZIP_RDONLY, &code);
  if (!archive_) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const QString reason = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    refuseArchive(reason);
  }
  if (zip_get_num_entries(archive_, 0) > mostParts) {
    zip_discard(archive_);
    refuseArchive(partTooBig());
  }
}

ZipArchive::~ZipArchive() { zip_discard(archive_); }

std::unique_ptr<ZipPart> ZipArchive::open(const QString& name) const
{
  zip_stat_t facts;
  zip_stat_init(&facts);
  const zip_int64_t index = zip_name_locate(archive_, name.toUtf8().constData(), ZIP_FL_NOCASE);
  if (index < 0 || zip_stat_index(archive_, zip_uint64_t(index), 0, &facts) != 0)
    return nullptr;
  constexpr zip_uint64_t needed = ZIP_STAT_SIZE | ZIP_STAT_COMP_SIZE;
  if ((facts.valid & needed) != needed)
    return nullptr;
  const qint64 packed = std::min(qint64(std::min(facts.comp_size, zip_uint64_t(mostPartBytes))), fileBytes_);
  const qint64 limit = std::min(mostPartBytes, std::max(harmlessBytes, packed * mostRatio));
  if (facts.size > zip_uint64_t(limit))
    refuseArchive(partTooBig());
  zip_file* const file = zip_fopen_index(archive_, zip_uint64_t(index), 0);
  if (!file)
    refuseArchive(QString::fromUtf8(zip_strerror(archive_)));
  return std::make_unique<ZipPart>(file, limit);
}

}  // namespace kalvor
