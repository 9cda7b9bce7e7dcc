// A workplace that saves in a loop and knows what it was told is saved. It changes its own invoice (the header's note and
// the first line's text get the same token) and every fourth time makes a new one with two lines and a number of a series.
// A save whose answer did not come is repeated under its request id, whatever happened in between.
#pragma once

#include <QSet>
#include <atomic>
#include <memory>
#include <optional>

#include "data/client_dataset.h"
#include "rpc/connection.h"

namespace kalvor::testing {

class Workstation {
 public:
  Workstation(int index, quint16 port) : index_(index) { socket_.Port = port; }

  // Resumes the session, or logs in anew where the server has forgotten it.
  void connect();
  void disconnect() { broker_.reset(); }
  // That of a row of the list as its own, or as the pattern of new ones; before anybody saves.
  void chooseInvoice(int row);

  struct Save {
    qint64 number = 0;
    bool isNew = false;
    QString id;  // of the new invoice
    DeltaPtr header, lines;
    VariantArray numbering;
  };
  Save buildNew();
  // Throws when the answer does not come; repeat() sends the same again then.
  void save(Save what);
  void save(bool isNew) { save(isNew ? buildNew() : buildChange()); }
  void save() { save((number_ + 1) % 4 == 0); }
  void repeat();
  // A new invoice whose number is taken back, by a transaction of the workplace's or by an error after it was counted.
  void saveInVain();
  // Saves until told to end, over what breaks in between: repeats at once when the server answers with an error, and
  // gives up when it is gone and was to end. Throws what is no consequence of a failure.
  void saveUntil(const std::atomic<bool>& end);
  // What is written without waiting for the disk may be gone: a session, or only what it prepared. A refused save makes
  // this workplace log in anew then.
  bool sessionsMayBeLost = false;

  // Opens the list of invoices at its beginning, as the form does.
  void openList(int records);

  // What it knows.
  int index() const { return index_; }
  QString invoice() const { return invoice_; }
  QString token(qint64 number) const { return QStringLiteral("знак-%1-%2").arg(index_).arg(number); }
  QString note(qint64 number) const { return QStringLiteral("нова-%1-%2").arg(index_).arg(number); }
  const QSet<qint64>& made() const { return made_; }
  qint64 acknowledgedChange() const { return acknowledgedChange_; }
  const std::optional<Save>& pending() const { return pending_; }
  int acknowledged() const { return acknowledged_; }
  int cutOff() const { return cutOff_; }
  int inVain() const { return inVain_; }
  double slowestMs() const { return slowestMs_; }

 private:
  void logIn();
  QString newProvider();
  void request(TClientDataSet& dataSet, int dsIndex, const FilterArray& filter);
  void open(TClientDataSet& header, TClientDataSet& lines);
  Save buildChange();
  void send();
  Variant timed(const char* operation, VariantArray arguments = {}, const QString& requestId = {});
  VariantArray packet(const Save& save) const;

  int index_;
  SocketConnection socket_;
  std::unique_ptr<ConnectionBroker> broker_;
  QString session_;
  QString provider_[2];
  QString invoice_;
  qint64 number_ = 0;
  qint64 acknowledgedChange_ = 0;
  QSet<qint64> made_;
  std::optional<Save> pending_;
  bool unsettled_ = false;  // the pending one may have been done
  int acknowledged_ = 0;
  int cutOff_ = 0;
  int inVain_ = 0;
  double slowestMs_ = 0;
};

}  // namespace kalvor::testing
