// XML import files and transformations: up to a zero byte the stylesheet, or a plain one when that is empty, then the
// XML. A table or an error comes out.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "data/data_error.h"
#include "platform/xml_table.h"

using namespace kalvor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static const QByteArray plain =
      "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'><xsl:template match='/'><table>"
      "<xsl:for-each select='//*'><row><c><xsl:value-of select='name()'/></c><c><xsl:value-of select='.'/></c></row>"
      "</xsl:for-each></table></xsl:template></xsl:stylesheet>";
  const auto* const end = std::find(data, data + size, std::uint8_t(0));
  const QByteArray first(reinterpret_cast<const char*>(data), end - data);
  const bool hasBoth = end != data + size;
  const QByteArray second = hasBoth ? QByteArray(reinterpret_cast<const char*>(end + 1), data + size - end - 1) : first;
  try {
    const TextTable table = readXmlTable(second, hasBoth && !first.isEmpty() ? first : plain);
    if (table.rowCount() > TextTable::mostRows || table.columnCount() > TextTable::mostColumns)
      std::abort();
  } catch (const DataError& error) {
    if (error.message().isEmpty())
      std::abort();
  }
  return 0;
}
