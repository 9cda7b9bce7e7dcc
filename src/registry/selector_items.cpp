#include "registry/selector_items.h"

#include <QStringList>

#include "common/delimited_list.h"
#include "filters/filter_expression.h"

namespace kalvor {
namespace {

constexpr QChar itemSeparator = u'$';
constexpr QChar partSeparator = u';';
constexpr QChar quoteSign = u'"';

enum SelectorPart { ConditionPart, FormPart, SourcePart, TargetPart, FilterPart, PublicFilterPart, OptionsPart };

bool isBlankSign(QChar sign) { return sign.unicode() <= u' '; }

qsizetype skipBlankSigns(const QString& text, qsizetype at)
{
  while (at < text.size() && isBlankSign(text.at(at)))
    ++at;
  return at;
}

// Reads a quoted part from its opening quote on; a missing closing quote takes the rest.
QString quotedPart(const QString& text, qsizetype& at)
{
  QString part;
  for (++at; at < text.size(); ++at) {
    if (text.at(at) == quoteSign) {
      if (at + 1 >= text.size() || text.at(at + 1) != quoteSign) {
        ++at;
        break;
      }
      ++at;
    }
    part += text.at(at);
  }
  return part;
}

QString plainPart(const QString& text, QChar separator, qsizetype& at)
{
  const qsizetype start = at;
  while (at < text.size() && !isBlankSign(text.at(at)) && text.at(at) != separator)
    ++at;
  return text.mid(start, at - start);
}

QStringList descriptionParts(const QString& text, QChar separator)
{
  QStringList parts;
  for (qsizetype at = skipBlankSigns(text, 0); at < text.size();) {
    parts.append(text.at(at) == quoteSign ? quotedPart(text, at) : plainPart(text, separator, at));
    at = skipBlankSigns(text, at);
    if (at < text.size() && text.at(at) == separator) {
      if (at + 1 == text.size())
        parts.append(QString());
      at = skipBlankSigns(text, at + 1);
    }
  }
  return parts;
}

void addOption(ShowOption& options, const QString& text)
{
  if (text == QLatin1String("so_SelectMulty"))
    options |= so_SelectMulty;
  else if (text == QLatin1String("so_ReusableArticles"))
    options |= so_ReusableArticles;
  else
    options = so_SelectSingle;
}

ShowOption itemOptions(const QStringList& parts)
{
  ShowOption options;
  if (parts.size() > OptionsPart) {
    const QString separator = QStringLiteral(",");
    const QString& texts = parts.at(OptionsPart);
    for (int i = 0; i < GetItemsCountInList(texts, separator); ++i)
      addOption(options, GetItemAtPos(texts, separator, i).trimmed());
  }
  return options ? options : ShowOption(so_SelectSingle);
}

qint32 formIdentifier(const QString& text)
{
  bool isNumber = false;
  const int value = text.toInt(&isNumber);
  return isNumber ? value : -1;
}

TSelectorItem selectorItem(const QString& text)
{
  const QStringList parts = descriptionParts(text, partSeparator);
  TSelectorItem item;
  item.Condition = BuildFilterFromStr(parts.value(ConditionPart));
  item.FormId = formIdentifier(parts.value(FormPart));
  item.SourceFields = parts.value(SourcePart);
  item.TargetFields = parts.value(TargetPart);
  item.Filter = parts.value(FilterPart);
  item.PublicFilter = parts.value(PublicFilterPart);
  item.Options = itemOptions(parts);
  return item;
}

}  // namespace

TSelectorItems getSelectorItemsByDescription(const QString& description)
{
  TSelectorItems items;
  for (const QString& text : descriptionParts(description, itemSeparator))
    items.append(selectorItem(text));
  return items;
}

QStringList selectorFieldNames(const QString& list)
{
  QStringList names;
  if (list.trimmed().isEmpty())
    return names;
  for (const QString& name : list.split(u','))
    names.append(name.trimmed());
  return names;
}

}  // namespace kalvor
