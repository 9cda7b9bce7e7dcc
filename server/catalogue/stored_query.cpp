#include "server/catalogue/stored_query.h"

namespace kalvor::server {

namespace {

bool equalNames(QStringView left, QStringView right) { return left.compare(right, Qt::CaseInsensitive) == 0; }

// The alias of a nested query's wrapper.
const QString wrapper = QStringLiteral("srv_rows");

QString columnOf(const QString& alias, const QString& column) { return quotedName(alias) + u'.' + quotedName(column); }

// Names that no stored query may touch, wherever they stand in it.
bool namesSecret(const QList<SqlToken>& tokens)
{
  return std::any_of(tokens.begin(), tokens.end(), [](const SqlToken& token) {
    return token.isName() && (token.text.startsWith(QLatin1StringView("srv_"), Qt::CaseInsensitive) ||
                              token.text.startsWith(QLatin1StringView("sqlite_"), Qt::CaseInsensitive) ||
                              equalNames(token.text, u"PasswordHash"));
  });
}

DataType typeOfDeclaration(const QString& type)
{
  static const QHash<QString, DataType> types{
      {QStringLiteral("INTEGER"), DataType::LargeInt}, {QStringLiteral("BOOLEAN"), DataType::Boolean},
      {QStringLiteral("AMOUNT"), DataType::Float}, {QStringLiteral("TEXT"), DataType::WideString},
      {QStringLiteral("VARCHAR"), DataType::WideString}, {QStringLiteral("DATE"), DataType::Date},
      {QStringLiteral("TIMESTAMP"), DataType::DateTime}, {QStringLiteral("BLOB"), DataType::Blob}};
  return types.value(type.section(u'(', 0, 0).trimmed().toUpper(), DataType::Unknown);
}

}  // namespace

const QString& fieldColumnNames()
{
  static const QString names = QStringLiteral(
      "FieldName,Caption,FieldType,Required,Updatable,Visible,Filterable,ReadOnly,CopyField,CaptionML,DisplayFormat,"
      "Origin,FieldIndex,FieldFilter,DefaultValue,OptionCaption,SelectorDesc,OptionCaptionML,FlowFieldDescr");
  return names;
}

const SelectTable* StoredQuery::tableOf(QStringView alias) const
{
  for (const SelectTable& table : parts.tables) {
    if (equalNames(table.alias, alias)) {
      return &table;
    }
  }
  return nullptr;
}

QString StoredQuery::compile(const Catalogue& catalogue)
{
  QString reason;
  auto read = parseSelect(sqlText, &reason);
  if (!read) {
    return reason;
  }
  parts = std::move(*read);
  if (namesSecret(parts.tokens)) {
    return QStringLiteral("it names what no query may read");
  }
  for (const SelectTable& table : std::as_const(parts.tables)) {
    if (!catalogue.table(table.name)) {
      return QStringLiteral("there is no table %1").arg(table.name);
    }
    if (baseAlias.isEmpty() && equalNames(table.name, baseTable)) {
      baseAlias = table.alias;
    }
  }
  base = baseAlias.isEmpty() || parts.nested() ? nullptr : catalogue.table(baseTable);
  for (const SelectItem& source : std::as_const(parts.items)) {
    if (const QString why = compileItem(source, catalogue); !why.isEmpty()) {
      return why;
    }
  }
  // Forgetting the company must not open the table; a text that asks for :Comp_Id has thought of it.
  const bool asksForCompany = std::any_of(parts.tokens.begin(), parts.tokens.end(), [](const SqlToken& token) {
    return token.kind == TokenKind::Parameter && equalNames(token.text, u"Comp_Id");
  });
  if (companyField.isEmpty() && base && !asksForCompany) {
    if (const ColumnInfo* company = catalogue.companyColumn(*base)) {
      companyField = baseAlias + u'.' + company->name;
    }
  }
  return {};
}

void StoredQuery::appendColumn(const SelectTable& table, const ColumnInfo& column, const QString& name)
{
  QueryItem item;
  item.ofBaseTable = base && equalNames(table.alias, baseAlias);
  item.alias = table.alias;
  item.column = column.name;
  item.field.name = name;
  item.field.type = column.type;
  item.field.size = column.size;
  item.field.origin = table.name + u'.' + column.name;
  const FieldRow* described = row(name);
  item.field.updatable = item.ofBaseTable && !base->view && !(described && described->text(FieldColumn::Updatable) == u"0");
  items.append(item);
}

QString StoredQuery::compileItem(const SelectItem& source, const Catalogue& catalogue)
{
  const SelectTable* table = source.table.isEmpty() ? nullptr : tableOf(source.table);
  if (!source.table.isEmpty() && !table) {
    return QStringLiteral("there is no table %1 in it").arg(source.table);
  }
  if (!table && !source.column.isEmpty()) {
    for (const SelectTable& candidate : std::as_const(parts.tables)) {
      if (catalogue.table(candidate.name)->column(source.column)) {
        table = &candidate;
        break;
      }
    }
  }
  if (source.allColumns) {
    for (const ColumnInfo& column : catalogue.table(table->name)->columns) {
      appendColumn(*table, column, column.name);
    }
    return {};
  }
  if (table && !source.column.isEmpty() && source.type.isEmpty()) {
    const ColumnInfo* column = catalogue.table(table->name)->column(source.column);
    if (!column) {
      return QStringLiteral("there is no column %1.%2").arg(source.table, source.column);
    }
    appendColumn(*table, *column, source.name);
    return {};
  }
  QueryItem item;
  item.field.name = source.name;
  item.field.type = typeOfDeclaration(source.type);
  item.field.updatable = false;
  item.declaredType = source.type;
  item.begin = source.begin;
  item.end = source.end;
  items.append(item);
  return {};
}

const QueryItem* StoredQuery::item(QStringView name) const
{
  for (const QueryItem& candidate : items) {
    if (equalNames(candidate.field.name, name)) {
      return &candidate;
    }
  }
  return nullptr;
}

const FieldRow* StoredQuery::row(QStringView fieldName) const
{
  for (const FieldRow& candidate : rows) {
    if (equalNames(candidate.text(FieldColumn::FieldName), fieldName)) {
      return &candidate;
    }
  }
  return nullptr;
}

QString StoredQuery::captionOf(const QString& fieldName) const
{
  const FieldRow* described = row(fieldName);
  const QString caption = described ? described->text(FieldColumn::Caption) : QString();
  return caption.isEmpty() ? fieldName : caption;
}

Fragment StoredQuery::expression(const QueryItem& item, const ParameterArray& parameters) const
{
  if (parts.nested()) {
    return {columnOf(wrapper, item.field.name), {}};
  }
  return item.column.isEmpty() ? fragmentOf(parts.tokens, item.begin, item.end, parameters)
                               : Fragment{columnOf(item.alias, item.column), {}};
}

QString StoredQuery::qualifiedColumn(const QString& name) const
{
  const SelectTable* table = tableOf(name.section(u'.', 0, 0).trimmed());
  return table ? columnOf(table->alias, name.section(u'.', 1).trimmed()) : QString();
}

Fragment StoredQuery::keyExpression() const
{
  if (keyField.isEmpty()) {
    return {};
  }
  const QString column = keyField.section(u'.', -1).trimmed();
  if (parts.nested()) {
    return item(column) ? Fragment{columnOf(wrapper, column), {}} : Fragment();
  }
  return {keyField.contains(u'.') ? qualifiedColumn(keyField) : baseAlias.isEmpty() ? QString() : columnOf(baseAlias, column),
          {}};
}

Fragment StoredQuery::companyCondition(const QString& company) const
{
  if (companyField.isEmpty() || parts.unioned) {
    return {};
  }
  const QString column = companyField.contains(u'.') ? qualifiedColumn(companyField) : columnOf(baseAlias, companyField);
  return {column + QStringLiteral(" = ?"), {company}};
}

std::optional<ResolvedField> StoredQuery::resolveItem(const QueryItem& item, const ParameterArray& parameters) const
{
  Fragment value = expression(item, parameters);
  if (item.column.isEmpty()) {
    const bool text = isTextType(item.field.type) && item.field.type != DataType::Unknown;
    value = QStringLiteral("(") + value + QLatin1StringView(text ? ") COLLATE \"KALVOR\"" : ")");
  }
  return ResolvedField{value, item.field.type, item.field.size, captionOf(item.field.name)};
}

std::optional<ResolvedField> StoredQuery::resolveBaseColumn(const QString& name) const
{
  if (!base) {
    return {};
  }
  const bool qualified = name.contains(u'.');
  const QString table = name.section(u'.', 0, 0).trimmed();
  if (qualified && !equalNames(table, baseTable) && !equalNames(table, baseAlias)) {
    return {};
  }
  const ColumnInfo* column = base->column(qualified ? name.section(u'.', 1).trimmed() : name);
  if (!column) {
    return {};
  }
  return ResolvedField{{columnOf(baseAlias, column->name), {}}, column->type, column->size, captionOf(column->name)};
}

std::optional<ResolvedField> StoredQuery::resolve(const QString& name, const ParameterArray& parameters) const
{
  const auto described = [&](FieldColumn column) -> const QueryItem* {
    for (const FieldRow& candidate : rows) {
      if (equalNames(candidate.text(column), name)) {
        if (const QueryItem* found = item(candidate.text(FieldColumn::FieldName))) {
          return found;
        }
      }
    }
    return nullptr;
  };
  if (const QueryItem* found = described(FieldColumn::FieldFilter)) {
    return resolveItem(*found, parameters);
  }
  if (const QueryItem* found = item(name)) {
    return resolveItem(*found, parameters);
  }
  if (auto column = resolveBaseColumn(name)) {
    return column;
  }
  if (const QueryItem* found = described(FieldColumn::Caption)) {
    return resolveItem(*found, parameters);
  }
  return {};
}

Fragment StoredQuery::itemList(const ParameterArray& parameters) const
{
  Fragment list;
  for (const QueryItem& candidate : items) {
    list += QLatin1StringView(list.isEmpty() ? "" : ", ") + expression(candidate, parameters);
    list += QStringLiteral(" AS ") +
            quotedName(candidate.declaredType.isEmpty() ? candidate.field.name
                                                        : candidate.field.name + u':' + candidate.declaredType);
  }
  return list;
}

Fragment StoredQuery::selectFrom(const Fragment& list, const QList<Fragment>& conditions, const QString& company,
                                 const ParameterArray& parameters) const
{
  const auto part = [&](qsizetype begin, qsizetype end) { return fragmentOf(parts.tokens, begin, end, parameters); };
  const Fragment own = parts.whereEnd > parts.whereBegin ? part(parts.whereBegin, parts.whereEnd) : Fragment();
  const auto where = [](const Fragment& condition) {
    return condition.isEmpty() ? Fragment() : QStringLiteral(" WHERE ") + condition;
  };
  const Fragment inCompany = companyCondition(company);
  if (!parts.nested()) {
    return QStringLiteral("SELECT ") + list + QStringLiteral(" FROM ") + part(parts.fromBegin, parts.fromEnd) +
           where(allOf(QList<Fragment>{inCompany, own} + conditions));
  }
  Fragment inner{QString::fromLatin1(parts.distinct ? "SELECT DISTINCT " : "SELECT "), {}};
  for (qsizetype i = 0; i < parts.items.size(); ++i) {
    const SelectItem& source = parts.items.at(i);
    inner += QLatin1StringView(i ? ", " : "") + part(source.begin, source.end) + QStringLiteral(" AS ") +
             quotedName(source.name);
  }
  inner += QStringLiteral(" FROM ") + part(parts.fromBegin, parts.fromEnd);
  inner += where(allOf({inCompany, own})) + QStringLiteral(" ") + part(parts.restBegin, parts.tokens.size());
  return QStringLiteral("SELECT ") + list + QStringLiteral(" FROM (") + inner + QStringLiteral(") AS ") +
         quotedName(wrapper) + where(allOf(conditions));
}

}  // namespace kalvor::server
