// The pages of the import filters' form, and the tables that are only shown: the sample and the trial.
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTextDocument>
#include <QVBoxLayout>

#include "import/windows/import_filter_columns.h"
#include "import/windows/import_filters_form.h"
#include "widgets/db_grid_ex.h"
#include "widgets/string_grid.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int filterListWidth = 270;
constexpr int outcomeColumn = 2, firstHeadColumn = 5;  // of the documents of a trial
constexpr int widestShownColumn = 240;
constexpr int shownLineEndLength = 300;  // characters of a cell that are shown

QTableWidget* shownTable(const char* name, const QString& caption)
{
  auto* table = new QTableWidget;
  table->setObjectName(QLatin1String(name));
  table->setAccessibleName(caption);
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setSelectionMode(QAbstractItemView::SingleSelection);
  table->setTabKeyNavigation(false);
  table->setWordWrap(false);
  table->setFrameShape(QFrame::NoFrame);
  table->verticalHeader()->hide();
  table->verticalHeader()->setDefaultSectionSize(textLineHeight(table->fontMetrics()));
  table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  table->horizontalHeader()->setHighlightSections(false);
  return table;
}

void fitColumns(QTableWidget& table)
{
  table.resizeColumnsToContents();
  for (int column = 0; column < table.columnCount(); ++column) {
    table.setColumnWidth(column, std::min(table.columnWidth(column) + spacing::normal, widestShownColumn));
  }
}

void fillShownTable(QTableWidget& table, const QStringList& titles, const QList<QStringList>& rows)
{
  const QSignalBlocker quiet(&table);
  table.clear();
  table.setColumnCount(int(titles.size()));
  table.setRowCount(int(rows.size()));
  table.setHorizontalHeaderLabels(titles);
  for (int row = 0; row < rows.size(); ++row) {
    for (int column = 0; column < titles.size(); ++column) {
      const QString text = rows[row].value(column);
      auto* item = new QTableWidgetItem(text.left(shownLineEndLength).replace(u'\n', u' '));
      item->setToolTip(text);
      table.setItem(row, column, item);
    }
  }
  fitColumns(table);
}

TStringGrid* textGrid(const char* name, const QString& caption, const QStringList& titles, const QList<int>& widths)
{
  auto* grid = new TStringGrid(int(titles.size()));
  grid->setObjectName(QLatin1String(name));
  grid->setAccessibleName(caption);
  grid->table().setTitles(titles);
  grid->setColumnWidths(widths);
  grid->setFrameShape(QFrame::NoFrame);
  return grid;
}

QPlainTextEdit* textMemo(const char* name, const QString& caption)
{
  auto* memo = new QPlainTextEdit;
  memo->setObjectName(QLatin1String(name));
  memo->setAccessibleName(caption);
  memo->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  memo->setTabChangesFocus(true);
  memo->setFrameShape(QFrame::NoFrame);
  return memo;
}

QLabel* captionLabel(const QString& text)
{
  auto* label = new QLabel(text);
  label->setContentsMargins(spacing::cellPadding, spacing::tight, spacing::cellPadding, spacing::tight);
  return label;
}

QWidget* page(const QList<QWidget*>& parts, QWidget* focus, int stretched)
{
  auto* widget = new QWidget;
  auto* column = new QVBoxLayout(widget);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  for (int i = 0; i < parts.size(); ++i) {
    column->addWidget(parts[i], i == stretched ? 1 : 0);
  }
  widget->setFocusProxy(focus);
  return widget;
}

QString sourceText(const ImportSample& sample)
{
  if (!sample.error.isEmpty()) {
    return sample.error;
  }
  QStringList parts;
  switch (sample.source) {
    case ImportSample::Source::Sheet: parts << QStringLiteral("Електронна таблица, първият ред е заглавен"); break;
    case ImportSample::Source::Xml: parts << QStringLiteral("XML през преобразуването на филтъра"); break;
    case ImportSample::Source::Text: {
      const std::pair<const char16_t*, const char16_t*> names[] = {
          {u"SEMICOLON", u"точка и запетая"}, {u"TAB", u"табулатор"}, {u"COMMA", u"запетая"}, {u"FIXEDLEN", u"постоянна ширина"}};
      QString delimiter = QStringLiteral("няма");
      for (const auto& [option, name] : names) {
        if (sample.delimiter == option) {
          delimiter = QString::fromUtf16(name);
        }
      }
      parts << QStringLiteral("Текст, ") + sample.encoding
            << QStringLiteral("разделител: ") + delimiter + (sample.delimiterFound ? QStringLiteral(" (открит във файла)") : QString());
      break;
    }
  }
  parts << QStringLiteral("колони: %1").arg(sample.columnCount)
        << (sample.moreRows ? QStringLiteral("първите %1 реда") : QStringLiteral("редове: %1")).arg(sample.rows.size());
  return parts.join(QStringLiteral("; "));
}

