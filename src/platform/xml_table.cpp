#include "platform/xml_table.h"

#include <libexslt/exslt.h>
#include <libxml/parserInternals.h>
#include <libxslt/documents.h>
#include <libxslt/security.h>
#include <libxslt/transform.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <QFile>
#include <QFileInfo>
#include <cstdarg>
#include <memory>

#include "data/data_error.h"

namespace kalvor {
namespace {

constexpr qint64 mostXmlBytes = 128 << 20;
constexpr unsigned long mostSteps = 100'000'000;  // instructions of one transformation
constexpr unsigned long mostXPathSteps = 1'000'000'000;
constexpr int mostTemplateDepth = 1000;

template <auto Free>
struct FreeWith {
  template <class T>
  void operator()(T* pointer) const { Free(pointer); }
};
using XmlDocument = std::unique_ptr<xmlDoc, FreeWith<xmlFreeDoc>>;
using XmlParser = std::unique_ptr<xmlParserCtxt, FreeWith<xmlFreeParserCtxt>>;
using Stylesheet = std::unique_ptr<xsltStylesheet, FreeWith<xsltFreeStylesheet>>;
using Transformation = std::unique_ptr<xsltTransformContext, FreeWith<xsltFreeTransformContext>>;
using SecurityRules = std::unique_ptr<xsltSecurityPrefs, FreeWith<xsltFreeSecurityPrefs>>;

// The first message of the library since the last look, without its line end.
thread_local QString firstXmlMessage;

void keepXmlError(void*, xmlErrorPtr error)
{
  if (firstXmlMessage.isEmpty() && error && error->message)
    firstXmlMessage = QString::fromUtf8(error->message).trimmed();
}

void keepXsltMessage(void*, const char* format, ...)
{
  if (!firstXmlMessage.isEmpty())
    return;
  va_list arguments;
  va_start(arguments, format);
  firstXmlMessage = QString::vasprintf(format, arguments).trimmed();
  va_end(arguments);
}

[[noreturn]] void refuseXml(const QString& what)
{
  const QString reason = std::exchange(firstXmlMessage, QString());
  throw DataError(reason.isEmpty() ? what : what + QStringLiteral(": ") + reason);
}

xmlDocPtr loadNothing(const xmlChar*, xmlDictPtr, int, void*, xsltLoadType) { return nullptr; }

// The library's process-wide state: nothing is loaded from anywhere, EXSLT is there.
void prepareXslt()
{
  static const bool prepared = [] {
    xmlInitParser();
    exsltCommonRegister();
    exsltMathRegister();
    exsltSetsRegister();
    exsltStrRegister();
    exsltDateRegister();
    exsltFuncRegister();
    xsltSetLoaderFunc(loadNothing);
    return true;
  }();
  Q_UNUSED(prepared);
  firstXmlMessage.clear();
  xmlSetStructuredErrorFunc(nullptr, keepXmlError);
  xsltSetGenericErrorFunc(nullptr, keepXsltMessage);
}

// Before anything that the DOCTYPE declares is read.
void stopAtDoctype(void* context, const xmlChar*, const xmlChar*, const xmlChar*)
{
  const auto parser = static_cast<xmlParserCtxtPtr>(context);
  *static_cast<bool*>(parser->_private) = true;
  xmlStopParser(parser);
}

XmlDocument parseXml(const QByteArray& bytes, const QString& refusal)
{
  const XmlParser parser(xmlNewParserCtxt());
  if (!parser || bytes.size() > mostXmlBytes)
    refuseXml(refusal);
  bool hasDoctype = false;
  parser->_private = &hasDoctype;
  parser->sax->internalSubset = stopAtDoctype;
  XmlDocument document(xmlCtxtReadMemory(parser.get(), bytes.constData(), int(bytes.size()), nullptr, nullptr,
                                         XML_PARSE_NONET | XML_PARSE_NOCDATA | XML_PARSE_COMPACT));
  if (hasDoctype)
    firstXmlMessage = QStringLiteral("DOCTYPE не се приема");
  if (hasDoctype || !document || !parser->wellFormed)
    refuseXml(refusal);
  return document;
}

Stylesheet parseStylesheet(const QByteArray& bytes)
{
  const QString refusal = QStringLiteral("Схемата за преобразуване на XML не се чете");
  if (bytes.trimmed().isEmpty())
    refuseXml(QStringLiteral("Няма схема за преобразуване на XML"));
  XmlDocument document = parseXml(bytes, refusal);
  Stylesheet stylesheet(xsltParseStylesheetDoc(document.get()));
  if (!stylesheet)
    refuseXml(refusal);
  document.release();  // the stylesheet's now
  if (stylesheet->errors > 0)
    refuseXml(refusal);
  return stylesheet;
}

SecurityRules forbidEverything()
{
  SecurityRules rules(xsltNewSecurityPrefs());
  for (const auto option : {XSLT_SECPREF_READ_FILE, XSLT_SECPREF_WRITE_FILE, XSLT_SECPREF_CREATE_DIRECTORY,
                            XSLT_SECPREF_READ_NETWORK, XSLT_SECPREF_WRITE_NETWORK})
    xsltSetSecurityPrefs(rules.get(), option, xsltSecurityForbid);
  return rules;
}

XmlDocument transformXml(xmlDocPtr source, xsltStylesheetPtr stylesheet)
{
  const QString refusal = QStringLiteral("Преобразуването на XML не успя");
  const Transformation context(xsltNewTransformContext(stylesheet, source));
  const SecurityRules rules = forbidEverything();
  if (!context || !rules || xsltSetCtxtSecurityPrefs(rules.get(), context.get()) != 0)
    refuseXml(refusal);
  xsltSetTransformErrorFunc(context.get(), nullptr, keepXsltMessage);
  context->opLimit = mostSteps;
  context->maxTemplateDepth = mostTemplateDepth;
  context->xpathCtxt->opLimit = mostXPathSteps;
  XmlDocument result(xsltApplyStylesheetUser(stylesheet, source, nullptr, nullptr, nullptr, context.get()));
  if (!result || context->state != XSLT_STATE_OK)
    refuseXml(refusal);
  return result;
}

bool isXmlElement(const xmlNode* node, const char* name)
{
  return node->type == XML_ELEMENT_NODE && xmlStrEqual(node->name, reinterpret_cast<const xmlChar*>(name));
}

const xmlNode* firstXmlElement(const xmlNode* node)
{
  while (node && node->type != XML_ELEMENT_NODE)
    node = node->next;
  return node;
}

QString xmlElementText(const xmlNode* node)
{
  const std::unique_ptr<xmlChar, FreeWith<[](xmlChar* text) { xmlFree(text); }>> text(
      xmlNodeGetContent(const_cast<xmlNode*>(node)));
  return QString::fromUtf8(reinterpret_cast<const char*>(text.get()));
}

TextTable tableOf(xmlDocPtr document)
{
  const QString refusal = QStringLiteral("Преобразуването на XML не дава таблица");
  const xmlNode* const root = xmlDocGetRootElement(document);
  if (!root || !isXmlElement(root, "table"))
    refuseXml(refusal);
  TextTable table;
  int row = 0;
  for (const xmlNode* rowNode = firstXmlElement(root->children); rowNode; rowNode = firstXmlElement(rowNode->next), ++row) {
    int column = 0;
    for (const xmlNode* cell = firstXmlElement(rowNode->children); cell; cell = firstXmlElement(cell->next), ++column) {
      if (!isXmlElement(rowNode, "row") || !isXmlElement(cell, "c"))
        refuseXml(refusal);
      table.append(row, column, xmlElementText(cell));
    }
  }
  return table;
}

}  // namespace

TextTable readXmlTable(const QByteArray& xml, const QByteArray& stylesheet)
{
  prepareXslt();
  const Stylesheet rules = parseStylesheet(stylesheet);
  const XmlDocument source = parseXml(xml, QStringLiteral("Файлът не е правилен XML"));
  return tableOf(transformXml(source.get(), rules.get()).get());
}

TextTable readXmlFile(const QString& fileName, const QByteArray& stylesheet)
{
  QFile file(fileName);
  if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
    throw DataError(QStringLiteral("Файлът не може да бъде отворен: ") + fileName);
  if (file.size() > mostXmlBytes)
    throw DataError(QStringLiteral("Файлът е твърде голям: ") + fileName);
  return readXmlTable(file.readAll(), stylesheet);
}

}  // namespace kalvor
