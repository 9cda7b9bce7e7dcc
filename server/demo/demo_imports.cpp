// Import filters that a company begins with: sale invoices from the usual kinds of files. Every kind has the same columns:
// number, date, client's code, item's code, description, quantity, unit price.
#include <QFile>

#include "server/demo/demo_parts.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

constexpr int saleInvoiceCard = 121;

struct ImportSeed {
  const char* id;
  const char* description;
  const char* options;
};
constexpr const char* formats =
    "NEW_DOCSEP=1##IMPORT_ACTION=3##DATE_FORMAT=dd.mm.yyyy##DATE_SEPARATOR=.##DECIMAL_SEPARATOR=,";
constexpr ImportSeed importSeeds[] = {
    {"INVOICES_TEXT", "Фактури: текст с точка и запетая", "TXTFILE_SEP=SEMICOLON##FIRST_ROW=2##"},
    {"INVOICES_FIXED", "Фактури: текст с колони с постоянна ширина", "TXTFILE_SEP=FIXEDLEN##"},
    {"INVOICES_SHEET", "Фактури: електронна таблица или XML", ""},
};

QString resourceText(const char* name)
{
  QFile file(QStringLiteral(":/imports/") + QLatin1StringView(name));
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

void createDemoImports(Connection& connection)
{
  const QString fields = resourceText("sale_invoices.txt");
  const QString schema = resourceText("rows.xsl");
  RowInserter filters(connection, QStringLiteral("S_DataPort"), {"Id", "Form_Id", "DataPort", "Description", "DPSchema"});
  RowInserter transfers(connection, QStringLiteral("S_TransferList"), {"Id", "Form_Id", "Dataport", "DPSchema"});
  for (const ImportSeed& seed : importSeeds) {
    const QString id = QString::fromLatin1(seed.id);
    const QString text = QStringLiteral("[OPTIONS]") + QLatin1StringView(seed.options) + QLatin1StringView(formats) +
                         QStringLiteral("[##OPTIONS]\n") + fields;
    filters.insert({id, saleInvoiceCard, text, QString::fromUtf8(seed.description), schema});
    transfers.insert({id, saleInvoiceCard, text, schema});
  }
}

}  // namespace kalvor::server