// A value that did not go in stands, marked, where it was to go: what the record holds there is something else.
void markRefusals(QTableWidget& table, int row, const QStringList& captions, int firstColumn,
                  const QList<ImportTrialFailure>& failures, const std::function<bool(const ImportTrialFailure&)>& isHere)
{
  for (const ImportTrialFailure& failure : failures) {
    const int column = int(captions.indexOf(failure.field));
    if (column < 0 || failure.field.isEmpty() || !isHere(failure)) {
      continue;
    }
    QTableWidgetItem* item = table.item(row, firstColumn + column);
    item->setText(failure.value);
    item->setToolTip(failure.reason);
    item->setBackground(theme().invalid);
  }
}

}  // namespace

// --- Layout ----------------------------------------------------------------------------------------------------

void TfEdImportFilters::buildPages()
{
  pcPages = new QTabWidget(this);
  pcPages->setObjectName(QStringLiteral("pcPages"));
  pcPages->setDocumentMode(true);
  pcPages->tabBar()->setFocusPolicy(Qt::NoFocus);
  ebxFile = new QLineEdit(this);
  btnFile = new QPushButton(QStringLiteral("Избор (F7)"), this);
  btnTry = new QPushButton(QStringLiteral("Проба (F9)"), this);
  btnDelimiter = new QPushButton(QStringLiteral("Приемане на &разделителя"), this);
  lblSample = new QLabel(this);
  lblProblems = captionLabel(QString());
  lblProblems->setParent(this);
  pcPages->addTab(buildMappingPage(), QStringLiteral("Полета"));
  pcPages->addTab(buildOptionsPage(), QStringLiteral("Настройки"));
  pcPages->addTab(buildTextPage(), QStringLiteral("Текст"));
  pcPages->addTab(buildSchemaPage(), QStringLiteral("XML"));
  pcPages->addTab(buildTrialPage(), QStringLiteral("Проба"));
}

void TfEdImportFilters::buildLayout()
{
  if (layout()) {
    return;
  }
  auto* right = new QWidget;
  auto* rightColumn = new QVBoxLayout(right);
  rightColumn->setContentsMargins(0, 0, 0, 0);
  rightColumn->setSpacing(0);
  rightColumn->addWidget(buildFileBar());
  rightColumn->addWidget(lblProblems);
  rightColumn->addWidget(pcPages, 1);
  lblProblems->setAutoFillBackground(true);
  QPalette warning = lblProblems->palette();
  warning.setColor(QPalette::Window, theme().invalid);
  lblProblems->setPalette(warning);
  lblProblems->hide();
  auto* splitter = new QSplitter(Qt::Horizontal, this);
  splitter->setChildrenCollapsible(false);
  splitter->setHandleWidth(spacing::tight);
  splitter->addWidget(dbgMaster_);
  splitter->addWidget(right);
  splitter->setStretchFactor(0, 0);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({filterListWidth, width() - filterListWidth});
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(splitter);
}

