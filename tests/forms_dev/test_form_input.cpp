#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "link/TProg.h"
#include "misc/TNumberText.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjBuilder.h"
#include "support/CatalogueSetup.h"
#include "ui/TDialogCmdParam.h"
#include "ui/TFormCmd.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include <memory>

// What a user types into and sees in a command form: numbers in the ways datasheets and people write
// them, an invalid field that keeps its text and is framed, a reason that can be read, and a file
// chooser that keeps the project movable and knows the file's format.
class TestFormInput : public QObject {
    Q_OBJECT

    QTemporaryDir dir;
    int cfg = -1;

    int fileWrite() {
        TPrjBuilder::addSetDevice(ProjectData, cfg, "W25Q80RV", DeviceList.getDeviceList().value("W25Q80RV"));
        return TPrjBuilder::addCmd(ProjectData, cfg, "file_write");
    }

    static double luminance(const QColor& c) {
        auto lin = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
        return 0.2126 * lin(c.redF()) + 0.7152 * lin(c.greenF()) + 0.0722 * lin(c.blueF());
    }

    void writeFile(const QString& path, const QByteArray& bytes) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

private slots:
    void initTestCase() { useSourceCatalogue(); }

    void init() {
        ProjectData.clrPrj();
        ProjectData.updPrjParam({{CTagPrj::work_path, dir.filePath("proj")}});
        cfg = ProjectData.newCfg("A", "", -1);
        TPrjBuilder::addCmd(ProjectData, cfg, "set_prog", {{"prog", "Sim"}});
        TFormCmd::resetLastFolder();
    }

    void numbersAreReadAsPeopleWriteThem() {
        const QList<QPair<QString, qint64>> good = {
            {"0x1F00", 0x1F00}, {"0X1f00", 0x1F00}, {"32768", 32768}, {"32K", 32768}, {"32k", 32768},
            {"1M", 1 << 20},    {"4 KiB", 4096},    {"A0", 0xA0},     {" 12 ", 12},   {"0", 0}};
        for (const auto& [text, value] : good) {
            bool ok = false;
            QCOMPARE(TNumberText::parse(text, ok), value);
            QVERIFY2(ok, qPrintable(text));
        }
        for (const char* text :
             {"", "0x", "-5", "12Q", "1.5K", "K", "99999999999999999999", "9999999999999G"}) {
            bool ok = true;
            TNumberText::parse(text, ok);
            QVERIFY2(!ok, qPrintable(text));
        }
        QCOMPARE(TNumberText::show(32768), QString("0x8000"));
        QCOMPARE(TNumberText::show(5), QString("0x05"));
    }

    // The count of a file command is shown in 0x form and takes any of the spellings.
    void countFieldShowsHexAndStoresTheNumber() {
        const int id = fileWrite();
        TData p = ProjectData.getCmdData(id);
        p.insert("count", 32768);
        p.insert("file", "fw.bin");
        IDevice* dev = ProjectData.getCmdObjectFromIdCmd(id)->getGroupObject();
        std::unique_ptr<TFormCmd> form(qobject_cast<TFormCmd*>(dev->getFormCmdParam(p)));
        auto* count = form->findChild<QLineEdit*>("count");
        QCOMPARE(count->text(), QString("0x8000"));
        for (const char* text : {"1M", "0x100000", "1048576"}) {
            count->setText(text);
            QCOMPARE(form->getParam().value("count").toLongLong(), 1048576LL);
            QCOMPARE(form->getError(), QString());
        }
    }

    void invalidFieldKeepsItsTextFramedWithAReadableReason() {
        const int id = fileWrite();
        IDevice* dev = ProjectData.getCmdObjectFromIdCmd(id)->getGroupObject();
        TData p = ProjectData.getCmdData(id);
        p.insert("file", "fw.bin");
        TDialogCmdParam dialog(dev, p);
        dialog.resize(300, 100); // narrow, so the reason needs several lines
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto* count = dialog.findChild<QLineEdit*>("count");
        QWidget* row = count->parentWidget();
        count->setText("2M");
        emit count->textEdited(count->text());
        QCOMPARE(count->text(), QString("2M"));
        QVERIFY(row->property(TFormCmd::kInvalid).toBool() || count->property(TFormCmd::kInvalid).toBool());
        QVERIFY(row->styleSheet().contains("border") || count->styleSheet().contains("border"));
        // The text keeps the colour of valid text: it stays readable.
        QCOMPARE(count->palette().color(QPalette::Text), dialog.palette().color(QPalette::Text));

        auto* error = dialog.findChild<QLabel*>("error");
        QVERIFY(error->isVisible());
        QCOMPARE(error->text(), "Count: " + Lang.get(1720).arg("0x01", "0x100000"));
        const double a = luminance(error->palette().color(QPalette::WindowText));
        const double b = luminance(dialog.palette().color(QPalette::Window));
        QVERIFY2((qMax(a, b) + 0.05) / (qMin(a, b) + 0.05) >= 4.5, "error text contrast below 4.5:1");
        QVERIFY(dialog.rect().contains(error->geometry()));
        QVERIFY(error->height() >= error->heightForWidth(error->width()));

        count->setText("1M");
        emit count->textEdited(count->text());
        QVERIFY(!count->property(TFormCmd::kInvalid).toBool() && !row->property(TFormCmd::kInvalid).toBool());
        QVERIFY(row->styleSheet().isEmpty() && count->styleSheet().isEmpty());
        QVERIFY(!error->isVisible());
    }

    void fileChooserStartsInTheProjectAndStoresRelativePaths() {
        const QString project = dir.filePath("proj");
        writeFile(project + "/fw/app.img", ":1000000000000000000000000000000000000000F0\n:00000001FF\n");
        writeFile(dir.filePath("elsewhere/dump.hex"), QByteArray(64, char(0x33)));
        const int id = fileWrite();
        IDevice* dev = ProjectData.getCmdObjectFromIdCmd(id)->getGroupObject();
        TData p = ProjectData.getCmdData(id);
        p.insert("file", QString());
        std::unique_ptr<TFormCmd> form(qobject_cast<TFormCmd*>(dev->getFormCmdParam(p)));
        auto* file = form->findChild<QLineEdit*>("file");
        auto* format = form->findChild<QComboBox*>("format");
        QToolButton* browse = file->parentWidget()->findChild<QToolButton*>();

        QStringList starts;
        QString answer;
        TFormCmd::setFileChooser([&](QWidget*, const QString&, const QString& start, const QString&, bool) {
            starts << start;
            return answer;
        });
        // Contents decide, not the extension: an Intel HEX file named .img, raw bytes named .hex.
        answer = project + "/fw/app.img";
        format->setCurrentText("BIN");
        browse->click();
        QCOMPARE(file->text(), QString("fw/app.img"));
        QCOMPARE(format->currentText(), QString("HEX"));
        QCOMPARE(form->getParam().value("file").toString(), QString("fw/app.img"));

        answer = dir.filePath("elsewhere/dump.hex");
        browse->click();
        QCOMPARE(file->text(), answer);
        QCOMPARE(format->currentText(), QString("BIN"));

        file->clear();
        answer.clear(); // cancelled: nothing changes
        browse->click();
        QCOMPARE(file->text(), QString());
        TFormCmd::setFileChooser(nullptr);
        QCOMPARE(starts, QStringList({project, project + "/fw/app.img", dir.filePath("elsewhere")}));
    }
};

QTEST_MAIN(TestFormInput)
#include "test_form_input.moc"
