#include "server/metadata/metadata_files.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QXmlStreamWriter>

namespace kalvor::server {

namespace {

// Where a fault is: file and path inside it.
struct MetadataPlace {
  QString text;

  MetadataPlace in(const QString& part) const { return {text + QStringLiteral(": ") + part}; }
  [[noreturn]] void fail(const QString& what) const { throw MetadataError(text + QStringLiteral(": ") + what); }
};

void allowKeys(const QJsonObject& object, std::initializer_list<const char*> allowed, const MetadataPlace& place)
{
  QSet<QString> known;
  for (const char* key : allowed) {
    known.insert(QString::fromLatin1(key));
  }
  for (const QString& key : object.keys()) {
    if (!known.contains(key)) {
      place.fail(QStringLiteral("unknown key \"%1\"").arg(key));
    }
  }
}

QString textOf(const QJsonObject& object, const char* key, const QString& otherwise = {})
{
  const QJsonValue value = object.value(QLatin1StringView(key));
  return value.isUndefined() ? otherwise : value.toString();
}

int numberOf(const QJsonObject& object, const char* key, const MetadataPlace& place)
{
  const QJsonValue value = object.value(QLatin1StringView(key));
  if (!value.isDouble()) {
    place.fail(QStringLiteral("\"%1\" must be a number").arg(QLatin1StringView(key)));
  }
  return value.toInt();
}

QString joinedLines(const QJsonValue& value)
{
  QStringList lines;
  for (const QJsonValue& line : value.toArray()) {
    lines.append(line.toString());
  }
  return lines.join(u'\n');
}

DeclaredField readField(const QJsonObject& object, const QString& baseTable, bool readOnlyQuery,
                        const MetadataPlace& place)
{
  allowKeys(object,
            {"name", "caption", "kind", "flags", "source", "format", "default", "options", "selector", "updatable"},
            place);
  DeclaredField field;
  field.name = textOf(object, "name");
  if (field.name.isEmpty()) {
    place.fail(QStringLiteral("a field without a name"));
  }
  field.caption = textOf(object, "caption");
  field.kind = textOf(object, "kind", QStringLiteral("0"));
  const bool aggregate = field.kind == u"6";
  field.source = aggregate ? QString() : textOf(object, "source", baseTable + u'.' + field.name);
  field.table = field.source.section(u'.', 0, 0);
  field.displayFormat = textOf(object, "format");
  field.defaultValue = textOf(object, "default");
  field.options = textOf(object, "options");
  field.selector = textOf(object, "selector");
  field.updatable = object.value(QStringLiteral("updatable")).toBool(true) && !aggregate && field.table == baseTable;
  field.readOnly = readOnlyQuery;
  const std::pair<QLatin1StringView, bool*> flags[] = {
      {QLatin1StringView("visible"), &field.visible},   {QLatin1StringView("filterable"), &field.filterable},
      {QLatin1StringView("required"), &field.required}, {QLatin1StringView("readonly"), &field.readOnly},
      {QLatin1StringView("copy"), &field.copied}};
  for (const QString& word : textOf(object, "flags").split(u' ', Qt::SkipEmptyParts)) {
    const auto* flag = std::find_if(std::begin(flags), std::end(flags), [&](const auto& f) { return f.first == word; });
    if (flag == std::end(flags)) {
      place.in(field.name).fail(QStringLiteral("unknown flag \"%1\"").arg(word));
    }
    *flag->second = true;
  }
  return field;
}

QString selectStatement(const DeclaredQuery& query, const QString& from)
{
  QStringList columns;
  for (const DeclaredField& field : query.fields) {
    if (!field.source.isEmpty()) {
      columns.append(field.source + QStringLiteral(" AS ") + field.name);
    }
  }
  return QStringLiteral("SELECT ") + columns.join(QStringLiteral(", ")) + QStringLiteral("\nFROM ") + from;
}

DeclaredQuery readQuery(const QJsonObject& object, int formId, const MetadataPlace& place, bool editable = false)
{
  DeclaredQuery query;
  query.id = numberOf(object, "query", place);
  query.formId = formId;
  query.datasetIndex = numberOf(object, "index", place);
  query.description = textOf(object, "description");
  query.comment = textOf(object, "comment");
  query.baseTable = textOf(object, "table");
  query.keyField = textOf(object, "key", query.baseTable + QStringLiteral(".Id"));
  query.companyField = textOf(object, "company", query.baseTable + QStringLiteral(".Comp_Id"));
  query.defaultOrder = textOf(object, "order");
  const bool readOnly = !editable && object.value(QStringLiteral("readonly")).toBool(false);
  for (const QJsonValue& field : object.value(QStringLiteral("fields")).toArray()) {
    query.fields.append(readField(field.toObject(), query.baseTable, readOnly, place));
  }
  const QString sql = joinedLines(object.value(QStringLiteral("sql")));
  query.sql = sql.isEmpty() ? selectStatement(query, joinedLines(object.value(QStringLiteral("from")))) : sql;
  return query;
}

// The rules of every dataset, by position, in the form that forms keep them.
QString lineColors(const QJsonArray& datasets, const MetadataPlace& place)
{
  if (datasets.isEmpty()) {
    return {};
  }
  QString xml;
  QXmlStreamWriter writer(&xml);
  writer.writeStartElement(QStringLiteral("ColorOptions"));
  for (const QJsonValue& rules : datasets) {
    writer.writeStartElement(QStringLiteral("DsIndex"));
    for (const QJsonValue& item : rules.toArray()) {
      const QJsonObject rule = item.toObject();
      allowKeys(rule, {"field", "op", "value", "what", "color"}, place);
      const bool text = textOf(rule, "what") == u"text";
      writer.writeStartElement(QStringLiteral("OptionsRow"));
      writer.writeTextElement(QStringLiteral("FieldName"), textOf(rule, "field"));
      writer.writeTextElement(QStringLiteral("Operator"), textOf(rule, "op"));
      writer.writeTextElement(QStringLiteral("Value"), textOf(rule, "value"));
      writer.writeTextElement(QStringLiteral("Type"), text ? QStringLiteral("Текст") : QStringLiteral("Фон"));
      writer.writeTextElement(QStringLiteral("Type_Ind"), text ? QStringLiteral("1") : QStringLiteral("0"));
      writer.writeTextElement(QStringLiteral("Color"), QString::number(numberOf(rule, "color", place)));
      writer.writeEndElement();
    }
    writer.writeEndElement();
  }
  writer.writeEndElement();
  return xml;
}

DeclaredForm readFormHead(const QJsonObject& object, const MetadataPlace& place)
{
  DeclaredForm form;
  form.id = numberOf(object, "id", place);
  form.caption = textOf(object, "caption");
  form.className = textOf(object, "class");
  form.captionFields = textOf(object, "captionFields");
  form.filter = textOf(object, "filter");
  form.order = textOf(object, "order");
  form.lineColors = lineColors(object.value(QStringLiteral("colors")).toArray(), place);
  form.menuGroup = textOf(object, "menu");
  form.menuOrder = object.value(QStringLiteral("menuOrder")).toInt();
  return form;
}

void appendDataset(DeclaredMetadata& metadata, DeclaredForm form, const DeclaredQuery& query)
{
  form.datasetIndex = query.datasetIndex;
  form.baseTable = query.baseTable;
  if (query.datasetIndex > 0) {
    form.captionFields.clear();
    form.order.clear();
    form.filter.clear();
    form.lineColors.clear();
    form.menuGroup.clear();
    form.menuOrder = 0;
  }
  metadata.forms.append(form);
  metadata.queries.append(query);
}

// A list may name its card, which then shows the same fields, editable.
void readForm(const QJsonObject& object, const MetadataPlace& file, DeclaredMetadata& metadata)
{
  const MetadataPlace place = file.in(QString::number(object.value(QStringLiteral("id")).toInt()));
  allowKeys(object,
            {"id", "caption", "class", "captionFields", "filter", "order", "colors", "menu", "menuOrder", "card",
             "datasets"},
            place);
  const DeclaredForm form = readFormHead(object, place);
  const QJsonArray datasets = object.value(QStringLiteral("datasets")).toArray();
  for (const QJsonValue& dataset : datasets) {
    allowKeys(dataset.toObject(), {"index", "query", "description", "comment", "table", "company", "key", "order",
                                   "readonly", "from", "sql", "fields"}, place);
    appendDataset(metadata, form, readQuery(dataset.toObject(), form.id, place));
  }
  // A dialog has no data.
  if (datasets.isEmpty()) {
    metadata.forms.append(form);
  }
  const QJsonObject card = object.value(QStringLiteral("card")).toObject();
  if (!card.isEmpty()) {
    allowKeys(card, {"id", "caption", "class", "captionFields", "query"}, place);
    const DeclaredForm cardForm = readFormHead(card, place);
    DeclaredQuery query = readQuery(datasets.first().toObject(), cardForm.id, place, true);
    query.id = numberOf(card, "query", place);
    query.description = cardForm.caption;
    appendDataset(metadata, cardForm, query);
  }
}

}  // namespace

void readMetadataFile(const QByteArray& json, const QString& name, DeclaredMetadata& metadata)
{
  const MetadataPlace place{name};
  QJsonParseError error;
  const QJsonObject root = QJsonDocument::fromJson(json, &error).object();
  if (error.error != QJsonParseError::NoError) {
    place.fail(QStringLiteral("%1 at byte %2").arg(error.errorString()).arg(error.offset));
  }
  allowKeys(root, {"forms", "queries"}, place);
  for (const QJsonValue& form : root.value(QStringLiteral("forms")).toArray()) {
    readForm(form.toObject(), place, metadata);
  }
  for (const QJsonValue& query : root.value(QStringLiteral("queries")).toArray()) {
    const QJsonObject object = query.toObject();
    allowKeys(object, {"form", "index", "query", "description", "comment", "table", "company", "key", "order",
                       "readonly", "from", "sql", "fields"}, place);
    metadata.queries.append(readQuery(object, numberOf(object, "form", place), place));
  }
}

DeclaredMetadata embeddedMetadata()
{
  DeclaredMetadata metadata;
  const QDir folder(QStringLiteral(":/metadata"));
  for (const QString& name : folder.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name)) {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::ReadOnly)) {
      throw MetadataError(QStringLiteral("cannot read ") + name);
    }
    readMetadataFile(file.readAll(), name, metadata);
  }
  return metadata;
}

}  // namespace kalvor::server
