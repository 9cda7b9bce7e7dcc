#include "common/export_choice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>

#include "platform/text_encoding.h"
#include "session/error_log.h"

namespace kalvor {

namespace {

constexpr qint64 longestChoiceFile = 1 << 20;

QStringList captionsOf(const QList<ExportCaptions::Item>& items)
{
  QStringList captions;
  for (const ExportCaptions::Item& item : items)
    captions.append(item.caption);
  return captions;
}

// A separator at the end of a list begins no further caption.
QStringList storedCaptions(const QString& list)
{
  QStringList captions = captionsOfList(list);
  if (!captions.isEmpty() && captions.last().isEmpty())
    captions.removeLast();
  return captions;
}

QList<ExportCaptions::Item> labelsOf(const TClientDataSet* dataSet)
{
  QList<ExportCaptions::Item> items;
  for (const TField* field : dataSet ? dataSet->Fields() : QList<TField*>())
    items.append({field->DisplayLabel, int(items.size())});
  return items;
}

}  // namespace

QStringList ExportCaptions::texts() const
{
  QStringList list = captionsOf(master_);
  if (hasSeparator_)
    list.append(exportDetailSeparator);
  return list + captionsOf(detail_);
}

QString ExportCaptions::masterList() const { return captionListText(captionsOf(master_)); }
QString ExportCaptions::detailList() const { return captionListText(captionsOf(detail_)); }

void ExportChoice::fill(const TClientDataSet* master, const TClientDataSet* detail)
{
  source_.master_ = labelsOf(master);
  source_.detail_ = labelsOf(detail);
  source_.hasSeparator_ = detail != nullptr;
  target_ = {};
}

// --- Moving ---------------------------------------------------------------------------------------------------

void ExportChoice::insert(QList<ExportCaptions::Item>& list, const ExportCaptions::Item& item, Sort sort)
{
  auto place = list.end();
  if (sort == Sort::ByPlace)
    place = std::find_if(list.begin(), list.end(), [&](const auto& other) { return other.place > item.place; });
  list.insert(place, item);
}

void ExportChoice::move(ExportCaptions& from, ExportCaptions& to, const QList<int>& positions, Sort sort)
{
  QList<ExportCaptions::Item> masterLeft, detailLeft;
  const int separator = from.separatorPosition();
  for (int i = 0; i < from.master_.size(); ++i) {
    if (positions.contains(i))
      insert(to.master_, from.master_[i], sort);
    else
      masterLeft.append(from.master_[i]);
  }
  for (int i = 0; i < from.detail_.size(); ++i) {
    if (positions.contains(separator + 1 + i))
      insert(to.detail_, from.detail_[i], sort);
    else
      detailLeft.append(from.detail_[i]);
  }
  from.master_ = masterLeft;
  from.detail_ = detailLeft;
}

void ExportChoice::take(const QList<int>& positions)
{
  move(source_, target_, positions, Sort::AtEnd);
  target_.hasSeparator_ = !target_.detail_.isEmpty();
}

void ExportChoice::giveBack(const QList<int>& positions)
{
  move(target_, source_, positions, Sort::ByPlace);
  target_.hasSeparator_ = !target_.detail_.isEmpty();
}

// --- The file -------------------------------------------------------------------------------------------------

QString ExportChoice::folder()
{
  const QString folder = clientDocumentFolder() + QStringLiteral("Exports");
  QDir().mkpath(folder);
  return folder + u'/';
}

QString ExportChoice::line() const
{
  return target_.masterList() + u';' + target_.detailList();
}

void ExportChoice::takeCaptions(QList<ExportCaptions::Item> ExportCaptions::* part, const QStringList& captions)
{
  for (const QString& caption : captions) {
    QList<ExportCaptions::Item>& left = source_.*part;
    const auto item = std::find_if(left.begin(), left.end(), [&](const auto& other) { return other.caption == caption; });
    if (item == left.end())
      throw DataError(_err_ExportFieldMissing);
    (target_.*part).append(*item);
    left.erase(item);
    target_.hasSeparator_ = !target_.detail_.isEmpty();
  }
}

void ExportChoice::takeLine(const QString& line)
{
  const CaptionLists lists = splitCaptionLists(line);
  takeCaptions(&ExportCaptions::master_, storedCaptions(lists.master));
  const QStringList detail = storedCaptions(lists.detail);
  if (detail.size() > 1)
    takeCaptions(&ExportCaptions::detail_, detail);
}

void ExportChoice::save(const QString& fileName) const
{
  QSaveFile file(fileName);
  const QByteArray text = (line() + QLatin1String("\r\n")).toUtf8();
  if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
    throw DataError(QStringLiteral("Файлът '%1' не може да бъде записан: %2").arg(fileName, file.errorString()));
}

void ExportChoice::load(const QString& fileName)
{
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly) || file.size() > longestChoiceFile)
    throw DataError(QStringLiteral("Файлът '%1' не може да бъде прочетен").arg(fileName));
  QString text = decodeTextFile(file.readAll());
  while (text.endsWith(u'\n') || text.endsWith(u'\r'))
    text.chop(1);
  takeLine(text);
}

bool isExportPath(const QString& path)
{
  const QString native = QDir::fromNativeSeparators(path);
  const qsizetype slash = native.lastIndexOf(u'/');
  return slash >= 0 && slash + 1 < native.size() && QFileInfo(native.left(slash + 1)).isDir() &&
         !QFileInfo(native).isDir();
}

}  // namespace kalvor