QWidget* TfEdImportFilters::buildFileBar()
{
  const std::pair<QWidget*, const char*> names[] = {
      {ebxFile, "ebxFile"}, {btnFile, "btnFile"}, {btnTry, "btnTry"}, {btnDelimiter, "btnDelimiter"}, {lblSample, "lblSample"}, {lblProblems, "lblProblems"}};
  for (const auto& [widget, name] : names) {
    widget->setObjectName(QLatin1String(name));
  }
  auto* bar = new QWidget;
  auto* column = new QVBoxLayout(bar);
  column->setContentsMargins(spacing::normal, spacing::normal, spacing::normal, spacing::tight);
  column->setSpacing(spacing::tight);
  auto* fileRow = new QHBoxLayout;
  auto* caption = new QLabel(QStringLiteral("Примерен файл:"));
  ebxFile->setReadOnly(true);
  ebxFile->setFocusPolicy(Qt::ClickFocus);
  ebxFile->setAccessibleName(QStringLiteral("Примерен файл"));
  fileRow->addWidget(caption);
  fileRow->addWidget(ebxFile, 1);
  fileRow->addWidget(btnFile);
  fileRow->addWidget(btnTry);
  auto* sampleRow = new QHBoxLayout;
  sampleRow->addWidget(lblSample, 1);
  sampleRow->addWidget(btnDelimiter);
  column->addLayout(fileRow);
  column->addLayout(sampleRow);
  for (QPushButton* button : {btnFile, btnTry, btnDelimiter}) {
    button->setAutoDefault(false);
  }
  btnDelimiter->hide();
  connect(btnFile, &QPushButton::clicked, this, [this] { execute(QStringLiteral("acSampleFile")); });
  connect(btnTry, &QPushButton::clicked, this, [this] { execute(QStringLiteral("acTryFilter")); });
  connect(btnDelimiter, &QPushButton::clicked, this, [this] { takeDelimiter(); });
  showSample();
  return bar;
}

QWidget* TfEdImportFilters::buildMappingPage()
{
  grdMapping = textGrid("grdMapping", QStringLiteral("Полета"),
                        {QStringLiteral("Част"), QStringLiteral("Поле"), QStringLiteral("Име"), QStringLiteral("Колона"),
                         QStringLiteral("Във файла"), QStringLiteral("По подразбиране"), QStringLiteral("Ключ"),
                         QStringLiteral("Търсене"), QStringLiteral("Обхват")},
                        {78, 138, 104, 64, 88, 124, 46, 142, 64});
  grdMapping->OnGetEditor = [this](int column, int row) {
    using Kind = StringCellEditor::Kind;
    const bool isLookup = rows_.value(row - 1).isLookup;
    if (!mayChange()) {
      return StringCellEditor{Kind::None, {}, {}};
    }
    switch (column) {
      case mcColumn: {
        QStringList columns;
        for (int i = 0; i < sample_.columnCount; ++i) {
          const QString heading = sample_.headings.value(i);
          columns.append(heading.isEmpty() ? QString::number(i + 1) : QStringLiteral("%1 %2").arg(i + 1).arg(heading));
        }
        return StringCellEditor{isLookup ? Kind::None : columns.isEmpty() ? Kind::Plain : Kind::DropDown, columns, {}};
      }
      case mcKey: return StringCellEditor{Kind::DropDown, {QStringLiteral("да"), QStringLiteral("не")}, {}};
      case mcLookup: return StringCellEditor{Kind::Ellipsis, {}, {}};
      case mcDefault:
      case mcRange: return StringCellEditor{isLookup ? Kind::None : Kind::Plain, {}, {}};
      default: return StringCellEditor{Kind::None, {}, {}};
    }
  };
  grdMapping->OnEdited = [this](int column, int row) { mappingEdited(column, row); };
  grdMapping->OnEllipsis = [this](int, int) { editLookup(); };
  tblSample = shownTable("tblSample", QStringLiteral("Редове на файла"));
  auto* splitter = new QSplitter(Qt::Vertical);
  splitter->setChildrenCollapsible(false);
  splitter->setHandleWidth(spacing::tight);
  splitter->addWidget(grdMapping);
  splitter->addWidget(tblSample);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 2);
  return page({splitter}, grdMapping, 0);
}

QWidget* TfEdImportFilters::buildOptionsPage()
{
  grdOptions = textGrid("grdOptions", QStringLiteral("Настройки"),
                        {QStringLiteral("Настройка"), QStringLiteral("Име"), QStringLiteral("Стойност"), QStringLiteral("Пояснение")},
                        {264, 172, 110, 244});
  const QList<ImportOption>& options = importOptions();
  grdOptions->table().SetRowCount(int(options.size()) + 1);
  for (int i = 0; i < options.size(); ++i) {
    grdOptions->SetCells(ocCaption, i + 1, options[i].caption);
    grdOptions->SetCells(ocKey, i + 1, options[i].key);
    grdOptions->SetCells(ocHint, i + 1, options[i].hint);
  }
  grdOptions->OnGetEditor = [this](int column, int row) {
    const QStringList values = importOptions().value(row - 1).values;
    const bool editable = column == ocValue && mayChange();
    return StringCellEditor{!editable          ? StringCellEditor::Kind::None
                            : values.isEmpty() ? StringCellEditor::Kind::Plain
                                               : StringCellEditor::Kind::DropDown,
                            values, {}};
  };
  grdOptions->OnEdited = [this](int, int row) { optionEdited(row); };
  auto* hint = captionLabel(QString());
  connect(grdOptions->selectionModel(), &QItemSelectionModel::currentChanged, this, [hint](const QModelIndex& current) {
    const ImportOption option = importOptions().value(current.row());
    hint->setText(option.caption + QStringLiteral(": ") + option.hint);
  });
  grdOptions->select(ocValue, 1);
  return page({grdOptions, hint}, grdOptions, 0);
}

