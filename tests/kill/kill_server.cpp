// Kills the server (SIGKILL) at random moments while clients save, starts it again, and checks what is there:
// every acknowledged save, none half, none twice after the repetition under its request id, and document numbers
// without a gap.
//
// Each client changes its own invoice (the header's note and the first line's text get the same token) and now and
// then makes a new one with two lines and a number of a series.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QProcess>
#include <QTemporaryDir>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <random>
#include <thread>

#include "data/client_dataset.h"
#include "rpc/connection.h"

using namespace kalvor;

namespace {

constexpr int clients = 3;

struct ServerProcess {
  QString program;
  QString database;
  quint16 port = 0;
  QProcess process;

  bool start()
  {
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.setStandardErrorFile(database + QStringLiteral(".log"), QIODevice::Append);
    process.start(program, {QStringLiteral("serve"), QStringLiteral("--db"), database, QStringLiteral("--port"),
                            QString::number(port)});
    // A first start makes the demo company.
    while (process.waitForReadyRead(60000)) {
      while (process.canReadLine()) {
        const QString line = QString::fromUtf8(process.readLine()).trimmed();
        if (line.startsWith(QLatin1String("ready on "))) {
          port = quint16(line.section(u':', -1).toUInt());
          return true;
        }
      }
    }
    return false;
  }
  void kill()
  {
    process.kill();
    process.waitForFinished();
  }
};

QString token(int client, qint64 number) { return QStringLiteral("знак-%1-%2").arg(client).arg(number); }

FilterArray equals(const QString& field, const QString& value) { return {{field, QStringLiteral("="), value, {}, {}}}; }

// One workstation: a connection, an invoice of its own, and what it knows to be saved.
class Workstation {
 public:
  Workstation(int index, quint16 port) : index_(index) { socket_.Port = port; }

  void connect()
  {
    broker_ = std::make_unique<ConnectionBroker>(&socket_);
    broker_->Connect();
    if (!session_.isEmpty()) {  // what a client's broker does by itself: the session outlives the server
      VariantArray resume{session_};
      if (broker_->Call(QStringLiteral("ResumeSession"), resume).toInt() != 0)
        throw DataError(QStringLiteral("ResumeSession"));
      broker_->setSession(session_);
      return;
    }
    const QByteArray digest = QCryptographicHash::hash("demo", QCryptographicHash::Md5).toHex();
    VariantArray arguments{QStringLiteral("SUPERVSR"), QString::fromLatin1(digest), QString(), QStringLiteral("1"), QString()};
    const int result = broker_->Call(QStringLiteral("LogIn"), arguments).toInt();
    if (result != 0)
      throw DataError(QStringLiteral("log-in: %1").arg(result));
    session_ = arguments[4].toString();
    broker_->setSession(session_);
    provider_[0] = newProvider();
    provider_[1] = newProvider();
  }

  void disconnect() { broker_.reset(); }

  void chooseInvoice(int number)
  {
    TClientDataSet list;
    request(list, 0, {});
    list.PacketRecords = number + 1;
    list.Open();
    list.SetRecNo(number + 1);
    invoice_ = list.FieldByName(u"Id")->AsString();
  }

  // One save; throws when the answer does not come. Nothing is known then until repeat() succeeds.
  void save()
  {
    ++number_;
    pending_ = number_ % 4 == 0 ? buildNew() : buildChange();
    send();
  }
  // The same save again, under the same request id.
  void repeat()
  {
    if (!pending_.isEmpty())
      send();
  }

  // What must hold after a restart; the text says what does not.
  QString check()
  {
    TClientDataSet header, lines;
    open(header, lines);
    const QString note = header.FieldByName(u"Note")->AsString();
    const QString line = lines.FieldByName(u"Description")->AsString();
    if (acknowledgedChange_ == 0 && note.isEmpty() && !line.startsWith(QLatin1String("знак")))
      return {};
    if (note != line)
      return QStringLiteral("half a save: %1 / %2").arg(note, line);
    const bool inFlight = !pending_.isEmpty() && pendingIsChange_ && note == token(index_, number_);
    if (acknowledgedChange_ != 0 && note != token(index_, acknowledgedChange_) && !inFlight)
      return QStringLiteral("lost: %1 was acknowledged, %2 is there").arg(token(index_, acknowledgedChange_), note);
    return {};
  }

