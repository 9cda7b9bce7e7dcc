// The pages of the settings form: what stands on them and how it looks.
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "session/windows/drop_down_box.h"
#include "session/windows/settings_form.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

constexpr int settingsBoxWidth = 300;
constexpr int numberBoxWidth = 90;

template <class Control>
Control* namedControl(Control* control, const char* name)
{
  control->setObjectName(QLatin1String(name));
  return control;
}

template <class Button>
Button* captioned(const char16_t* text, const char* name)
{
  return namedControl(new Button(QString::fromUtf16(text)), name);
}

QSpinBox* numberBox(int least, int most, const char* name)
{
  auto* box = namedControl(new QSpinBox, name);
  box->setRange(least, most);
  box->setFixedWidth(numberBoxWidth);
  return box;
}

// What is typed stays as typed: earlier texts are offered in the list alone.
QComboBox* historyBox(const char* name)
{
  auto* box = namedControl(new QComboBox, name);
  box->setEditable(true);
  box->setInsertPolicy(QComboBox::NoInsert);
  box->setCompleter(nullptr);
  box->setMinimumWidth(settingsBoxWidth);
  return box;
}

QFormLayout* labelledFields()
{
  auto* fields = new QFormLayout;
  fields->setHorizontalSpacing(spacing::wide);
  fields->setVerticalSpacing(spacing::normal);
  fields->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  fields->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  return fields;
}

void addLabelled(QFormLayout* fields, const char16_t* text, QWidget* field)
{
  field->setAccessibleName(QString::fromUtf16(text));
  fields->addRow(QString::fromUtf16(text), field);
}

QHBoxLayout* sideBySide(std::initializer_list<QWidget*> widgets)
{
  auto* row = new QHBoxLayout;
  row->setSpacing(spacing::normal);
  for (QWidget* widget : widgets)
    row->addWidget(widget);
  row->addStretch();
  return row;
}

QVBoxLayout* pageColumn(QWidget* page)
{
  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  column->setSpacing(spacing::normal);
  return column;
}

}  // namespace

void TfSettings::build()
{
  setObjectName(QStringLiteral("fSettings"));
  setWindowTitle(QStringLiteral("Настройки"));
  setWindowIcon(icon(QStringLiteral("configure")));
  pcSettings = namedControl(new QTabWidget, "pcSettings");
  tsConnection = namedControl(buildConnection(), "tsConnection");
  tsDevices = namedControl(buildDevices(), "tsDevices");
  tsOptions = namedControl(buildOptions(), "tsOptions");
  tsExport = namedControl(buildExport(), "tsExport");
  const std::pair<QWidget*, const char16_t*> pages[] = {
      {tsConnection, u"Връзка"}, {tsDevices, u"Устройства"}, {tsOptions, u"Опции"}, {tsExport, u"Export към TXT"}};
  for (const auto& [page, title] : pages) {
    const int index = pcSettings->addTab(page, QString::fromUtf16(title));
    const QKeySequence key(Qt::ALT | Qt::Key(Qt::Key_1 + index));
    pcSettings->setTabToolTip(index, key.toString(QKeySequence::NativeText));
    auto* shortcut = new QShortcut(key, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, [this, shown = page] {
      if (pcSettings->isTabVisible(pcSettings->indexOf(shown)))
        pcSettings->setCurrentWidget(shown);
    });
  }

  btnHelp = captioned<QPushButton>(u"Помощ", "btnHelp");
  btnOK = captioned<QPushButton>(u"Ok", "btnOK");
  btnExit = captioned<QPushButton>(u"Изход", "btnExit");
  connect(btnHelp, &QPushButton::clicked, this, &TfSettings::btnHelpClick);
  connect(btnOK, &QPushButton::clicked, this, &TfSettings::btnOKClick);
  connect(btnExit, &QPushButton::clicked, this, &TfSettings::btnExitClick);
  btnOK->setDefault(true);
  auto* buttons = sideBySide({btnHelp});
  buttons->addWidget(btnOK);
  buttons->addWidget(btnExit);

  auto* all = new QVBoxLayout(this);
  all->setSpacing(spacing::wide);
  all->addWidget(pcSettings);
  all->addLayout(buttons);
  // Focus into a frame around the form goes to its first control.
  setFocusProxy(pcSettings);
}

