#include "server/metadata/metadata_check.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

#include "server/store/introspection.h"

namespace kalvor::server {

namespace {

constexpr int maxFieldRows = 256;     // the row's number travels in eight bits
constexpr int maxStoredFilterRow = 255;
constexpr int minSelectorParts = 4;

struct CheckedField {
  QString name, kind, source, defaultValue, options, selector;
  bool updatable = false;
};

struct CheckedQuery {
  int id = 0;
  int formId = 0;
  int datasetIndex = 0;
  QString sql, baseTable, key, company, order;
  QList<CheckedField> fields;

  const CheckedField* field(QStringView name) const
  {
    for (const CheckedField& f : fields) {
      if (f.name.compare(name, Qt::CaseInsensitive) == 0) {
        return &f;
      }
    }
    return nullptr;
  }
  bool filtersBy(QStringView name) const
  {
    return std::any_of(fields.begin(), fields.end(), [&](const CheckedField& f) {
      return f.source.compare(name, Qt::CaseInsensitive) == 0 || f.name.compare(name, Qt::CaseInsensitive) == 0;
    });
  }
};

class MetadataChecker {
 public:
  explicit MetadataChecker(Connection& connection) : connection_(connection) { read(); }

  QStringList run()
  {
    for (const CheckedQuery& query : std::as_const(queries_)) {
      place_ = QStringLiteral("query %1").arg(query.id);
      checkStatement(query);
      checkNames(query);
      for (const CheckedField& field : query.fields) {
        place_ = QStringLiteral("query %1, field %2").arg(query.id).arg(field.name);
        checkField(query, field);
      }
    }
    checkForms();
    return faults_;
  }

 private:
  void fault(const QString& what) { faults_.append(place_ + QStringLiteral(": ") + what); }

  void read();
  void checkStatement(const CheckedQuery& query);
  void checkNames(const CheckedQuery& query);
  void checkField(const CheckedQuery& query, const CheckedField& field);
  void checkSelector(const CheckedQuery& query, const CheckedField& field);
  void checkStoredFilter(const QString& text, const CheckedQuery* query);
  void checkForms();
  void checkLineColors(const QString& xml, int formId);
  // Throws StoreError; a transaction around it goes on then.
  std::shared_ptr<Statement> prepared(const QString& sql);
  bool resolves(const CheckedQuery& query, const QString& name);
  const CheckedQuery* find(int formId, int datasetIndex) const;

