// A real server with a small demo company in this process, a session on it, and a main window that remembers what it
// was told.
#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

#include "../scratch_documents.h"
#include "../scripted_ports.h"
#include "../session/scripted_session.h"
#include "registry/form_interfaces.h"
#include "registry/windows/form_host.h"
#include "registry/windows/form_registry.h"
#include "server/demo/demo_company.h"
#include "server/operations/passwords.h"
#include "server/server.h"
#include "server/server_core.h"

namespace kalvor::testing {

class DemoServer {
 public:
  DemoServer() : server_(options())
  {
    server::setPasswordCost(server::PasswordCost::CheapForTests);
    server::DemoOptions demo;
    demo.hashDigest = server::hashDigest;
    demo.contragents = 60;
    demo.items = 40;
    demo.invoices = 30;
    server::createDemoCompany(*server_.core().openWriter(), demo);
    server_.start();
  }
  quint16 port() const { return server_.port(); }
  void stop() { server_.stop(); }
  void start() { server_.start(); }
  server::ServerCore& core() { return server_.core(); }

 private:
  server::ServerOptions options() const
  {
    server::ServerOptions options;
    options.database = folder_.filePath(QStringLiteral("demo.db"));
    options.port = 0;
    return options;
  }
  QTemporaryDir folder_;
  server::ApplicationServer server_;
};

// Logged in to company 1.
class FormSession {
 public:
  explicit FormSession(quint16 port, const QString& user = QStringLiteral("SUPERVSR"))
  {
    LocalData = {};
    AutoLoginData = {};
    host.commandLine = {QStringLiteral("-u"), user, QStringLiteral("-p"), QStringLiteral("demo"), QStringLiteral("-c"),
                        QStringLiteral("1"),  QStringLiteral("-b"), user == u"GUEST" ? QStringLiteral("3") : QStringLiteral("1"),
                        QStringLiteral("-a")};
    dm = std::make_unique<TDM>(host);
    dm->FormList = std::make_unique<RegisteredForms>();
    dm->SocketCon.Port = port;
    dm->ConBroker->Connect();
    loggedIn = dm->AutoServerLogin();
    dm->LoadLogInData(QString());
  }

  ScriptedHost host;
  std::unique_ptr<TDM> dm;
  bool loggedIn = false;
};

class RememberingMainWindow : public IMainFormIntf, public FormHost {
 public:
  RememberingMainWindow()
  {
    area.resize(1280, 700);
    area.show();
    area.activateWindow();
    if (!QTest::qWaitForWindowActive(&area)) {
      qWarning("The window did not become active");
    }
    installMainForm(this);
    installFormHost(this);
  }
  ~RememberingMainWindow() override
  {
    installMainForm(nullptr);
    installFormHost(nullptr);
  }
  QMdiArea* childArea() override { return &area; }
  void FormClosed(const QString& notice) override { told << QStringLiteral("closed:") + notice; }
  void SetActionStates(const QStringList& lines) override { states = lines; }
  void SetHasFilter(bool on) override { hasFilter = on; }
  void SetWindowTitle(const QString& title, const QString&) override { titles << title; }
  void WindowClosed(const QString& id) override { told << QStringLiteral("gone:") + id; }

  QMdiArea area;
  QStringList states, titles, told;
  bool hasFilter = false;
};

}  // namespace kalvor::testing
