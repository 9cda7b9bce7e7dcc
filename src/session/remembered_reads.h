// Server calls that only read, answered from memory while many records with the same items and partners go through the
// rules: an import asks for a price or a code once.
#pragma once

#include <QHash>

#include "rpc/remote_calls.h"

namespace kalvor {

class TDM;

struct ReadQuestion {
  QString operation;
  VariantArray arguments;
};

// The session's calls go through one of these while a RememberedReadsScope lives. Everything that is not among the
// reads goes on to the server as it is.
class RememberedReads : public RemoteCalls {
 public:
  void start(RemoteCalls& server);
  void forgetAll();
  // What was not found may be there after a save.
  void forgetMisses();
  // Asks the server in one call for what is not known yet. What it has no answer for is asked again when it is needed.
  void askAhead(const QList<ReadQuestion>& questions);

  void Connect() override { server_->Connect(); }
  void Disconnect() override { server_->Disconnect(); }
  bool Connected() const override { return server_->Connected(); }
  using RemoteCalls::Call;
  Variant Call(const QString& operation, VariantArray& arguments, const QString& requestId) override;
  void setSession(const QString& sessionText) override { server_->setSession(sessionText); }
  DataPacketPtr openProvider(const QString& provider, qsizetype count) override;
  DataPacketPtr fetchRecords(const QString& provider, const Variant& continuation, qsizetype count) override;

 private:
  struct Answer {
    Variant result;
    VariantArray arguments;
  };
  void remember(const QByteArray& key, const QString& operation, const Answer& answer);
  static bool mayRemember(const QString& operation, const VariantArray& arguments);

  RemoteCalls* server_ = nullptr;
  QHash<QByteArray, Answer> found_, missed_;
};

class KALVOR_RULES RememberedReadsScope {
 public:
  explicit RememberedReadsScope(TDM& session);
  ~RememberedReadsScope();
  RememberedReadsScope(const RememberedReadsScope&) = delete;
  RememberedReadsScope& operator=(const RememberedReadsScope&) = delete;

  void forgetMisses();
  // What will be asked one by one soon. Nothing happens while no scope lives.
  static void askAhead(const TDM& session, const QList<ReadQuestion>& questions);

 private:
  TDM& session_;
  RemoteCalls* server_;
};

}  // namespace kalvor
