// The session: connection, log-in, the user's rights and settings, the company's settings. One object, made by
// the host when it starts, kept until it ends.
#pragma once

#include <QDomDocument>
#include <functional>
#include <vector>

#include "data/client_dataset.h"
#include "rpc/connection.h"
#include "session/host_application.h"
#include "session/item_params.h"
#include "session/local_data.h"
#include "session/trusted_servers.h"

namespace kalvor {

// A settings text of the server, as XML. Inactive: not loaded (or not readable), so never saved back.
struct SettingsXml {
  QDomDocument document;
  bool active = false;
};

struct RegisteredForm {
  QString text;
  std::unique_ptr<QObject> object;
};
using RegisteredForms = std::vector<RegisteredForm>;

// The user code that has every right, in exactly these letters.
inline constexpr QStringView administratorCode = u"SUPERVSR";

class KALVOR_RULES TDM : public QObject {
  Q_OBJECT
 public:
  // Becomes the global DM, and is it no more when destroyed. The host outlives it. Without a broker of its own it
  // calls over SocketCon.
  explicit TDM(HostApplication& host, std::unique_ptr<RemoteCalls> broker = nullptr);
  ~TDM() override;  // runs DataModuleDestroy

  HostApplication& host() const { return host_; }

  TrustedServers Servers;          // which servers are known; SocketCon asks it
  SocketConnection SocketCon;
  RemoteCalls* ConBroker;          // every remote call and every provider
  TClientDataSet cdsUserSettings;  // the user's row of s_UserSettings
  TClientDataSet cdsTreeView;      // rights of the user, one row a form

  std::unique_ptr<RegisteredForms> FormList;
  bool ImportRunning = false;
  std::unique_ptr<QObject> FiscalPrinter;       // made on demand
  std::unique_ptr<SettingsXml> UserSettings;    // null: none
  std::unique_ptr<SettingsXml> UserActions;
  quint32 ReadOnlyColor = 0;                    // 0xAARRGGBB, background of read-only controls; 0 = leave it
  QChar BarcodeStart = u'^';                    // first character of a scanned barcode
  QString MeasureBarcode;
  QObject* BarcodeForm = nullptr;               // made on demand, owned by its window

  // The documents' content, null when there is none or it is inactive.
  QDomDocument* userSettingsDocument() const;
  QDomDocument* userActionsDocument() const;

  // --- Start and end ------------------------------------------------------------------------------------
  // Connects and logs in; when that fails, a quit with -1 is posted and the user has been told.
  void DataModuleCreate();
  void DataModuleDestroy();  // sends changed settings to the server; once
  bool SetUpRemoteCon();
  bool ManualServerLogin();  // DataError when a user other than the administrator chose no object
  bool AutoServerLogin();

  // --- Session context ----------------------------------------------------------------------------------
  // Fills LocalData, the settings and the actions document. Errors are logged; the session goes on with what
  // was loaded.
  void LoadLocalData(const QString& userName, const QString& businessGroupName, const QString& companyName,
                     const QString& userId, const QString& businessGroupId, const QString& companyId);
  void LoadCompanySettings();
  // Leaves in cdsTreeView the rights rows of the current user, company and object. The list does not narrow them.
  void LoadLogInData(const QString& list);

  // --- Settings -----------------------------------------------------------------------------------------
  int UserLogOff();                     // settings document -> row; 0
  QString GetUserDataForUpdate() const; // the statement that saves the settings; empty when there are none

  // --- Services -----------------------------------------------------------------------------------------
  bool SetDocCopiesPrinted(const QString& table, const QString& id, const QString& field);
  // A dataset of the session on a new provider, readied with the form's stored query and opened when asked.
  // Null on any error.
  TClientDataSet* CreateCDS(int formId, const FilterArray& filter, bool open);

  // --- Prices and rates ---------------------------------------------------------------------------------
  // Price and discount of a document line. The request, by position: 0 what (0 both, 1 price, 2 discount), 1 side
  // (0 purchase, 1 sale), 2 contractor, 3 item code, 4 measure, 5 currency, 6 VAT business group, 7 prices include VAT,
  // 8 sub-type code, 9 quantity, 10 date, 11 base quantity, 12 VAT product group, 13 currency factor, 14 line type.
  // Price and discount start at 0; the flag changes only with a sale price, and only with the flag set to 1 a sale
  // asks for its discount too. 0 after the look-up, whatever it found; -1 after an error, which is logged, and what
  // was stored before it stays.
  int GetItemPriceAndDiscount(const Variant& request, TItemParams& params);
  // The same requests, of sales, will follow one by one: while reads are remembered they go to the server together.
  void AskSalePricesAhead(const QList<VariantArray>& requests);
  // Local currency for one unit of the currency on that day; 0 when there is no rate or the server cannot say.
  double GetCurrencyRate(const QString& currency, QDate date, int kind);

  // --- Command line -------------------------------------------------------------------------------------
  int ProccessAplicationParams();
  int DoXmlTransfer(const QString& fileName);
  // Runs the XML transfer import of a file; installed by the import.
  std::function<void(const QString& transferFile)> XmlTransfer;

 private:
  void showSplash(bool show);
  bool logIn(QString& user, const QString& password, QString& businessGroup, QString& company, int& result);
  void readSurroundings();
  void loadEmployeeName();
  void loadSalesSetup();
  void loadUserSettings();
  bool requestUserSettings();
  void appendUserSettings();
  QString ownerKey() const;
  void fetchRights(const QString& ofOwner);

  HostApplication& host_;
  std::unique_ptr<RemoteCalls> broker_;
  bool destroyed_ = false;
};

KALVOR_RULES extern TDM* DM;

}  // namespace kalvor