QWidget* TfEdImportFilters::buildTextPage()
{
  memText = textMemo("memText", QStringLiteral("Текст на филтъра"));
  memText->setLineWrapMode(QPlainTextEdit::NoWrap);
  lbProblems = new QListWidget;
  lbProblems->setObjectName(QStringLiteral("lbProblems"));
  lbProblems->setAccessibleName(QStringLiteral("Грешки в текста"));
  lbProblems->setFrameShape(QFrame::NoFrame);
  connect(lbProblems, &QListWidget::itemActivated, this, [this] { goToProblem(lbProblems->currentRow()); });
  connect(memText, &QPlainTextEdit::textChanged, this, [this] {
    if (!showing_) {
      changeText(ImportText(storedImportText(memText->document()->toRawText())), Source::Memo);
    }
  });
  auto* splitter = new QSplitter(Qt::Vertical);
  splitter->setChildrenCollapsible(false);
  splitter->setHandleWidth(spacing::tight);
  splitter->addWidget(memText);
  splitter->addWidget(page({captionLabel(QStringLiteral("Грешки в текста")), lbProblems}, lbProblems, 1));
  splitter->setStretchFactor(0, 4);
  splitter->setStretchFactor(1, 1);
  return page({splitter}, memText, 0);
}

QWidget* TfEdImportFilters::buildSchemaPage()
{
  memSchema = textMemo("memSchema", QStringLiteral("XSLT преобразуване"));
  memSchema->setLineWrapMode(QPlainTextEdit::NoWrap);
  connect(memSchema, &QPlainTextEdit::textChanged, this, [this] { schemaEdited(); });
  return page({captionLabel(QStringLiteral("XSLT преобразуване, което прави от XML файл таблица (table, row, c)")), memSchema},
              memSchema, 1);
}

QWidget* TfEdImportFilters::buildTrialPage()
{
  lblTrial = captionLabel(QString());
  lblTrial->setObjectName(QStringLiteral("lblTrial"));
  tblDocuments = shownTable("tblDocuments", QStringLiteral("Документи"));
  tblLines = shownTable("tblLines", QStringLiteral("Редове на документа"));
  tblFailures = shownTable("tblFailures", QStringLiteral("Какво не може да се внесе"));
  connect(tblDocuments, &QTableWidget::currentCellChanged, this, [this](int row) { showTrialDocument(row); });
  auto* splitter = new QSplitter(Qt::Vertical);
  splitter->setChildrenCollapsible(false);
  splitter->setHandleWidth(spacing::tight);
  splitter->addWidget(tblDocuments);
  splitter->addWidget(page({captionLabel(QStringLiteral("Редове на избрания документ")), tblLines}, tblLines, 1));
  splitter->addWidget(page({captionLabel(QStringLiteral("Забележки към избрания документ")), tblFailures}, tblFailures, 1));
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 3);
  splitter->setStretchFactor(2, 2);
  return page({lblTrial, splitter}, tblDocuments, 1);
}

// --- What is only shown ----------------------------------------------------------------------------------------

