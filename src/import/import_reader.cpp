#include "import/import_reader.h"

#include <QFileInfo>

#include "import/messages.h"
#include "import/table_reader.h"
#include "import/text_reader.h"
#include "session/import_log.h"

namespace kalvor {
namespace {

// The text moves into the cell: a variant that is made of a text would share it first.
void appendText(TImportLine& line, const ImportField& field, QString&& text)
{
  static const QMetaType textType = QMetaType::fromType<QString>();
  TImportCell& cell = line.emplaceBack(field.target, Variant(textType), field.isKey);
  *static_cast<QString*>(cell.Value.data()) = std::move(text);
}

}  // namespace

TImportBase::TImportBase(const QString& fileName, const TImportFilter& filter, const ImportServices& services)
    : fileName_(fileName),
      filter_(filter),
      services_(services),
      masterFields_(importFields(filter.CdsMaster, filter)),
      detailFields_(importFields(filter.CdsDetail, filter)),
      importAction_(filter.option(QStringLiteral("IMPORT_ACTION")).trimmed().toInt())
{
  for (const QString& position : filter.option(QStringLiteral("NEW_DOCSEP")).split(u';'))
    if (!position.trimmed().isEmpty())
      breaks_.append(DocumentBreak{position.trimmed().toInt(), {}});
  for (int i = 0; i < filter.DefaultSelector.count(); ++i)
    fallbacks_.append(importLookup(fallbackDescription(filter.DefaultSelector, i), filter, ConditionValues::FromRow));
}

TImportBase::~TImportBase() = default;

int TImportBase::ReadRecord(TImportLine&, TImportSet&, QString& error)
{
  error.clear();
  return 0;
}

int TImportBase::GetRecordCount() { return 0; }

QString TImportBase::textAt(int) const { return {}; }

int TImportBase::currentRowNumber() const { return rowCounter_ - 1; }

QList<ImportField> TImportBase::fieldsOf(const ImportEntries& entries) const
{
  if (&entries == &filter_.CdsMaster)
    return masterFields_;
  return &entries == &filter_.CdsDetail ? detailFields_ : importFields(entries, filter_);
}

int TImportBase::fillLine(const QList<ImportField>& fields, int rowNumber, TImportLine& line)
{
  const qsizetype entrySize = line.size();
  bool found = true;
  line.reserve(entrySize + fields.size());
  for (const ImportField& field : fields) {
    if (field.kind == ImportField::Kind::Lookup) {
      found = fillLookup(field.lookup, rowNumber, line) && found;
      continue;
    }
    QString text = textAt(field.position);
    if (text.isEmpty())
      text = field.defaultText;
    if (!text.isEmpty())
      appendText(line, field, std::move(text));
  }
  const bool skipped = !found && filter_.option(QStringLiteral("SKIP_INVALID_ROWS")) == u"1";
  if (skipped)
    line.resize(entrySize);
  if (services_.LineRead)
    services_.LineRead(line, currentRowNumber());
  return found || skipped || services_.LineRead ? 0 : -1;
}

bool TImportBase::fillLookup(const ImportLookup& lookup, int rowNumber, TImportLine& line)
{
  const bool hasFallback = lookup.fallback > 0 && lookup.fallback <= fallbacks_.size();
  const ColumnText column = [this](int position) { return textAt(position); };
  return runImportLookup(lookup, hasFallback ? &fallbacks_[lookup.fallback - 1] : nullptr, column, filter_, line,
                         rowNumber, services_);
}

int TImportBase::failRecord(const QString& message, int rowNumber, const QString& routine, QString& error) const
{
  error = importRowNumber + QString::number(rowNumber - 1) + QStringLiteral("\r\n") + message;
  if (!services_.LineRead)
    ImportLogError(message, routine);
  return -1;
}

std::unique_ptr<TImportBase> createImportReader(const QString& fileName, const TImportFilter& filter,
                                                const ImportServices& services)
{
  const QString extension = QFileInfo(fileName).suffix().toUpper();
  if (extension == u"XLS" || extension == u"XLSX")
    return std::make_unique<TImportXLS>(fileName, filter, services);
  if (extension == u"XML")
    return std::make_unique<TImportXML>(fileName, filter, services);
  return std::make_unique<TImportTxt>(fileName, filter, services);
}

}  // namespace kalvor
