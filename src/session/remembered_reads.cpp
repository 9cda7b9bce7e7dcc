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

// A line without an item code has no price and no discount, whatever else it says.
bool asksAboutNoItem(const QString& operation, const VariantArray& arguments)
{
  constexpr int codePlace = 1;
  return operation.startsWith(u"Get") && operation.contains(u"Line") &&
         arguments.value(0).toList().value(codePlace).toString().isEmpty();
}

QByteArray questionKey(const QString& operation, const VariantArray& arguments)
{
  QByteArray key;
  QDataStream stream(&key, QIODevice::WriteOnly);
  stream << operation;
  if (!asksAboutNoItem(operation, arguments))
    stream << arguments;
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
  remember(key, operation, {result, arguments});
  return result;
}

void RememberedReads::remember(const QByteArray& key, const QString& operation, const Answer& answer)
{
  if (found_.size() + missed_.size() >= mostAnswers)
    forgetAll();
  const bool missed = operation == u"RequestValue" && answer.result.toLongLong() <= 0;
  (missed ? missed_ : found_).insert(key, answer);
}

void RememberedReads::askAhead(const QList<ReadQuestion>& questions)
{
  constexpr qsizetype mostAtOnce = 500;
  QList<QByteArray> keys;
  QList<ReadQuestion> open;
  QSet<QByteArray> asked;
  for (const ReadQuestion& question : questions) {
    const QByteArray key = questionKey(question.operation, question.arguments);
    if (!found_.contains(key) && !missed_.contains(key) && !asked.contains(key) && keys.size() < mostAtOnce) {
      asked.insert(key);
      keys.append(key);
      open.append(question);
    }
  }
  if (open.size() < 2)
    return;
  VariantArray sent;
  for (const ReadQuestion& question : open)
    sent.append(Variant(VariantArray{question.operation, Variant(question.arguments)}));
  VariantArray arguments{Variant(sent), Variant()};
  server_->Call(QStringLiteral("ReadMany"), arguments);
  const VariantArray answers = arguments.value(1).toList();
  for (qsizetype i = 0; i < std::min(answers.size(), open.size()); ++i) {
    const VariantArray answer = answers[i].toList();
    if (answer.size() == 2)
      remember(keys[i], open[i].operation, {answer[0], answer[1].toList()});
  }
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

void RememberedReadsScope::askAhead(const TDM& session, const QList<ReadQuestion>& questions)
{
  if (session.ConBroker == &rememberedReads())
    rememberedReads().askAhead(questions);
}

}  // namespace kalvor