QWidget* TfSettings::buildConnection()
{
  ebxPort = numberBox(1, 65535, "ebxPort");
  cbxAddress = historyBox("cbxAddress");
  btnTest = captioned<QPushButton>(u"Тест", "btnTest");
  connect(btnTest, &QPushButton::clicked, this, &TfSettings::btnTestClick);
  auto* page = new QWidget;
  auto* column = pageColumn(page);
  auto* fields = labelledFields();
  addLabelled(fields, u"Адрес:", cbxAddress);
  addLabelled(fields, u"Порт:", ebxPort);
  fields->addRow(QString(), btnTest);
  column->addLayout(fields);
  column->addStretch();
  return page;
}

QWidget* TfSettings::buildDevices()
{
  cbxPrn = historyBox("cbxPrn");
  auto* printers = namedControl(new DropDownBox, "cbxFiscalPrinter");
  cbxFiscalPrinter = printers;
  printers->setMinimumWidth(settingsBoxWidth);
  printers->aboutToDrop = [this] { cbxFiscalPrinterDropDown(); };
  connect(cbxFiscalPrinter, &QComboBox::currentIndexChanged, this, &TfSettings::cbxFiscalPrinterChange);
  btnFiscalSettings = captioned<QPushButton>(u"Настройки", "btnFiscalSettings");
  btnFiscalPrinterReport = captioned<QPushButton>(u"Отчети", "btnFiscalPrinterReport");
  connect(btnFiscalSettings, &QPushButton::clicked, this, &TfSettings::btnFiscalSettingsClick);
  connect(btnFiscalPrinterReport, &QPushButton::clicked, this, &TfSettings::btnFiscalPrinterReportClick);
  ebxBarcodeStart = namedControl(new QLineEdit, "ebxBarcodeStart");
  ebxBarcodeStart->setFixedWidth(numberBoxWidth);
  ebxMeasureBarcode = numberBox(0, 100, "ebxMeasureBarcode");

  auto* page = new QWidget;
  auto* column = pageColumn(page);
  auto* fields = labelledFields();
  addLabelled(fields, u"Текстови печат:", cbxPrn);
  addLabelled(fields, u"Фискален принтер:", cbxFiscalPrinter);
  fields->addRow(QString(), sideBySide({btnFiscalSettings, btnFiscalPrinterReport}));
  addLabelled(fields, u"Начален символ на баркод:", ebxBarcodeStart);
  addLabelled(fields, u"Цифри на теглови баркод:", ebxMeasureBarcode);
  column->addLayout(fields);
  column->addStretch();
  return page;
}

QWidget* TfSettings::buildOptions()
{
  cbxFitrer = captioned<QCheckBox>(u"Филтри", "cbxFitrer");
  cbxSortOrder = captioned<QCheckBox>(u"Сортиране", "cbxSortOrder");
  cbxGrids = captioned<QCheckBox>(u"Свойства на таблици", "cbxGrids");
  cbxFormSize = captioned<QCheckBox>(u"Размер на форми", "cbxFormSize");
  cbxColors = captioned<QCheckBox>(u"Оцветяване", "cbxColors");
  auto* used = new QGroupBox(QStringLiteral("Запомняне и прилагане"));
  auto* checks = pageColumn(used);
  for (QCheckBox* box : {cbxFitrer, cbxSortOrder, cbxGrids, cbxFormSize, cbxColors})
    checks->addWidget(box);

  btnFilter = captioned<QPushButton>(u"Изтрий", "btnFilter");
  btnGrids = captioned<QPushButton>(u"Изтрий", "btnGrids");
  btnForms = captioned<QPushButton>(u"Изтрий", "btnForms");
  connect(btnFilter, &QPushButton::clicked, this, &TfSettings::btnFilterClick);
  connect(btnGrids, &QPushButton::clicked, this, &TfSettings::btnGridsClick);
  connect(btnForms, &QPushButton::clicked, this, &TfSettings::btnFormsClick);
  auto* stored = new QGroupBox(QStringLiteral("Запазени настройки"));
  auto* deletions = labelledFields();
  deletions->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  stored->setLayout(deletions);
  const std::pair<QPushButton*, const char16_t*> kinds[] = {
      {btnFilter, u"Филтри и сортиране"}, {btnGrids, u"Свойства на таблици"}, {btnForms, u"Размер на форми"}};
  for (const auto& [button, what] : kinds) {
    addLabelled(deletions, what, button);
    button->setAccessibleName(button->text() + QStringLiteral(": ") + QString::fromUtf16(what));
  }

  auto* page = new QWidget;
  auto* column = pageColumn(page);
  column->setSpacing(spacing::wide);
  column->addWidget(used);
  column->addWidget(stored);
  column->addStretch();
  return page;
}

