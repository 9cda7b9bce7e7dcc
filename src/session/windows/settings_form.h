// The settings of this workplace (local settings file) and of this user (settings document).
#pragma once

#include <QWidget>

#include "forms/form_rights.h"
#include "registry/form_interfaces.h"
#include "session/export_options.h"
#include "session/host_application.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QTabWidget;

namespace kalvor {

// A child window of the main window; modal where nobody is logged in yet. Nothing is kept before btnOKClick, but
// the choice of another fiscal printer, which counts at once.
class BASE_PACKAGE TfSettings : public QWidget, public IBaseCommonIntf {
  Q_OBJECT
 public:
  explicit TfSettings(QWidget* parent = nullptr);
  ~TfSettings() override;

  void SetFormRights(int formId, bool defaultRight) override;
  bool CheckFormID(const QString& id) const override;
  // 3 when the form is shown. 0, and the form closed, when it was not: the user was told why.
  int DoShowForm(int formId, ShowOption options) override;
  int DoShowForm(int formId, ShowOption options, const TDialogParams& params) override;
  // Shows it and waits; true when the settings were kept.
  bool ShowModal(QWidget* parent);

  void Set_OnlyConnectionSettings(bool on);  // hides, or shows again, every page but the connection
  bool OnlyConnectionSettings() const { return onlyConnection_; }
  // Whether a server answers there, over a connection of the form's own.
  bool TestConnection(int port, const QString& address);

  ServerPlace place() const;  // as it stands in the boxes
  void setPlace(const ServerPlace& place);
  const QString& uniqueId() const { return uniqueId_; }
  const TFormRights& rights() const { return rights_; }

  // --- What the controls run ------------------------------------------------------------------------------
  void btnOKClick();
  void btnTestClick();
  void btnExitClick();
  void btnHelpClick();
  void btnFilterClick();
  void btnGridsClick();
  void btnFormsClick();
  void cbxFiscalPrinterDropDown();
  void cbxFiscalPrinterChange();
  void btnFiscalSettingsClick();
  void btnFiscalPrinterReportClick();
  void LoadExportOptions();
  void SaveExportOptions();

  // --- Controls -------------------------------------------------------------------------------------------
  QTabWidget* pcSettings;
  QWidget *tsConnection, *tsDevices, *tsOptions, *tsExport;
  QSpinBox* ebxPort;
  QComboBox* cbxAddress;
  QPushButton* btnTest;
  QComboBox* cbxPrn;
  QComboBox* cbxFiscalPrinter;  // shows the printer's identifier, carries its kind as the item's data
  QPushButton *btnFiscalSettings, *btnFiscalPrinterReport;
  QLineEdit* ebxBarcodeStart;
  QSpinBox* ebxMeasureBarcode;
  QCheckBox *cbxFitrer, *cbxSortOrder, *cbxGrids, *cbxFormSize, *cbxColors;
  QPushButton *btnFilter, *btnGrids, *btnForms;
  QRadioButton *rbFixedLength, *rbSeparator;
  QRadioButton *rbTab, *rbComma, *rbPointComma, *rbOtherSimbol;
  QLineEdit* ebxSeparator;
  QCheckBox *cbxCaption, *cbxDosFormat;
  QSpinBox* ebxDigit;
  QPushButton *btnHelp, *btnOK, *btnExit;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void build();
  QWidget* buildConnection();
  QWidget* buildDevices();
  QWidget* buildOptions();
  QWidget* buildExport();
  void loadServer();
  void loadDevices();
  void saveIniOptions();
  void saveServer();
  void saveDevices();
  TExportOptions exportOptions() const;
  void showExportOptions(const TExportOptions& options);
  void updateSeparators();
  void chooseForms(int kind);
  void openPrinterForm(int printerForm);
  void showAsChild();
  void tellActive();

  QString uniqueId_;
  int formId_ = 0;
  bool onlyConnection_ = false;
  bool saved_ = false;
  TFormRights rights_;
};

}  // namespace kalvor
