// The lists of the log-in dialog: companies, the objects of a company, the users of an object. Rules only; the
// dialog shows them.
#pragma once

#include <QList>
#include <QString>

#include "rpc/remote_calls.h"

namespace kalvor {

// Carries the identifier of a list item whose text is a name.
struct TIdStore {
  QString Id;
};

struct LoginItem {
  QString text;
  TIdStore store;
};

class KALVOR_RULES LoginList {
 public:
  const QList<LoginItem>& items() const { return items_; }
  int selected() const { return selected_; }  // -1 = none
  void select(int index) { selected_ = index >= 0 && index < items_.size() ? index : -1; }
  void selectId(const QString& id);           // none when no item has it
  QString selectedId() const;
  void clear();
  // Rows [identifier, name], or [identifier] where that is the text too; nothing is selected then.
  void fill(const Variant& rows);

 private:
  QList<LoginItem> items_;
  int selected_ = -1;
};

class KALVOR_RULES LoginLists {
 public:
  explicit LoginLists(RemoteCalls& calls) : calls_(calls) {}

  LoginList companies, objects, users;

  // Fills all three and selects what the local settings file remembers of the last log-in. Raises RpcError.
  void LoadCombosFromIni();
  // After another company was selected: its objects; no users. Nothing changes when the server refuses.
  void companyChanged();
  // After another object was selected: its users.
  void objectChanged();

 private:
  bool request(const QString& operation, const VariantArray& keys, Variant& rows);

  RemoteCalls& calls_;
};

}  // namespace kalvor
