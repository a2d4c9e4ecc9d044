#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "exec/TRunJournal.h"
#include "link/CLink.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "support/SimFixture.h"
#include "support/TestFiles.h"
#include "support/WindowTest.h"
#include "ui/TDockChip.h"
#include "ui/TMainWindow.h"
#include "ui/TWgtHexEdit.h"
#include "ui/TWgtLogExec.h"

#include <QAction>
#include <QComboBox>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QtTest>

// Answers the window's questions in place of the user.
class ChipWindow : public TMainWindow {
public:
    QStringList errors;
    QString cfgName = "Chip", dataFile;

protected:
    void showError(const QString& text) override { errors << text; }
    bool askCfg(int, QString& name, QString&) override {
        name = cfgName;
        return true;
    }
    bool askDataFile(QString& file) override {
        file = dataFile;
        return !file.isEmpty();
    }
};

// The chip panel in the window against the simulator, driven through its buttons as a user would.
class TestGuiChip : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
    QString prj;
    SimFixture sim;

    // Clicks an action's button and waits for its end; the panel's status line.
    static QString click(TDockChip* panel, TChipSession::Action action) {
        QPushButton* b = panel->button(action);
        if (!b->isEnabled()) return QStringLiteral("(disabled)");
        QTest::mouseClick(b, Qt::LeftButton);
        if (!QTest::qWaitFor([&] { return !panel->isBusy(); }, 30000)) return QStringLiteral("(timeout)");
        return panel->statusText();
    }

    static QString logText(TDockChip* panel) { return panel->log()->textEdit()->toPlainText(); }

    static QByteArray pattern(int size) {
        QByteArray b(size, 0);
        for (int i = 0; i < size; ++i)
            b[i] = char((i * 13 + 5) & 0xFF);
        return b;
    }

