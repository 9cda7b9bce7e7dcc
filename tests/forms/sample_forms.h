// Concrete forms as a module brings them: metadata alone.
#pragma once

#include <QMenu>
#include <QPushButton>

#include "forms/windows/base_browse.h"
#include "forms/windows/base_edit.h"
#include "form_session.h"

namespace kalvor::testing {

class TfBrContragent : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

// With one of the family's menu buttons.
class TfEdContragent : public TfBaseEditMaster {
  Q_OBJECT
 public:
  explicit TfEdContragent(QWidget* parent = nullptr)
      : TfBaseEditMaster(parent), btnCard(new QPushButton(this)), cardMenu(new QMenu(btnCard))
  {
    btnCard->setObjectName(QStringLiteral("btnCard"));
    btnCard->hide();
    cardMenu->addAction(QStringLiteral("Карта"));
  }
  QPushButton* btnCard;
  QMenu* cardMenu;
};

class TfBrSaleInvoice : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

class TfEdSaleInvoice : public TfBaseEditMasterDetail {
  Q_OBJECT
 public:
  using TfBaseEditMasterDetail::TfBaseEditMasterDetail;
};

inline void registerSampleForms()
{
  RegisterFormClass(formClass<TfBrContragent>());
  RegisterFormClass(formClass<TfEdContragent>());
  RegisterFormClass(formClass<TfBrSaleInvoice>());
  RegisterFormClass(formClass<TfEdSaleInvoice>());
}

inline DemoServer*& demoServer()
{
  static DemoServer* server = nullptr;
  return server;
}

// One session with its main window, prompt and documents folder, for one test function.
struct Desk {
  explicit Desk(const QString& user = QStringLiteral("SUPERVSR")) : session(demoServer()->port(), user)
  {
    registerSampleForms();
  }
  ~Desk()
  {
    window.area.closeAllSubWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    UnRegisterFormClass();
  }
  // Opens a form and gives it; null when it did not open.
  template <class Form>
  Form* open(int formId, ShowOption options = ShowOption(so_Normal) | so_AllowEdit | so_AllowInsert | so_AllowDelete,
             const FilterArray& filter = {}, QObject* owner = nullptr)
  {
    RequestForm(formId, options, filter, owner);
    return last<Form>();
  }
  template <class Form>
  Form* last() const
  {
    const auto windows = window.area.subWindowList(QMdiArea::CreationOrder);
    return windows.isEmpty() ? nullptr : qobject_cast<Form*>(windows.last()->widget());
  }

  ScratchDocuments documents;
  ScriptedPrompt prompt;
  RememberingMainWindow window;
  FormSession session;
};

}  // namespace kalvor::testing
