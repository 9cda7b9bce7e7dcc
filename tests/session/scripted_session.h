// A server, a host program and a person at the log-in dialog who do what the test says.
#pragma once

#include <QHash>
#include <functional>

#include "session/dm.h"

namespace kalvor::testing {

using namespace Qt::StringLiterals;

class ScriptedCalls : public RemoteCalls {
 public:
  using Handler = std::function<Variant(VariantArray& arguments)>;

  void Connect() override
  {
    log << u"Connect"_s;
    if (!connectError.isEmpty())
      throw RpcError(RpcError::Unreachable, connectError);
    connected = true;
  }
  void Disconnect() override
  {
    log << u"Disconnect"_s;
    connected = false;
  }
  bool Connected() const override { return connected; }
  void setSession(const QString& sessionText) override { session = sessionText; }
  using RemoteCalls::Call;
  Variant Call(const QString& operation, VariantArray& arguments, const QString&) override
  {
    log << operation;
    sent[operation].append(arguments);
    if (!handlers.contains(operation))
      throw RpcError(RpcError::UnknownOperation, u"няма "_s + operation);
    return handlers[operation](arguments);
  }

  // Answers with a result, and puts values into arguments before.
  void answer(const QString& operation, const Variant& result, const QList<std::pair<int, Variant>>& back = {})
  {
    handlers[operation] = [result, back](VariantArray& arguments) {
      for (const auto& [index, value] : back)
        arguments[index] = value;
      return result;
    };
  }
  VariantArray sentOnce(const QString& operation) const { return sent.value(operation).value(0); }

  QHash<QString, Handler> handlers;
  QHash<QString, QList<VariantArray>> sent;
  QStringList log;
  QString connectError, session;
  bool connected = false;
};

struct DialogScript {
  bool accepted = false;
  LoginChoice choice;
};

class ScriptedDialog : public LoginDialog {
 public:
  explicit ScriptedDialog(const DialogScript& script) : script_(script) {}
  bool runModal() override { return script_.accepted; }
  LoginChoice choice() const override { return script_.choice; }

 private:
  DialogScript script_;
};

class ScriptedHost : public HostApplication, public ISplashIntf {
 public:
  QStringList parameters() const override { return commandLine; }
  void postQuit(int exitCode) override { quits << exitCode; }
  void terminate() override { ++terminated; }
  ISplashIntf* activeSplash() override { return hasSplash ? this : nullptr; }
  std::unique_ptr<LoginDialog> createLoginDialog(RemoteCalls&, SocketConnection&) override
  {
    ++dialogsShown;
    return std::make_unique<ScriptedDialog>(dialogs.isEmpty() ? DialogScript() : dialogs.takeFirst());
  }
  ServerPlace editSettings(SettingsPages pages, const ServerPlace& current) override
  {
    settingsShown << pages;
    return edited.value_or(current);
  }
  quint32 buttonFaceColor() const override { return 0xffefefefu; }
  QString systemSettingsFolder() const override { return systemFolder; }
  void ShowSplash(bool show) override { splash << show; }

  QStringList commandLine;
  QList<DialogScript> dialogs;
  QString systemFolder;
  std::optional<ServerPlace> edited;
  bool hasSplash = true;
  QList<int> quits;
  QList<bool> splash;
  QList<SettingsPages> settingsShown;
  int terminated = 0;
  int dialogsShown = 0;
};

inline FieldDef textField(const QString& name)
{
  FieldDef field;
  field.name = name;
  field.type = DataType::WideMemo;
  return field;
}

inline DataPacketPtr packetOf(const QStringList& fields, const QList<VariantArray>& rows)
{
  QList<FieldDef> definitions;
  for (const QString& name : fields)
    definitions << textField(name);
  auto packet = std::make_shared<DataPacket>();
  packet->records = RecordSet(definitions);
  for (const VariantArray& row : rows)
    packet->records.appendRow(row);
  return packet;
}

// A session on a server that lets everybody in and has one settings row for whoever asks.
class ScriptedSession {
 public:
  ScriptedSession()
  {
    LocalData = {};
    AutoLoginData = {};
    auto calls = std::make_unique<ScriptedCalls>();
    server = calls.get();
    server->answer(u"LogIn"_s, 0, {{4, u"session-1"_s}});
    server->answer(u"servername"_s, u"Сървър"_s);
    server->answer(u"GetConnectionString"_s, u"Catalog=1"_s);
    server->answer(u"RequestValue"_s, 0);
    server->answer(u"RequestData"_s, 0);
    server->answer(u"DeleteDynamicProvider"_s, 0);
    server->handlers[u"CreateDynamicProvider"_s] = [this](VariantArray& arguments) {
      arguments[0] = u"P%1"_s.arg(++providers);
      return Variant(arguments[0]);
    };
    server->handlers[u"OpenProvider"_s] = [this](VariantArray&) { return Variant::fromValue(packet); };
    packet = packetOf({u"Id"_s, u"Comp_id"_s, u"Settings"_s, u"UserActions"_s},
                      {{u"AB"_s, u"5"_s, settings, actions}});
    dm = std::make_unique<TDM>(host, std::move(calls));
  }

  static inline const QString settings = u"<Root><ExportOptions><Separator>tab</Separator></ExportOptions></Root>"_s;
  static inline const QString actions = u"<Root><UserActions><is_Cashier>1</is_Cashier></UserActions></Root>"_s;

  void load() { dm->LoadLocalData(u"AB"_s, u"Обект 7"_s, u"Фирма 5"_s,
                                  u"AB"_s, u"7"_s, u"5"_s); }

  ScriptedHost host;
  ScriptedCalls* server;
  DataPacketPtr packet;
  int providers = 0;
  std::unique_ptr<TDM> dm;
};

}  // namespace kalvor::testing
