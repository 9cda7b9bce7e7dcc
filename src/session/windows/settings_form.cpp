// The settings form as a window: opening, closing, and what "Ok" keeps.
#include "session/windows/settings_form.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "common/sql_text.h"
#include "forms/messages.h"
#include "platform/ports.h"
#include "registry/windows/form_host.h"
#include "registry/windows/help_topics.h"
#include "registry/windows/select_form.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/ini_options.h"
#include "session/local_settings_file.h"
#include "session/settings_document.h"
#include "session/windows/combo_history.h"

namespace kalvor {
namespace {

constexpr int shownAsChild = 3;
const QString iniOptionsGroup = QStringLiteral("IniOptions");
const QString serverSection = QStringLiteral("Server");
const QString devicesSection = QStringLiteral("Devices");
const QString addressHistory = QStringLiteral("ServerAddressIndex");
const QString prnHistory = QStringLiteral("prnIndex");

void saveSection(const QString& section, const QStringList& lines)
{
  if (!SaveSectionToIni(section, lines))
    throw DataError(QStringLiteral("Не е записана секция ") + section);
}

void saveGroup(const QString& group, const QStringList& lines)
{
  if (QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr)
    SaveNodeToXml(*document, group, lines, false);
}

}  // namespace

TfSettings::TfSettings(QWidget* parent) : QWidget(parent), uniqueId_(CreateUniqueID())
{
  build();
  loggingErrors(QStringLiteral("uSettings.FormCreate"), [this] {
    pcSettings->setCurrentIndex(0);
    const std::pair<QCheckBox*, bool> options[] = {{cbxFitrer, IniOptions.Filter},
                                                   {cbxSortOrder, IniOptions.SortOrder},
                                                   {cbxGrids, IniOptions.Grids},
                                                   {cbxFormSize, IniOptions.FormSize},
                                                   {cbxColors, IniOptions.ApplyColorSettings}};
    for (const auto& [box, on] : options)
      box->setChecked(on);
    loadServer();
    loadDevices();
    LoadExportOptions();
  });
}

TfSettings::~TfSettings() = default;

// --- What is kept ------------------------------------------------------------------------------------------------

void TfSettings::loadServer()
{
  QStringList lines;
  GetSectionFromIni(serverSection, lines);
  if (lines.size() <= 1)
    return;
  bool isNumber = false;
  const int port = valueOfLine(lines, QStringLiteral("ServerPort")).trimmed().toInt(&isNumber);
  ebxPort->setValue(isNumber ? port : 2030);
  GetCbHistoryItemsFromIni(lines, valueOfLine(lines, QStringLiteral("ServerAddress")), addressHistory, cbxAddress);
}

void TfSettings::loadDevices()
{
  QStringList lines;
  GetSectionFromIni(devicesSection, lines);
  if (lines.size() <= 1)
    return;
  GetCbHistoryItemsFromIni(lines, valueOfLine(lines, QStringLiteral("prn")), prnHistory, cbxPrn);
  if (const QString printer = valueOfLine(lines, QStringLiteral("FPName")); !printer.isEmpty()) {
    const QSignalBlocker quiet(cbxFiscalPrinter);
    cbxFiscalPrinter->addItem(printer, valueOfLine(lines, QStringLiteral("FPType")));
    cbxFiscalPrinter->setCurrentIndex(0);
  }
  if (!DM)
    return;
  ebxBarcodeStart->setText(DM->BarcodeStart);
  if (!DM->MeasureBarcode.isEmpty())
    ebxMeasureBarcode->setValue(DM->MeasureBarcode.toInt());
}

void TfSettings::saveIniOptions()
{
  IniOptions = {cbxFitrer->isChecked(), cbxSortOrder->isChecked(), cbxGrids->isChecked(), cbxFormSize->isChecked(),
                cbxColors->isChecked()};
  saveGroup(iniOptionsGroup, iniOptionLines(IniOptions));
}

void TfSettings::saveServer()
{
  QStringList lines{QStringLiteral("ServerPort=") + ebxPort->text(),
                    QStringLiteral("ServerAddress=") + cbxAddress->currentText()};
  SaveCbHistoryItemsToIni(addressHistory, cbxAddress, lines);
  saveSection(serverSection, lines);
}

void TfSettings::saveDevices()
{
  QStringList lines{QStringLiteral("prn=") + cbxPrn->currentText()};
  if (cbxFiscalPrinter->count() > 0) {
    LocalData.FPName = cbxFiscalPrinter->currentText();
    LocalData.FPType = cbxFiscalPrinter->currentData().toString();
    lines << QStringLiteral("FPName=") + LocalData.FPName << QStringLiteral("FPType=") + LocalData.FPType;
  }
  lines << QStringLiteral("BarckodeStart=") + ebxBarcodeStart->text()
        << QStringLiteral("MesureBarcode=") + ebxMeasureBarcode->text();
  SaveCbHistoryItemsToIni(prnHistory, cbxPrn, lines);
  saveSection(devicesSection, lines);
  if (DM) {
    DM->MeasureBarcode = ebxMeasureBarcode->text();
    if (!ebxBarcodeStart->text().isEmpty())
      DM->BarcodeStart = ebxBarcodeStart->text().at(0);
  }
  LocalData.prn = cbxPrn->currentText();
}

void TfSettings::LoadExportOptions()
{
  QStringList lines;
  if (const QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr)
    GetNodeFromXml(*document, exportOptionsGroup, lines);
  showExportOptions(exportOptionsFromLines(lines));
}

void TfSettings::SaveExportOptions()
{
  saveGroup(exportOptionsGroup, exportOptionLines(exportOptions()));
}

void TfSettings::btnOKClick()
{
  saved_ = loggingErrors(QStringLiteral("uSettings.btnOKClick"), [this] {
    saveIniOptions();
    SaveExportOptions();
    saveServer();
    saveDevices();
  });
  if (saved_)
    btnExitClick();
}

void TfSettings::btnExitClick()
{
  windowOf(this)->close();
}

ServerPlace TfSettings::place() const
{
  return {cbxAddress->currentText().trimmed(), quint16(ebxPort->value())};
}

void TfSettings::setPlace(const ServerPlace& place)
{
  ebxPort->setValue(place.port);
  cbxAddress->setEditText(place.address);
}

// --- The connection ------------------------------------------------------------------------------------------------

bool TfSettings::TestConnection(int port, const QString& address)
{
  SocketConnection socket;
  socket.Address = address.trimmed();
  socket.Port = quint16(port);
  TrustedServers own;
  socket.trust = DM ? &DM->Servers : &own;
  ConnectionBroker broker(&socket);
  const WaitCursorScope waiting;
  try {
    broker.Connect();
  } catch (const RpcError& error) {
    if (error.code() == RpcError::Untrusted)
      showError(error.message());
    return false;
  } catch (const std::exception&) {
    return false;
  }
  const bool found = broker.Connected();
  broker.Disconnect();
  return found;
}

void TfSettings::btnTestClick()
{
  loggingErrors(QStringLiteral("fSettings.btnTestClick"), [this] {
    const bool found = TestConnection(ebxPort->value(), cbxAddress->currentText());
    userPrompt().message(PromptKind::Plain, found ? _inf_ServerFound : _inf_ServerNotFound, {PromptButton::Ok});
  });
}

void TfSettings::Set_OnlyConnectionSettings(bool on)
{
  if (on == onlyConnection_)
    return;
  onlyConnection_ = on;
  for (int page = 0; page < pcSettings->count(); ++page)
    if (pcSettings->widget(page) != tsConnection)
      pcSettings->setTabVisible(page, !on);
}

// --- Stored settings of forms ----------------------------------------------------------------------------------------

void TfSettings::chooseForms(int kind)
{
  TfSelectForm(kind, window()).exec();
}

void TfSettings::btnFilterClick() { chooseForms(int(StoredSettings::FilterAndSort)); }
void TfSettings::btnGridsClick() { chooseForms(int(StoredSettings::GridViews)); }
void TfSettings::btnFormsClick() { chooseForms(int(StoredSettings::FormSizes)); }

// --- Window ----------------------------------------------------------------------------------------------------------

void TfSettings::SetFormRights(int formId, bool defaultRight)
{
  rights_ = loadFormRights(formId, defaultRight, LocalData.UserId, DM ? &DM->cdsTreeView : nullptr);
}

bool TfSettings::CheckFormID(const QString& id) const
{
  return id == uniqueId_;
}

int TfSettings::DoShowForm(int formId, ShowOption options, const TDialogParams&)
{
  return DoShowForm(formId, options);
}

int TfSettings::DoShowForm(int formId, ShowOption)
{
  try {
    const WaitCursorScope waiting;
    if (!rights_.ReadRight)
      throw DataError(rightsRefusal(_err_ReadNotAllowed, formId));
    formId_ = formId;
    showAsChild();
    return shownAsChild;
  } catch (const std::exception& error) {
    LogError(errorText(error), QStringLiteral("TfSettings.DoShowForm"));
    showError(errorText(error));
    windowOf(this)->close();
    return 0;
  }
}

void TfSettings::showAsChild()
{
  adoptChildWindow(this);
  QWidget* frame = windowOf(this);
  auto* child = qobject_cast<QMdiSubWindow*>(frame);
  if (child) {
    connect(child->mdiArea(), &QMdiArea::subWindowActivated, this, [this, child](QMdiSubWindow* active) {
      if (active == child)
        tellActive();
    });
    cascadeChildWindow(child);
  }
  show();
  frame->show();
  if (child)
    fitChildWindow(child);
  activateForm(this);
  tellActive();
  pcSettings->setFocus();
}

void TfSettings::tellActive()
{
  if (IMainFormIntf* main = mainForm())
    main->SetWindowTitle(windowTitle(), uniqueId_);
}

bool TfSettings::ShowModal(QWidget* parent)
{
  saved_ = false;
  QDialog frame(parent);
  frame.setObjectName(QStringLiteral("settingsFrame"));
  frame.setWindowTitle(windowTitle());
  auto* layout = new QVBoxLayout(&frame);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(this);
  show();
  cbxAddress->setFocus();
  frame.exec();
  setParent(nullptr);
  return saved_;
}

void TfSettings::closeEvent(QCloseEvent* event)
{
  if (IMainFormIntf* main = mainForm())
    main->WindowClosed(uniqueId_);
  QWidget::closeEvent(event);
}

void TfSettings::btnHelpClick()
{
  showHelpTopic(formId_);
}

void TfSettings::keyPressEvent(QKeyEvent* event)
{
  switch (event->key()) {
    case Qt::Key_F1: return btnHelpClick();
    case Qt::Key_Escape: return btnExitClick();
    case Qt::Key_Return:
    case Qt::Key_Enter: {
      auto* button = qobject_cast<QPushButton*>(focusWidget());
      return (button ? button : btnOK)->click();
    }
    default: QWidget::keyPressEvent(event);
  }
}

}  // namespace kalvor
