#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "devices/IDevice.h"
#include "link/CLink.h"
#include "misc/THexBuffer.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjList.h"
#include "support/SimFixture.h"
#include "support/WindowTest.h"
#include "ui/TDialogCmdParam.h"
#include "ui/TDialogHexView.h"
#include "ui/TDialogSelectDevice.h"
#include "ui/TDialogSettings.h"
#include "ui/TDockChip.h"
#include "ui/TFormCmd.h"
#include "ui/TMainWindow.h"
#include "ui/TWgtCfg.h"
#include "ui/TWgtHexEdit.h"
#include "ui/TWgtHexView.h"

#include <QAction>
#include <QScrollBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

// Pictures of the window for the README, at 1280x800 with the large icon set. They go to the folder
// named by TARVELIX_SCREENSHOTS_DIR (docs/screenshots when refreshing them), else to a temporary one.
class TestGuiScreenshots : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
    QString out;

    const QSize windowSize{1280, 800};

    void save(QWidget& w, const QString& name, const QSize& size) {
        const QImage image = w.grab().toImage();
        QCOMPARE(image.size(), size);
        QVERIFY(image.save(QDir(out).filePath(name + ".png")));
    }

    // The form of a command in its dialog, at the dialog's natural height.
    void saveForm(IDevice* group, const TData& param, const QString& name, int width = 560) {
        QVERIFY(group);
        TDialogCmdParam dlg(group, param);
        QVERIFY2(dlg.hasForm(), qPrintable(name));
        QCOMPARE(dlg.getError(), QString());
        dlg.resize(width, dlg.sizeHint().height());
        dlg.show();
        save(dlg, name, dlg.size());
    }

    // The first command of the open project with that code, with its family.
    static TDataCmd* findCmd(const QString& code) {
        for (TDataCmd* cmd : ProjectData.getCmdList()) {
            if (cmd->getCmdCode() == code) return cmd;
        }
        return nullptr;
    }

    // A catalogue device by name, and a new command of its family with the family's defaults.
    static IDevice* catalogueDevice(const QString& name) {
        for (const TDialogSelectDevice::Entry& e : TDialogSelectDevice::loadEntries()) {
            if (e.name == name) return ProjectData.createDevice(e.name, e.file);
        }
        return nullptr;
    }

    // The demo project in a window of the screenshots' size; the chip panel shows only when asked for.
    void showDemo(TMainWindow& w, bool chipPanel = false) {
        w.resize(windowSize);
        if (!chipPanel) w.chipPanel()->hide();
        w.show();
        QVERIFY(w.openProject(dir.filePath("demo.prj")));
    }

    // Runs a configuration of the demo project (stopped at its pause if asked), checks how it ended and
    // saves the window with its log.
    void saveEndedRun(const QString& cfgName, bool stopAtPause, TCodeCfgStatus status, const QString& shot) {
        TMainWindow w;
        showDemo(w);
        const int id = ProjectData.getIdCfgFromNameCfg(cfgName);
        QVERIFY(id >= 0);
        QVERIFY(w.runThread(id));
        if (stopAtPause) {
            QTRY_VERIFY_WITH_TIMEOUT(w.isPaused(id), 10000);
            w.stopRun(id);
        }
        QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 60000);
        QCOMPARE(ProjectData.getCfgStatus(id), status);
        w.cfgTabWidget()->setCurrentWidget(w.cfgView(id));
        w.cfgView(id)->showLog();
        save(w, shot, windowSize);
        w.closeProject();
    }

