// Somebody who speaks the wire by hand: calls by name, records of a form, saves.
#pragma once

#include <QCryptographicHash>
#include <QtTest>

#include "data/client_dataset.h"
#include "rpc/connection.h"
#include "rpc/rpc_error.h"

namespace kalvor::testing {

class Caller {
 public:
  explicit Caller(quint16 port) : broker(&socket_)
  {
    socket_.Port = port;
    broker.Connect();
  }
  int logIn(const QString& user, const QString& group, const QString& company, const QByteArray& password = "demo")
  {
    VariantArray arguments{user, QString::fromLatin1(QCryptographicHash::hash(password, QCryptographicHash::Md5).toHex()),
                           group, company, QString()};
    const int result = broker.Call(QStringLiteral("LogIn"), arguments).toInt();
    broker.setSession(arguments[4].toString());
    return result;
  }
  QString newProvider()
  {
    VariantArray arguments{QString(), true};
    broker.Call(QStringLiteral("CreateDynamicProvider"), arguments);
    return arguments[0].toString();
  }
  // The records of a form; throws what the server refuses with.
  void open(TClientDataSet& dataSet, int form, int dsIndex, const FilterArray& filter, int count = -1)
  {
    const QString provider = newProvider();
    VariantArray arguments{form, dsIndex, provider, filterToVariant(filter), QString(), Variant(), Variant(), 0};
    QCOMPARE(broker.Call(QStringLiteral("RequestData"), arguments).toInt(), 0);
    dataSet.SetRemoteServer(&broker);
    dataSet.ProviderName = provider;
    dataSet.PacketRecords = count;
    dataSet.Open();
    for (TField* field : dataSet.Fields()) {
      field->Required = false;
    }
  }
  // The code of the refusal, 0 when there was none.
  template <class Body>
  static int refusal(Body body)
  {
    try {
      body();
      return 0;
    } catch (const RpcError& error) {
      return error.code();
    }
  }
  int save(TClientDataSet& dataSet)
  {
    return refusal([&] {
      VariantArray arguments{VariantArray{VariantArray{dataSet.ProviderName, QVariant::fromValue(dataSet.GetDelta())}},
                             Variant()};
      QCOMPARE(broker.Call(QStringLiteral("UpdateClientData"), arguments).toInt(), 0);
    });
  }

 private:
  SocketConnection socket_;

 public:
  ConnectionBroker broker;
};

}  // namespace kalvor::testing
