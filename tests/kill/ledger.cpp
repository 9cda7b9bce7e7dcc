#include "ledger.h"

#include <QSet>

#include "server/store/database.h"

namespace kalvor::testing {

using namespace server;

namespace {

QHash<QString, qint64> lastNumbers(Connection& db)
{
  QHash<QString, qint64> numbers;
  const RecordSet series = db.query(QStringLiteral("SELECT Id, LastNo FROM N_Series WHERE Comp_Id = '1'"));
  for (qsizetype row = 0; row < series.rows; ++row) {
    numbers.insert(series.value(row, 0).toString(), series.value(row, 1).toLongLong());
  }
  return numbers;
}

void checkFile(const QString& file, QStringList& faults)
{
  const QString verdict = openDatabase(file, ConnectionUse::Write)->value(QStringLiteral("PRAGMA integrity_check")).toString();
  if (verdict != u"ok") {
    faults.append(QStringLiteral("%1: %2").arg(file.section(u'/', -1), verdict));
  }
}

}  // namespace

Ledger::Ledger(QString database)
    : database_(std::move(database)), lastNumbers_(lastNumbers(*openDatabase(database_, ConnectionUse::Read)))
{
}

QStringList Ledger::check(const Workstations& stations) const
{
  QStringList faults;
  try {
    const auto db = openDatabase(database_, ConnectionUse::Read);
    for (const auto& station : stations) {
      checkOwnInvoice(*db, *station, faults);
    }
    checkNewInvoices(*db, stations, faults);
    if (!isPostgresUri(database_)) {
      checkFile(database_, faults);
      checkFile(database_ + QStringLiteral("-sessions"), faults);
    }
  } catch (const StoreError& error) {
    faults.append(QString::fromUtf8(error.what()));
  }
  return faults;
}

void Ledger::checkOwnInvoice(Connection& db, const Workstation& station, QStringList& faults) const
{
  const VariantArray id{station.invoice()};
  const QString note = db.value(QStringLiteral("SELECT Note FROM D_SaleInvoiceHeader WHERE Id = ?"), id).toString();
  const QString line =
      db.value(QStringLiteral("SELECT Description FROM D_SaleInvoiceLine WHERE Master_Id = ? ORDER BY Line_No"), id).toString();
  const bool touched = note.startsWith(u"знак") || line.startsWith(u"знак");
  const qint64 acknowledged = station.acknowledgedChange();
  const bool onItsWay =
      station.pending() && !station.pending()->isNew && note == station.token(station.pending()->number);
  if (touched && note != line) {
    faults.append(QStringLiteral("half a save: %1 / %2").arg(note, line));
  } else if (acknowledged != 0 && note != station.token(acknowledged) && !onItsWay) {
    faults.append(QStringLiteral("lost: %1 was acknowledged, „%2“ is there").arg(station.token(acknowledged), note));
  }
}

void Ledger::checkNewInvoices(Connection& db, const Workstations& stations, QStringList& faults) const
{
  QHash<QString, bool> expected;  // by note: whether it must be there
  for (const auto& station : stations) {
    for (const qint64 number : station->made()) {
      expected.insert(station->note(number), true);
    }
    if (station->pending() && station->pending()->isNew) {
      expected.insert(station->note(station->pending()->number), false);
    }
  }
  QHash<QString, QSet<qint64>> given;
  const RecordSet invoices = db.query(QStringLiteral(
      "SELECT h.Note, h.DocumentNo, h.Series_Id, s.Prefix, (SELECT COUNT(*) FROM D_SaleInvoiceLine l WHERE l.Master_Id = h.Id) "
      "AS Lines FROM D_SaleInvoiceHeader h LEFT JOIN N_Series s ON s.Id = h.Series_Id AND s.Comp_Id = h.Comp_Id "
      "WHERE h.Note LIKE 'нова-%'"));
  numbered_ = int(invoices.rows);
  for (qsizetype row = 0; row < invoices.rows; ++row) {
    const QString note = invoices.value(row, 0).toString();
    const QString number = invoices.value(row, 1).toString();
    const qint64 digits = number.mid(invoices.value(row, 3).toString().size()).toLongLong();
    QSet<qint64>& series = given[invoices.value(row, 2).toString()];
    if (!expected.contains(note)) {
      faults.append(QStringLiteral("%1 is there twice or was never sent").arg(note));
    }
    expected.remove(note);
    if (invoices.value(row, 4).toInt() != 2 || digits == 0) {
      faults.append(QStringLiteral("half a new invoice: %1, number „%2“, %3 lines")
                        .arg(note, number, invoices.value(row, 4).toString()));
    }
    if (series.contains(digits)) {
      faults.append(QStringLiteral("number %1 was given twice").arg(number));
    }
    series.insert(digits);
  }
  for (auto left = expected.cbegin(); left != expected.cend(); ++left) {
    if (left.value()) {
      faults.append(QStringLiteral("lost: %1 was acknowledged").arg(left.key()));
    }
  }
  const QHash<QString, qint64> now = lastNumbers(db);
  for (auto series = now.cbegin(); series != now.cend(); ++series) {
    const qint64 first = lastNumbers_.value(series.key()) + 1;
    const QSet<qint64>& numbers = given[series.key()];
    bool whole = numbers.size() == series.value() - first + 1;
    for (qint64 number = first; whole && number <= series.value(); ++number) {
      whole = numbers.contains(number);
    }
    if (!whole) {
      faults.append(QStringLiteral("series %1 counts %2 to %3, %4 of them are there")
                        .arg(series.key()).arg(first).arg(series.value()).arg(numbers.size()));
    }
  }
}

}  // namespace kalvor::testing
