#include "common/windows/string_grid_output.h"

#include <QPagedPaintDevice>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <algorithm>

#include "common/grid_export.h"
#include "common/messages.h"
#include "common/save_file_question.h"
#include "data/data_error.h"
#include "platform/ports.h"
#include "session/error_log.h"
#include "widgets/string_grid.h"

namespace kalvor {

namespace {

// In tenths of a millimetre.
constexpr int topMargin = 100;
constexpr int bottomMargin = 200;
constexpr int gridRowHeight = 48;
constexpr int titleFont = 48;
constexpr int pageNumberFont = 36;
constexpr int rowFont = 38;
constexpr int headerLeft = 300;
constexpr int heavyRule = 6;
constexpr int lightRule = 1;
constexpr int cellTextGap = 8;

int rowsOnPage(int pageHeight)
{
  return std::max((pageHeight - topMargin - bottomMargin) / gridRowHeight, 1);
}

QFont fontOfHeight(int height)
{
  QFont font;
  font.setPixelSize(height);
  return font;
}

// Cells of the columns from left to right; columns that are wider than the page together share it out.
QList<int> columnEdges(const TStringGrid& grid, int pageWidth)
{
  QList<int> edges{0};
  for (int column = 0; column < grid.ColCount(); ++column)
    edges.append(edges.last() + grid.columnWidth(column) * 3 + 5);
  const int total = edges.last();
  if (total > pageWidth)
    for (int& edge : edges)
      edge = int(qint64(edge) * pageWidth / total);
  return edges;
}

class GridPagePainter {
 public:
  GridPagePainter(QPainter& painter, QSize page, const TStringGrid& grid, const QString& title,
                  const QStringList& headerLines)
    : painter_(painter), page_(page), grid_(grid), title_(title), header_(headerLines), edges_(columnEdges(grid, page.width())),
      rows_(rowsOnPage(page.height()))
  {
    // Header lines stand where rows would: the rows move together, so that all of them stay on the page.
    const int free = page.height() - topMargin - bottomMargin - int(header_.size()) * gridRowHeight;
    rowHeight_ = header_.isEmpty() ? gridRowHeight : std::clamp(free / rows_, 1, gridRowHeight);
  }

  void paint(int number, int pages)
  {
    frame(number, pages);
    int y = topMargin;
    painter_.setFont(fontOfHeight(rowFont));
    for (const QString& line : header_) {
      const GridHeaderLine header = gridHeaderLine(line);
      painter_.drawText(QRect(headerLeft, y, page_.width() - headerLeft, gridRowHeight), Qt::AlignVCenter,
                        header.name + QLatin1String(": ") + header.value);
      y += gridRowHeight;
    }
    painter_.setFont(fontOfHeight(std::min(rowFont, rowHeight_ * rowFont / gridRowHeight)));
    const int first = (number - 1) * rows_;
    for (int row = first; row < std::min(first + rows_, grid_.RowCount()); ++row, y += rowHeight_)
      paintRow(row, y);
  }

 private:
  void frame(int number, int pages)
  {
    const int width = page_.width();
    painter_.setPen(QPen(Qt::black, heavyRule));
    for (int y : {topMargin, page_.height() - bottomMargin})
      painter_.drawLine(0, y, width, y);
    painter_.setPen(QPen(Qt::black, lightRule));
    painter_.setFont(fontOfHeight(titleFont));
    painter_.drawText(QRect(0, 0, width, topMargin), Qt::AlignCenter, title_);
    painter_.setFont(fontOfHeight(pageNumberFont));
    painter_.drawText(QRect(0, page_.height() - bottomMargin, width, bottomMargin), Qt::AlignCenter,
                      QStringLiteral("Страница %1 / %2").arg(number).arg(pages));
  }

