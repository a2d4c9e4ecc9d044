#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/TDevProg.h"
#include "devices/TDevTools.h"
#include "devices/TDeviceList.h"
#include "formats/TCRC.h"
#include "link/TProg.h"
#include "project/CTagCmdCode.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "ui/TDialogSelectDevice.h"
#include "ui/TFormCmd.h"
#include "ui/TFormSetDevice.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QtTest>

#include <memory>

namespace {
// A device family whose set_device settings are one bus number, to see the form embed and drop them.
class TFakeDev : public IDevice {
public:
    TFakeDev() : IDevice(QStringLiteral("FakeDev")) {}
    bool supportCmd(const QString&) const override { return false; }
    QStringList getSupportCmdList() const override { return {}; }
    void getDefaultCmdParam(TData&) override {}
    QString getViewCmdName(const TData&) const override { return {}; }
    QString getViewCmdParam(const TData&, QWidget*) const override { return {}; }
    QWidget* getFormCmdParam(const TData&) const override { return nullptr; }
    TData getChangedParam(const TData& p) const override { return p; }
    void normCmdParam(TData&) override {}
    bool checkCmdParam(const TData&) override { return true; }
    bool checkCmdSetDeviceParam(const TData&) override { return true; }
    void getDefaultParamCmdSetDevice(TData& p) override { p.insert("bus", 3); }
    QWidget* getWgtCmdSetDeviceParam(const TData& p) override {
        auto* form = new TFormCmd(p);
        form->addInt("bus", "Bus:", 0, 7)->setObjectName("bus");
        return form;
    }
    QByteArray getCmdSetDeviceExec(const TData&) override { return {}; }
    IDeviceExec* createExecObject(const TData&) override { return nullptr; }
};

IDevice* makeDevice(const QString& name, const QString& file) {
    if (name == "FakeDev") return new TFakeDev;
    TData param;
    const TDeviceList::Creator creator = DeviceList.getDeviceInstance(name, file, param);
    return creator ? creator(name, param) : nullptr;
}

// The keys whose values differ between two records.
QStringList changedKeys(const TData& a, const TData& b) {
    QStringList keys;
    for (const QString& k : a.keys() + b.keys()) {
        if (!keys.contains(k) && (a.value(k) != b.value(k) || a.contains(k) != b.contains(k))) keys.append(k);
    }
    keys.sort();
    return keys;
}
} // namespace

// The parameter forms of the programmer and tools commands against the simulator's description and the
// real catalogue, and the device selection.
class TestFormsProg : public QObject {
    Q_OBJECT

    int cfgA = -1, cfgB = -1, idSetProg = -1, idSetDevice = -1;
    TDevProg prog{"Prog", TData()};
    TDevTools tools{"Tools", TData()};

