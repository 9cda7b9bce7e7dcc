// What the finished invoices left open, and what the goods cost.
#include "server/demo/demo_parts.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

enum EntryType { EntryInvoice = 0, EntryPayment = 3 };
constexpr int entrySideSales = 1;
constexpr int deferredApart = 16;  // every so many contractors pay by a long plan

struct FinishedInvoice {
  QString id, number, contragentId, objectId, methodId;
  Variant currency;
  QDate day, due;
  qint64 amount = 0;
  qint64 amountLcy = 0;
};

class ContragentEntryWriter {
 public:
  explicit ContragentEntryWriter(DemoScope& scope)
      : scope_(scope), random_(scope.options.seed + 12),
        entries_(scope.connection, QStringLiteral("G_ContragentEntry"),
                 {"Id", "Comp_Id", "Businessgroup_Id", "Contragent_Id", "Gen_PostingType", "DocumentType",
                  "Document_Id", "DocumentNo", "DocumentDate", "PostingDate", "DueDate", "PaymentMethod_Id",
                  "Currency_Id", "Amount", "Amount_LCY", "Remaining", "Remaining_LCY", "Opened"}),
        cash_(scope.id("N_PaymentMethod", QStringLiteral("CASH")))
  {
    for (qsizetype i = 7; i < scope.contragents.size(); i += deferredApart) {
      deferred_.insert(scope.contragents.at(i).id);
    }
  }

  void write(const FinishedInvoice& invoice)
  {
    const int share = paidPercent(invoice);
    const qint64 paid = part(invoice.amount, share);
    const qint64 paidLcy = part(invoice.amountLcy, share);
    const bool deferred = deferred_.contains(invoice.contragentId);
    insert(invoice, EntryInvoice, invoice.day, deferred ? scope_.options.lastDay.addYears(5) : invoice.due,
           {invoice.amount, invoice.amountLcy}, {invoice.amount - paid, invoice.amountLcy - paidLcy});
    if (paid != 0) {
      const QDate day = std::min(invoice.due, scope_.options.lastDay);
      insert(invoice, EntryPayment, day, day, {-paid, -paidLcy}, {0, 0});
    }
  }

 private:
  struct Amounts {
    qint64 document = 0;
    qint64 local = 0;
  };

  // The older, the likelier; cash at once.
  int paidPercent(const FinishedInvoice& invoice)
  {
    const qint64 age = invoice.day.daysTo(scope_.options.lastDay);
    const bool planned = deferred_.contains(invoice.contragentId) && age < 365;
    const int open = planned ? 70 : age < 30 ? 60 : age < 90 ? 20 : 2;
    const int chance = random_.below(100);
    if (invoice.methodId == cash_ || chance >= open) {
      return 100;
    }
    return chance % 4 == 0 ? 50 : 0;
  }
  static qint64 part(qint64 amount, int percent)
  {
    return percent == 100 ? amount : scaled(roundUp(2, static_cast<long double>(unscaled(amount)) * percent / 100));
  }
  void insert(const FinishedInvoice& invoice, EntryType type, const QDate& day, const QDate& due, const Amounts& amount,
              const Amounts& remaining)
  {
    const bool payment = type == EntryPayment;
    const QString number = payment ? QStringLiteral("PAY-") + invoice.number : invoice.number;
    entries_.insert({scope_.id("G_ContragentEntry", number), scope_.companyId, invoice.objectId, invoice.contragentId,
                     entrySideSales, int(type), payment ? Variant() : Variant(invoice.id), number, day, day, due,
                     invoice.methodId, invoice.currency, amount.document, amount.local, remaining.document,
                     remaining.local, int(remaining.document != 0)});
  }

  DemoScope& scope_;
  DemoRandom random_;
  RowInserter entries_;
  QString cash_;
  QSet<QString> deferred_;
};

void writeContragentEntries(DemoScope& scope)
{
  auto rows = scope.connection.prepare(QStringLiteral(
      "SELECT Id, DocumentNo, Contragent_Id, BusinessGroup_Id, PayMethod_Id, Currency_Id, DocumentDate, DueDate, "
      "TotalVAT, TotalVAT_LCY FROM D_SaleInvoiceHeader WHERE Comp_Id = ? AND DocStatus = 1 ORDER BY DocumentNo"));
  rows->bind(0, scope.companyId);
  ContragentEntryWriter writer(scope);
  while (rows->step()) {
    writer.write({rows->text(0), rows->text(1), rows->text(2), rows->text(3), rows->text(4), rows->value(5),
                  rows->value(6).toDate(), rows->value(7).toDate(), rows->integer(8), rows->integer(9)});
  }
}

// Each entry, and what has settled it.
void writeEntryDetails(DemoScope& scope)
{
  const QString insert = QStringLiteral(
      "INSERT INTO G_ContragentEntryDetail (Id, Comp_Id, Businessgroup_Id, Entry_Id, EntryType, Contragent_Id, DocumentType, "
      "Document_Id, DocumentNo, PostingDate, Currency_Id, Amount, Amount_LCY) SELECT %1, Comp_Id, Businessgroup_Id, Id, %2, "
      "Contragent_Id, DocumentType, Document_Id, DocumentNo, PostingDate, Currency_Id, %3, %4 FROM G_ContragentEntry "
      "WHERE Comp_Id = ?%5");
  scope.connection.execute(insert.arg(QStringLiteral("Id"), QStringLiteral("0"), QStringLiteral("Amount"),
                                      QStringLiteral("Amount_LCY"), QString()), {scope.companyId});
  scope.connection.execute(insert.arg(QStringLiteral("Id || '-1'"), QStringLiteral("1"), QStringLiteral("Remaining - Amount"),
                                      QStringLiteral("Remaining_LCY - Amount_LCY"),
                                      QStringLiteral(" AND Remaining <> Amount")), {scope.companyId});
}

// An opening balance and a delivery every half a year, dearer and cheaper than the item's cost.
void writeItemEntries(DemoScope& scope)
{
  DemoRandom random(scope.options.seed + 13);
  RowInserter entries(scope.connection, QStringLiteral("G_ItemValueEntry"),
                      {"Id", "Comp_Id", "Businessgroup_Id", "Item_Id", "PostingDate", "Quantity", "CostAmount"});
  auto items = scope.connection.prepare(
      QStringLiteral("SELECT Id, UnitCost FROM N_Item WHERE Comp_Id = ? AND Type = 1 ORDER BY Code"));
  items->bind(0, scope.companyId);
  while (items->step()) {
    const QString item = items->text(0);
    const long double cost = unscaled(items->integer(1));
    int number = 0;
    for (QDate day = scope.firstDay(); day <= scope.options.lastDay; day = day.addMonths(6)) {
      const int quantity = random.between(20, 300);
      const long double unit = cost * random.between(94, 104) / 100;
      entries.insert({scope.id("G_ItemValueEntry", item + QString::number(number++)), scope.companyId,
                      scope.objects.first().id, item, day, qlonglong(quantity) * amountScale,
                      qlonglong(scaled(roundUp(2, unit * quantity)))});
    }
  }
}

}  // namespace

void createDemoEntries(DemoScope& scope)
{
  writeContragentEntries(scope);
  writeEntryDetails(scope);
  writeItemEntries(scope);
}

}  // namespace kalvor::server
