#include "session/settings_document.h"

#include "session/local_settings_file.h"

namespace kalvor {
namespace {

bool isElementName(const QString& name)
{
  const auto starts = [](QChar c) { return c.isLetter() || c == u'_'; };
  if (name.isEmpty() || !starts(name.at(0)))
    return false;
  for (const QChar c : name)
    if (!starts(c) && !c.isDigit() && c != u'-' && c != u'.')
      return false;
  return true;
}

bool isXmlCharacter(QChar c)
{
  if (c.unicode() < 0x20)
    return c == u'\t' || c == u'\n' || c == u'\r';
  return !c.isSurrogate() && c.unicode() < 0xFFFE;
}

QString xmlText(const QString& value)
{
  QString result;
  result.reserve(value.size());
  for (qsizetype i = 0; i < value.size(); ++i) {
    const QChar c = value.at(i);
    if (c.isHighSurrogate() && i + 1 < value.size() && value.at(i + 1).isLowSurrogate()) {
      result += c;
      result += value.at(++i);
    } else if (isXmlCharacter(c)) {
      result += c;
    }
  }
  return result;
}

QDomElement childElement(QDomDocument& document, QDomNode parent, const QString& name)
{
  QDomElement child = parent.firstChildElement(name);
  if (child.isNull())
    child = parent.appendChild(document.createElement(name)).toElement();
  return child;
}

void removeChildren(QDomElement& element)
{
  while (!element.firstChild().isNull())
    element.removeChild(element.firstChild());
}

void setElementText(QDomDocument& document, QDomElement& element, const QString& value)
{
  removeChildren(element);
  if (value.isEmpty())
    return;
  // The reader drops a text of blanks alone, but keeps it as character data.
  if (value.trimmed().isEmpty())
    element.appendChild(document.createCDATASection(value));
  else
    element.appendChild(document.createTextNode(value));
}

}  // namespace

bool loadSettingsDocument(QDomDocument& document, const QString& text)
{
  if (text.trimmed().isEmpty()) {
    document = QDomDocument();
    return true;
  }
  if (text.contains(QStringLiteral("<!DOCTYPE"), Qt::CaseInsensitive))
    return false;
  QDomDocument read;
  if (!read.setContent(text))
    return false;
  document = read;
  return true;
}

bool GetNodeFromXml(const QDomDocument& document, const QString& group, QStringList& lines)
{
  lines.clear();
  const QDomElement node = document.documentElement().firstChildElement(group);
  for (QDomElement key = node.firstChildElement(); !key.isNull(); key = key.nextSiblingElement())
    lines.append(key.tagName() + u'=' + key.text());
  return !node.isNull();
}

bool SaveNodeToXml(QDomDocument& document, const QString& group, const QStringList& lines, bool emptyFirst)
{
  if (lines.isEmpty() || !isElementName(group))
    return false;
  QDomElement root = document.documentElement();
  if (root.isNull())
    root = document.appendChild(document.createElement(QStringLiteral("Root"))).toElement();
  QDomElement node = childElement(document, root, group);
  if (emptyFirst)
    removeChildren(node);
  for (const QString& line : lines) {
    const QString name = lineName(line);
    if (!isElementName(name))
      continue;
    QDomElement key = childElement(document, node, name);
    setElementText(document, key, xmlText(lineValue(line)));
  }
  return true;
}

}  // namespace kalvor
