#include "import/import_text.h"

#include "data/data_error.h"

namespace kalvor {
namespace {

const QString& entryBreak()
{
  static const QString separator = QStringLiteral("##");
  return separator;
}

QString openingTag(ImportSection section) { return u'[' + importSectionName(section) + u']'; }
QString closingTag(ImportSection section) { return QStringLiteral("[##") + importSectionName(section) + u']'; }

QString asRead(QString part) { return part.replace(QStringLiteral("\r\n"), QStringLiteral(" ")).trimmed(); }

// What the format cannot hold inside an entry.
QString storableEntry(const QString& entry)
{
  QString text = entry;
  text.replace(QStringLiteral("\r\n"), QStringLiteral(" ")).replace(u'\n', u' ').replace(u'\r', u' ');
  text = text.trimmed();
  bool refused = text.contains(entryBreak());
  for (const ImportSection section : importSections)
    refused = refused || text.contains(openingTag(section), Qt::CaseInsensitive);
  if (refused)
    throw DataError(QStringLiteral("Стойността не може да съдържа „##“ или име на секция в скоби: ") + text);
  return text;
}

}  // namespace

QString storedImportText(const QString& typed)
{
  constexpr QChar paragraphEnd(0x2029), lineEnd(0x2028);
  return QString(typed).remove(u'\r').replace(paragraphEnd, u'\n').replace(lineEnd, u'\n').replace(u'\n', QStringLiteral("\r\n"));
}

QString importSectionName(ImportSection section)
{
  switch (section) {
    case ImportSection::Options: return QStringLiteral("OPTIONS");
    case ImportSection::Master: return QStringLiteral("CDSMASTER");
    case ImportSection::Detail: return QStringLiteral("CDSDETAIL");
    case ImportSection::LinkFields: return QStringLiteral("LINK_FIELDS_DESCR");
    case ImportSection::Fallbacks: break;
  }
  return QStringLiteral("DEFAULT_SELECTOR");
}

QString ImportTextEntry::name() const { return text.section(u'=', 0, 0); }

QString ImportTextEntry::value() const
{
  const qsizetype equals = text.indexOf(u'=');
  return equals < 0 ? QString() : text.mid(equals + 1);
}

ImportText::ImportText(QString text) : text_(std::move(text)) {}

TImportFilter ImportText::filter(int formId, const QString& schema) const
{
  TImportFilter filter(formId);
  filter.LoadImportParams(text_);
  filter.DPSchema = schema;
  return filter;
}

qsizetype ImportText::tagAt(ImportSection section) const
{
  return text_.indexOf(openingTag(section), 0, Qt::CaseInsensitive);
}

bool ImportText::isOpen(ImportSection section) const { return tagAt(section) >= 0 && content(section).start < 0; }

ImportText::Range ImportText::content(ImportSection section) const
{
  const qsizetype tag = tagAt(section);
  if (tag < 0)
    return {};
  const qsizetype start = tag + openingTag(section).size();
  const qsizetype end = text_.indexOf(closingTag(section), start, Qt::CaseInsensitive);
  return end < 0 ? Range() : Range{start, end};
}

QList<ImportTextEntry> ImportText::entries(ImportSection section) const
{
  QList<ImportTextEntry> found;
  const Range range = content(section);
  for (qsizetype start = range.start; start >= 0 && start <= range.end;) {
    qsizetype end = text_.indexOf(entryBreak(), start);
    if (end < 0 || end > range.end)
      end = range.end;
    const QStringView part = QStringView(text_).mid(start, end - start);
    const QStringView trimmed = part.trimmed();
    if (!trimmed.isEmpty())
      found.append({trimmed.data() - text_.constData(), trimmed.size(), asRead(part.toString())});
    start = end < range.end ? end + entryBreak().size() : -1;
  }
  return found;
}

QString ImportText::value(ImportSection section, const QString& name) const
{
  for (const ImportTextEntry& entry : entries(section))
    if (entry.text.contains(u'=') && entry.name().compare(name, Qt::CaseInsensitive) == 0)
      return entry.value();
  return {};
}

int ImportText::lineAt(qsizetype offset) const { return int(QStringView(text_).left(offset).count(u'\n')) + 1; }

// A "#" beside a separator would make another separator of it.
void ImportText::replace(qsizetype start, qsizetype length, QString with)
{
  const auto isSign = [this](qsizetype at) { return at >= 0 && at < text_.size() && text_.at(at) == u'#'; };
  const qsizetype end = start + length;
  if (with.isEmpty()) {
    if (isSign(start - 1) && isSign(end))
      with = QStringLiteral(" ");
  } else {
    if (with.startsWith(u'#') && isSign(start - 1) && !with.startsWith(entryBreak()))
      with.prepend(u' ');
    if (with.endsWith(u'#') && isSign(end) && !with.endsWith(entryBreak()))
      with.append(u' ');
  }
  text_.replace(start, length, with);
}

void ImportText::setEntry(ImportSection section, int index, const QString& entry)
{
  const QList<ImportTextEntry> all = entries(section);
  const QString stored = storableEntry(entry);
  if (index < 0 || index >= all.size())
    return addEntry(section, stored);
  if (stored.isEmpty())
    return removeEntry(section, index);
  if (stored != all[index].text)
    replace(all[index].start, all[index].length, stored);
}

void ImportText::addEntry(ImportSection section, const QString& entry)
{
  const QString stored = storableEntry(entry);
  if (stored.isEmpty())
    return;
  const QString lineEnd = QStringLiteral("\r\n");
  if (isOpen(section))
    throw DataError(QStringLiteral("Секцията %1 не е затворена с %2.").arg(openingTag(section), closingTag(section)));
  const Range range = content(section);
  if (range.start < 0) {
    const bool newLine = !text_.isEmpty() && !text_.endsWith(u'\n');
    text_ += (newLine ? lineEnd : QString()) + openingTag(section) + lineEnd + stored + lineEnd + closingTag(section) + lineEnd;
    return;
  }
  const QList<ImportTextEntry> all = entries(section);
  if (all.isEmpty()) {
    const bool lineFollows = text_.mid(range.start, 2).contains(u'\n');
    return replace(range.start, 0, lineEnd + stored + (lineFollows ? QString() : lineEnd));
  }
  const ImportTextEntry& last = all.last();
  const QString separator = last.text.endsWith(u'#') ? QStringLiteral(" ##\r\n") : QStringLiteral("##\r\n");
  const QString guarded = stored.startsWith(u'#') ? u' ' + stored : stored;
  replace(last.start + last.length, 0, separator + guarded);
}

// With the separator behind it; the last one with the separator before it.
void ImportText::removeEntry(ImportSection section, int index)
{
  const QList<ImportTextEntry> all = entries(section);
  if (index < 0 || index >= all.size())
    return;
  const ImportTextEntry& entry = all[index];
  if (index + 1 < all.size())
    return replace(entry.start, all[index + 1].start - entry.start, {});
  const qsizetype start = index > 0 ? all[index - 1].start + all[index - 1].length : entry.start;
  replace(start, entry.start + entry.length - start, {});
}

void ImportText::setValue(ImportSection section, const QString& name, const QString& value)
{
  const QString entry = value.trimmed().isEmpty() ? QString() : name + u'=' + value.trimmed();
  const QList<ImportTextEntry> all = entries(section);
  for (int i = 0; i < all.size(); ++i)
    if (all[i].text.contains(u'=') && all[i].name().compare(name, Qt::CaseInsensitive) == 0)
      return setEntry(section, i, entry);
  addEntry(section, entry);
}

}  // namespace kalvor
