#include "server/posting/post_global_document.h"

#include "server/posting/contragent_posting.h"
#include "server/posting/item_posting.h"
#include "server/posting/posted_documents.h"
#include "server/posting/posting_checks.h"
#include "server/posting/vat_posting.h"

namespace kalvor::server {

namespace {

void postSales(const PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger)
{
  const GeneralAccount account = job.document.isCreditMemo() ? GeneralAccount::SalesCreditMemo : GeneralAccount::Sales;
  for (const GlobalLine& line : job.document.lines) {
    if (line.value != 0 || line.valueLcy != 0) {
      ledger.add(LedgerPurpose::Sales, setup.general(line, account), -job.signedAmount(line.valueLcy), -job.signedAmount(line.value));
    }
  }
}

}  // namespace

PostedDocument postGlobalDocument(const Access& access, const QString& documentId)
{
  auto document = readGlobalDocument(access.db, access.session.companyId, documentId);
  if (!document) {
    refusePosting(QStringLiteral("Няма такъв документ."));
  }
  PostingJob job{access, *document, postingRules(access.db, access.session.companyId), {}, {}, {}, {}, {}, {},
                 QDateTime::currentDateTime()};
  job.totals = documentTotals(job.document.lines, job.rules.sale);
  job.transactionId = job.ids.next();
  checkDocument(job);
  PostingSetup setup(job);
  LedgerTransaction ledger;
  writePostedDocument(job);
  writeShipment(job);
  noteReturnedQuantities(job);
  postContragent(job, setup, ledger);
  postSales(job, setup, ledger);
  postVat(job, setup, ledger);
  postItems(job, setup, ledger);
  ledger.write(job);
  markPosted(job);
  return {job.postedId, job.document.kind, job.postedNumber, job.shipmentId};
}

}  // namespace kalvor::server
