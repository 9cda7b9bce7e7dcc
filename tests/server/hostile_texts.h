// Texts that try to be more than a name or a value: the same ones for the same seed, each with a marker in it.
#pragma once

#include <QRandomGenerator>
#include <QStringList>

namespace kalvor::testing {

inline const QString hostileMarker = QStringLiteral("zq7x");

class HostileTexts {
 public:
  explicit HostileTexts(quint32 seed) : random_(seed) {}

  QString next()
  {
    QString text = attacks().at(pick(attacks().size()));
    for (int changes = pick(4); changes > 0; --changes) {
      change(text);
      text.truncate(200'000);
    }
    if (!text.contains(u'@')) {
      text.insert(pick(int(text.size()) + 1), u'@');
    }
    return text.replace(u'@', hostileMarker);
  }

 private:
  int pick(qsizetype bound) { return int(random_.bounded(int(bound))); }

  // "@" is where the marker goes.
  static const QStringList& attacks()
  {
    static const QStringList texts = QString::fromUtf8(
        "@' OR '1'='1\n@'; DROP TABLE T_Doc; --\n@\"; DROP TABLE T_Doc; --\n@') OR 1=1 --\n1 OR 1=1 /* @ */\n"
        "Id = 1 UNION SELECT PasswordHash AS @ FROM N_Users\nT_Doc.Id) UNION SELECT '@' --\n@`; DELETE FROM T_Doc\n"
        "SELECT Id AS @ FROM T_Doc\nSELECT Id AS \"@:DATE\" FROM T_Doc\nSELECT Id FROM T_Doc WHERE Name = '@'\n"
        "SELECT Id FROM T_Doc WHERE @ = 1\nSELECT @.Id FROM T_Doc @\nSELECT Id FROM T_Doc AS @\nSELECT * FROM T_Doc, @\n"
        "SELECT Id FROM T_Doc INNER JOIN @ ON T_Doc.Id = @.Id\nSELECT Id, (SELECT Note FROM T_Hidden) FROM T_Doc -- @\n"
        "SELECT PasswordHash FROM N_Users WHERE Id = '@'\nSELECT Token FROM srv_Session WHERE Token <> '@'\n"
        "SELECT name FROM sqlite_master WHERE name <> '@'\nSELECT load_extension('@')\nSELECT readfile('@')\n"
        "SELECT writefile('@', 'x')\nPRAGMA @\nPRAGMA table_info('@')\nPRAGMA writable_schema = ON -- @\n"
        "ATTACH DATABASE '@' AS @\nDETACH DATABASE @\nVACUUM INTO '@'\nREINDEX @\nSELECT pg_sleep(9) AS @\n"
        "SELECT pg_read_file('@')\nSELECT lo_import('@')\nCOPY T_Doc TO PROGRAM '@'\nCOPY @ FROM '/etc/passwd'\n"
        "DO $@$ BEGIN EXECUTE 'DROP TABLE T_Doc'; END $@$\n$$@$$\n$@$; DROP TABLE T_Doc; $@$\nE'\\'; DROP TABLE T_Doc; -- @'\n"
        "U&\"\\0040@\"\nU&'\\0027@'\nSELECT set_config('role', '@', false)\nSET ROLE @\nLISTEN @\nCREATE TABLE @ (Id INTEGER)\n"
        "CREATE FUNCTION @() RETURNS trigger LANGUAGE plpython3u AS 'x'\nALTER TABLE T_Doc ADD COLUMN @ TEXT\nDROP TABLE @\n"
        "INSERT INTO T_Doc (Id, Comp_Id, Name, Kind) VALUES ('@', '6', 'x', 1)\nINSERT INTO @ (Id) VALUES (1)\n"
        "INSERT INTO T_Doc SELECT * FROM @\nUPDATE T_Doc SET @ = 1\nUPDATE T_Doc SET C_User_Id = '@'\nUPDATE N_Users SET Active = '@'\n"
        "UPDATE T_Doc SET Name = (SELECT '@')\nUPDATE @ SET CopiesPrinted = CopiesPrinted + 1 WHERE ID = '@' AND Comp_Id = '5'\n"
        "UPDATE T_Doc SET @ = @ + 1 WHERE ID = 'D1' AND Comp_Id = '5'\nDELETE FROM T_Doc WHERE @ = @\nDELETE FROM @\n"
        "TRUNCATE @\nGRANT ALL ON T_Doc TO @\nexec dbo.usp_GetUserSettings '@', '5'\nexec dbo.@ 'AB', '5'\nEXEC xp_cmdshell '@'\n"
        "WAITFOR DELAY '0:0:9' -- @\nSELECT @@version\n;SHUTDOWN @\nIF Exists (Select @ from s_UserSettings) DELETE FROM T_Doc\n"
        "WITH x AS (DELETE FROM T_Doc RETURNING '@') SELECT * FROM x\nBEGIN; @; COMMIT\nROLLBACK; DROP TABLE @\n"
        "T_Doc.\"@\"\n\"T_Doc\".\"Id\" /*@*/\nT_Doc.Id, @\nT_Doc.Id DESC NULLS FIRST, @\nT_Doc.Id; @\n(SELECT @)\n"
        "CASE WHEN 1=1 THEN Id ELSE @ END\nId COLLATE @\nId||@\n@::regclass\n:@\n?@\n@1\n#@\n[@]\n`@`\n%@%\n_@\n"
        "LIKE '%@' ESCAPE '\n= 1 OR @\nIN (SELECT @)\nis null OR @\nBETWEEN @ AND 1\n) OR (@ = @\n((((@\n))))@\n"
        "AND @\nOR 1=1) --@\n'@\n''@''\n\"@\n\"\"@\"\"\n\\'@\n\\@\n-- @\n/*@\n*/@/*\n--\r@\n1=1)--@\n0x40@\n1e999@\n-@\n"
        "../../@\n%00@\n%27@\n&#39;@\n<!--@-->\n{{@}}\n${@}\n$(@)\n`@`\n|@\n<#Param(@)#>\nAB;SUPERVSR@\n'AB','@'").split(u'\n');
    return texts;
  }

  void change(QString& text)
  {
    const auto anywhere = [&] { return pick(text.size() + 1); };
    switch (pick(12)) {
      case 0: text.replace(u' ', QString(QStringLiteral("\t\n\r\u00A0\u2003\u200B\u3000\u2028\f\v").at(pick(10)))); break;
      case 1: text.replace(u' ', QStringLiteral("/**/")); break;
      case 2: text.insert(anywhere(), QChar::Null); break;
      case 3: text.insert(anywhere(), QChar(pick(2) ? 0xD83D : 0xDE00)); break;  // half a pair
      case 4: text.insert(anywhere(), QStringLiteral("'\"`;\\").at(pick(5))); break;
      case 5: lookAlike(text); break;
      case 6: text = pick(2) ? text.toUpper() : text.toLower(); break;
      case 7: text = QString(pick(2000), u'(') + text + QString(pick(2000), u')'); break;
      case 8: text += u';' + attacks().at(pick(attacks().size())); break;
      case 9: text = text.repeated(1 + pick(300)); break;
      case 10: text.insert(anywhere(), QString(pick(20000), QChar(u'a' + pick(26)))); break;
      default: text.insert(anywhere(), QStringLiteral("\u202E\uFEFF\u0301\u2066").at(pick(4))); break;
    }
  }

  // Full-width and Cyrillic letters, curly quotes, another semicolon.
  void lookAlike(QString& text)
  {
    static const QString from = QStringLiteral("aeopcxTODE'\";=-");
    static const QString to = QStringLiteral("аеорсхТОＤЕ\u2019\uFF02\u037E\uFF1D\u2212");
    for (QChar& c : text) {
      const qsizetype at = from.indexOf(c);
      if (at >= 0 && pick(2)) {
        c = to.at(at);
      }
    }
  }

  QRandomGenerator random_;
};

}  // namespace kalvor::testing