QWidget* TfSettings::buildExport()
{
  rbFixedLength = captioned<QRadioButton>(u"Фиксирана дължина", "rbFixedLength");
  rbSeparator = captioned<QRadioButton>(u"С разделетел между полетата", "rbSeparator");
  rbTab = captioned<QRadioButton>(u"Табулация", "rbTab");
  rbComma = captioned<QRadioButton>(u"Запетая", "rbComma");
  rbPointComma = captioned<QRadioButton>(u"Точка и запетая (;)", "rbPointComma");
  rbOtherSimbol = captioned<QRadioButton>(u"Друг символ", "rbOtherSimbol");
  ebxSeparator = namedControl(new QLineEdit, "ebxSeparator");
  ebxSeparator->setFixedWidth(numberBoxWidth);
  ebxSeparator->setAccessibleName(rbOtherSimbol->text());
  cbxCaption = captioned<QCheckBox>(u"Заглавия на колони", "cbxCaption");
  cbxDosFormat = captioned<QCheckBox>(u"DOS формат", "cbxDosFormat");
  ebxDigit = numberBox(0, 6, "ebxDigit");
  ebxDigit->setValue(2);

  auto* page = new QWidget;
  auto* shapes = new QButtonGroup(page);
  auto* separators = new QButtonGroup(page);
  for (QRadioButton* shape : {rbFixedLength, rbSeparator}) {
    shapes->addButton(shape);
    connect(shape, &QRadioButton::toggled, this, &TfSettings::updateSeparators);
    connect(shape, &QRadioButton::clicked, this, &TfSettings::updateSeparators);
  }
  auto* choices = new QVBoxLayout;
  choices->setContentsMargins(spacing::wide + spacing::normal, 0, 0, 0);
  choices->setSpacing(spacing::normal);
  for (QRadioButton* choice : {rbTab, rbComma, rbPointComma}) {
    separators->addButton(choice);
    choices->addWidget(choice);
  }
  separators->addButton(rbOtherSimbol);
  choices->addLayout(sideBySide({rbOtherSimbol, ebxSeparator}));
  connect(ebxSeparator, &QLineEdit::textEdited, rbOtherSimbol, [this] { rbOtherSimbol->setChecked(true); });

  auto* fields = labelledFields();
  addLabelled(fields, u"Дробна част", ebxDigit);
  auto* column = pageColumn(page);
  column->addWidget(rbFixedLength);
  column->addWidget(rbSeparator);
  column->addLayout(choices);
  column->addSpacing(spacing::normal);
  column->addWidget(cbxCaption);
  column->addWidget(cbxDosFormat);
  column->addLayout(fields);
  column->addStretch();
  return page;
}

void TfSettings::updateSeparators()
{
  for (QWidget* choice : std::initializer_list<QWidget*>{rbTab, rbComma, rbPointComma, rbOtherSimbol, ebxSeparator})
    choice->setEnabled(rbSeparator->isChecked());
}

void TfSettings::showExportOptions(const TExportOptions& options)
{
  const std::pair<ExportSeparator, QRadioButton*> choices[] = {{ExportSeparator::Tab, rbTab},
                                                               {ExportSeparator::Comma, rbComma},
                                                               {ExportSeparator::Semicolon, rbPointComma},
                                                               {ExportSeparator::Symbol, rbOtherSimbol}};
  (options.separator == ExportSeparator::Fixed ? rbFixedLength : rbSeparator)->setChecked(true);
  for (const auto& [separator, button] : choices)
    if (separator == options.separator)
      button->setChecked(true);
  if (options.separator == ExportSeparator::Symbol)
    ebxSeparator->setText(options.symbol);
  cbxCaption->setChecked(options.captions);
  cbxDosFormat->setChecked(options.dosCodePage);
  ebxDigit->setValue(options.decimals);
  updateSeparators();
}

TExportOptions TfSettings::exportOptions() const
{
  TExportOptions options;
  if (!rbFixedLength->isChecked())
    options.separator = rbTab->isChecked()          ? ExportSeparator::Tab
                        : rbComma->isChecked()      ? ExportSeparator::Comma
                        : rbPointComma->isChecked() ? ExportSeparator::Semicolon
                                                    : ExportSeparator::Symbol;
  options.symbol = ebxSeparator->text();
  options.captions = cbxCaption->isChecked();
  options.dosCodePage = cbxDosFormat->isChecked();
  options.decimals = ebxDigit->value();
  return options;
}

}  // namespace kalvor
