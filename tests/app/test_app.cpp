#include "app/TApp.h"
#include "app/TLang.h"
#include "project/TCmdCode.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

class TestApp : public QObject {
    Q_OBJECT

    QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& text) {
        QFile f(dir.filePath(name));
        f.open(QIODevice::WriteOnly);
        f.write(text);
        return f.fileName();
    }

private slots:
    void languageFileNumbersOnlyTextLines() {
        QTemporaryDir dir;
        TLang lang;
        lang.loadData(writeFile(dir, "t.lng", "# comment first\nzero\n\n#another\ntwo\\nlines\nthree"));
        QCOMPARE(lang.count(), 4);
        QCOMPARE(lang.get(0), QString("zero"));
        QCOMPARE(lang.get(1), QString(""));
        QCOMPARE(lang.get(2), QString("two\nlines"));
        QCOMPARE(lang.get(3), QString("three"));
        QCOMPARE(lang.get(4), QString("?????"));
        // Loading again drops the previous table, even when the new file is missing.
        lang.loadData(dir.filePath("missing.lng"));
        QCOMPARE(lang.count(), 0);
        QCOMPARE(lang.get(0), QString("?????"));
    }

    // Every language id the sources use has a real text in the shipped English table.
    void everyUsedLanguageIdHasText() {
        TLang lang;
        lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        QVERIFY(lang.count() > 420);
        const QRegularExpression use(QStringLiteral("Lang\\.get\\(\\s*(\\d+)\\s*\\)"));
        int uses = 0;
        for (const char* folder : {"/src", "/sim"}) {
            QDirIterator it(QStringLiteral(TARVELIX_SOURCE_DIR) + folder, {"*.cpp", "*.h"}, QDir::Files,
                            QDirIterator::Subdirectories);
            while (it.hasNext()) {
                QFile f(it.next());
                QVERIFY(f.open(QIODevice::ReadOnly));
                const QString text = QString::fromUtf8(f.readAll());
                for (auto m = use.globalMatch(text); m.hasNext();) {
                    const int id = m.next().captured(1).toInt();
                    ++uses;
                    QVERIFY2(!lang.get(id).trimmed().isEmpty() && lang.get(id) != "?????",
                             qPrintable(
                                 QString("%1 uses language id %2 without a text").arg(f.fileName()).arg(id)));
                }
            }
        }
        QVERIFY(uses > 0);
        // The ids every part of the system relies on, used or not yet.
        for (int id = 386; id <= 421; ++id)
            QVERIFY2(!lang.get(id).isEmpty(), qPrintable(QString::number(id)));
    }

    void storedPathsAreRelativeWhenTheyCanBe() {
        QTemporaryDir dir;
        const QString base = dir.path();
        QCOMPARE(TApp::getPathFile(base, base + "/sub/a.prj"), QString("sub/a.prj"));
        QCOMPARE(TApp::getPathFile(base, "sub/a.prj"), QString("sub/a.prj"));
        QCOMPARE(TApp::getPathFile(base + "/x", base + "/y/a.prj"), QString("../y/a.prj"));
        QCOMPARE(TApp::getAbsoluteFile(base, "a/b.hex"), base + "/a/b.hex");
        QCOMPARE(TApp::getAbsoluteFile(base, "/abs/b.hex"), QString("/abs/b.hex"));
        QCOMPARE(TApp::getAbsolutePath(base, ""), QDir(base).absolutePath());
        QCOMPARE(TApp::getAbsolutePath(base, "sub/f.bin"), base + "/sub");
        QCOMPARE(TApp::getFileName("/a/b/c.tar.gz"), QString("c.tar.gz"));
        QCOMPARE(TApp::getFileExt("/a/b.c/d.tar.gz"), QString("tar.gz"));
        QCOMPARE(TApp::getFileNameExt("/a/b/c.tar.gz"), QString("c"));
    }

    void missingParameterIsReportedInDebugMode() {
        static QStringList reports;
        TApp::setDebugSink([](const QString& title, const QString& text) { reports << title + ": " + text; });
        const TData data{{"count", 5}};
        QCOMPARE(TAPP_PARAM(data, "count").toInt(), 5);
        TApp::setDebug(false);
        QVERIFY(!TAPP_PARAM(data, "fill_char").isValid());
        QVERIFY(reports.isEmpty());
        TApp::setDebug(true);
        const int line = __LINE__ + 1;
        QVERIFY(!TAPP_PARAM(data, "fill_char").isValid());
        TApp::setDebug(false);
        TApp::setDebugSink(nullptr);
        QCOMPARE(reports,
                 QStringList{QString("Error: Param test_app.cpp, %1: fill_char not found").arg(line)});
    }

    void commandCodesAndNames() {
        QCOMPARE(CmdCode.getName("jamp"), QString("Jamp"));
        QCOMPARE(CmdCode.getName("erase_blocks"), QString("Erase (blocks)"));
        QCOMPARE(CmdCode.getName("separator"), QString());
        QCOMPARE(CmdCode.getName("Jamp"), QString());
        QCOMPARE(CmdCode.getCode("Jamp"), QString("jamp"));
        QCOMPARE(CmdCode.getCode("jamp"), QString());
        QCOMPARE(CmdCode.getCode("Set VIcc"), QString("set_vicc"));
        QCOMPARE(CmdCode.getCodeList().size(), 71);
        QCOMPARE(CmdCode.getFamily("set_prog"), TCmdCode::FamilyTools);
        QCOMPARE(CmdCode.getFamily("reset"), TCmdCode::FamilyProg);
        QCOMPARE(CmdCode.getFamily("ident"), TCmdCode::FamilyDevice);
        QCOMPARE(CmdCode.getFamily("separator"), TCmdCode::FamilyNone);
        // Names are unique, so getCode inverts getName for every code.
        for (const QString& code : CmdCode.getCodeList())
            QCOMPARE(CmdCode.getCode(CmdCode.getName(code)), code);
    }
};

QTEST_GUILESS_MAIN(TestApp)
#include "test_app.moc"
