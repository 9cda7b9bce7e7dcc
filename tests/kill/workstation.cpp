#include "workstation.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <thread>

#include "rpc/rpc_error.h"

namespace kalvor::testing {

namespace {

constexpr int listForm = 120;
constexpr int invoiceForm = 121;

FilterArray equals(const QString& field, const QString& value) { return {{field, QStringLiteral("="), value, {}, {}}}; }

// Failures that a user would answer by trying again: the server or its database is away.
bool passes(const RpcError& error)
{
  return error.code() == RpcError::Unreachable || error.code() == RpcError::ConnectionLost ||
         error.code() == RpcError::Internal || error.code() == RpcError::Unsettled || error.code() == RpcError::NotLoggedIn;
}

}  // namespace

void Workstation::connect()
{
  broker_ = std::make_unique<ConnectionBroker>(&socket_);
  broker_->Connect();
  if (!session_.isEmpty()) {
    VariantArray resume{session_};
    if (broker_->Call(QStringLiteral("ResumeSession"), resume).toInt() == 0) {
      broker_->setSession(session_);
      return;
    }
  }
  logIn();
}

void Workstation::logIn()
{
  session_.clear();
  const QByteArray digest = QCryptographicHash::hash("demo", QCryptographicHash::Md5).toHex();
  VariantArray arguments{QStringLiteral("SUPERVSR"), QString::fromLatin1(digest), QString(), QStringLiteral("1"), QString()};
  if (const int result = broker_->Call(QStringLiteral("LogIn"), arguments).toInt(); result != 0) {
    throw DataError(QStringLiteral("log-in: %1").arg(result));
  }
  broker_->setSession(arguments[4].toString());
  provider_[0] = newProvider();
  provider_[1] = newProvider();
  TClientDataSet none;
  const FilterArray nothing = equals(QStringLiteral("1"), QStringLiteral("2"));
  request(none, 0, nothing);
  request(none, 1, nothing);
  session_ = arguments[4].toString();
}

QString Workstation::newProvider()
{
  VariantArray arguments{QString(), true};
  broker_->Call(QStringLiteral("CreateDynamicProvider"), arguments);
  return arguments[0].toString();
}

void Workstation::request(TClientDataSet& dataSet, int dsIndex, const FilterArray& filter)
{
  VariantArray arguments{invoiceForm, dsIndex, provider_[dsIndex], filterToVariant(filter), QString(), Variant(), Variant(), 0};
  if (broker_->Call(QStringLiteral("RequestData"), arguments).toInt() != 0) {
    throw DataError(QStringLiteral("RequestData"));
  }
  dataSet.SetRemoteServer(broker_.get());
  dataSet.ProviderName = provider_[dsIndex];
}

void Workstation::chooseInvoice(int row)
{
  TClientDataSet list;
  request(list, 0, {});
  list.PacketRecords = row + 1;
  list.Open();
  if (list.RecordCount() != row + 1) {
    throw DataError(QStringLiteral("too few invoices"));
  }
  list.SetRecNo(row + 1);
  invoice_ = list.FieldByName(u"Id")->AsString();
}

void Workstation::open(TClientDataSet& header, TClientDataSet& lines)
{
  request(header, 0, equals(QStringLiteral("ID"), invoice_));
  header.Open();
  request(lines, 1, equals(QStringLiteral("D_SaleInvoiceLine.Master_ID"), invoice_));
  lines.Open();
  if (header.IsEmpty() || lines.IsEmpty()) {
    throw DataError(QStringLiteral("the invoice is gone"));
  }
}

Workstation::Save Workstation::buildChange()
{
  TClientDataSet header, lines;
  open(header, lines);
  Save save{++number_, false, invoice_, {}, {}, {}};
  for (auto [dataSet, field] : {std::pair(&header, u"Note"), std::pair(&lines, u"Description")}) {
    dataSet->Edit();
    dataSet->FieldByName(field)->SetAsString(token(save.number));
    dataSet->Post();
  }
  save.header = header.GetDelta();
  save.lines = lines.GetDelta();
  return save;
}

Workstation::Save Workstation::buildNew()
{
  TClientDataSet header, lines;
  open(header, lines);
  const qint64 own = ++number_ * 100 + index_;
  Save save{number_, true, QStringLiteral("%1").arg(own, 32, 16, QLatin1Char('0')).toUpper(), {}, {}, {}};
  const QString series = header.FieldByName(u"Series_Id")->AsString();
  const QVariant date = header.FieldByName(u"DocumentDate")->Value();
  for (TClientDataSet* dataSet : {&header, &lines}) {
    for (TField* field : dataSet->Fields()) {
      field->Required = false;
    }
  }
  header.Append();
  header.FieldByName(u"Id")->SetAsString(save.id);
  header.FieldByName(u"Comp_Id")->SetAsString(QStringLiteral("1"));
  header.FieldByName(u"Series_Id")->SetAsString(series);
  header.FieldByName(u"DocumentDate")->SetValue(date);
  header.FieldByName(u"Note")->SetAsString(note(save.number));
  header.Post();
  for (int line = 1; line <= 2; ++line) {
    lines.Append();
    lines.FieldByName(u"Id")->SetAsString(QStringLiteral("L%1").arg(own * 10 + line, 31, 16, QLatin1Char('0')).toUpper());
    lines.FieldByName(u"Comp_Id")->SetAsString(QStringLiteral("1"));
    lines.FieldByName(u"Master_Id")->SetAsString(save.id);
    lines.FieldByName(u"Line_No")->SetAsInteger(line);
    lines.FieldByName(u"Type")->SetAsInteger(1);
    lines.Post();
  }
  save.header = header.GetDelta();
  save.lines = lines.GetDelta();
  save.numbering = {VariantArray{QStringLiteral("D_SaleInvoiceHeader"), save.id, QStringLiteral("DocumentNo"), series,
                                 QStringLiteral("1")}};
  return save;
}

// With the providers of now: a new log-in has made others.
VariantArray Workstation::packet(const Save& save) const
{
  return {VariantArray{VariantArray{provider_[0], QVariant::fromValue(save.header)},
                       VariantArray{provider_[1], QVariant::fromValue(save.lines)}},
          save.numbering.isEmpty() ? Variant() : Variant(save.numbering)};
}

Variant Workstation::timed(const char* operation, VariantArray arguments, const QString& requestId)
{
  QElapsedTimer timer;
  timer.start();
  const Variant result = broker_->Call(QString::fromLatin1(operation), arguments, requestId);
  slowestMs_ = qMax(slowestMs_, timer.nsecsElapsed() / 1e6);
  return result;
}

void Workstation::save(Save what)
{
  pending_ = std::move(what);
  send();
}

void Workstation::openList(int records)
{
  VariantArray arguments{listForm, 0, provider_[0], filterToVariant({}), QString(), Variant(), Variant(), 0};
  if (broker_->Call(QStringLiteral("RequestData"), arguments).toInt() != 0) {
    throw DataError(QStringLiteral("RequestData"));
  }
  TClientDataSet list;
  list.SetRemoteServer(broker_.get());
  list.ProviderName = provider_[0];
  list.PacketRecords = records;
  list.Open();
  if (list.RecordCount() != records) {
    throw DataError(QStringLiteral("%1 records").arg(list.RecordCount()));
  }
}

void Workstation::repeat()
{
  if (pending_) {
    send();
  }
}

void Workstation::send()
{
  const QString requestId = QStringLiteral("kill-%1-%2").arg(index_).arg(pending_->number);
  if (const int result = timed("UpdateClientData", packet(*pending_), requestId).toInt(); result != 0) {
    throw DataError(QStringLiteral("UpdateClientData: %1").arg(result));
  }
  ++acknowledged_;
  if (pending_->isNew) {
    made_.insert(pending_->number);
  } else {
    acknowledgedChange_ = pending_->number;
  }
  pending_.reset();
  unsettled_ = false;
}

void Workstation::saveInVain()
{
  Save save = buildNew();
  if (++inVain_ % 2 == 0) {
    timed("trStart");
    timed("UpdateClientData", packet(save));
    timed("trRollback");
    return;
  }
  VariantArray impossible = save.numbering[0].toList();
  impossible[2] = QStringLiteral("NoSuchField");
  save.numbering.append(Variant(impossible));
  try {
    timed("UpdateClientData", packet(save));
  } catch (const RpcError& error) {
    if (error.code() == RpcError::Refused) {
      return;
    }
    throw;
  }
  throw DataError(QStringLiteral("a save with an impossible number was accepted"));
}

void Workstation::saveUntil(const std::atomic<bool>& end)
{
  QElapsedTimer sinceSuccess;
  sinceSuccess.start();
  while (true) {
    try {
      if (!broker_) {
        connect();
      }
      repeat();
      if (end) {
        return;
      }
      save();
      sinceSuccess.start();
    } catch (const RpcError& error) {
      const bool gone = error.code() == RpcError::Unreachable || error.code() == RpcError::ConnectionLost;
      if (error.code() == RpcError::Refused && sessionsMayBeLost) {
        session_.clear();
      } else if (!passes(error) || (!gone && sinceSuccess.elapsed() > 60000)) {
        throw;
      }
      ++cutOff_;
      // An error of the server's says that it was not done this time: the ledger will see whether that is so.
      const bool notDone = error.code() == RpcError::Refused || (error.code() == RpcError::Internal && !unsettled_);
      unsettled_ = pending_ && !notDone;
      if (notDone) {
        pending_.reset();
      }
      broker_.reset();
      if (gone && end) {
        return;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }
}

}  // namespace kalvor::testing