private slots:
    void initTestCase() {
        WindowTest::setUp(dir);
        WindowTest::useShippedData();
        AppData.iconsSet = 1;
        AppData.confirmSavePrj = false; // the counter changes the project
        AppData.logShowTime = true;
        AppData.logShowMSec = true;
        out = qEnvironmentVariable("TARVELIX_SCREENSHOTS_DIR", dir.path());
        TSelectPrjList::save(AppData.selectPrjListFile, {{"Production line", "line.lst"}});
        TPrjList::save(dir.filePath("line.lst"),
                       {{"Line A",
                         "",
                         true,
                         {{"Demo board", "demo.prj", false, {}}, {"Boot loader", "boot.prj", false, {}}}},
                        {"Lab", "", true, {{"Timing checks", "timing.prj", false, {}}}},
                        {"Archive", "", false, {{"Old board", "old.prj", false, {}}}}});
        QFile::copy(QStringLiteral(TARVELIX_DATA_DIR "/projects/demo.hex"), dir.filePath("demo.hex"));
        QFile demo(QStringLiteral(TARVELIX_DATA_DIR "/projects/demo.prj"));
        demo.open(QIODevice::ReadOnly);
        QByteArray json = demo.readAll();
        // A second configuration of tools commands that runs without a programmer.
        const QByteArray tools =
            R"(,
        {
            "name": "Timing",
            "description": "Delays and a stop",
            "commands":
            [
                {"status": "1", "cmd": "delay", "value": "20"},
                {"status": "1", "cmd": "counter", "value": "0", "limit": "100", "delta": "1"},
                {"status": "0", "cmd": "delay", "value": "1000"},
                {"status": "1", "cmd": "stop"}
            ]
        }
    ]
})";
        json = json.left(json.lastIndexOf(']')).trimmed() + tools;
        QFile prj(dir.filePath("demo.prj"));
        prj.open(QIODevice::WriteOnly);
        prj.write(json);
    }

    void mainWindow() {
        TMainWindow w;
        showDemo(w);
        const int timing = ProjectData.getIdCfgFromNameCfg("Timing");
        QVERIFY(timing >= 0);
        QVERIFY(w.runThread(timing));
        QTRY_COMPARE_WITH_TIMEOUT(w.runCount(), 0, 10000);
        w.cfgTabWidget()->setCurrentWidget(w.cfgView(timing));
        save(w, "main_window_log", windowSize);
        w.cfgView(timing)->setCurrentIndex(0);
        w.cfgTabWidget()->setCurrentIndex(0);
        save(w, "main_window", windowSize);
        w.closeProject();
    }

    // The chip panel beside the project after a read of an SPI flash.
    void chipPanel() {
        SimFixture sim;
        QByteArray image;
        while (image.size() < (1 << 20))
            image += QStringLiteral("Tarvelix boot %1 ")
                         .arg(image.size() / 18, 5, 10, QLatin1Char('0'))
                         .toLatin1();
        QFile f(sim.path("image.bin"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(image.left(1 << 20));
        f.close();
        QVERIFY(sim.start(
            {"--chip", "W25Q80RV", "--devices", TARVELIX_DATA_DIR "/devices", "--image", f.fileName()}));
        WindowTest::useSimulator(sim);
        TMainWindow w;
        showDemo(w, true);
        TDockChip* panel = w.chipPanel();
        w.resizeDocks({panel}, {620}, Qt::Horizontal);
        panel->loadProgs();
        QVERIFY(panel->selectChip("W25Q80RV"));
        QVERIFY(panel->start(TChipSession::Read));
        QTRY_VERIFY_WITH_TIMEOUT(!panel->isBusy(), 20000);
        QCOMPARE(panel->buffer(), image.left(1 << 20));
        save(w, "chip_panel", windowSize);
        // Bytes typed into the editor, then compared with the chip: changed bytes and the run found.
        panel->hexEditor()->goTo(0x24);
        QTest::keyClicks(panel->hexEditor(), "DEADBEEF");
        panel->hexEditor()->setSelection(0x40, 16);
        QVERIFY(panel->start(TChipSession::CompareChip));
        QTRY_VERIFY_WITH_TIMEOUT(!panel->isBusy(), 20000);
        QCOMPARE(panel->hexEditor()->diffs().size(), 1);
        save(*panel, "chip_panel_hex_editor", panel->size());
        w.closeProject();
    }

    // The 24C256 configuration against an empty two-wire socket: the failed run's block.
    void failedRun() {
        SimFixture sim;
        QVERIFY(sim.start({"--bus", "i2c"}));
        WindowTest::useSimulator(sim);
        saveEndedRun("24C256 EEPROM", false, CfgStatusError, "main_window_failed");
    }

    // The programmer check stopped at its pause: the stopped run's tab and status line.
    void stoppedRun() {
        SimFixture sim;
        QVERIFY(sim.start());
        WindowTest::useSimulator(sim);
        saveEndedRun("Programmer check", true, CfgStatusStopped, "main_window_stopped");
    }

    void settingsPages() {
        TDialogSettings dlg;
        dlg.resize(640, 560);
        dlg.show();
        const QStringList names = {"settings_interface", "settings_confirmations", "settings_programmers",
                                   "settings_hotkeys"};
        for (int i = 0; i < names.size(); ++i) {
            dlg.pages->setCurrentIndex(i);
            save(dlg, names.at(i), QSize(640, 560));
        }
    }

    void commandForms() {
        TMainWindow w;
        QVERIFY(w.openProject(dir.filePath("demo.prj")));
        for (const QString& code :
             {QStringLiteral("set_vicc"), QStringLiteral("file_write"), QStringLiteral("set_device")}) {
            TDataCmd* cmd = findCmd(code);
            QVERIFY2(cmd, qPrintable(code));
            saveForm(cmd->getGroupObject(), cmd->getData(), "form_" + code);
        }
        const QList<QPair<QString, QString>> registers = {{"ATmega328P", "fuse_write"},
                                                          {"ATtiny85", "fuse_write"},
                                                          {"ATmega2560", "fuse_write"},
                                                          {"W25Q80RV", "status_reg_write"}};
        for (const auto& r : registers) {
            IDevice* dev = catalogueDevice(r.first);
            QVERIFY2(dev, qPrintable(r.first));
            TData p{{"cmd", r.second}};
            dev->getDefaultCmdParam(p);
            // The fuse choices name clock sources and start-up times at length.
            saveForm(dev, p, "form_" + r.second + "_" + r.first, r.second == "fuse_write" ? 760 : 560);
        }
        w.closeProject();
    }

    void deviceSelection() {
        TDialogSelectDevice dlg;
        dlg.resize(760, 520);
        dlg.show();
        dlg.setSearch("W25Q");
        dlg.select("W25Q80RV");
        QCOMPARE(dlg.getSelectedName(), QString("W25Q80RV"));
        save(dlg, "dialog_select_device", QSize(760, 520));
    }

    void hexViewer() {
        TDialogHexView dlg;
        QVERIFY(dlg.loadFile(dir.filePath("demo.hex")));
        dlg.resize(760, 560);
        dlg.show();
        QVERIFY(dlg.view()->rowCount() > 0);
        QVERIFY(dlg.width() >= 760); // widened to a whole row
        save(dlg, "hex_viewer", dlg.size());
    }

    void hexEditor() {
        THexBuffer buffer;
        QString error;
        QVERIFY2(buffer.load(dir.filePath("demo.hex"), "hex", error), qPrintable(error));
        const QByteArray read = buffer.data();
        // As the chip panel holds it: inside a frame of its own.
        QWidget frame;
        auto* layout = new QVBoxLayout(&frame);
        TWgtHexEdit& edit = *new TWgtHexEdit(&frame);
        layout->addWidget(&edit);
        edit.setBuffer(&buffer);
        frame.resize(860, 420);
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
        edit.setFocus();
        edit.goTo(0x24);
        QTest::keyClicks(&edit, "dead");
        buffer.fill(0x60, 12, QByteArray("\x55\xAA", 2));
        QByteArray other = read;
        other.replace(0x90, 6, "Tarvel");
        edit.markDiffs(buffer.compare(other));
        edit.setSelection(0xC3, 20);
        save(frame, "hex_editor", frame.size());
    }
};

QTEST_MAIN(TestGuiScreenshots)
#include "test_gui_screenshots.moc"