  // The invoices that this client made: exactly those acknowledged, with two lines each.
  QString checkNew(QSet<qint64>& numbers)
  {
    TClientDataSet list;
    request(list, 0, {{QStringLiteral("Note"), QStringLiteral("LIKE"), QStringLiteral("нова-%1-%").arg(index_), {}, {}}});
    list.PacketRecords = -1;
    list.Open();
    if (list.RecordCount() != made_.size())
      return QStringLiteral("%1 invoices made, %2 are there").arg(made_.size()).arg(list.RecordCount());
    for (list.First(); !list.Eof(); list.Next()) {
      TClientDataSet lines;
      request(lines, 1, equals(QStringLiteral("D_SaleInvoiceLine.Master_ID"), list.FieldByName(u"Id")->AsString()));
      lines.PacketRecords = -1;
      lines.Open();
      const QString number = list.FieldByName(u"DocumentNo")->AsString();
      if (lines.RecordCount() != 2 || number.isEmpty())
        return QStringLiteral("half a new invoice: number %1, %2 lines").arg(number).arg(lines.RecordCount());
      QString digits = number;
      while (!digits.isEmpty() && !digits.front().isDigit())
        digits.remove(0, 1);
      if (numbers.contains(digits.toLongLong()))
        return QStringLiteral("number %1 was given twice").arg(number);
      numbers.insert(digits.toLongLong());
    }
    return {};
  }

  int acknowledged() const { return acknowledged_; }

 private:
  QString newProvider()
  {
    VariantArray arguments{QString(), true};
    broker_->Call(QStringLiteral("CreateDynamicProvider"), arguments);
    return arguments[0].toString();
  }

  void request(TClientDataSet& dataSet, int dsIndex, const FilterArray& filter)
  {
    VariantArray arguments{121, dsIndex, provider_[dsIndex], filterToVariant(filter), QString(), Variant(), Variant(), 0};
    if (broker_->Call(QStringLiteral("RequestData"), arguments).toInt() != 0)
      throw DataError(QStringLiteral("RequestData"));
    dataSet.SetRemoteServer(broker_.get());
    dataSet.ProviderName = provider_[dsIndex];
  }

  void open(TClientDataSet& header, TClientDataSet& lines)
  {
    request(header, 0, equals(QStringLiteral("ID"), invoice_));
    header.Open();
    request(lines, 1, equals(QStringLiteral("D_SaleInvoiceLine.Master_ID"), invoice_));
    lines.Open();
    if (header.IsEmpty() || lines.IsEmpty())
      throw DataError(QStringLiteral("the invoice is gone"));
  }

  Variant packet(const TClientDataSet& header, const TClientDataSet& lines) const
  {
    return VariantArray{VariantArray{provider_[0], QVariant::fromValue(header.GetDelta())},
                        VariantArray{provider_[1], QVariant::fromValue(lines.GetDelta())}};
  }

  VariantArray buildChange()
  {
    TClientDataSet header, lines;
    open(header, lines);
    for (auto [dataSet, field] : {std::pair(&header, u"Note"), std::pair(&lines, u"Description")}) {
      dataSet->Edit();
      dataSet->FieldByName(field)->SetAsString(token(index_, number_));
      dataSet->Post();
    }
    pendingIsChange_ = true;
    return {packet(header, lines), Variant()};
  }

  VariantArray buildNew()
  {
    TClientDataSet header, lines;
    open(header, lines);
    const QString series = header.FieldByName(u"Series_Id")->AsString();
    const QVariant date = header.FieldByName(u"DocumentDate")->Value();
    const QString id = QStringLiteral("%1").arg(number_ * 10 + index_, 32, 16, QLatin1Char('0')).toUpper();
    header.Append();
    header.FieldByName(u"Id")->SetAsString(id);
    header.FieldByName(u"Comp_Id")->SetAsString(QStringLiteral("1"));
    header.FieldByName(u"Series_Id")->SetAsString(series);
    header.FieldByName(u"DocumentDate")->SetValue(date);
    header.FieldByName(u"Note")->SetAsString(QStringLiteral("нова-%1-%2").arg(index_).arg(number_));
    for (TField* field : header.Fields())
      field->Required = false;
    header.Post();
    for (int line = 1; line <= 2; ++line) {
      lines.Append();
      lines.FieldByName(u"Id")->SetAsString(
          QStringLiteral("%1").arg((number_ * 10 + index_) * 10 + line, 32, 16, QLatin1Char('F')).toUpper());
      lines.FieldByName(u"Comp_Id")->SetAsString(QStringLiteral("1"));
      lines.FieldByName(u"Master_Id")->SetAsString(id);
      lines.FieldByName(u"Line_No")->SetAsInteger(line);
      lines.FieldByName(u"Type")->SetAsInteger(1);
      for (TField* field : lines.Fields())
        field->Required = false;
      lines.Post();
    }
    pendingIsChange_ = false;
    const VariantArray numbering{
        VariantArray{QStringLiteral("D_SaleInvoiceHeader"), id, QStringLiteral("DocumentNo"), series, QStringLiteral("1")}};
    return {packet(header, lines), numbering};
  }

