#include "server/posting/posting_checks.h"

#include "server/rights/row_security.h"

namespace kalvor::server {

namespace {

// Each answers what follows the document's name, or nothing when the rule holds.
using DocumentRule = QString (*)(const PostingJob& job);
using LineRule = QString (*)(const PostingJob& job, const GlobalLine& line);

QString when(bool broken, const char* text) { return broken ? QString::fromUtf8(text) : QString(); }
QString shownDay(const QDate& day) { return day.toString(QStringLiteral("dd.MM.yyyy")); }

QString closedPeriod(const PostingJob& job, const QDate& day, const char* what)
{
  const QDate& closed = job.rules.closedTo;
  return closed.isValid() && day <= closed ? QStringLiteral(" не може да бъде осчетоводен: %1 %2 е в приключен период (до %3).")
                                                 .arg(QString::fromUtf8(what), shownDay(day), shownDay(closed))
                                           : QString();
}

struct AppliedInvoice {
  bool found = false;
  QString payerId;
  QString currencyId;
  QDate date;
};

AppliedInvoice appliedInvoice(const PostingJob& job)
{
  const TableInfo& table = *job.access.metadata.catalogue().table(u"D_SaleInvoiceHeader");
  const Fragment visible = allOf({{QStringLiteral("D_SaleInvoiceHeader.Id = ? AND D_SaleInvoiceHeader.Comp_Id = ? AND "
                                                  "D_SaleInvoiceHeader.DocStatus = 1"),
                                   {job.document.appliesToId, job.companyId()}},
                                  tableSecurity(job.access, table, table.name)});
  auto row = job.db().prepare(QStringLiteral("SELECT COALESCE(NULLIF(InvToContragent_ID, ''), Contragent_Id), Currency_Id, "
                                             "DocumentDate FROM D_SaleInvoiceHeader WHERE ") + visible.sql);
  for (int i = 0; i < visible.values.size(); ++i) {
    row->bind(i, visible.values.at(i));
  }
  return row->step() ? AppliedInvoice{true, row->text(0), row->text(1), row->value(2).toDate()} : AppliedInvoice{};
}

QString brokenApplication(const PostingJob& job)
{
  if (!job.document.isCreditMemo() || job.document.appliesToId.isEmpty()) {
    return {};
  }
  const AppliedInvoice invoice = appliedInvoice(job);
  return !invoice.found                                   ? QStringLiteral(": няма такава осчетоводена фактура, към която да бъде приложено.")
         : invoice.payerId != job.document.payerId        ? QStringLiteral(": фактурата, към която се прилага, е на друг контрагент.")
         : invoice.currencyId != job.document.currencyId  ? QStringLiteral(": фактурата, към която се прилага, е в друга валута.")
         : invoice.date > job.document.date               ? QStringLiteral(": датата е преди датата на фактурата, към която се прилага.")
                                                          : QString();
}

constexpr DocumentRule documentRules[] = {
    [](const PostingJob& job) { return when(job.document.posted, " вече е осчетоводен."); },
    [](const PostingJob& job) { return when(job.document.annulled, " е анулиран и не може да бъде осчетоводен."); },
    [](const PostingJob& job) { return when(job.document.lines.isEmpty(), " няма редове."); },
    [](const PostingJob& job) { return when(!job.document.knownSubType, " няма вид документ."); },
    [](const PostingJob& job) { return when(job.document.payerId.isEmpty(), " няма контрагент."); },
    [](const PostingJob& job) { return when(job.document.payerName.isEmpty(), " е за контрагент, който не съществува."); },
    [](const PostingJob& job) { return closedPeriod(job, job.document.date, "датата"); },
    [](const PostingJob& job) { return closedPeriod(job, job.document.vatDate, "датата на данъчното събитие"); },
    [](const PostingJob& job) { return when(job.document.currencyFactor <= 0, " няма курс на валутата."); },
    [](const PostingJob& job) {
      return when(job.document.currencyId.isEmpty() && job.document.currencyFactor != amountScale,
                  " е в местна валута, но курсът е различен от 1.");
    },
    brokenApplication,
    [](const PostingJob& job) { return when(job.totals.totalVat < 0 || job.totals.totalVatLcy < 0, " е с отрицателна стойност."); },
    [](const PostingJob& job) {
      return when(job.totals != job.document.totals, ": сумите на документа не са сбор от редовете му. Преизчислете документа и го запишете.");
    },
};

constexpr LineRule lineRules[] = {
    [](const PostingJob&, const GlobalLine& line) {
      return line.type == 1 && line.itemId.isEmpty() ? QStringLiteral(": няма артикул с код „%1“.").arg(line.code) : QString();
    },
    [](const PostingJob&, const GlobalLine& line) {
      return when(line.type == 1 && line.itemType == 1 && line.quantity != 0 && line.quantityBase == 0,
                  ": няма количество в основна мярка.");
    },
    [](const PostingJob& job, const GlobalLine& line) {
      return when(job.document.isCreditMemo() && line.quantity < 0, ": върнатото количество е отрицателно.");
    },
    [](const PostingJob& job, const GlobalLine& line) {
      return when(job.document.isCreditMemo() && !line.sourceLineId.isEmpty() && job.document.appliesToId.isEmpty(),
                  " е от фактура, но не е посочено към коя фактура е известието.");
    },
    [](const PostingJob& job, const GlobalLine& line) {
      return when(job.document.currencyId.isEmpty() && line.value != line.valueLcy,
                  ": стойността в местна валута е различна от стойността.");
    },
};

}  // namespace

void checkDocument(const PostingJob& job)
{
  for (const DocumentRule rule : documentRules) {
    if (const QString broken = rule(job); !broken.isEmpty()) {
      refusePosting(job.document.shown() + broken);
    }
  }
  for (const GlobalLine& line : job.document.lines) {
    for (const LineRule rule : lineRules) {
      if (const QString broken = rule(job, line); !broken.isEmpty()) {
        refusePosting(job.document.shown(line) + broken);
      }
    }
  }
}

}  // namespace kalvor::server