  Connection& connection_;
  QList<CheckedQuery> queries_;
  QHash<QString, TableInfo> tables_;
  QStringList faults_;
  QString place_;
};

QString withMarks(const QString& sql)
{
  static const QRegularExpression parameter(QStringLiteral("(?<![\\w:\"]):[A-Za-z_]\\w*"));
  return QString(sql).replace(parameter, QStringLiteral("?"));
}

QString cell(const RecordSet& records, qsizetype row, const char* name)
{
  return records.value(row, records.indexOf(QString::fromLatin1(name))).toString();
}

void MetadataChecker::read()
{
  for (const TableInfo& table : readTables(connection_)) {
    tables_.insert(table.name.toLower(), table);
  }
  const RecordSet rows = connection_.query(QStringLiteral("SELECT * FROM S_QueryList ORDER BY Id"));
  for (qsizetype i = 0; i < rows.rows; ++i) {
    CheckedQuery query{
        cell(rows, i, "Id").toInt(),   cell(rows, i, "Form_Id").toInt(), cell(rows, i, "Ds_Index").toInt(),
        cell(rows, i, "SqlText"),      cell(rows, i, "BaseTable"),       cell(rows, i, "KeyField"),
        cell(rows, i, "CompanyField"), cell(rows, i, "DefaultOrder"),    {}};
    const RecordSet fields = connection_.query(
        QStringLiteral("SELECT * FROM S_FieldList WHERE SQL_ID = ? ORDER BY FieldIndex"), {query.id});
    for (qsizetype k = 0; k < fields.rows; ++k) {
      query.fields.append({cell(fields, k, "FieldName"), cell(fields, k, "FieldType"), cell(fields, k, "FieldFilter"),
                           cell(fields, k, "DefaultValue"), cell(fields, k, "OptionCaption"),
                           cell(fields, k, "SelectorDesc"), cell(fields, k, "Updatable") == u"1"});
    }
    queries_.append(query);
  }
}

const CheckedQuery* MetadataChecker::find(int formId, int datasetIndex) const
{
  const auto it = std::find_if(queries_.begin(), queries_.end(), [&](const CheckedQuery& q) {
    return q.formId == formId && q.datasetIndex == datasetIndex;
  });
  return it == queries_.end() ? nullptr : &*it;
}

std::shared_ptr<Statement> MetadataChecker::prepared(const QString& sql)
{
  Transaction step(connection_, false);
  auto statement = connection_.prepare(withMarks(sql));
  step.commit();
  return statement;
}

bool MetadataChecker::resolves(const CheckedQuery& query, const QString& name)
{
  static const QRegularExpression qualified(QStringLiteral("^\\w+\\.\\w+$"));
  if (!qualified.match(name).hasMatch()) {
    return false;
  }
  try {
    prepared(query.sql + QStringLiteral(" ORDER BY ") + name);
    return true;
  } catch (const StoreError&) {
    return false;
  }
}

void MetadataChecker::checkStatement(const CheckedQuery& query)
{
  std::shared_ptr<Statement> statement;
  try {
    statement = prepared(query.sql);
  } catch (const StoreError& error) {
    fault(QString::fromUtf8(error.what()));
    return;
  }
  QSet<QString> columns;
  for (int i = 0; i < statement->columnCount(); ++i) {
    const QString name = statement->column(i).name;
    columns.insert(name.toLower());
    if (!query.field(name)) {
      fault(QStringLiteral("column %1 has no field row").arg(name));
    }
  }
  for (const CheckedField& field : query.fields) {
    if (field.kind != u"6" && !columns.contains(field.name.toLower())) {
      fault(QStringLiteral("field row %1 has no column").arg(field.name));
    }
  }
}

void MetadataChecker::checkNames(const CheckedQuery& query)
{
  if (query.fields.size() > maxFieldRows) {
    fault(QStringLiteral("more than %1 fields").arg(maxFieldRows));
  }
  if (!query.baseTable.isEmpty() && !tables_.contains(query.baseTable.toLower())) {
    fault(QStringLiteral("no table ") + query.baseTable);
  }
  QStringList names{query.key, query.company};
  for (const QString& item : query.order.split(u',', Qt::SkipEmptyParts)) {
    names.append(item.trimmed().section(u' ', 0, 0));
  }
  for (const QString& name : std::as_const(names)) {
    if (!name.isEmpty() && !resolves(query, name)) {
      fault(QStringLiteral("no column ") + name);
    }
  }
}

void MetadataChecker::checkField(const CheckedQuery& query, const CheckedField& field)
{
  static const QRegularExpression aggregate(QStringLiteral("^(?:SUM|AVG|MIN|MAX|COUNT)\\((\\w+)\\)$"));
  static const QSet<QString> macros{
      QStringLiteral("<#AUTOGENERATE_ID#>"), QStringLiteral("<#CURRENTCOMPANY#>"), QStringLiteral("<#CURRENTBGROUP#>"),
      QStringLiteral("<#CURRENTUSER#>"),     QStringLiteral("<#CURRENTDATE#>"),    QStringLiteral("<#CURRENTTIME#>"),
      QStringLiteral("<#CURRENTDATETIME#>"), QStringLiteral("<#MASTERID#>"),       QStringLiteral("<#LOCALCURRENCY#>"),
      QStringLiteral("<#CALLSELECTOR#>")};
  if (field.kind.size() != 1 || !field.kind.at(0).isDigit()) {
    fault(QStringLiteral("unknown kind \"%1\"").arg(field.kind));
  }
  if (field.kind == u"6") {
    const auto match = aggregate.match(field.selector);
    if (!match.hasMatch() || !query.field(match.captured(1))) {
      fault(QStringLiteral("not an aggregate: ") + field.selector);
    }
    return;
  }
  if (!field.source.isEmpty() && !resolves(query, field.source)) {
    fault(QStringLiteral("no column ") + field.source);
  }
  if (field.name.compare(u"Id", Qt::CaseInsensitive) == 0 && !field.source.contains(u'.')) {
    fault(QStringLiteral("the key needs a qualified filter name"));
  }
  if (field.updatable && field.source.section(u'.', 0, 0).compare(query.baseTable, Qt::CaseInsensitive) != 0) {
    fault(QStringLiteral("updatable, but not of ") + query.baseTable);
  }
  if (field.kind == u"1" && field.options.isEmpty()) {
    fault(QStringLiteral("an option field without options"));
  }
  if (field.defaultValue.startsWith(u"<#") && !macros.contains(field.defaultValue)) {
    const QString master = field.defaultValue.section(u'(', 1).section(u')', 0, 0);
    const CheckedQuery* owner = find(query.formId, 0);
    if (!field.defaultValue.startsWith(u"<#MasterField(") || !owner || !owner->field(master)) {
      fault(QStringLiteral("unknown macro ") + field.defaultValue);
    }
  }
  if (field.kind == u"2" || field.kind == u"3" || field.kind == u"5") {
    checkSelector(query, field);
  }
}

void MetadataChecker::checkSelector(const CheckedQuery& query, const CheckedField& field)
{
  if (field.selector.contains(u' ')) {
    fault(QStringLiteral("a blank ends a part of the selector"));
  }
  for (const QString& item : field.selector.split(u'$')) {
    const QStringList parts = item.split(u';');
    if (parts.size() < minSelectorParts) {
      fault(QStringLiteral("selector of %1 parts").arg(parts.size()));
      continue;
    }
    checkStoredFilter(parts.at(0), nullptr);
    const CheckedQuery* lookup = find(parts.at(1).toInt(), 0);
    if (!lookup) {
      fault(QStringLiteral("no look-up form ") + parts.at(1));
      continue;
    }
    const QStringList sources = parts.at(2).split(u',');
    const QStringList targets = parts.at(3).split(u',');
    if (sources.size() != targets.size()) {
      fault(QStringLiteral("%1 source fields, %2 target fields").arg(sources.size()).arg(targets.size()));
    }
    for (const QString& name : sources) {
      if (!lookup->field(name)) {
        fault(QStringLiteral("form %1 has no field %2").arg(lookup->formId).arg(name));
      }
    }
    // A list shows the key of what it looks up without every target being there.
    const bool list = field.kind == u"3";
    for (const QString& name : targets) {
      if (!list && !query.field(name)) {
        fault(QStringLiteral("no target field ") + name);
      }
    }
    for (const QString& filter : parts.mid(4, 2)) {
      checkStoredFilter(filter, lookup);
    }
  }
}

void MetadataChecker::checkStoredFilter(const QString& text, const CheckedQuery* query)
{
  static const QRegularExpression ends(QStringLiteral("[&|]"));
  for (const QString& row : text.split(ends, Qt::SkipEmptyParts)) {
    const QStringList items = row.split(u',');
    if (items.size() != 4 || !items.at(3).isEmpty() || row.size() >= maxStoredFilterRow) {
      fault(QStringLiteral("not a filter row: ") + row);
    } else if (query && !query->filtersBy(items.at(0))) {
      fault(QStringLiteral("form %1 cannot be filtered by %2").arg(query->formId).arg(items.at(0)));
    }
  }
}

void MetadataChecker::checkForms()
{
  const RecordSet forms = connection_.query(QStringLiteral("SELECT * FROM S_Forms ORDER BY ID, Ds_Index"));
  for (qsizetype i = 0; i < forms.rows; ++i) {
    const int id = cell(forms, i, "ID").toInt();
    const int index = cell(forms, i, "Ds_Index").toInt();
    place_ = QStringLiteral("form %1, dataset %2").arg(id).arg(index);
    const CheckedQuery* query = find(id, index);
    const bool isDialog = index == 0 && cell(forms, i, "BaseTable").isEmpty() && !cell(forms, i, "ClassName").isEmpty();
    if (!query && !isDialog) {
      fault(QStringLiteral("no stored query"));
    }
    if (!query) {
      continue;
    }
    if (query->baseTable != cell(forms, i, "BaseTable")) {
      fault(QStringLiteral("another base table than its query"));
    }
    if (cell(forms, i, "Caption").isEmpty() || cell(forms, i, "ClassName").isEmpty()) {
      fault(QStringLiteral("no caption or no class"));
    }
    for (const QString& name : cell(forms, i, "CaptionFields").split(u';', Qt::SkipEmptyParts)) {
      if (!query->field(name)) {
        fault(QStringLiteral("no caption field ") + name);
      }
    }
    for (const QString& item : cell(forms, i, "OrderBy").split(u',', Qt::SkipEmptyParts)) {
      if (!query->filtersBy(item.section(u' ', 0, 0))) {
        fault(QStringLiteral("cannot be ordered by ") + item);
      }
    }
    checkStoredFilter(cell(forms, i, "FormFilter"), query);
    checkLineColors(cell(forms, i, "LineColors"), id);
  }
}

void MetadataChecker::checkLineColors(const QString& xml, int formId)
{
  int dataset = -1;
  QXmlStreamReader reader(xml);
  while (!xml.isEmpty() && !reader.atEnd()) {
    reader.readNext();
    if (reader.isStartElement() && reader.name() == u"DsIndex") {
      ++dataset;
    } else if (reader.isStartElement() && reader.name() == u"FieldName") {
      const QString name = reader.readElementText();
      const CheckedQuery* query = find(formId, dataset);
      if (!query || !query->field(name)) {
        fault(QStringLiteral("colour rule for no field ") + name);
      }
    }
  }
  if (!xml.isEmpty() && reader.hasError()) {
    fault(QStringLiteral("colour rules: ") + reader.errorString());
  }
}

}  // namespace

QStringList checkMetadata(Connection& connection)
{
  return MetadataChecker(connection).run();
}

}  // namespace kalvor::server
