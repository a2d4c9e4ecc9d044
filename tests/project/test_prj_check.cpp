#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "project/TCmdCode.h"
#include "project/TCtrlProject.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjBuilder.h"
#include "project/TPrjCheck.h"
#include "support/CatalogueSetup.h"

#include <QFile>
#include <QtTest>

// Hand-written projects: the check names the configuration, the command and the key a user got wrong,
// and the guide to the project file documents every key the families give their commands.
class TestPrjCheck : public QObject {
    Q_OBJECT

    QStringList check(const QByteArray& json) {
        ProjectData.clrPrj();
        TCtrlProject ctrl;
        if (!ctrl.data_to_project(json, &ProjectData)) return {"unreadable"};
        ProjectData.updCmdObjectAll();
        return TPrjCheck::check(json, ProjectData);
    }

    static QString where(int n, const QString& code, const QString& text) {
        return Lang.get(1740).arg("Hand").arg(n).arg(code, text);
    }

private slots:
    void initTestCase() {
        useSourceCatalogue();
        AppData.progName.append(false, "Sim", "/dev/null", "Simulator");
    }

    void namesTheMissingOrWrongKey() {
        const QStringList problems = check(R"({"configurations": [{"name": "Hand", "commands": [
            {"cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", "alt_port": ""},
            {"status": "1", "cmd": "set_device", "device": "W25Q80RV", "file": "spi/W25Q80BV.dev"},
            {"status": "yes", "cmd": "erase"},
            {"status": "1", "cmd": "file_write", "file": "x.bin", "format": "bin", "addr_device": 0,
             "addr_file": "0", "cnt": "5"},
            {"status": "1", "cmd": "flash_wrte"},
            {"status": "1"},
            {"status": "1", "cmd": "set_device", "device": "W25Q99", "file": "spi/W25Q99.dev"}
        ]}]})");
        const QString fileKeys = "addr_device, addr_file, count, file, format";
        QCOMPARE(problems, QStringList({
                               where(1, "set_prog", Lang.get(1743)),
                               where(2, "set_device", Lang.get(1748).arg("spi/W25Q80RV.dev", "W25Q80RV")),
                               where(3, "erase", Lang.get(1749).arg("yes")),
                               where(4, "file_write", Lang.get(1744).arg("addr_device")),
                               where(4, "file_write", Lang.get(1745).arg("count", fileKeys)),
                               where(4, "file_write", Lang.get(1746).arg("cnt", fileKeys)),
                               where(5, "flash_wrte", Lang.get(1742).arg("flash_wrte")),
                               where(6, "", Lang.get(1741)),
                               where(7, "set_device", Lang.get(1747).arg("W25Q99")),
                           }));
    }

    void aSavedProjectHasNothingToSay() {
        QFile demo(QStringLiteral(TARVELIX_DATA_DIR "/projects/demo.prj"));
        QVERIFY(demo.open(QIODevice::ReadOnly));
        const QStringList problems = check(demo.readAll());
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join('\n')));
    }

    // Every command of every family, with a part of each family chosen, and every key of its defaults.
    void theGuideDocumentsEveryKeyOfEveryCommand() {
        QFile f(QStringLiteral(TARVELIX_SOURCE_DIR "/docs/project-file.md"));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QString guide = QString::fromUtf8(f.readAll());
        QStringList missing;
        int cfg = -1;
        auto covered = [&](const QString& code) {
            const int id = TPrjBuilder::addCmd(ProjectData, cfg, code);
            TData keys = ProjectData.getCmdData(id);
            TDataCmd::removeModelKeys(keys);
            if (!guide.contains("`" + code + "`")) missing << code;
            for (const QString& key : keys.keys())
                if (!guide.contains("`" + key + "`")) missing << code + ": " + key;
        };
        for (const char* part : {"", "24C256", "W25Q80RV", "ATmega328P"}) {
            ProjectData.clrPrj();
            cfg = ProjectData.newCfg("A", "", -1);
            TPrjBuilder::addCmd(ProjectData, cfg, "set_prog", {{"prog", "Sim"}});
            if (!*part) {
                for (const QString& code : ProjectData.getSupportToolsCmdList())
                    covered(code);
                continue;
            }
            const int last = TPrjBuilder::addSetDevice(ProjectData, cfg, part, DeviceList.getDeviceList().value(part));
            for (const QString& code :
                 ProjectData.getSupportProgCmdList(last) + ProjectData.getSupportDeviceCmdList(last))
                covered(code);
        }
        missing.removeDuplicates();
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join('\n')));
    }
};

QTEST_GUILESS_MAIN(TestPrjCheck)
#include "test_prj_check.moc"
