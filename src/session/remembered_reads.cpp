#include "session/remembered_reads.h"

#include <QDataStream>
#include <QIODevice>

#include "session/dm.h"

namespace kalvor {

namespace {

constexpr qsizetype mostAnswers = 200'000;

constexpr const char16_t* readOperations[] = {
    u"RequestValue",      u"GetSaleLinePrice",     u"GetSaleLineDiscount", u"GetPurchLinePrice",
    u"GetPurchLineDiscount", u"GetCurrencyRate", u"GetQueryID",          u"GetAbsoluteNoSerie_Id",
};

QByteArray questionKey(const QString& operation, const VariantArray& arguments)
{
  QByteArray key;
  QDataStream stream(&key, QIODevice::WriteOnly);
  stream << operation << arguments;
  return key;
}

// Datasets keep the broker that they were made with: this one stays for the program's life.
RememberedReads& rememberedReads()
{
  static auto* const reads = new RememberedReads;
  return *reads;
}

}  // namespace

void RememberedReads::start(RemoteCalls& server)
{
  server_ = &server;
  forgetAll();
}

void RememberedReads::forgetAll()
{
  found_.clear();
  missed_.clear();
}

void RememberedReads::forgetMisses() { missed_.clear(); }

bool RememberedReads::mayRemember(const QString& operation, const VariantArray& arguments)
{
  if (operation == u"RequestValue" && arguments.value(0).toInt() < 0) {
    return false;  // a whole statement
  }
  return std::any_of(std::begin(readOperations), std::end(readOperations),
                     [&](const char16_t* read) { return operation == QStringView(read); });
}

Variant RememberedReads::Call(const QString& operation, VariantArray& arguments, const QString& requestId)
{
  if (!mayRemember(operation, arguments))
    return server_->Call(operation, arguments, requestId);
  const QByteArray key = questionKey(operation, arguments);
  for (const QHash<QByteArray, Answer>* known : {&found_, &missed_}) {
    const auto answer = known->constFind(key);
    if (answer != known->constEnd()) {
      arguments = answer->arguments;
      return answer->result;
    }
  }
  const Variant result = server_->Call(operation, arguments, requestId);
  if (found_.size() + missed_.size() >= mostAnswers)
    forgetAll();
  const bool missed = operation == u"RequestValue" && result.toLongLong() <= 0;
  (missed ? missed_ : found_).insert(key, {result, arguments});
  return result;
}

DataPacketPtr RememberedReads::openProvider(const QString& provider, qsizetype count)
{
  return server_->openProvider(provider, count);
}

DataPacketPtr RememberedReads::fetchRecords(const QString& provider, const Variant& continuation, qsizetype count)
{
  return server_->fetchRecords(provider, continuation, count);
}

RememberedReadsScope::RememberedReadsScope(TDM& session) : session_(session), server_(session.ConBroker)
{
  rememberedReads().start(*server_);
  session_.ConBroker = &rememberedReads();
}

RememberedReadsScope::~RememberedReadsScope()
{
  session_.ConBroker = server_;
  rememberedReads().forgetAll();
}

void RememberedReadsScope::forgetMisses() { rememberedReads().forgetMisses(); }

}  // namespace kalvor
