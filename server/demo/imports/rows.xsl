<?xml version="1.0" encoding="UTF-8"?>
<!-- Every element below the root is a row, every element in it a column. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template match="/*">
    <table>
      <xsl:for-each select="*">
        <row>
          <xsl:for-each select="*">
            <c><xsl:value-of select="."/></c>
          </xsl:for-each>
        </row>
      </xsl:for-each>
    </table>
  </xsl:template>
</xsl:stylesheet>
