#include "import/import_filter.h"

#include <array>

namespace kalvor {
namespace {

const QString& entrySeparator()
{
  static const QString separator = QStringLiteral("##");
  return separator;
}

struct FilterSection {
  const char16_t* name;
  ImportEntries TImportFilter::*list;
};
constexpr std::array filterSections{
    FilterSection{u"OPTIONS", &TImportFilter::Options},
    FilterSection{u"CDSMASTER", &TImportFilter::CdsMaster},
    FilterSection{u"CDSDETAIL", &TImportFilter::CdsDetail},
    FilterSection{u"LINK_FIELDS_DESCR", &TImportFilter::LinkFieldsDescr},
    FilterSection{u"DEFAULT_SELECTOR", &TImportFilter::DefaultSelector},
};

}  // namespace

QString ImportEntries::name(int index) const { return entries_.value(index).section(u'=', 0, 0); }

QString ImportEntries::value(int index) const
{
  const QString entry = entries_.value(index);
  const qsizetype equals = entry.indexOf(u'=');
  return equals < 0 ? QString() : entry.mid(equals + 1);
}

int ImportEntries::find(const QString& name) const
{
  for (qsizetype i = 0; i < entries_.size(); ++i) {
    const QStringView entry(entries_[i]);
    const qsizetype equals = entry.indexOf(u'=');
    if (equals >= 0 && entry.left(equals).compare(name, Qt::CaseInsensitive) == 0)
      return int(i);
  }
  return -1;
}

QString ImportEntries::value(const QString& name) const
{
  const int index = find(name);
  return index < 0 ? QString() : value(index);
}

QString GetRefFieldsDescr(const QString& text, const QString& section)
{
  const QString opening = u'[' + section + u']';
  const qsizetype tag = text.indexOf(opening, 0, Qt::CaseInsensitive);
  if (tag < 0)
    return {};
  const qsizetype start = tag + opening.size();
  const qsizetype end = text.indexOf(QStringLiteral("[##") + section + u']', start, Qt::CaseInsensitive);
  if (end < 0)
    return {};
  return text.mid(start, end - start).replace(QStringLiteral("\r\n"), QStringLiteral(" "));
}

void GetFldsDescrAsStrList(const QString& content, ImportEntries& list)
{
  for (const QString& part : content.split(entrySeparator()))
    if (const QString entry = part.trimmed(); !entry.isEmpty())
      list.append(entry);
}

void TImportFilter::LoadImportParams(const QString& text)
{
  for (const FilterSection& section : filterSections)
    GetFldsDescrAsStrList(GetRefFieldsDescr(text, QString::fromUtf16(section.name)), this->*section.list);
  Loaded = true;
}

void SetFormatSetting(const TImportFilter& filter, TFormatSettings& settings)
{
  settings = TFormatSettings();
  if (const QString picture = filter.option(QStringLiteral("DATE_FORMAT")); !picture.isEmpty())
    settings.ShortDateFormat = picture;
  if (const QString separator = filter.option(QStringLiteral("DATE_SEPARATOR")); !separator.isEmpty())
    settings.DateSeparator = separator.front();
  if (const QString separator = filter.option(QStringLiteral("DECIMAL_SEPARATOR")); !separator.isEmpty())
    settings.DecimalSeparator = separator.front();
}

}  // namespace kalvor
