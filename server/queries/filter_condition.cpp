#include "server/queries/filter_condition.h"

#include <QDate>

#include "rpc/rpc_error.h"
#include "server/queries/filter_values.h"
#include "server/store/text_rules.h"

namespace kalvor::server {

namespace {

const Fragment never{QStringLiteral("1 = 0"), {}};
const Fragment always{QStringLiteral("1 = 1"), {}};

[[noreturn]] void refuseFilter(const QString& text) { throw RpcError(RpcError::Refused, text); }

[[noreturn]] void refuseValue(const ResolvedField& field, const Variant& value)
{
  refuseFilter(QStringLiteral("Стойността „%1“ не е подходяща за поле „%2“.")
                   .arg(variantText(value).left(100), field.caption));
}

Fragment comparison(const Fragment& left, const char* op, const Variant& value)
{
  return left + QStringLiteral(" %1 ?").arg(QLatin1StringView(op)) + Fragment{{}, {value}};
}

// A whole day stands for all its moments in a column with times.
Fragment dayComparison(const ResolvedField& field, const char* op, QDate day)
{
  const Variant from = QDateTime(day, QTime(0, 0));
  const Variant to = QDateTime(day.addDays(1), QTime(0, 0));
  const QByteArray sign(op);
  if (sign == "=") {
    return allOf({comparison(field.expression, ">=", from), comparison(field.expression, "<", to)});
  }
  if (sign == "<>") {
    return anyOf({comparison(field.expression, "<", from), comparison(field.expression, ">=", to)});
  }
  if (sign == "<=") {
    return comparison(field.expression, "<", to);
  }
  return sign == ">" ? comparison(field.expression, ">=", to) : comparison(field.expression, op, from);
}

// The expression as it compares with a text, whatever its type is.
Fragment asText(const ResolvedField& field)
{
  const bool text = isTextType(field.type) && field.type != DataType::Unknown;
  return text ? field.expression : QStringLiteral("CAST(") + field.expression + QStringLiteral(" AS TEXT)");
}

// Blanks at the end of a text do not count in comparisons (SQL's PAD SPACE): files of fixed columns bring them along.
Variant withoutPadding(const Variant& value)
{
  QString text = value.typeId() == QMetaType::QString ? value.toString() : QString();
  if (!text.endsWith(u' ')) {
    return value;
  }
  while (text.endsWith(u' ')) {
    text.chop(1);
  }
  return text;
}

Fragment compareCondition(const ResolvedField& field, const char* op, const Variant& value)
{
  if (isNull(value)) {
    return never;
  }
  const QString text = withoutQuotes(variantText(value));
  if (text.trimmed().isEmpty() && !isTextType(field.type)) {
    return qstrcmp(op, "<>") == 0 ? field.expression + QStringLiteral(" IS NOT NULL") : never;
  }
  const auto converted = filterValue(field.type, value);
  if (!converted) {
    refuseValue(field, value);
  }
  if (field.type != DataType::Date && isDateType(field.type) && converted->typeId() == QMetaType::QDate) {
    return dayComparison(field, op, converted->toDate());
  }
  return comparison(field.type == DataType::Unknown ? asText(field) : field.expression, op, withoutPadding(*converted));
}

// The smallest text above every text that begins with the prefix; empty when it has no simple form.
QString prefixLimit(const QString& prefix)
{
  QString limit = prefix;
  const char32_t last = foldCharacter(limit.back().unicode());
  if (limit.back().isSurrogate() || last >= 0xD7FF) {
    return {};
  }
  limit.back() = QChar(char16_t(last + 1));
  return limit;
}

// "%" and "*" stand for any text, every other character for itself.
QString likePattern(const QString& text)
{
  QString pattern;
  for (const QChar character : text) {
    if (character == u'_' || character == u'!') {
      pattern += u'!';
    }
    pattern += character == u'*' ? QChar(u'%') : character;
  }
  return pattern;
}

Fragment likeCondition(const ResolvedField& field, const Variant& value)
{
  if (isNull(value)) {
    return never;
  }
  if (isRealType(field.type) || field.type == DataType::Boolean || field.type == DataType::Blob) {
    refuseValue(field, value);
  }
  QString text = withoutQuotes(variantText(value));
  if (!text.contains(u'%') && !text.contains(u'*')) {
    // "Съдържа" sends the text as it was typed.
    text = text.isEmpty() ? QStringLiteral("%") : u'%' + text + u'%';
  }
  const Fragment like = comparison(asText(field), "LIKE", likePattern(text)) + QStringLiteral(" ESCAPE '!'");
  qsizetype plain = 0;
  while (plain < text.size() && text.at(plain) != u'%' && text.at(plain) != u'*') {
    ++plain;
  }
  const QString limit = plain > 0 ? prefixLimit(text.left(plain)) : QString();
  if (limit.isEmpty() || !isTextType(field.type) || field.type == DataType::Unknown) {
    return like;
  }
  // The range lets an index find the texts that begin so.
  return allOf({comparison(field.expression, ">=", text.left(plain)), comparison(field.expression, "<", limit), like});
}

Fragment inCondition(const ResolvedField& field, const Variant& value)
{
  const auto items = filterValueList(value);
  if (!items || items->size() > maxFilterValues) {
    refuseValue(field, value);
  }
  Fragment list;
  for (const Variant& item : *items) {
    const auto converted = filterValue(field.type, item);
    if (!converted) {
      refuseValue(field, item);
    }
    list += Fragment{list.isEmpty() ? QStringLiteral("?") : QStringLiteral(", ?"), {*converted}};
  }
  const Fragment left = field.type == DataType::Unknown ? asText(field) : field.expression;
  return list.isEmpty() ? never : left + QStringLiteral(" IN (") + list + QStringLiteral(")");
}

Fragment nullCondition(const ResolvedField& field, bool negated, const Variant& value)
{
  if (!isNull(value) && variantText(value).trimmed().compare(QLatin1StringView("null"), Qt::CaseInsensitive) != 0) {
    refuseValue(field, value);
  }
  return field.expression + QLatin1StringView(negated ? " IS NOT NULL" : " IS NULL");
}

enum class FilterOperator : quint8 { Compare, Like, In, IsNull, IsNotNull };
struct OperatorRow {
  const char* written;  // trimmed, in lower case
  FilterOperator kind;
};
constexpr OperatorRow filterOperators[] = {
    {"=", FilterOperator::Compare},  {"<>", FilterOperator::Compare}, {">", FilterOperator::Compare},
    {"<", FilterOperator::Compare},  {">=", FilterOperator::Compare}, {"<=", FilterOperator::Compare},
    {"like", FilterOperator::Like},  {"in", FilterOperator::In},      {"is", FilterOperator::IsNull},
    {"is not", FilterOperator::IsNotNull},
};

const OperatorRow& operatorOf(const FilterRow& row)
{
  const QString written = row.op.simplified().toLower();
  for (const OperatorRow& candidate : filterOperators) {
    if (written == QLatin1StringView(candidate.written)) {
      return candidate;
    }
  }
  refuseFilter(QStringLiteral("Непозната операция във филтъра: „%1“.").arg(row.op.left(50)));
}

// A number in place of a field, as in 1 = 2: the filter that no row meets.
Fragment literalCondition(const FilterRow& row, qlonglong literal)
{
  bool ok = false;
  const qlonglong value = withoutQuotes(variantText(row.value)).toLongLong(&ok);
  const QString op = row.op.trimmed();
  if (!ok || (op != u"=" && op != u"<>")) {
    refuseFilter(QStringLiteral("Непознато поле във филтъра: „%1“.").arg(row.field.left(100)));
  }
  return (literal == value) == (op == u"=") ? always : never;
}

Fragment rowCondition(const FilterRow& row, const FieldResolver& fields)
{
  bool isNumber = false;
  const qlonglong literal = row.field.trimmed().toLongLong(&isNumber);
  if (isNumber) {
    return literalCondition(row, literal);
  }
  const auto field = fields.resolve(row.field.trimmed());
  if (!field) {
    refuseFilter(QStringLiteral("Непознато поле във филтъра: „%1“.").arg(row.field.left(100)));
  }
  const OperatorRow& op = operatorOf(row);
  switch (op.kind) {
    case FilterOperator::Compare: return compareCondition(*field, op.written, row.value);
    case FilterOperator::Like: return likeCondition(*field, row.value);
    case FilterOperator::In: return inCondition(*field, row.value);
    case FilterOperator::IsNull: return nullCondition(*field, false, row.value);
    case FilterOperator::IsNotNull: return nullCondition(*field, true, row.value);
  }
  return never;
}

// "AND" or "OR". IN may carry its closing bracket here.
QString conjunctionOf(const FilterRow& row)
{
  QString text = row.conjunction.trimmed();
  if (row.op.trimmed().compare(QLatin1StringView("in"), Qt::CaseInsensitive) == 0 && text.startsWith(u')')) {
    text = text.mid(1).trimmed();
  }
  if (text.isEmpty() || text.compare(QLatin1StringView("and"), Qt::CaseInsensitive) == 0) {
    return QStringLiteral(" AND ");
  }
  if (text.compare(QLatin1StringView("or"), Qt::CaseInsensitive) == 0) {
    return QStringLiteral(" OR ");
  }
  refuseFilter(QStringLiteral("Непозната връзка във филтъра: „%1“.").arg(row.conjunction.left(50)));
}

// Checks that a row's brackets are brackets and returns how many of a kind there are.
qsizetype countBrackets(const FilterRow& row, QChar bracket)
{
  for (QChar c : row.brackets) {
    if (c != u'(' && c != u')' && c != u' ') {
      refuseFilter(QStringLiteral("Непознати скоби във филтъра: „%1“.").arg(row.brackets.left(50)));
    }
  }
  return row.brackets.count(bracket);
}

}  // namespace

Fragment filterCondition(const FilterArray& filter, const FieldResolver& fields)
{
  if (filter.size() > maxFilterRows) {
    refuseFilter(QStringLiteral("Филтърът има твърде много редове."));
  }
  Fragment condition;
  QString conjunction;
  qsizetype depth = 0;
  for (const FilterRow& row : filter) {
    if (row.field.trimmed().isEmpty() && row.op.trimmed().isEmpty() && row.brackets.isEmpty()) {
      continue;
    }
    const qsizetype opened = countBrackets(row, u'(');
    const qsizetype closed = countBrackets(row, u')');
    condition += conjunction + QString(opened, u'(') + u'(' + rowCondition(row, fields);
    condition += u')' + QString(closed, u')');
    conjunction = conjunctionOf(row);
    if (depth + opened > maxFilterDepth || condition.values.size() > maxFilterValues) {
      refuseFilter(QStringLiteral("Филтърът е твърде сложен."));
    }
    depth += opened - closed;
    if (depth < 0) {
      break;
    }
  }
  if (depth != 0) {
    refuseFilter(QStringLiteral("Скобите във филтъра не са сдвоени."));
  }
  return condition;
}

}  // namespace kalvor::server
