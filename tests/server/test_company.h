// A small company of its own in memory: documents with lines, contractors, users with different rights.
#pragma once

#include <QtTest>

#include "rpc/rpc_error.h"
#include "server/operations/operation.h"
#include "server/operations/passwords.h"

namespace kalvor::testing {

// Companies 5 and 6. Users of company 5: SUPERVSR; AB every right on the forms 9000 (list) and 9001 (edit);
// CD the same for documents of kind 1 only; EF reads only; GH is inactive; IJ has no rights row. Company 6: XY as AB.
// Business group 7 of company 5, 8 of company 6. Every password's digest is digestOf("demo").
class TestCompany {
 public:
  TestCompany();
  // Another server on the same databases.
  explicit TestCompany(const server::ServerCore::Databases& databases);

  const server::ServerCore::Databases& databases() const { return databases_; }
  server::ServerCore& core() { return core_; }
  server::Connection& writer() { return *writer_; }
  server::Connection& reader() { return *reader_; }
  // A document D1, D2 ... of company 5 with so many lines D1-1, D1-2 ...
  void addDocument(const QString& id, int kind, const QString& name = QStringLiteral("Документ"), int lines = 0);

 private:
  server::ServerCore::Databases databases_;
  server::ServerCore core_;
  std::unique_ptr<server::Connection> writer_;
  std::unique_ptr<server::Connection> reader_;
};

QString digestOf(const QString& password);

// A session on it: calls run as the server runs them.
class TestCaller {
 public:
  explicit TestCaller(TestCompany& company, const QString& user = {}, const QString& companyId = QStringLiteral("5"),
                      const QString& groupId = QStringLiteral("7"));
  Variant call(const char* operation, VariantArray& arguments, const QString& requestId = {});
  Variant call(const char* operation, VariantArray&& arguments = {}) { return call(operation, arguments); }

  QString newProvider();
  // A provider readied for a form's dataset.
  QString request(int formId, int dsIndex = 0, const FilterArray& filter = {}, const QString& order = {});
  DataPacketPtr open(const QString& provider, int count = -1);
  DataPacketPtr fetch(const QString& provider, const Variant& continuation, int count);
  // One column of all rows, joined by blanks.
  QString column(const QString& provider, const QString& field);
  Variant save(const QList<std::pair<QString, DeltaPtr>>& deltas, const Variant& numbers = {}, const QString& requestId = {});

  TestCompany& company;
  server::Session session;
};

// Changes of the records of a provider, as a client dataset would log them.
class DeltaBuilder {
 public:
  explicit DeltaBuilder(DataPacketPtr packet) : packet_(std::move(packet)) { delta_.records = RecordSet(packet_->records.fields); }
  DeltaBuilder& insert(const QHash<QString, Variant>& values);
  DeltaBuilder& modify(qsizetype row, const QHash<QString, Variant>& changes);
  DeltaBuilder& remove(qsizetype row);
  DeltaPtr delta() const { return std::make_shared<Delta>(delta_); }

 private:
  void append(VariantArray row, UpdateStatus status);
  VariantArray valuesOf(qsizetype row) const;

  DataPacketPtr packet_;
  Delta delta_;
};

// The code of the RpcError that a function throws, 0 when it throws none; its text in *text.
template <typename Function>
int errorCode(Function function, QString* text = nullptr)
{
  try {
    function();
  } catch (const RpcError& error) {
    if (text)
      *text = error.message();
    return error.code();
  }
  return 0;
}

}  // namespace kalvor::testing