private slots:
    void initTestCase() {
        WindowTest::setUp(dir);
        WindowTest::useShippedData();
        WindowTest::useSimulator(sim); // its link stays the same over restarts
        AppData.confirmSavePrj = false;
        AppData.logShowTime = false;
        for (const char* name : {"demo.prj", "demo.hex"})
            QVERIFY(QFile::copy(QStringLiteral(TARVELIX_DATA_DIR "/projects/") + name, dir.filePath(name)));
        prj = dir.filePath("demo.prj");
    }

    // Detection proposes every part that answers; the user chooses among them.
    void detectProposesTheParts() {
        QVERIFY(sim.startChip("W25Q80RV", QByteArray()));
        ChipWindow w;
        TDockChip* panel = w.chipPanel();
        panel->loadProgs();
        QCOMPARE(click(panel, TChipSession::Detect), Lang.get(1884).arg("W25Q80BV, W25Q80DV, W25Q80RV"));
        QVERIFY(!panel->button(TChipSession::Read)->isEnabled());
        auto* parts = panel->findChild<QComboBox*>("ChipPart");
        QCOMPARE(parts->count(), 3);
        emit parts->textActivated("W25Q80RV");
        QCOMPARE(panel->session()->chip(), QString("W25Q80RV"));
        QVERIFY(panel->button(TChipSession::Read)->isEnabled());
    }

    // Read into the buffer, edit a byte, compare with the chip and with a file, write + verify: the
    // chip ends as the buffer, and the open project is neither shown the runs nor changed by them.
    void readEditWriteVerify() {
        const int size = 128 * 1024;
        const QByteArray image = pattern(size);
        QVERIFY(sim.startChip("W25X10", image));
        ChipWindow w;
        QVERIFY(w.openProject(prj));
        const int tabs = w.cfgTabWidget()->count();
        TDockChip* panel = w.chipPanel();
        panel->loadProgs();
        QVERIFY(panel->selectChip("W25X10"));
        QCOMPARE(click(panel, TChipSession::Read), Lang.get(1886).arg("131,072"));
        QCOMPARE(panel->buffer(), image);
        // One byte typed into the editor.
        panel->hexEditor()->goTo(0x10);
        QTest::keyClicks(panel->hexEditor(), "a5");
        QByteArray edited = image;
        edited[0x10] = char(0xA5);
        QCOMPARE(panel->buffer(), edited);
        QCOMPARE(click(panel, TChipSession::CompareChip),
                 "The chip differs from the buffer:\n0x000010: 1 byte differs");
        // A file with a run and a byte of its own, listed by address.
        QByteArray other = edited;
        other.replace(0x20, 4, "\x01\x02\x03\x04");
        other[0x100] = 0;
        QFile f(dir.filePath("other.bin"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(other);
        f.close();
        QVERIFY(panel->compareWithFile(f.fileName()));
        QCOMPARE(panel->statusText(), "The file differs from the buffer:\n0x000020-0x000023: 4 bytes differ\n"
                                      "0x000100: 1 byte differs");
        QCOMPARE(panel->hexEditor()->diffs().size(), 2);
        QCOMPARE(click(panel, TChipSession::Erase), QString());
        QCOMPARE(click(panel, TChipSession::WriteVerify), QString());
        QVERIFY2(logText(panel).contains("Verified 131,072 bytes"), qPrintable(logText(panel)));
        QCOMPARE(click(panel, TChipSession::CompareChip), Lang.get(1891));
        QCOMPARE(w.cfgTabWidget()->count(), tabs);
        QVERIFY(!ProjectData.isChange());
        QVERIFY(w.errors.isEmpty());
        QCOMPARE(sim.chipImage(), edited);
    }

    // Whether the panel is shown is kept with the window's settings.
    void panelVisibilityIsKept() {
        {
            ChipWindow w;
            w.show();
            QVERIFY(!w.chipPanel()->isHidden());
            w.chipPanel()->toggleViewAction()->trigger();
            QVERIFY(w.chipPanel()->isHidden());
            QVERIFY(w.close());
        }
        ChipWindow w;
        w.show();
        QVERIFY(w.chipPanel()->isHidden());
        w.chipPanel()->toggleViewAction()->trigger();
        QVERIFY(w.close());
    }

    // A failing verify is a failed action with the address in its log and the status line.
    void verifyOfAnotherChipFails() {
        QVERIFY(sim.startChip("W25Q80RV", QByteArray(1 << 20, char(0xFF))));
        ChipWindow w;
        TDockChip* panel = w.chipPanel();
        panel->loadProgs();
        QVERIFY(panel->selectChip("W25Q80RV"));
        QVERIFY(!panel->button(TChipSession::Verify)->isEnabled()); // nothing in the buffer yet
        panel->setBuffer(QByteArray(4, 0x00));
        QCOMPARE(click(panel, TChipSession::Verify),
                 "Verify failed, range 0x00..0x03\nAddress: 0x00, Data: 0x00, Read: 0xFF");
        QVERIFY2(logText(panel).contains("Address: 0x00, Data: 0x00, Read: 0xFF"),
                 qPrintable(logText(panel)));
        // Stop ends a read half-way: the buffer stays as it was.
        QTest::mouseClick(panel->button(TChipSession::Read), Qt::LeftButton);
        QVERIFY(panel->isBusy());
        QTest::mouseClick(panel->findChild<QPushButton*>("ChipStop"), Qt::LeftButton);
        QVERIFY(QTest::qWaitFor([&] { return !panel->isBusy(); }, 30000));
        QCOMPARE(panel->statusText(), Lang.get(390));
        QCOMPARE(panel->buffer(), QByteArray(4, 0x00));
    }

    // The actions done become a configuration of the project, with the buffer in the named file; undo
    // takes it back. The runs go to the log folder like any other.
    void saveAsConfigurationAndLogFolder() {
        QVERIFY(sim.startChip("ATmega328P", QByteArray()));
        QTemporaryDir logs;
        AppData.logDir = logs.path();
        ChipWindow w;
        QVERIFY(w.openProject(prj));
        TDockChip* panel = w.chipPanel();
        panel->loadProgs();
        QVERIFY(panel->selectChip("ATmega328P"));
        QVERIFY(panel->selectMemory("eeprom"));
        const QByteArray data = pattern(1024);
        panel->setBuffer(data);
        QCOMPARE(click(panel, TChipSession::WriteVerify), QString());
        QVERIFY(panel->selectMemory("fuses"));
        QCOMPARE(click(panel, TChipSession::Read), Lang.get(1887).arg(Lang.get(1880), "62D9FF"));
        QCOMPARE(panel->value(), QString("62D9FF"));
        const int cfgs = ProjectData.getCfgList().size();
        w.dataFile = dir.filePath("data/ee.bin");
        QDir(dir.path()).mkpath("data");
        const int id = w.saveChipAsCfg();
        QVERIFY2(id >= 0, qPrintable(w.errors.join('\n')));
        QCOMPARE(TestFiles::readFile(w.dataFile), data);
        QStringList cmds;
        for (TDataCmd* c : ProjectData.getCmdListCfg(id))
            for (const char* key : {"prog", "device", "file", "data"})
                if (c->getParam().contains(key))
                    cmds << c->getCmdCode() + " " + c->getParam().value(key).toString();
        QCOMPARE(cmds, QStringList({"set_prog Simulator", "set_device ATmega328P",
                                    "set_device avr/ATmega328P.dev", "eeprom_file_write data/ee.bin",
                                    "eeprom_file_verify data/ee.bin", "fuse_read 62D9FF"}));
        QCOMPARE(ProjectData.getCfgList().size(), cfgs + 1);
        QVERIFY(ProjectData.isChange());
        // Saved actions are not saved twice.
        QCOMPARE(w.saveChipAsCfg(), -1);
        QCOMPARE(w.errors, QStringList{Lang.get(1889)});
        QVERIFY(w.undo());
        QCOMPARE(ProjectData.getCfgList().size(), cfgs);
        AppData.logDir.clear();
        // One text block and one JSON line per run.
        const QString text =
            QString::fromUtf8(TestFiles::readFile(QDir(logs.path()).filePath(TRunJournal::textFile)));
        QVERIFY2(text.contains(Lang.get(1873).arg(Lang.get(1860))), qPrintable(text));
        const QList<QByteArray> lines =
            TestFiles::readFile(QDir(logs.path()).filePath(TRunJournal::jsonFile)).trimmed().split('\n');
        QCOMPARE(lines.size(), 2);
        const QJsonObject first = QJsonDocument::fromJson(lines.first()).object();
        QCOMPARE(first.value("configuration").toString(), Lang.get(1873).arg(Lang.get(1860)));
        QCOMPARE(first.value("chip").toString(), QString("ATmega328P"));
        QCOMPARE(first.value("result").toString(), QString("ok"));
    }
};

QTEST_MAIN(TestGuiChip)
#include "test_gui_chip.moc"
