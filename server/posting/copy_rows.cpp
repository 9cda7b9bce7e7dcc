#include "server/posting/copy_rows.h"

#include <algorithm>

namespace kalvor::server {

Fragment copyStatement(const Catalogue& catalogue, const char* from, const char* to, const QList<SetColumn>& given)
{
  const TableInfo& source = *catalogue.table(QString::fromLatin1(from));
  const TableInfo& target = *catalogue.table(QString::fromLatin1(to));
  QStringList names;
  Fragment values;
  const auto add = [&](const QString& name, const Fragment& value) {
    names.append(quotedName(name));
    values += (values.isEmpty() ? Fragment() : Fragment{QStringLiteral(", "), {}}) + value;
  };
  for (const SetColumn& column : given) {
    add(target.column(QString::fromLatin1(column.name))->name, column.value);
  }
  for (const ColumnInfo& column : target.columns) {
    const bool isGiven = std::any_of(given.begin(), given.end(), [&](const SetColumn& other) {
      return column.name.compare(QLatin1StringView(other.name), Qt::CaseInsensitive) == 0;
    });
    if (const ColumnInfo* same = source.column(column.name); same && !isGiven) {
      add(column.name, {quotedName(same->name), {}});
    }
  }
  return QStringLiteral("INSERT INTO %1 (%2) SELECT ").arg(quotedName(target.name), names.join(QStringLiteral(", "))) + values +
         QStringLiteral(" FROM ") + quotedName(source.name);
}

}  // namespace kalvor::server
