// A filter into the rows of a table filter.
#include "common/delimited_list.h"
#include "data/regional.h"
#include "filters/filter_expression.h"
#include "filters/filter_macros.h"
#include "filters/table_filter.h"
#include "platform/ports.h"
#include "registry/selector_items.h"
#include "session/local_data.h"

namespace kalvor {

namespace {

const QString rowParamOpener = QStringLiteral("<#Param(");

// The relative date inside a macro, empty when there is none.
QString relativeDateOf(const QString& text)
{
  if (!text.startsWith(rowParamOpener)) {
    return {};
  }
  const QString name = macroName(text, rowParamOpener);
  QString date;
  return GenerateIntervalData(name, date) == 0 ? name : QString();
}

QString filterCellText(const FilterFields& fields, int index, TableFilterMode mode, const Variant& value)
{
  const QString text = variantText(value);
  switch (fields.kindAt(index)) {
    case fkYesNo: return yesNoTexts()[text == QLatin1String("1") ? 0 : 1];
    case fkOptions: return optionText(fields.at(index).options(), text).trimmed();
    default: break;
  }
  if (mode == TableFilterMode::Macros && fields.isDate(index)) {
    if (const QString relative = relativeDateOf(text); !relative.isEmpty()) {
      return relative;
    }
  }
  return text;
}

struct WordPair {
  const char16_t* inFilter;
  const char16_t* inGrid;
};
constexpr WordPair rowWords[] = {{u"LIKE", u"Съдържа"}, {u"AND", u"И"}, {u"OR", u"ИЛИ"}};

QString gridWord(const QString& word)
{
  for (const WordPair& pair : rowWords) {
    if (word.trimmed().compare(QStringView(pair.inFilter), Qt::CaseInsensitive) == 0) {
      return QString::fromUtf16(pair.inGrid);
    }
  }
  return word;
}

// One row of the editor: a filter row, or the group of rows that the editor writes for an empty value or for several.
struct EditorLine {
  FilterRow row;
  VariantArray values;
  qsizetype length = 1;
};

bool isNullTest(const FilterRow& row, const QString& op)
{
  return row.op.trimmed().compare(op, Qt::CaseInsensitive) == 0 &&
         variantText(row.value).compare(QLatin1String("null"), Qt::CaseInsensitive) == 0;
}

bool isEmptyValuePair(const FilterRow& first, const FilterRow& second)
{
  return first.field == second.field && variantText(first.value).isEmpty() &&
         isNullTest(second, first.op == QLatin1String("=") ? QStringLiteral("is") : QStringLiteral("is not"));
}

// The rows that one bracket pair holds, when they are the values of one field; 1 otherwise.
qsizetype valueGroupLength(const FilterArray& filter, qsizetype from)
{
  const FilterRow& first = filter[from];
  if (!first.brackets.contains(u'(') || first.brackets.contains(u')')) {
    return 1;
  }
  for (qsizetype i = from; i < filter.size(); ++i) {
    const FilterRow& row = filter[i];
    if (row.field != first.field || row.op != first.op || variantText(row.value).contains(u'|')) {
      return 1;
    }
    if (i > from && row.brackets.contains(u')')) {
      return i - from + 1;
    }
    if ((i > from && !row.brackets.isEmpty()) || row.conjunction != QLatin1String("OR")) {
      return 1;
    }
  }
  return 1;
}

EditorLine editorLine(const FilterArray& filter, qsizetype from)
{
  EditorLine line{filter[from], {filter[from].value}};
  if (from + 1 < filter.size() && isEmptyValuePair(filter[from], filter[from + 1])) {
    line.length = 2;
    line.values = {QString()};
  } else {
    line.length = valueGroupLength(filter, from);
    for (qsizetype i = 1; i < line.length; ++i) {
      line.values.append(filter[from + i].value);
    }
  }
  line.row.conjunction = filter[from + line.length - 1].conjunction;
  return line;
}

void writeLine(StringTable& grid, const FilterFields& fields, TableFilterMode mode, const EditorLine& line, int gridRow)
{
  const int index = fields.byName(line.row.field);
  QStringList texts;
  for (const Variant& value : line.values) {
    const bool none = line.length == 2 && line.values.size() == 1;
    texts.append(none ? QString() : filterCellText(fields, index, mode, value));
  }
  grid.SetRowCount(std::max(grid.RowCount(), gridRow + 1));
  grid.SetCells(tfField, gridRow, index < 0 ? line.row.field : fields.captionAt(index));
  grid.SetCells(tfOperator, gridRow, gridWord(line.row.op));
  grid.SetCells(tfValue, gridRow, texts.join(u'|'));
  grid.SetCells(tfConjunction, gridRow, gridWord(line.row.conjunction));
}

// --- Report rows ---------------------------------------------------------------------------------------------

QString reportDefault(const FilterFields& fields, int index, TableFilterMode mode)
{
  struct DefaultMacro {
    const char16_t* name;
    QString (*value)();
  };
  static constexpr DefaultMacro macros[] = {
      {u"<#CURRENTCOMPANY#>", [] { return LocalData.CompanyId; }},
      {u"<#CURRENTBGROUP#>", [] { return LocalData.BGroupId; }},
      {u"<#CURRENTUSER#>", [] { return LocalData.UserId; }},
      {u"<#CURRENTDATE#>", [] { return dateText(systemClock().today()); }},
      {u"<#CURRENTDATETIME#>", [] { return dateTimeText(systemClock().now()); }},
  };
  QString text = fields.at(index).text(FieldColumn::DefaultValue);
  for (const DefaultMacro& macro : macros) {
    text.replace(QString::fromUtf16(macro.name), macro.value());
  }
  bool number = false;
  text.toInt(&number);
  return number ? filterCellText(fields, index, mode, text) : text;
}

}  // namespace

void FillCellRowFromFilterLine(StringTable& grid, const FilterFields& fields, TableFilterMode mode,
                               const FilterRow& line, int gridRow)
{
  writeLine(grid, fields, mode, EditorLine{line, {line.value}}, gridRow);
}

void FillGridFromFilter(StringTable& grid, const FilterFields& fields, TableFilterMode mode, const FilterArray& filter,
                        const ParameterArray& parameters, int& row)
{
  for (qsizetype i = 0; i < filter.size();) {
    const EditorLine line = editorLine(filter, i);
    writeLine(grid, fields, mode, line, row++);
    i += line.length;
  }
  for (const NamedValue& parameter : parameters) {
    for (int index = 0; index < fields.count(); ++index) {
      if (fields.isParameter(index) && fields.at(index).fieldName().compare(parameter.name, Qt::CaseInsensitive) == 0) {
        writeLine(grid, fields, mode, EditorLine{FilterRow{fields.nameAt(index), tableFilterOperators().first(), {}, {}, {}},
                                                 {parameter.value}}, row);
        grid.SetCells(tfField, row++, fields.captionAt(index));
        break;
      }
    }
  }
  grid.SetRowCount(std::max(row, 2));
}

void addCriterionRows(StringTable& grid, const QString& caption, const QString& criterion, int& row)
{
  QString left, right, op;
  PreparateFilterString(criterion, left, right, op);
  if (row > 1) {
    grid.SetCells(tfConjunction, row - 1, tableFilterConjunctions().first());
  }
  const auto write = [&](const QString& sign, const QString& value) {
    grid.SetRowCount(std::max(grid.RowCount(), row + 1));
    grid.SetCells(tfField, row, caption);
    grid.SetCells(tfOperator, row, sign);
    grid.SetCells(tfValue, row++, value);
  };
  if (op == QLatin1String("..") && !(left.isEmpty() && right.isEmpty())) {
    if (!left.isEmpty()) {
      write(QStringLiteral(">="), left);
    }
    if (!right.isEmpty()) {
      if (!left.isEmpty()) {
        grid.SetCells(tfConjunction, row - 1, tableFilterConjunctions().first());
      }
      write(QStringLiteral("<="), right);
    }
  } else if (left.isEmpty() && right.isEmpty()) {
    write(QString(), QString());
  } else {
    write(op == QLatin1String("*") ? tableFilterOperators().last() : op, right);
  }
}

int fillReportRows(StringTable& grid, const FilterFields& fields, TableFilterMode mode, const FilterArray& filter)
{
  int row = 1;
  const auto addField = [&](int index) {
    grid.SetRowCount(std::max(grid.RowCount(), row + 1));
    const QString name = fields.nameAt(index);
    const auto line = std::find_if(filter.begin(), filter.end(), [&](const FilterRow& entry) {
      return entry.field.compare(name, Qt::CaseInsensitive) == 0;
    });
    if (line != filter.end()) {
      writeLine(grid, fields, mode, editorLine(filter, line - filter.begin()), row);
    } else {
      grid.SetCells(tfOperator, row, tableFilterOperators().first());
      grid.SetCells(tfValue, row, reportDefault(fields, index, mode));
    }
    grid.SetCells(tfField, row, fields.captionAt(index));
    grid.SetCells(tfConjunction, row++, tableFilterConjunctions().first());
  };
  for (int index = 0; index < fields.count(); ++index) {
    if (!fields.isParameter(index) && fields.at(index).isOne(FieldColumn::Required)) {
      addField(index);
    }
  }
  for (int index = 0; index < fields.count(); ++index) {
    if (fields.isParameter(index)) {
      addField(index);
    }
  }
  grid.SetRowCount(std::max(row, 2));
  return row - 1;
}

QString shownFilterValue(const FilterFields& fields, int index, const QString& text)
{
  const bool date = fields.isDate(index) || isDateType(fields.dataTypeAt(index));
  if (!date) {
    return text;
  }
  QStringList shown;
  for (const QString& part : text.split(u'|')) {
    QDate day = QDate::fromString(part, QStringLiteral("yyyyMMdd"));  // as filters and the calendar write it
    day = day.isValid() ? day : QDate::fromString(part, QStringLiteral("dd/MM/yyyy"));
    shown.append(day.isValid() ? dateText(day) : part);
  }
  return shown.join(u'|');
}

QString chosenFilterValue(const TSelectionList& selection, const QString& sourceFields, const QString& targetFields,
                          const QString& fieldName)
{
  const auto position = selectorFieldNames(targetFields).indexOf(fieldName, 0);
  const QString source = selectorFieldNames(sourceFields).value(position);
  QStringList texts;
  for (const TRecordLine& line : selection) {
    for (const TFieldSet& set : line) {
      const bool wanted = position >= 0 ? set.FieldName.compare(source, Qt::CaseInsensitive) == 0 : set.KeyField;
      if (wanted) {
        texts.append(variantText(set.Value));
        break;
      }
    }
  }
  return texts.join(u'|');
}

}  // namespace kalvor
