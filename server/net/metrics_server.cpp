#include "server/net/metrics_server.h"

#include <QTcpSocket>
#include <QTimer>

namespace kalvor::server {

namespace {

void answer(QTcpSocket* socket, const char* status, const QByteArray& type, const QByteArray& body, bool withBody = true)
{
  socket->write(QByteArray("HTTP/1.0 ") + status + "\r\nContent-Type: " + type + "\r\nContent-Length: " +
                QByteArray::number(body.size()) +
                "\r\nCache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\nConnection: close\r\n\r\n");
  if (withBody) {
    socket->write(body);
  }
  socket->disconnectFromHost();
}

void refuse(QTcpSocket* socket, const char* status) { answer(socket, status, "text/plain; charset=utf-8", QByteArray(status) + '\n'); }

QByteArray gauge(const char* name, const char* help, qint64 value)
{
  return QByteArray("# HELP ") + name + ' ' + help + "\n# TYPE " + name + " gauge\n" + name + ' ' + QByteArray::number(value) + '\n';
}

QByteArray stateFigures(const DatabaseState& state)
{
  QByteArray text = gauge("kalvor_database_up", "Whether the database answers within a second.", state.answers);
  if (state.answers) {
    text += gauge("kalvor_sessions", "Sessions that are open.", state.sessions) +
            gauge("kalvor_document_locks", "Documents that are being edited.", state.documentLocks);
  }
  return text;
}

}  // namespace

MetricsServer::MetricsServer(std::function<DatabaseState()> askDatabase, std::function<QByteArray()> figures, QObject* parent)
    : QObject(parent), askDatabase_(std::move(askDatabase)), figures_(std::move(figures))
{
  pool_.setMaxThreadCount(1);
  server_.setMaxPendingConnections(maxConnections);
  connect(&server_, &QTcpServer::newConnection, this, &MetricsServer::accept);
}

MetricsServer::~MetricsServer()
{
  server_.close();
  pool_.waitForDone();
  // Their signals would meet an object that is half gone.
  for (QTcpSocket* socket : findChildren<QTcpSocket*>()) {
    socket->disconnect(this);
    delete socket;
  }
}

QString MetricsServer::listen(quint16 port)
{
  return server_.listen(QHostAddress::LocalHost, port) ? QString() : server_.errorString();
}

void MetricsServer::accept()
{
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    socket->setParent(this);
    if (connections_ >= maxConnections) {
      socket->abort();
      socket->deleteLater();
      continue;
    }
    ++connections_;
    socket->setReadBufferSize(maxRequestBytes);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
      --connections_;
      socket->deleteLater();
    });
    // Whoever neither asks nor takes the answer is cut off.
    QTimer::singleShot(requestMs, socket, [socket] { socket->abort(); });
  }
}

void MetricsServer::readRequest(QTcpSocket* socket)
{
  const QByteArray request = socket->peek(maxRequestBytes);
  const bool complete = request.contains("\r\n\r\n") || request.contains("\n\n");
  if (complete || request.size() >= maxRequestBytes) {
    socket->disconnect(SIGNAL(readyRead()));
    socket->readAll();
    complete ? answerRequest(socket, request) : refuse(socket, "431 Request Header Fields Too Large");
  }
}

void MetricsServer::answerRequest(QTcpSocket* socket, const QByteArray& request)
{
  const QList<QByteArray> words = request.left(request.indexOf('\n')).trimmed().split(' ');
  if (words.size() != 3 || !words[2].startsWith("HTTP/1.")) {
    refuse(socket, "400 Bad Request");
    return;
  }
  const bool head = words[0] == "HEAD";
  if (!head && words[0] != "GET") {
    refuse(socket, "405 Method Not Allowed");
    return;
  }
  const QByteArray path = words[1].left(words[1].indexOf('?') < 0 ? words[1].size() : words[1].indexOf('?'));
  if (path == "/health") {
    withState(socket, [socket, head](const DatabaseState& state) {
      answer(socket, state.answers ? "200 OK" : "503 Service Unavailable", "application/json",
             state.answers ? "{\"status\":\"ok\",\"database\":\"ok\"}\n" : "{\"status\":\"unavailable\",\"database\":\"no answer\"}\n",
             !head);
    });
  } else if (path == "/metrics") {
    withState(socket, [this, socket, head](const DatabaseState& state) {
      answer(socket, "200 OK", "text/plain; version=0.0.4; charset=utf-8", figures_() + stateFigures(state), !head);
    });
  } else {
    refuse(socket, "404 Not Found");
  }
}

void MetricsServer::withState(QObject* receiver, const StateHandler& handler)
{
  // Gone with the first of the two answers, and with the receiver.
  auto* const once = new QObject(receiver);
  const auto tell = [once, handler](const DatabaseState& state) {
    once->deleteLater();
    handler(state);
  };
  auto* const patience = new QTimer(once);
  patience->setSingleShot(true);
  connect(patience, &QTimer::timeout, once, [tell, patience, this, once] {
    patience->stop();
    QObject::disconnect(this, nullptr, once, nullptr);
    tell({});
  });
  connect(this, &MetricsServer::stateKnown, once, [tell, patience, this, once](const DatabaseState& state) {
    patience->stop();
    QObject::disconnect(this, nullptr, once, nullptr);
    tell(state);
  });
  patience->start(patienceMs);
  if (asking_) {
    return;  // the answer under way is for everybody
  }
  asking_ = true;
  pool_.start([this] {
    const DatabaseState state = askDatabase_();
    QMetaObject::invokeMethod(this, [this, state] {
      asking_ = false;
      emit stateKnown(state);
    }, Qt::QueuedConnection);
  });
}

}  // namespace kalvor::server