  void send()
  {
    VariantArray arguments = pending_;
    const int result =
        broker_->Call(QStringLiteral("UpdateClientData"), arguments, QStringLiteral("kill-%1-%2").arg(index_).arg(number_))
            .toInt();
    if (result != 0)
      throw DataError(QStringLiteral("UpdateClientData: %1").arg(result));
    ++acknowledged_;
    if (pendingIsChange_)
      acknowledgedChange_ = number_;
    else
      made_.insert(number_);
    pending_.clear();
  }

  int index_;
  SocketConnection socket_;
  std::unique_ptr<ConnectionBroker> broker_;
  QString session_;
  QString provider_[2];
  QString invoice_;
  qint64 number_ = 0;
  qint64 acknowledgedChange_ = 0;
  QSet<qint64> made_;
  VariantArray pending_;
  bool pendingIsChange_ = true;
  int acknowledged_ = 0;
};

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addOptions({{QStringLiteral("server"), QString(), QStringLiteral("FILE")},
                     {QStringLiteral("kills"), QString(), QStringLiteral("N"), QStringLiteral("5")},
                     {QStringLiteral("seed"), QString(), QStringLiteral("N"), QStringLiteral("1")}});
  parser.process(application);
  const int kills = parser.value(QStringLiteral("kills")).toInt();
  std::mt19937 random(parser.value(QStringLiteral("seed")).toUInt());

  QTemporaryDir folder;
  ServerProcess server;
  server.program = parser.value(QStringLiteral("server"));
  server.database = folder.filePath(QStringLiteral("kill.db"));
  if (!server.start()) {
    std::printf("the server does not start\n");
    return 1;
  }
  std::vector<std::unique_ptr<Workstation>> stations;
  // Chosen before anybody saves: new invoices move the list.
  try {
    for (int i = 0; i < clients; ++i) {
      stations.push_back(std::make_unique<Workstation>(i, server.port));
      stations.back()->connect();
      stations.back()->chooseInvoice(i);
      stations.back()->disconnect();
    }
  } catch (const DataError& error) {
    std::printf("no start: %s\n", qPrintable(error.message()));
    return 1;
  }

  QStringList faults;
  int interrupted = 0;
  for (int round = 0; round <= kills && faults.isEmpty(); ++round) {
    std::mutex faultsLock;
    std::atomic<bool> last = round == kills;
    std::vector<std::thread> threads;
    for (int i = 0; i < clients; ++i)
      threads.emplace_back([&, i] {
        Workstation& station = *stations[size_t(i)];
        const auto fault = [&](const QString& text) {
          const std::lock_guard lock(faultsLock);
          faults.append(QStringLiteral("round %1, client %2: %3").arg(round).arg(i).arg(text));
        };
        try {
          station.connect();
          if (const QString what = station.check(); !what.isEmpty())
            return fault(what);
          station.repeat();
          if (const QString what = station.check(); !what.isEmpty())
            return fault(what);
          while (!last)
            station.save();
        } catch (const RpcError& error) {
          const std::lock_guard lock(faultsLock);
          if (error.code() == RpcError::Unreachable || error.code() == RpcError::ConnectionLost)
            ++interrupted;
          else
            faults.append(QStringLiteral("round %1, client %2: %3").arg(round).arg(i).arg(error.message()));
        } catch (const DataError& error) {
          fault(error.message());
        }
      });
    if (!last) {
      std::this_thread::sleep_for(std::chrono::milliseconds(400 + random() % 600));
      server.kill();
    }
    for (std::thread& thread : threads)
      thread.join();
    if (!last && !server.start())
      faults.append(QStringLiteral("round %1: the server does not start again").arg(round));
  }

  QSet<qint64> numbers;
  int acknowledged = 0;
  for (const auto& station : stations) {
    acknowledged += station->acknowledged();
    if (!faults.isEmpty())
      break;
    try {
      station->connect();
      if (const QString what = station->checkNew(numbers); !what.isEmpty())
        faults.append(what);
    } catch (const DataError& error) {
      faults.append(error.message());
    }
  }
  // Every object has a series of its own; the first digit of ten is its prefix.
  QMap<qint64, QList<qint64>> series;
  for (const qint64 number : std::as_const(numbers))
    series[number / 1000000000].append(number);
  for (const QList<qint64>& given : std::as_const(series)) {
    const auto [low, high] = std::minmax_element(given.begin(), given.end());
    if (*high - *low + 1 != given.size())
      faults.append(QStringLiteral("a gap in the numbers %1 to %2, %3 given").arg(*low).arg(*high).arg(given.size()));
  }
  server.kill();
  std::printf("%d kills, %d calls cut off, %d saves acknowledged, %d new invoices numbered\n", kills, interrupted,
              acknowledged, int(numbers.size()));
  for (const QString& fault : faults)
    std::printf("FAULT %s\n", qPrintable(fault));
  return faults.isEmpty() && acknowledged > 0 ? 0 : 1;
}
