// A server that says what the test tells it to, in a thread of its own.
#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

#include "rpc/frame.h"
#include "rpc/frame_reader.h"

namespace kalvor::test {

using namespace Qt::StringLiterals;

class ScriptedServer {
 public:
  // Bytes to send back; a null byte array closes the connection unanswered, an empty one says nothing.
  using Handler = std::function<QByteArray(const Frame& call)>;

  explicit ScriptedServer(Handler handler) : handler_(std::move(handler))
  {
    std::atomic<bool> listening = false;
    thread_ = std::thread([this, &listening] { run(listening); });
    while (!listening)
      std::this_thread::yield();
  }
  ~ScriptedServer()
  {
    stop_ = true;
    thread_.join();
  }

  quint16 port() const { return port_; }
  int connections() const { return connections_; }
  // The connection that is open is cut as if the server had gone.
  void cut() { cut_ = true; while (cut_) std::this_thread::yield(); }
  QStringList calls() const
  {
    const std::lock_guard lock(mutex_);
    return calls_;
  }

 private:
  void run(std::atomic<bool>& listening)
  {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    port_ = server.serverPort();
    listening = true;
    while (!stop_) {
      server.waitForNewConnection(5);
      if (const std::unique_ptr<QTcpSocket> socket{server.nextPendingConnection()})
        serve(*socket);
      cut_ = false;
    }
  }

  void serve(QTcpSocket& socket)
  {
    ++connections_;
    FrameReader reader(FrameLimits::ofServer().maxBytes);
    while (!stop_ && !cut_ && socket.state() == QAbstractSocket::ConnectedState) {
      socket.waitForReadyRead(5);
      reader.append(socket.readAll());
      while (const auto item = reader.next()) {
        const auto call = decodeFrame(*item, FrameLimits::ofServer());
        {
          const std::lock_guard lock(mutex_);
          calls_ << (call ? call->operation : u"?"_s);
        }
        const QByteArray answer = handler_(*call);
        if (answer.isNull())
          return socket.abort();
        socket.write(answer);
        socket.waitForBytesWritten(1000);
      }
    }
    socket.abort();
  }

  Handler handler_;
  std::atomic<quint16> port_ = 0;
  std::atomic<int> connections_ = 0;
  std::atomic<bool> stop_ = false, cut_ = false;
  mutable std::mutex mutex_;
  QStringList calls_;
  std::thread thread_;
};

}  // namespace kalvor::test