void TfEdImportFilters::showSample()
{
  const bool chosen = !sampleFile_.isEmpty();
  lblSample->setText(chosen ? sourceText(sample_) : QStringLiteral("Изберете файл, за да видите колоните му и да опитате филтъра."));
  btnDelimiter->setVisible(chosen && sample_.delimiterFound);
  QStringList titles{QStringLiteral("Ред")};
  const bool fixedWidth = sample_.delimiter == u"FIXEDLEN";
  for (int column = 0; column < sample_.columnCount; ++column) {
    const QString heading = sample_.headings.value(column);
    const bool whole = fixedWidth && column + 1 == sample_.columnCount;
    titles.append(whole               ? QStringLiteral("Целият ред")
                  : heading.isEmpty() ? QString::number(column + 1)
                                      : QStringLiteral("%1 %2").arg(column + 1).arg(heading));
  }
  QList<QStringList> rows;
  for (int i = 0; i < sample_.rows.size(); ++i) {
    rows.append(QStringList{QString::number(sample_.firstRowNumber + i)} + sample_.rows[i]);
  }
  fillShownTable(*tblSample, titles, rows);
}

void TfEdImportFilters::showTrial()
{
  QStringList titles{QStringLiteral("№"), QStringLiteral("От ред"), QStringLiteral("Какво ще стане"), QStringLiteral("Редове"),
                     QStringLiteral("Грешки")};
  titles += trial_.headCaptions;
  QList<QStringList> rows;
  int failed = 0;
  for (const ImportTrialDocument& document : trial_.documents) {
    const auto fatal = std::count_if(document.failures.begin(), document.failures.end(),
                                     [](const ImportTrialFailure& failure) { return failure.fatal; });
    failed += document.outcome == ImportTrialDocument::Outcome::Failed ? 1 : 0;
    QStringList cells{QString::number(rows.size() + 1), QString::number(document.row), importOutcomeText(document.outcome),
                      QString::number(document.lines.size()) + (document.moreLines ? QStringLiteral("+") : QString()),
                      QString::number(fatal)};
    rows.append(cells + document.head);
  }
  fillShownTable(*tblDocuments, titles, rows);
  for (int row = 0; row < rows.size(); ++row) {
    if (trial_.documents[row].outcome == ImportTrialDocument::Outcome::Failed) {
      tblDocuments->item(row, outcomeColumn)->setBackground(theme().invalid);
    }
    markRefusals(*tblDocuments, row, trial_.headCaptions, firstHeadColumn, trial_.documents[row].failures,
                 [](const ImportTrialFailure& failure) { return !failure.inLine; });
  }
  fitColumns(*tblDocuments);
  QString said = QStringLiteral("Още не е правена проба. Тя нищо не записва.");
  if (!trial_.error.isEmpty()) {
    said = QString(trial_.error).remove(u'\r');
  } else if (!rows.isEmpty()) {
    said = (trial_.moreDocuments ? QStringLiteral("Първите %1 документа") : QStringLiteral("Документи: %1")).arg(rows.size()) +
           QStringLiteral("; няма да се внесат: %1. Нищо не е записано.").arg(failed);
  }
  lblTrial->setText(said);
  if (!rows.isEmpty()) {
    tblDocuments->setCurrentCell(0, 0);
  }
  showTrialDocument(rows.isEmpty() ? -1 : 0);
}

void TfEdImportFilters::showTrialDocument(int index)
{
  const ImportTrialDocument document = trial_.documents.value(index);
  QList<QStringList> lines;
  for (int i = 0; i < document.lines.size(); ++i) {
    const int row = document.lineRows.value(i);
    lines.append(QStringList{row > 0 ? QString::number(row) : QString()} + document.lines[i]);
  }
  fillShownTable(*tblLines, QStringList{QStringLiteral("От ред")} + trial_.lineCaptions, lines);
  for (int i = 0; i < lines.size(); ++i) {
    markRefusals(*tblLines, i, trial_.lineCaptions, 1, document.failures, [row = document.lineRows.value(i)](const ImportTrialFailure& failure) {
      return failure.inLine && failure.row == row;
    });
  }
  fitColumns(*tblLines);
  QList<QStringList> failures;
  for (const ImportTrialFailure& failure : document.failures) {
    failures.append({failure.row > 0 ? QString::number(failure.row) : QString(),
                     failure.fatal ? QStringLiteral("Грешка") : QStringLiteral("Съобщение"), failure.field, failure.value,
                     QString(failure.reason).remove(u'\r')});
  }
  fillShownTable(*tblFailures,
                 {QStringLiteral("От ред"), QStringLiteral("Вид"), QStringLiteral("Поле"), QStringLiteral("Стойност"), QStringLiteral("Причина")},
                 failures);
  tblFailures->horizontalHeader()->setStretchLastSection(true);
}

}  // namespace kalvor
