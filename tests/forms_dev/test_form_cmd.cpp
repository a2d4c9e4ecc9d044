#include "app/TLang.h"
#include "ui/TFormCmd.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QtTest>

// The command form itself: values keep the type the record held, hex is read with or without "0x", and
// the first invalid field names itself.
class TestFormCmd : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void valuesKeepTheirType() {
        TFormCmd form({{"n", "12"}, {"m", 7}, {"other", "kept"}});
        QLineEdit* n = form.addInt("n", "N:", 0, 100);
        QLineEdit* m = form.addHex("m", "M:", 0, 255);
        QCOMPARE(form.getParam(), TData({{"n", "12"}, {"m", 7}, {"other", "kept"}}));
        n->setText("15");
        m->setText("0x1f");
        const TData p = form.getParam();
        QCOMPARE(p.value("n"), QVariant(QString("15")));
        QCOMPARE(p.value("m"), QVariant(31));
        m->setText("A0");
        QCOMPARE(form.getParam().value("m"), QVariant(160));
        QCOMPARE(form.getError(), QString());
    }

    void firstInvalidFieldIsNamed() {
        TFormCmd form({{"a", 1}, {"b", 2}});
        QLineEdit* a = form.addInt("a", "A:", 0, 10);
        QLineEdit* b = form.addHex("b", "B:", 0, 255);
        b->setText("zz");
        QCOMPARE(form.getError(), QString("B: %1").arg(Lang.get(1720).arg("0x00", "0xFF")));
        a->setText("11");
        QCOMPARE(form.getError(), QString("A: must be a number from 0 to 10"));
        a->setText("10");
        b->setText("256");
        QCOMPARE(form.getError(), QString("B: %1").arg(Lang.get(1720).arg("0x00", "0xFF")));
    }

    // The project file holds values verbatim: what would make it unreadable never leaves a form.
    void valuesTheProjectFileCannotHoldAreRefused() {
        TFormCmd form({{"file", "a.hex"}, {"data", "A5 5A"}});
        QLineEdit* file = form.addFile("file", "File:", "*.bin *.hex", false);
        QPlainTextEdit* data = form.addHexData("data", "Data:");
        QCOMPARE(form.getError(), QString());
        file->setText("my \"best\".hex");
        QCOMPARE(form.getError(),
                 QString("File: must not contain double quotes, backslashes or line breaks"));
        file->setText("dir\\b.hex");
        QVERIFY(!form.getError().isEmpty());
        file->setText("b.hex");
        data->setPlainText("A5 5A\n01\r\n02");
        QCOMPARE(form.getError(), QString());
        QCOMPARE(form.getParam().value("data"), QVariant(QString("A5 5A 01 02")));
    }

    // A stored choice that the form does not offer stays, marked; matching ignores case on request and
    // keeps the record's spelling.
    void choicesKeepWhatTheRecordSaid() {
        TFormCmd form({{"format", "hex"}, {"prog", "Gone"}});
        QComboBox* format = form.addChoice("format", "Format:", {"HEX", "BIN"}, {"HEX", "BIN"}, true);
        QComboBox* prog = form.addChoice("prog", "Programmer:", {"Sim", "Lab"});
        QCOMPARE(format->currentText(), QString("HEX"));
        QCOMPARE(prog->count(), 3);
        QCOMPARE(form.getParam(), TData({{"format", "hex"}, {"prog", "Gone"}}));
        QCOMPARE(form.getError(), QString("Programmer: is not one of the offered values"));
        prog->setCurrentIndex(1);
        format->setCurrentIndex(1);
        QCOMPARE(form.getParam(), TData({{"format", "BIN"}, {"prog", "Lab"}}));
        QCOMPARE(form.getError(), QString());
    }
};

QTEST_MAIN(TestFormCmd)
#include "test_form_cmd.moc"