    int add(int cfg, const QString& code, TData p = {}) {
        p.insert("id_cfg", cfg);
        p.insert("cmd", code);
        p.insert("status", 1);
        return ProjectData.newCmd(p, -1);
    }
    IDevice* groupOf(const QString& code) {
        return TDevProg::isCmdProg(code) ? static_cast<IDevice*>(&prog) : &tools;
    }
    // A command of configuration A holding its family's defaults, as the model keeps it.
    TData withDefaults(const QString& code) {
        const int id = add(cfgA, code);
        TData p = ProjectData.getCmdData(id);
        groupOf(code)->getDefaultCmdParam(p);
        ProjectData.updCmdParam(id, p);
        return ProjectData.getCmdData(id);
    }
    // Defaults that pass their checks: a CRC needs a file.
    TData validDefaults(const QString& code) {
        TData p = withDefaults(code);
        if (code == "calc_crc") p.insert("file", "demo.hex");
        return p;
    }
    // Opens the command's form on the record; the test owns the form.
    std::unique_ptr<TFormCmd> open(const TData& p) {
        QWidget* w = groupOf(p.value("cmd").toString())->getFormCmdParam(p);
        return std::unique_ptr<TFormCmd>(qobject_cast<TFormCmd*>(w));
    }
    template <class T> T* field(TFormCmd* form, const QString& name) {
        T* w = form->findChild<T*>(name);
        if (!w) qWarning("no field %s", qPrintable(name));
        return w;
    }
    void type(TFormCmd* form, const QString& name, const QString& text) {
        field<QLineEdit>(form, name)->setText(text);
        form->changed();
    }

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        AppData.pathDevices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
        AppData.progName.clear();
        AppData.progName.append(true, "Sim", "ttyS0", "sim");
        AppData.progName.append(true, "Bench", "ttyS1", "sim");
        ProjectData.setProgFactory(
            [](const QString&) { return new TProg(QStringLiteral(TARVELIX_DATA_DIR "/progs/sim.cfg")); });
        ProjectData.setDeviceFactory(makeDevice);
    }

    void init() {
        ProjectData.clrPrj();
        cfgA = ProjectData.newCfg("A", "", -1);
        cfgB = ProjectData.newCfg("B", "", -1);
        idSetProg = add(cfgA, "set_prog", {{"prog", "Sim"}, {"alt_enabled", false}, {"alt_port", ""}});
        idSetDevice = add(cfgA, "set_device", {{"device", "W25Q80RV"}, {"file", "spi/W25Q80RV.dev"}});
        TData dev = ProjectData.getCmdData(idSetDevice);
        ProjectData.createDevice("W25Q80RV", "spi/W25Q80RV.dev")->getDefaultParamCmdSetDevice(dev);
        ProjectData.updCmdParam(idSetDevice, dev);
    }

    void everyCommandGivesItsRecordBack() {
        QStringList codes = TDevProg::getCmdList() + TDevTools::getCmdList();
        codes.removeAll(CTagCmdCode::separator);
        QCOMPARE(codes.size(), 18);
        for (const QString& code : codes) {
            const TData d = withDefaults(code);
            std::unique_ptr<TFormCmd> form = open(d);
            if (code == "pause" || code == "stop") {
                QVERIFY2(!form, qPrintable(code));
                continue;
            }
            QVERIFY2(form, qPrintable(code));
            QCOMPARE(changedKeys(groupOf(code)->getChangedParam(d), d), QStringList());
            // A project file holds every value as text; the form keeps it text.
            TData text = d;
            for (const QString& k : text.keys()) {
                if (k != "id_cmd" && k != "id_cfg") text.insert(k, text.value(k).toString());
            }
            form = open(text);
            QCOMPARE(changedKeys(groupOf(code)->getChangedParam(text), text), QStringList());
        }
        // The device of the configuration comes back with its file.
        const TData dev = ProjectData.getCmdData(idSetDevice);
        std::unique_ptr<TFormCmd> form = open(dev);
        QCOMPARE(prog.getChangedParam(dev), dev);
    }

    void editingAFieldChangesExactlyItsKey() {
        struct Case {
            QString code, field;
            QVariant input, stored;
        };
        const int target = add(cfgA, "delay", {{"value", 5}});
        const QList<Case> cases = {
            {"set_vcc", "vcc", "5", 5.0},
            {"set_vicc", "icc", "0.2", 0.2},
            {"set_vicc", "ocp", true, true},
            {"set_vipp", "vpp", "12.5", 12.5},
            {"reset", "duration", "-20", -20},
            {"gen", "freq", "1000", 1000},
            {"gen", "duty_cycle", 2, 75},
            {"set_io", "state_1", 4, "-L------"},
            {"delay", "value", "250", 250},
            {"counter", "limit", "7", 7},
            {"jamp", "to_cmd", 2, target},
            {"execute", "cfg", 1, cfgB},
            {"process", "file", "make flash", "make flash"},
            {"calc_crc", "fill", "AA", 170},
            {"calc_crc", "format", 0, "hex"},
            {"calc_crc", "format", 3, "ihex"},
            {"calc_crc", "count", "0x100", 256},
            {"set_prog", "prog", 1, "Bench"},
            {"set_prog", "alt_port", "ttyUSB1 (FTDI FT232R)", "ttyUSB1"},
            {"auto_detect", "route", "W25Q80RV=B", QString("W25Q80RV=%1").arg(cfgB)},
            {"auto_detect", "stop", false, false},
        };
        for (const Case& c : cases) {
            const TData d = validDefaults(c.code);
            std::unique_ptr<TFormCmd> form = open(d);
            QWidget* w = form->findChild<QWidget*>(c.field);
            QVERIFY2(w, qPrintable(c.field));
            if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->setText(c.input.toString());
            if (auto* box = qobject_cast<QComboBox*>(w)) {
                if (box->isEditable())
                    box->setEditText(c.input.toString());
                else
                    box->setCurrentIndex(c.input.toInt());
            }
            if (auto* check = qobject_cast<QCheckBox*>(w)) check->setChecked(c.input.toBool());
            if (auto* text = qobject_cast<QPlainTextEdit*>(w)) text->setPlainText(c.input.toString());
            form->changed();
            const TData changed = groupOf(c.code)->getChangedParam(d);
            const QString key = c.field.section('_', 0, 0) == "state" ? "state" : c.field;
            QCOMPARE(changedKeys(changed, d), QStringList{key});
            QCOMPARE(changed.value(key), c.stored);
            QCOMPARE(form->getError(), QString());
        }
    }

    void outOfRangeValuesSayWhy() {
        struct Case {
            QString code, field, input, error;
        };
        const QList<Case> cases = {
            {"set_vcc", "vcc", "5.6", "Vcc, V: must be a number from 1.8 to 5.5"},
            {"set_vcc", "vcc", "x", "Vcc, V: must be a number from 1.8 to 5.5"},
            {"set_vpp", "vpp", "4.9", "Vpp, V: must be a number from 5 to 13"},
            {"set_vicc", "icc", "0.56", "Icc, mA: must be a number from 0.01 to 0.5"},
            {"set_vipp", "ipp", "0.2", "Ipp, mA: must be a number from 0.01 to 0.1"},
            {"reset", "duration", "5",
             "Reset, ms: must be 0, or from 10 to 1000 in either direction (the sign chooses the polarity)"},
            {"reset", "duration", "-1001",
             "Reset, ms: must be 0, or from 10 to 1000 in either direction (the sign chooses the polarity)"},
            {"gen", "freq", "9000000", "Frequency, Hz: must be a number from 1 to 8000000"},
            {"delay", "value", "-1", "Delay, ms: must be a number from 0 to 2147483647"},
            {"counter", "delta", "2147483648", "Step: must be a number from -2147483648 to 2147483647"},
            {"calc_crc", "fill", "256", "Fill byte: " + Lang.get(1720).arg("0x00", "0xFF")},
            {"process", "file", " ", "Command line: must not be empty"},
        };
        for (const Case& c : cases) {
            const TData d = validDefaults(c.code);
            std::unique_ptr<TFormCmd> form = open(d);
            type(form.get(), c.field, c.input);
            QCOMPARE(form->getError(), c.error);
            if (TDevProg::isCmdProg(c.code)) QVERIFY(!prog.checkCmdParam(prog.getChangedParam(d)));
        }
        // The form rounds tenths as the check does: 5.54 V is 5.5 V.
        const TData vcc = withDefaults("set_vcc");
        std::unique_ptr<TFormCmd> form = open(vcc);
        type(form.get(), "vcc", "5.54");
        QCOMPARE(form->getError(), QString());
        QVERIFY(prog.checkCmdParam(prog.getChangedParam(vcc)));
        form = open(withDefaults("reset"));
        type(form.get(), "duration", "0");
        QCOMPARE(form->getError(), QString());
    }

    void choicesMarkValuesTheyDoNotOffer() {
        // "execute" starts on no configuration; a jump's target may have been deleted.
        std::unique_ptr<TFormCmd> form = open(withDefaults("execute"));
        QCOMPARE(form->getError(), QString("Configuration: is not one of the offered values"));
        const int gone = add(cfgB, "delay", {{"value", 1}});
        const TData jamp = withDefaults("jamp");
        TData p = jamp;
        p.insert("to_cmd", gone);
        ProjectData.delCmd(gone);
        form = open(p);
        QCOMPARE(form->getError(), QString("Jump to: is not one of the offered values"));
        QCOMPARE(tools.getChangedParam(p).value("to_cmd"), QVariant(gone));
        // The jump offers the commands of its own configuration only, in their order.
        form = open(jamp);
        QComboBox* to = field<QComboBox>(form.get(), "to_cmd");
        QCOMPARE(to->count(), 4); // set_prog, set_device, execute and the jump itself
        QVERIFY(to->itemText(2).startsWith("3. "));
        // A port is needed once the other port is chosen; routes name existing configurations.
        form = open(withDefaults("set_prog"));
        field<QCheckBox>(form.get(), "alt_enabled")->setChecked(true);
        QCOMPARE(form->getError(), QString("Port: must not be empty"));
        form = open(withDefaults("auto_detect"));
        field<QPlainTextEdit>(form.get(), "route")->setPlainText("W25Q80RV=A\nX=Nowhere");
        QCOMPARE(form->getError(),
                 QString("Routes (device=configuration, one a line): line 2: no configuration "
                         "named \"Nowhere\""));
    }

    void rangesAndDefaultsAreShown() {
        const QList<QPair<QString, QString>> hints = {
            {"set_vcc", "Default: 3.3 V"},
            {"set_vicc", "0.01..0.5 mA, Default: 0.1 mA"},
            {"set_vipp", "0.01..0.1 mA, Default: 0.05 mA"},
            {"reset", "10..1000 ms, Default: -400 ms"},
            {"gen", "1..8000000 Hz"},
            {"delay", "0..2147483647 ms, Default: 100 ms"},
        };
        for (const auto& h : hints) {
            std::unique_ptr<TFormCmd> form = open(withDefaults(h.first));
            QStringList texts;
            for (QLabel* l : form->findChildren<QLabel*>())
                texts.append(l->text());
            QVERIFY2(texts.contains(h.second), qPrintable(h.first + ": " + texts.join(" | ")));
        }
        // One pin choice per pin of the device's connection, labelled from the description.
        std::unique_ptr<TFormCmd> form = open(withDefaults("set_io"));
        QStringList pins;
        for (QLabel* l : form->findChildren<QLabel*>())
            pins.append(l->text());
        QVERIFY(pins.contains("P1 - MISO") && pins.contains("P6 - HOLD") && pins.contains("P8"));
        QCOMPARE(field<QComboBox>(form.get(), "state_0")->itemText(0), QString("- (not change)"));
        QCOMPARE(field<QComboBox>(form.get(), "state_0")->count(), 9);
        // The CRC models come from the list beside the program.
        form = open(withDefaults("calc_crc"));
        QComboBox* crc = field<QComboBox>(form.get(), "crc_name");
        QCOMPARE(crc->currentText(), QString("CRC-32"));
        QCOMPARE(crc->count(), TCRC::getAlgListView().size() + 1); // the alias first
        QCOMPARE(crc->itemText(1), QString("CHKSUM-8/HEX"));
    }

    void deviceSelectionSearchesAndFilters() {
        TDialogSelectDevice dialog;
        dialog.setSearch("w25q8");
        QStringList names = dialog.getVisibleNames();
        QVERIFY(names.contains("W25Q80RV"));
        for (const QString& n : names)
            QVERIFY2(n.contains("W25Q8", Qt::CaseInsensitive), qPrintable(n));
        dialog.setSearch("WINBOND");
        names = dialog.getVisibleNames();
        QVERIFY(names.contains("W25Q80RV") && !names.contains("24C256") && !names.contains("ATmega328P"));
        dialog.setSearch("microchip");
        QVERIFY(dialog.getVisibleNames().contains("ATmega328P"));
        dialog.setSearch("");
        dialog.setFamily("Dev24");
        names = dialog.getVisibleNames();
        QVERIFY(names.contains("24C256") && !names.contains("W25Q80RV"));
        for (const QString& n : names)
            QVERIFY2(n.contains("24"), qPrintable(n));
        dialog.setFamily("");
        dialog.select("W25Q80RV");
        QCOMPARE(dialog.getSelectedName(), QString("W25Q80RV"));
        QCOMPARE(dialog.getSelectedFile(), QString("spi/W25Q80RV.dev"));
        QCOMPARE(dialog.getDetails(), (QStringList{"1 Mbyte", "256 byte", "2.7..3.6 V", "EF4014"}));
        dialog.select("ATmega328P");
        QCOMPARE(dialog.getDetails(), (QStringList{"32 Kbyte", "128 byte", "not given", "1E950F"}));
        // A search that no longer matches the chosen part moves the choice to a part that does.
        dialog.setSearch("24C256");
        QCOMPARE(dialog.getSelectedName(), QString("24C256"));
    }

    void setDeviceEmbedsTheDeviceSettings() {
        const TData eeprom{{"cmd", "set_device"},      {"id_cfg", cfgA}, {"device", "24C256"},
                           {"file", "i2c/24C256.dev"}, {"addr", "0"},    {"clk", "1"}};
        const int id = add(cfgA, "set_device", eeprom);
        const TData d = ProjectData.getCmdData(id);
        std::unique_ptr<TFormCmd> form = open(d);
        auto* dev = qobject_cast<TFormSetDevice*>(form.get());
        QVERIFY(dev);
        QCOMPARE(prog.getChangedParam(d), d);
        // Another device: its defaults replace the settings of the one before.
        dev->setDevice("FakeDev", "fake.dev");
        QPointer<TFormCmd> settings = dev->getDeviceForm();
        QVERIFY(settings);
        TData p = prog.getChangedParam(d);
        QCOMPARE(changedKeys(p, d), (QStringList{"addr", "bus", "clk", "device", "file"}));
        QCOMPARE(p.value("bus"), QVariant(3));
        QVERIFY(!p.contains("addr") && !p.contains("clk"));
        type(settings, "bus", "9");
        QCOMPARE(form->getError(), QString("Bus: must be a number from 0 to 7"));
        type(settings, "bus", "5");
        QCOMPARE(prog.getChangedParam(d).value("bus"), QVariant(5));
        dev->setDevice("W25Q80RV", "spi/W25Q80RV.dev");
        QVERIFY(!settings);
        p = prog.getChangedParam(d);
        QCOMPARE(p.value("device"), QVariant("W25Q80RV"));
        QCOMPARE(p.value("file"), QVariant("spi/W25Q80RV.dev"));
        QVERIFY(!p.contains("bus") && !p.contains("addr"));
        QCOMPARE(p.value("id_cmd"), QVariant(id));
        // No device: the form says so.
        form = open(withDefaults("set_device"));
        QCOMPARE(form->getError(), QString("Device: must be chosen"));
    }
};

QTEST_MAIN(TestFormsProg)
#include "test_forms_prog.moc"