  void paintRow(int row, int y)
  {
    const QFontMetrics metrics = painter_.fontMetrics();
    for (int column = 0; column < grid_.ColCount(); ++column) {
      const QRect cell(edges_[column], y, edges_[column + 1] - edges_[column], rowHeight_);
      painter_.drawRect(cell);
      const QRect inside = cell.adjusted(cellTextGap, 0, -cellTextGap, 0);
      painter_.drawText(inside, Qt::AlignVCenter | Qt::TextSingleLine,
                        metrics.elidedText(grid_.Cells(column, row), Qt::ElideRight, inside.width()));
    }
  }

  QPainter& painter_;
  QSize page_;
  const TStringGrid& grid_;
  QString title_;
  QStringList header_;
  QList<int> edges_;
  int rows_;
  int rowHeight_;
};

// Runs the body that writes the file; what it raises is logged and told.
void writeTelling(const QString& context, const std::function<void()>& body)
{
  if (loggingErrors(context, body))
    showInformation(_inf_GridSaved);
  else
    showError(_err_GridExport);
}

}  // namespace

void ExportStrGridToExcel(QWidget*, const TStringGrid& grid, int titleRows, const QStringList& headerLines)
{
  const QString fileName =
      askSaveFile(_inf_EnterFileName, QStringLiteral("Microsoft Excel Files (*.xls)"), QStringLiteral("xls"));
  if (!fileName.isEmpty())
    writeTelling(QStringLiteral("CommonUtils.ExportStrGridToExcel"), [&] {
      writeGridSheet(grid.table(), titleRows, headerLines, fileName);
    });
}

void ExportStrGridToTXT(QWidget*, const TStringGrid& grid, const QStringList& headerLines)
{
  const QString fileName =
      askSaveFile(_inf_EnterFileName, QStringLiteral("Text Files (*.txt)"), QStringLiteral("txt"));
  if (!fileName.isEmpty())
    writeTelling(QStringLiteral("CommonUtils.ExportStrGridToTXT"), [&] {
      writeGridText(grid.table(), headerLines, fileName);
    });
}

int stringGridPages(int rows, int pageHeight)
{
  const int onPage = rowsOnPage(pageHeight);
  return (rows + onPage - 1) / onPage;
}

bool paintStringGrid(QPagedPaintDevice& device, const TStringGrid& grid, const QString& title,
                     const QStringList& headerLines)
{
  QPainter painter;
  if (!painter.begin(&device))
    return false;
  constexpr double unitsPerInch = 254;
  painter.scale(device.logicalDpiX() / unitsPerInch, device.logicalDpiY() / unitsPerInch);
  const QSize page(int(device.width() * unitsPerInch / device.logicalDpiX()),
                   int(device.height() * unitsPerInch / device.logicalDpiY()));
  GridPagePainter pagePainter(painter, page, grid, title, headerLines);
  const int pages = stringGridPages(grid.RowCount(), page.height());
  for (int number = 1; number <= pages; ++number) {
    if (number > 1 && !device.newPage())
      return false;
    pagePainter.paint(number, pages);
  }
  return painter.end();
}

void PrintStringGrid(const TStringGrid& grid, const QString& title, QPageLayout::Orientation orientation,
                     const QStringList& headerLines)
{
  const bool printed = loggingErrors(QStringLiteral("CommonUtils.PrintStringGrid"), [&] {
    const QPrinterInfo info = QPrinterInfo::defaultPrinter();
    if (info.isNull())
      throw DataError(QStringLiteral("Няма инсталиран принтер"));
    QPrinter printer(info, QPrinter::HighResolution);
    printer.setPageOrientation(orientation);
    printer.setDocName(title);
    const WaitCursorScope wait;
    if (!paintStringGrid(printer, grid, title, headerLines))
      throw DataError(QStringLiteral("Принтерът '%1' отказа").arg(printer.printerName()));
  });
  if (!printed)
    showError(QStringLiteral("Грешка при печат. Проверете принтера."));
}

}  // namespace kalvor
