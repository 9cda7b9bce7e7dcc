// Health and figures over HTTP/1.0 on the loopback: GET /health and GET /metrics, nothing else. Small on purpose: few
// connections, short requests, one answer each.
#pragma once

#include <QTcpServer>
#include <QThreadPool>
#include <functional>

#include "layer_export.h"

class QTcpSocket;

namespace kalvor::server {

// What the database says of itself.
struct DatabaseState {
  bool answers = false;
  qint64 sessions = 0;
  qint64 documentLocks = 0;
};

class KALVOR_SERVER MetricsServer : public QObject {
  Q_OBJECT
 public:
  // Asks the database in a thread of its own, one question at a time; figures are asked for in this object's thread
  // and are lines of the text format of Prometheus.
  MetricsServer(std::function<DatabaseState()> askDatabase, std::function<QByteArray()> figures, QObject* parent = nullptr);
  // Waits for the question under way.
  ~MetricsServer() override;

  // On 127.0.0.1; port 0: any free one. Empty when it listens, else why it does not.
  QString listen(quint16 port);
  quint16 port() const { return server_.serverPort(); }

  // How long the database may take before it counts as not answering, and a request before it is cut off.
  static constexpr int patienceMs = 1000;
  static constexpr int requestMs = 5000;
  static constexpr int maxRequestBytes = 8192;
  static constexpr int maxConnections = 16;

 private:
  using StateHandler = std::function<void(const DatabaseState&)>;
  void accept();
  void readRequest(QTcpSocket* socket);
  void answerRequest(QTcpSocket* socket, const QByteArray& request);
  // Tells the state when the database has answered, or that it does not after the patience.
  void withState(QObject* receiver, const StateHandler& handler);

  QTcpServer server_{this};
  QThreadPool pool_;
  std::function<DatabaseState()> askDatabase_;
  std::function<QByteArray()> figures_;
  int connections_ = 0;
  bool asking_ = false;

 signals:
  void stateKnown(const kalvor::server::DatabaseState& state);
};

}  // namespace kalvor::server
